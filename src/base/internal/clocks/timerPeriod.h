#pragma once

/// @file
/// The multimedia timers' resolution.

namespace Kr
{

/// Has the system run its timers at their finest while the object lives.
class TimerPeriod
{
public:
    /// The device's least period, in seconds.
    static double getResolution();

    /// The greatest delay of one timer, in milliseconds.
    static unsigned int getGreatestDelay();

    TimerPeriod();
    TimerPeriod(const TimerPeriod&) = delete;
    TimerPeriod& operator=(const TimerPeriod&) = delete;
    ~TimerPeriod();

private:
    const unsigned int _period; ///< milliseconds
};

} // namespace Kr
