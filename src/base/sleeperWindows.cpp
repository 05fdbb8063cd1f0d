#include <base/exSysError.h>
#include <base/internal/clocks/timerPeriod.h>
#include <base/list.h>
#include <base/raise.h>
#include <base/sleeper.h>

#include <platform/platform.h>

#include <algorithm>

namespace Kr
{

namespace
{

constexpr DWORD settleMilliseconds = 10;
constexpr UINT timerResolution = 1; // milliseconds

double getSecondsPerTick()
{
    LARGE_INTEGER frequency;
    if (QueryPerformanceFrequency(&frequency) == 0)
        raise<ExSysErrorANSI>(KR_HERE_AT(98));
    return 1. / static_cast<double>(frequency.QuadPart);
}

/// Holds a critical section for its scope.
class SectionLock
{
public:
    explicit SectionLock(CRITICAL_SECTION& section)
        : _section(section)
    {
        EnterCriticalSection(&_section);
    }
    SectionLock(const SectionLock&) = delete;
    SectionLock& operator=(const SectionLock&) = delete;
    ~SectionLock() { LeaveCriticalSection(&_section); }

private:
    CRITICAL_SECTION& _section;
};

/// Sleeps by one timer. A system that has no timer left still sleeps, only less well.
void sleepByTimer(HANDLE event, UINT milliseconds)
{
    const MMRESULT timer =
        timeSetEvent(milliseconds, timerResolution, reinterpret_cast<LPTIMECALLBACK>(event), 0,
                     TIME_ONESHOT | TIME_CALLBACK_EVENT_SET);
    if (timer == 0)
    {
        Sleep(milliseconds);
        return;
    }
    WaitForSingleObject(event, INFINITE);
    timeKillEvent(timer);
}

} // namespace

class SleeperWindows : public Sleeper
{
public:
    SleeperWindows();
    SleeperWindows(const SleeperWindows&) = delete;
    SleeperWindows& operator=(const SleeperWindows&) = delete;

    double getCurrentTime() override;
    double getResolution() override;
    bool sleep(double seconds) override;
    ~SleeperWindows() override;

private:
    void prepareThread() override;
    HANDLE getEvent();
    void addEvent(HANDLE event);

    const TimerPeriod _period;
    double _secondsPerTick;
    CRITICAL_SECTION _section; ///< guards the list
    List<HANDLE> _events;
    DWORD _slot; ///< holds each thread's own event
};

Sleeper* Sleeper::create()
{
    return new SleeperWindows;
}

SleeperWindows::SleeperWindows()
{
    Sleep(settleMilliseconds);
    _secondsPerTick = getSecondsPerTick();
    _slot = TlsAlloc();
    if (_slot == TLS_OUT_OF_INDEXES)
        raise<ExSysErrorWindows>(KR_HERE);
    InitializeCriticalSection(&_section);
}

SleeperWindows::~SleeperWindows()
{
    for (const HANDLE event : _events)
        CloseHandle(event);
    TlsFree(_slot);
    DeleteCriticalSection(&_section);
}

double SleeperWindows::getCurrentTime()
{
    LARGE_INTEGER count;
    if (QueryPerformanceCounter(&count) == 0)
        raise<ExSysErrorANSI>(KR_HERE);
    return static_cast<double>(count.QuadPart) * _secondsPerTick;
}

double SleeperWindows::getResolution()
{
    return TimerPeriod::getResolution();
}

/// What one timer cannot do takes several, each for what is then left: their delays do not add up.
bool SleeperWindows::sleep(double seconds)
{
    const double greatest = TimerPeriod::getGreatestDelay();
    if (!(seconds * 1000. >= 1.)) // a NaN neither
        return false;
    const HANDLE event = getEvent();
    double milliseconds = seconds * 1000.;
    if (milliseconds > greatest)
    {
        const double end = getCurrentTime() + seconds;
        while (milliseconds > greatest)
        {
            sleepByTimer(event, static_cast<UINT>(greatest));
            milliseconds = (end - getCurrentTime()) * 1000.;
        }
    }
    if (milliseconds >= 1.)
        sleepByTimer(event, static_cast<UINT>(milliseconds));
    return true;
}

void SleeperWindows::prepareThread()
{
    getEvent();
}

/// The calling thread's event; made when it first asks.
HANDLE SleeperWindows::getEvent()
{
    HANDLE event = TlsGetValue(_slot);
    if (event != nullptr)
        return event;
    event = CreateEventA(nullptr, 0, 0, nullptr);
    if (event == nullptr)
        raise<ExSysErrorWindows>(KR_HERE);
    addEvent(event);
    if (TlsSetValue(_slot, event) == 0)
        raise<ExSysErrorWindows>(KR_HERE);
    return event;
}

void SleeperWindows::addEvent(HANDLE event)
{
    const SectionLock lock(_section);
    try
    {
        _events.push_back(event);
    }
    catch (...)
    {
        CloseHandle(event);
        throw;
    }
}

} // namespace Kr
