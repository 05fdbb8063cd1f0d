#pragma once

/// @file
/// The stopwatch over the time of day, in milliseconds.
/// @code
/// Kr::TodIntervalTimer session("session");
/// session.start();
/// render();
/// std::cout << "running for " << session.sinceStart() << " s of the wall clock\n";
/// @endcode
/// Pitfall: when the time of day is set, an interval jumps with it and can be negative. Use
/// `HwIntervalTimer` unless the interval is to agree with the wall clock.

#include <base/intervalTimer.h>

namespace Kr
{

class KR_BASE_API TodIntervalTimer : public IntervalTimer
{
public:
    /// A reading of the time of day.
    struct KR_BASE_API NativeTimer
    {
        void refresh();

        double _seconds = 0.; ///< whole, since 1970-01-01 00:00 UTC
        double _milliseconds = 0.;
    };

    /// Seconds from `earlier` to `later`.
    static double getDifference(const NativeTimer& later, const NativeTimer& earlier);

    explicit TodIntervalTimer(const char* name = "anonymous");

    void start() override;
    void stop() override;
    double timeInterval() const override;
    double sinceStart() const override;

private:
    NativeTimer _start;
    NativeTimer _stop;
};

} // namespace Kr
