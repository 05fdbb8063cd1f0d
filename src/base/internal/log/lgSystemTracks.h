#pragma once

/// @file
/// Internal to the library: the processor's and the process's counters as curves of the timeline.

namespace Kr
{

class LgSystemTracks
{
public:
    /// From now on whoever drains the log takes a sample when the interval has passed, which is in
    /// seconds; does nothing if that is 0, or if there is no timeline. A counter that the system
    /// does not have is told on the standard error stream, and left out.
    static void start(double interval);

    /// Once the logger has stopped.
    static void stop() noexcept;
};

} // namespace Kr
