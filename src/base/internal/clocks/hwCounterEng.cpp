#include <base/internal/clocks/hwCounterEng.h>

namespace Kr
{

HwCounterEng::~HwCounterEng() = default;

} // namespace Kr
