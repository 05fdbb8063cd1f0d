#include <platform/posix/event.h>

#include <cerrno>
#include <iterator>
#include <mutex>
#include <new>
#include <unordered_map>

#include <sched.h>
#include <time.h>

namespace
{

constexpr UINT leastPeriod = 1;
constexpr UINT greatestPeriod = 1'000'000;

/// Which event a timer belongs to. Never destroyed: threads may run timers as the process ends.
struct Registry
{
    std::mutex mutex;
    std::unordered_map<UINT, KrEvent*> events;
    UINT lastNumber = 0;
};

Registry& getRegistry()
{
    static Registry& registry = *new Registry;
    return registry;
}

bool isPossible(UINT period) noexcept
{
    return period >= leastPeriod && period <= greatestPeriod;
}

/// A number that no timer has; 0 is none.
UINT takeNumber(Registry& registry)
{
    do
        ++registry.lastNumber;
    while (registry.lastNumber == 0 || registry.events.count(registry.lastNumber) != 0);
    return registry.lastNumber;
}

UINT startTimer(KrEvent& event, KrEvent::Timer timer)
{
    Registry& registry = getRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    timer.number = takeNumber(registry);
    registry.events.emplace(timer.number, &event);
    try
    {
        event.addTimer(timer);
    }
    catch (const std::bad_alloc&)
    {
        registry.events.erase(timer.number);
        throw;
    }
    return timer.number;
}

} // namespace

void krForgetTimers(const KrEvent& event) noexcept
{
    Registry& registry = getRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    for (auto entry = registry.events.begin(); entry != registry.events.end();)
        entry = entry->second == &event ? registry.events.erase(entry) : std::next(entry);
}

MMRESULT timeGetDevCaps(TIMECAPS* capabilities, UINT size) noexcept
{
    if (capabilities == nullptr || size < sizeof *capabilities)
        return TIMERR_NOCANDO;
    *capabilities = {leastPeriod, greatestPeriod};
    return TIMERR_NOERROR;
}

MMRESULT timeBeginPeriod(UINT period) noexcept
{
    return period >= leastPeriod ? TIMERR_NOERROR : TIMERR_NOCANDO;
}

MMRESULT timeEndPeriod(UINT period) noexcept
{
    return timeBeginPeriod(period);
}

MMRESULT timeSetEvent(UINT delay, UINT, LPTIMECALLBACK event, DWORD_PTR, UINT flags) noexcept
{
    auto* const object = krObject<KrEvent>(reinterpret_cast<HANDLE>(event));
    const UINT kind = flags & ~TIME_PERIODIC;
    if (object == nullptr || !isPossible(delay) ||
        (kind != TIME_CALLBACK_EVENT_SET && kind != TIME_CALLBACK_EVENT_PULSE))
        return 0;
    const KrMoment period = static_cast<KrMoment>(delay) * krNanosecondsPerMillisecond;
    try
    {
        return startTimer(*object, {0, krNow() + period, (flags & TIME_PERIODIC) != 0 ? period : 0,
                                    kind == TIME_CALLBACK_EVENT_PULSE});
    }
    catch (const std::bad_alloc&)
    {
        return 0;
    }
}

MMRESULT timeKillEvent(UINT timer) noexcept
{
    Registry& registry = getRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    const auto found = registry.events.find(timer);
    if (found == registry.events.end())
        return MMSYSERR_INVALPARAM;
    found->second->removeTimer(timer);
    registry.events.erase(found);
    return TIMERR_NOERROR;
}

void Sleep(DWORD milliseconds) noexcept
{
    if (milliseconds == 0)
    {
        ::sched_yield();
        return;
    }
    const KrLeastTimerSlack slack;
    timespec left{};
    left.tv_sec = static_cast<time_t>(milliseconds / 1000);
    left.tv_nsec = static_cast<long>(milliseconds % 1000 * krNanosecondsPerMillisecond);
    // Relative, with what a signal has left of it: too short to add up.
    while (::clock_nanosleep(CLOCK_MONOTONIC, 0, &left, &left) == EINTR)
        continue;
}
