#pragma once

/// @file
/// Internal to the library: how many messages a second a major group may log, and how many were
/// withheld. Every level is counted by itself, so that a flood of tracing withholds no warning.
///
/// May be used by any thread; lives as long as the process.

#include <base/lgTypes.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <string>

namespace Kr
{

class LgLimit
{
public:
    using Counts = std::array<std::uint32_t, LgTypes::NUM_LEVELS>;

    /// @param group the name of the group
    explicit LgLimit(std::string group);
    LgLimit(const LgLimit&) = delete;
    LgLimit& operator=(const LgLimit&) = delete;

    const std::string& getGroup() const { return _group; }

    /// In messages a second.
    std::uint32_t getRate() const { return _rate.load(std::memory_order_relaxed); }
    void setRate(std::uint32_t rate) { _rate.store(rate, std::memory_order_relaxed); }

    /// Whether a message may be logged now; one that may not is counted. Takes at most the rate
    /// in each second of the hardware counter.
    bool admits(LgTypes::Level level) noexcept;

    // For the reader

    /// How many messages were withheld since the last call, by level.
    Counts takeWithheld() noexcept;

    /// The others, in a list of all that exist.
    static LgLimit* getFirst() noexcept { return _first.load(std::memory_order_acquire); }
    LgLimit* getNext() const noexcept { return _next; }

private:
    bool takePlace(std::atomic<std::uint64_t>& window) noexcept;

    static std::atomic<LgLimit*> _first;

    const std::string _group;
    LgLimit* const _next;
    std::atomic<std::uint32_t> _rate{0};
    std::array<std::atomic<std::uint64_t>, LgTypes::NUM_LEVELS> _windows; // a second, a count in it
    std::array<std::atomic<std::uint32_t>, LgTypes::NUM_LEVELS> _withheld;
};

} // namespace Kr
