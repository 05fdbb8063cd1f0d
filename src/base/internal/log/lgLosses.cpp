#include <base/internal/log/lgLosses.h>

#include <array>
#include <atomic>

namespace Kr
{

namespace
{

std::atomic<std::uint64_t> total{0};
std::array<std::atomic<std::uint32_t>, LgTypes::NUM_LEVELS> untold = {};
std::atomic<std::uint32_t> untoldSpans{0};

} // namespace

void LgLosses::count(std::uint64_t messages) noexcept
{
    total.fetch_add(messages, std::memory_order_relaxed);
}

void LgLosses::countForWantOfMemory(LgTypes::Level level) noexcept
{
    count(1);
    untold[level].fetch_add(1, std::memory_order_relaxed);
}

LgQueue::Counts LgLosses::takeUntold() noexcept
{
    LgQueue::Counts counts = {};
    for (std::size_t level = 0; level < counts.size(); ++level)
        if (untold[level].load(std::memory_order_relaxed) != 0)
            counts[level] = untold[level].exchange(0, std::memory_order_relaxed);
    return counts;
}

void LgLosses::countSpans(std::uint32_t spans) noexcept
{
    untoldSpans.fetch_add(spans, std::memory_order_relaxed);
}

std::uint32_t LgLosses::takeUntoldSpans() noexcept
{
    return untoldSpans.exchange(0, std::memory_order_relaxed);
}

std::uint64_t LgLosses::getTotal() noexcept
{
    return total.load(std::memory_order_relaxed);
}

} // namespace Kr
