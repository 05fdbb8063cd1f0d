#include <base/exSysError.h>
#include <base/internal/clocks/beatTest.h>
#include <base/internal/clocks/timerPeriod.h>
#include <base/internal/errors/invariant.h>
#include <base/periodicTimer.h>
#include <base/raise.h>

#include <platform/platform.h>

#include <condition_variable>
#include <cstdio>

namespace Kr
{

namespace
{

constexpr UINT timerResolution = 1; // milliseconds
constexpr double selfTestLimit = 0.5;

/// The delay of an interval in milliseconds; raises unless a timer can do it.
UINT getDelay(double interval)
{
    const double least = TimerPeriod::getResolution();
    const double greatest = TimerPeriod::getGreatestDelay() / 1000.;
    if (interval >= least && interval <= greatest) // not a NaN
        return static_cast<UINT>(interval * 1000.);
    char reason[ExBase::reasonSize];
    std::snprintf(reason, sizeof reason,
                  "A periodic timer cannot beat every %g s: its interval is from %g to %g s.",
                  interval, least, greatest);
    raise<ExInternalError>(KR_HERE, reason);
}

/// A manual-reset event, not signalled at first.
class BeatEvent
{
public:
    BeatEvent()
        : _handle(CreateEventA(nullptr, 1, 0, nullptr))
    {
        if (_handle == nullptr)
            raise<ExSysErrorWindows>(KR_HERE);
    }
    BeatEvent(const BeatEvent&) = delete;
    BeatEvent& operator=(const BeatEvent&) = delete;
    ~BeatEvent() { CloseHandle(_handle); }

    HANDLE get() const { return _handle; }

private:
    const HANDLE _handle;
};

} // namespace

class PeriodicTimerWindows : public PeriodicTimer
{
public:
    explicit PeriodicTimerWindows(double interval);
    PeriodicTimerWindows(const PeriodicTimerWindows&) = delete;
    PeriodicTimerWindows& operator=(const PeriodicTimerWindows&) = delete;
    ~PeriodicTimerWindows() override;

    bool start() override;
    bool stop() override;
    long long waitNextBeat() override;
    double setInterval(double interval) override;

private:
    class Wait;

    bool performStart();
    bool performStop();

    const TimerPeriod _period;
    MMRESULT _timer = 0; ///< 0 for none
    const BeatEvent _event;
    std::mutex _control; ///< guards the timer and what follows
    std::condition_variable _hasGone;
    int _waiting = 0;
    bool _isClosing = false;
};

bool waitBeating(PeriodicTimer& timer)
{
    const double tolerance = 2. * PeriodicTimer::getResolution();
    const double lower = timer.getInterval() - tolerance;
    const double upper = timer.getInterval() + tolerance;
    const bool hasStarted = timer.start();
    const double begin = PeriodicTimer::getCurrentTime();
    bool isTimedOut = false;
    bool isOnTime = false;
    while (!isOnTime && !isTimedOut)
    {
        const double before = PeriodicTimer::getCurrentTime();
        timer.waitNextBeat();
        const double after = PeriodicTimer::getCurrentTime();
        isTimedOut = after - begin > selfTestLimit;
        isOnTime = lower <= after - before && after - before <= upper;
    }
    if (hasStarted)
        timer.stop();
    return !isTimedOut;
}

ObjPtrRet<PeriodicTimer> PeriodicTimer::create(double interval)
{
    return ObjPtrRet<PeriodicTimer>(new PeriodicTimerWindows(interval));
}

PeriodicTimerWindows::PeriodicTimerWindows(double interval)
    : PeriodicTimer(interval)
{
    getDelay(interval);
    KR_INVARIANT_TEXT(waitBeating(*this), "waitBeating( *this )", 121);
}

PeriodicTimerWindows::~PeriodicTimerWindows()
{
    std::unique_lock<std::mutex> lock(_control);
    performStop();
    _isClosing = true;
    SetEvent(_event.get());
    _hasGone.wait(lock, [this] { return _waiting == 0; });
}

double PeriodicTimer::getResolution()
{
    return TimerPeriod::getResolution();
}

bool PeriodicTimerWindows::start()
{
    const std::lock_guard<std::mutex> lock(_control);
    return performStart();
}

bool PeriodicTimerWindows::stop()
{
    const std::lock_guard<std::mutex> lock(_control);
    const bool hasStopped = performStop();
    if (hasStopped)
        SetEvent(_event.get()); // until the next wait resets it, so that none is missed
    return hasStopped;
}

/// Counts a thread that waits; once the timer closes, the event stays set.
class PeriodicTimerWindows::Wait
{
public:
    explicit Wait(PeriodicTimerWindows& timer)
        : _owner(timer)
    {
        const std::lock_guard<std::mutex> lock(_owner._control);
        ++_owner._waiting;
        if (!_owner._isClosing)
            ResetEvent(_owner._event.get());
    }
    Wait(const Wait&) = delete;
    Wait& operator=(const Wait&) = delete;
    ~Wait()
    {
        const std::lock_guard<std::mutex> lock(_owner._control);
        --_owner._waiting;
        _owner._hasGone.notify_all();
    }

private:
    PeriodicTimerWindows& _owner;
};

long long PeriodicTimerWindows::waitNextBeat()
{
    const Wait wait(*this);
    WaitForSingleObject(_event.get(), INFINITE);
    return getCurrentCount();
}

double PeriodicTimerWindows::setInterval(double interval)
{
    getDelay(interval);
    const std::lock_guard<std::mutex> lock(_control);
    const bool wasRunning = performStop();
    storeInterval(interval);
    if (wasRunning)
        performStart();
    return interval;
}

bool PeriodicTimerWindows::performStart()
{
    if (isRunning())
        return false;
    _timer = timeSetEvent(getDelay(getInterval()), timerResolution,
                          reinterpret_cast<LPTIMECALLBACK>(_event.get()), 0,
                          TIME_PERIODIC | TIME_CALLBACK_EVENT_PULSE);
    if (_timer == 0)
        raise<ExInternalError>(KR_HERE, "The system has no timer left.");
    setRunning(getCurrentTime());
    return true;
}

bool PeriodicTimerWindows::performStop()
{
    if (!isRunning())
        return false;
    setStopped();
    timeKillEvent(_timer);
    _timer = 0;
    return true;
}

} // namespace Kr
