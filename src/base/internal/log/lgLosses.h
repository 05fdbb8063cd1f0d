#pragma once

/// @file
/// Internal to the library: the messages that were lost where neither a queue nor an output counts
/// them. May be used by any thread at any time.

#include <base/lgQueue.h>
#include <base/lgTypes.h>

#include <cstdint>

namespace Kr
{
namespace LgLosses
{

void count(std::uint64_t messages) noexcept;

/// Counts a message for which there was no memory. The log will tell of it.
void countForWantOfMemory(LgTypes::Level level) noexcept;

/// What the log has to tell of since the last call, by level.
LgQueue::Counts takeUntold() noexcept;

/// Counts a span for which there is no ring. The timeline will tell of it.
void countSpans(std::uint32_t spans) noexcept;
std::uint32_t takeUntoldSpans() noexcept;

/// The sum of the messages that were counted since the process began.
std::uint64_t getTotal() noexcept;

} // namespace LgLosses
} // namespace Kr
