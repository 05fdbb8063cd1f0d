#include <platform/posix/event.h>
#include <platform/posix/wakeLead.h>

#include <algorithm>
#include <cerrno>
#include <new>

#include <sys/prctl.h>
#include <time.h>

namespace
{

constexpr KrMoment nanosecondsPerSecond = 1'000'000'000;

} // namespace

KrMoment krNow() noexcept
{
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<KrMoment>(now.tv_sec) * nanosecondsPerSecond + now.tv_nsec;
}

KrMoment krMomentAfter(DWORD milliseconds) noexcept
{
    if (milliseconds == INFINITE)
        return krNever;
    return krNow() + static_cast<KrMoment>(milliseconds) * krNanosecondsPerMillisecond;
}

KrLeastTimerSlack::KrLeastTimerSlack() noexcept
    : _previous(::prctl(PR_GET_TIMERSLACK))
{
    if (_previous > 1)
        ::prctl(PR_SET_TIMERSLACK, 1UL);
}

KrLeastTimerSlack::~KrLeastTimerSlack()
{
    if (_previous > 1)
        ::prctl(PR_SET_TIMERSLACK, static_cast<unsigned long>(_previous));
}

// Events

KrEvent::KrEvent(bool isManual, bool isSet) noexcept
    : _mutex(PTHREAD_MUTEX_INITIALIZER)
    , _isManual(isManual)
    , _isSet(isSet)
{
    pthread_condattr_t attributes;
    ::pthread_condattr_init(&attributes);
    ::pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
    ::pthread_cond_init(&_condition, &attributes);
    ::pthread_condattr_destroy(&attributes);
}

KrEvent::~KrEvent()
{
    if (!_timers.empty())
        krForgetTimers(*this);
    ::pthread_cond_destroy(&_condition);
    ::pthread_mutex_destroy(&_mutex);
}

void KrEvent::close() noexcept
{
    bool isUsed = false;
    {
        const KrMutexLock lock(_mutex);
        _isClosed = true;
        isUsed = _waiting != 0;
    }
    if (!isUsed)
        delete this;
}

void KrEvent::set() noexcept
{
    const KrMutexLock lock(_mutex);
    fireTimers();
    if (_isManual || _waiting == _released)
        _isSet = true;
    release();
}

void KrEvent::reset() noexcept
{
    const KrMutexLock lock(_mutex);
    fireTimers();
    _isSet = false;
}

void KrEvent::pulse() noexcept
{
    const KrMutexLock lock(_mutex);
    fireTimers();
    release();
    _isSet = false;
}

bool KrEvent::wait(KrMoment deadline) noexcept
{
    bool isReleased = false;
    bool isUsed = true;
    {
        const KrMutexLock lock(_mutex);
        isReleased = waitLocked(deadline);
        isUsed = !_isClosed || _waiting != 0;
    }
    if (!isUsed)
        delete this;
    return isReleased;
}

bool KrEvent::waitLocked(KrMoment deadline) noexcept
{
    fireTimers(); // what came before this wait releases nobody, unless the event is still set
    const unsigned generation = _generation;
    bool isReleased = false;
    ++_waiting;
    for (;;)
    {
        isReleased = takeRelease(generation);
        const KrMoment moment = getNextMoment(deadline);
        if (isReleased || (moment == deadline && deadline != krNever && krNow() >= deadline))
            break;
        if (moment == deadline)
            waitUntil(moment);
        else
            waitForTimer(moment);
        fireTimers();
    }
    --_waiting;
    return isReleased;
}

/// Those who waited when the event was set go, also if it has been reset since.
bool KrEvent::takeRelease(unsigned generation) noexcept
{
    if (_isManual)
        return _isSet || _generation != generation;
    if (_released != 0)
        --_released;
    else if (_isSet)
        _isSet = false;
    else
        return false;
    return true;
}

