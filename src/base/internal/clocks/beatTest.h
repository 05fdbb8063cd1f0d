#pragma once

/// @file
/// The self-test of a periodic timer.

namespace Kr
{

class PeriodicTimer;

/// Whether the timer beats: whether the time from a wait to the next beat comes within 2
/// resolutions of the interval. Tries for half a second; a round that ends later fails, even if its
/// beat was on time. Leaves the timer running only if it was.
bool waitBeating(PeriodicTimer& timer);

} // namespace Kr
