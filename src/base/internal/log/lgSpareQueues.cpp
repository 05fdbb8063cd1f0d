#include <base/internal/log/lgSpareQueues.h>

#include <base/internal/errors/immortal.h>

#include <utility>

namespace Kr
{

LgSpareQueues& LgSpareQueues::get() noexcept
{
    static Immortal<LgSpareQueues> instance;
    return *instance;
}

std::shared_ptr<LgQueue> LgSpareQueues::take() noexcept
{
    if (count() == 0)
        return nullptr;
    for (Place& place : _places)
        if (place.change(State::full, State::busy))
        {
            _count.fetch_sub(1, std::memory_order_relaxed);
            std::shared_ptr<LgQueue> queue = std::move(place.queue);
            place.state.store(State::empty, std::memory_order_release);
            return queue;
        }
    return nullptr;
}

bool LgSpareQueues::put(const std::shared_ptr<LgQueue>& queue) noexcept
{
    for (Place& place : _places)
        if (place.change(State::empty, State::busy))
        {
            place.queue = queue;
            _count.fetch_add(1, std::memory_order_relaxed);
            place.state.store(State::full, std::memory_order_release);
            return true;
        }
    return false;
}

void LgSpareQueues::clear() noexcept
{
    while (take() != nullptr)
    {
    }
}

} // namespace Kr
