#include <base/internal/log/lgThreadSlot.h>

namespace Kr
{

KR_BASE_THREAD_LOCAL LgQueue* LgThreadSlot::_queue = nullptr;

} // namespace Kr
