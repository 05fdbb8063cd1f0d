#pragma once

/// @file
/// The stopwatch over the hardware counter: nanoseconds, and cheap to start and stop.
/// @code
/// Kr::HwIntervalTimer timer("render");
/// timer.start();
/// render();
/// timer.stop();
/// std::cout << timer.getName() << ": " << timer.timeInterval() << " s\n";
/// @endcode
/// A timer belongs to one thread.

#include <base/intervalTimer.h>

namespace Kr
{

/// Never started, it measures from tick 0 of `HwCounter`.
class KR_BASE_API HwIntervalTimer : public IntervalTimer
{
public:
    explicit HwIntervalTimer(const char* name = "anonymous");

    void start() override;
    void stop() override;
    double timeInterval() const override;
    double sinceStart() const override;

private:
    unsigned long long _start;
    unsigned long long _stop;
};

} // namespace Kr
