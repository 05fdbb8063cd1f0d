#pragma once

/// @file
/// Adds up the time of several spans.
/// @code
/// Kr::Timer<Kr::HwIntervalTimer> waiting("waiting for the disk");
/// while (nextFrame())
/// {
///     waiting.start();
///     load();
///     waiting.stop();
///     render();
/// }
/// std::cout << waiting.getSeconds() << " s\n";
/// @endcode
/// Pitfall: a second `start` in a row drops the span that was running; a second `stop` in a row
/// counts the span from its start once more. For statistics over many spans use `Profiler`.
///
/// A timer belongs to one thread. To time with a stopwatch of one's own, include <base/timer.imp>.

#include <base/hwIntervalTimer.h>
#include <base/krBaseApi.h>
#include <base/timerBase.h>
#include <base/todIntervalTimer.h>

#include <cstdint>

namespace Kr
{

/// @tparam T the stopwatch: `HwIntervalTimer` or `TodIntervalTimer`, or one with their operations
template <class T>
class Timer : public TimerBase
{
public:
    explicit Timer(const char* name = "anonymous");

    const char* setName(const char* name) override;
    const char* getName() const override;
    void start() override;
    void stop() override;
    void reset() override;
    double getSeconds() const override;

private:
    std::int32_t _stopped;
    T _stopwatch;
    double _accumulated;
};

extern template class KR_BASE_API Timer<HwIntervalTimer>;
extern template class KR_BASE_API Timer<TodIntervalTimer>;

} // namespace Kr