/// Has the kernel wake the thread a little early, and stays awake for what is left.
void KrEvent::waitForTimer(KrMoment moment) noexcept
{
    const unsigned wakes = _wakes.load(std::memory_order_relaxed);
    const KrMoment early = moment - krWakeLead().get();
    if (krNow() < early)
    {
        if (!waitUntil(early))
            return;
        krWakeLead().learn(krNow() - early);
    }
    const KrAwake awake;
    if (awake.isAllowed())
        stayAwakeUntil(moment, wakes);
    else
        waitUntil(moment);
}

/// Returns whether it was the time that ended the wait.
bool KrEvent::waitUntil(KrMoment moment) noexcept
{
    if (moment == krNever)
    {
        ::pthread_cond_wait(&_condition, &_mutex);
        return false;
    }
    const KrLeastTimerSlack slack;
    timespec time{};
    time.tv_sec = static_cast<time_t>(moment / nanosecondsPerSecond);
    time.tv_nsec = static_cast<long>(moment % nanosecondsPerSecond);
    return ::pthread_cond_timedwait(&_condition, &_mutex, &time) == ETIMEDOUT;
}

/// Unless those who wait have been woken since there were so many wakes.
void KrEvent::stayAwakeUntil(KrMoment moment, unsigned wakes) noexcept
{
    ::pthread_mutex_unlock(&_mutex);
    while (krNow() < moment && _wakes.load(std::memory_order_relaxed) == wakes)
        krPause();
    ::pthread_mutex_lock(&_mutex);
}

void KrEvent::wake() noexcept
{
    _wakes.fetch_add(1, std::memory_order_relaxed);
    ::pthread_cond_broadcast(&_condition);
}

void KrEvent::release() noexcept
{
    if (_isManual)
    {
        ++_generation;
        wake();
    }
    else if (_waiting > _released)
    {
        ++_released;
        wake(); // all: the one that is woken may have run into its deadline just now
    }
}

// Their timers

void KrEvent::addTimer(const Timer& timer)
{
    const KrMutexLock lock(_mutex);
    _timers.push_back(timer);
    wake(); // it may come before what they wait for
}

void KrEvent::removeTimer(UINT number) noexcept
{
    const KrMutexLock lock(_mutex);
    fireTimers();
    const auto isIt = [number](const Timer& timer) { return timer.number == number; };
    _timers.erase(std::remove_if(_timers.begin(), _timers.end(), isIt), _timers.end());
}

void KrEvent::fireTimers() noexcept
{
    if (_timers.empty())
        return;
    const KrMoment now = krNow();
    for (Timer& timer : _timers)
    {
        if (timer.next > now)
            continue;
        // A multiple of the period after the start, however late this is: nothing adds up.
        timer.next = timer.period != 0
                         ? timer.next + ((now - timer.next) / timer.period + 1) * timer.period
                         : krNever;
        if (!timer.isPulse && (_isManual || _waiting == _released))
            _isSet = true;
        release();
    }
}

KrMoment KrEvent::getNextMoment(KrMoment deadline) const noexcept
{
    for (const Timer& timer : _timers)
        deadline = std::min(deadline, timer.next);
    return deadline;
}

// The calls

HANDLE CreateEventA(SECURITY_ATTRIBUTES*, BOOL manualReset, BOOL initialState,
                    const char* name) noexcept
{
    if (name != nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const HANDLE event =
        KrHandleObject::open(new (std::nothrow) KrEvent(manualReset != 0, initialState != 0));
    return event != INVALID_HANDLE_VALUE ? event : nullptr;
}

BOOL SetEvent(HANDLE event) noexcept
{
    auto* const object = krObject<KrEvent>(event);
    if (object != nullptr)
        object->set();
    return object != nullptr;
}

BOOL ResetEvent(HANDLE event) noexcept
{
    auto* const object = krObject<KrEvent>(event);
    if (object != nullptr)
        object->reset();
    return object != nullptr;
}

BOOL PulseEvent(HANDLE event) noexcept
{
    auto* const object = krObject<KrEvent>(event);
    if (object != nullptr)
        object->pulse();
    return object != nullptr;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) noexcept
{
    auto* const object = krObject<KrWaitable>(handle);
    if (object == nullptr)
        return WAIT_FAILED;
    return object->wait(krMomentAfter(milliseconds)) ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
}
