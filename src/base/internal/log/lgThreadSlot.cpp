#include <base/internal/log/lgThreadSlot.h>

namespace Kr
{

namespace
{

thread_local const LgTarget* slot = nullptr;

} // namespace

const LgTarget* LgThreadSlot::get() noexcept
{
    return slot;
}

void LgThreadSlot::set(const LgTarget* target) noexcept
{
    slot = target;
}

} // namespace Kr
