#include <base/internal/log/lgThreadSlot.h>

namespace Kr
{

namespace
{

thread_local LgQueue* slot = nullptr;

} // namespace

LgQueue* LgThreadSlot::get() noexcept
{
    return slot;
}

void LgThreadSlot::set(LgQueue* queue) noexcept
{
    slot = queue;
}

} // namespace Kr
