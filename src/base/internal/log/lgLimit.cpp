#include <base/internal/log/lgLimit.h>

#include <base/hwCounter.h>

#include <utility>

namespace Kr
{

std::atomic<LgLimit*> LgLimit::_first{nullptr};

/// Groups are made by one thread.
LgLimit::LgLimit(std::string group)
    : _group(std::move(group))
    , _next(_first.load(std::memory_order_relaxed))
{
    for (std::atomic<std::uint64_t>& window : _windows)
        window = 0;
    for (std::atomic<std::uint32_t>& count : _withheld)
        count = 0;
    _first.store(this, std::memory_order_release);
}

bool LgLimit::admits(LgTypes::Level level) noexcept
{
    if (level <= LgTypes::FatalError || takePlace(_windows[level]))
        return true;
    _withheld[level].fetch_add(1, std::memory_order_relaxed);
    return false;
}

/// The upper half of a window is its second, the lower half how many messages it has had.
bool LgLimit::takePlace(std::atomic<std::uint64_t>& window) noexcept
{
    const std::uint64_t second =
        HwCounter::timeStamp() / static_cast<std::uint64_t>(HwCounter::getRateNumerator());
    const std::uint64_t start = second << 32;
    std::uint64_t seen = window.load(std::memory_order_relaxed);
    for (;;)
    {
        const bool isCurrent = seen >> 32 == start >> 32;
        if (isCurrent && static_cast<std::uint32_t>(seen) >= getRate())
            return false;
        if (window.compare_exchange_weak(seen, (isCurrent ? seen : start) + 1,
                                         std::memory_order_relaxed))
            return true;
    }
}

LgLimit::Counts LgLimit::takeWithheld() noexcept
{
    Counts counts = {};
    for (std::size_t level = 0; level < counts.size(); ++level)
        if (_withheld[level].load(std::memory_order_relaxed) != 0)
            counts[level] = _withheld[level].exchange(0, std::memory_order_relaxed);
    return counts;
}

} // namespace Kr
