#include <base/lgTimeline.h>

namespace Kr
{

std::atomic<bool> LgTimeline::_enabled{false};

} // namespace Kr
