#pragma once

/// @file
/// Internal to the library: queues at hand for threads whose own is full. The reader makes them and
/// puts them back once they are read; a thread takes one without waiting.

#include <base/lgQueue.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>

namespace Kr
{

class LgSpareQueues
{
public:
    static constexpr std::size_t maxSize = 128;

    /// Those of the process.
    static LgSpareQueues& get() noexcept;

    LgSpareQueues() = default;
    LgSpareQueues(const LgSpareQueues&) = delete;
    LgSpareQueues& operator=(const LgSpareQueues&) = delete;

    /// Null if none is at hand, which one load tells. May be called by any thread.
    std::shared_ptr<LgQueue> take() noexcept;

    /// False if there is no place for it. For the reader, as is what follows.
    bool put(const std::shared_ptr<LgQueue>& queue) noexcept;
    std::size_t count() const noexcept { return _count.load(std::memory_order_relaxed); }
    void clear() noexcept;

private:
    enum class State
    {
        empty,
        busy, ///< somebody puts or takes
        full
    };

    struct Place
    {
        bool change(State from, State to) noexcept
        {
            return state.load(std::memory_order_relaxed) == from &&
                   state.compare_exchange_strong(from, to, std::memory_order_acquire);
        }

        std::atomic<State> state{State::empty};
        std::shared_ptr<LgQueue> queue;
    };

    std::array<Place, maxSize> _places;
    std::atomic<std::size_t> _count{0}; // of those that are full
};

} // namespace Kr
