#include <base/internal/log/lgSpareQueues.h>

#include <base/internal/errors/immortal.h>

#include <algorithm>
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
    for (Place& place : _places)
        if (place.change(State::full, State::busy))
        {
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
            place.state.store(State::full, std::memory_order_release);
            return true;
        }
    return false;
}

std::size_t LgSpareQueues::count() const noexcept
{
    return static_cast<std::size_t>(
        std::count_if(_places.begin(), _places.end(),
                      [](const Place& place)
                      { return place.state.load(std::memory_order_relaxed) == State::full; }));
}

void LgSpareQueues::clear() noexcept
{
    while (take() != nullptr)
    {
    }
}

} // namespace Kr
