#pragma once

/// @file
/// Events of a POSIX host, and the timers that set or pulse them.

#include <platform/posix/handle.h>

#include <atomic>
#include <cstdint>
#include <vector>

#include <pthread.h>

/// A moment of the monotonic clock, in nanoseconds.
using KrMoment = std::int64_t;

constexpr KrMoment krNever = INT64_MAX;
constexpr KrMoment krNanosecondsPerMillisecond = 1'000'000;

KrMoment krNow() noexcept;

/// The moment so many milliseconds from now, or never.
KrMoment krMomentAfter(DWORD milliseconds) noexcept;

/// Has the waits of the calling thread end when they are due, not up to 50 microseconds later, for
/// as long as the object lives.
class KrLeastTimerSlack
{
public:
    KrLeastTimerSlack() noexcept;
    KrLeastTimerSlack(const KrLeastTimerSlack&) = delete;
    KrLeastTimerSlack& operator=(const KrLeastTimerSlack&) = delete;
    ~KrLeastTimerSlack();

private:
    int _previous;
};

/// Holds a mutex of the host's, which conditions with absolute deadlines need, to the end of a
/// block.
class KrMutexLock
{
public:
    explicit KrMutexLock(pthread_mutex_t& mutex) noexcept
        : _mutex(mutex)
    {
        ::pthread_mutex_lock(&_mutex);
    }
    KrMutexLock(const KrMutexLock&) = delete;
    KrMutexLock& operator=(const KrMutexLock&) = delete;
    ~KrMutexLock() { ::pthread_mutex_unlock(&_mutex); }

private:
    pthread_mutex_t& _mutex;
};

/// What can be waited for.
class KrWaitable : public KrHandleObject
{
public:
    /// Whether it came before the moment.
    virtual bool wait(KrMoment deadline) noexcept = 0;
};

/// An event. Its timers need no thread of their own: they take effect when somebody looks at the
/// event, and whoever waits on it does so at each timer's next moment.
class KrEvent : public KrWaitable
{
public:
    struct Timer
    {
        UINT number;
        KrMoment next;
        KrMoment period; ///< 0 for one that fires once
        bool isPulse;
    };

    KrEvent(bool isManual, bool isSet) noexcept;
    ~KrEvent() override;

    /// Those who wait go on waiting; the last of them deletes the event.
    void close() noexcept override;

    void set() noexcept;
    void reset() noexcept;
    void pulse() noexcept;

    bool wait(KrMoment deadline) noexcept override;

    /// May throw `std::bad_alloc`.
    void addTimer(const Timer& timer);
    void removeTimer(UINT number) noexcept;

private:
    bool waitLocked(KrMoment deadline) noexcept;
    bool takeRelease(unsigned generation) noexcept;
    void waitForTimer(KrMoment moment) noexcept;
    bool waitUntil(KrMoment moment) noexcept;
    void stayAwakeUntil(KrMoment moment, unsigned wakes) noexcept;
    void wake() noexcept;
    void release() noexcept;
    void fireTimers() noexcept;
    KrMoment getNextMoment(KrMoment deadline) const noexcept;

    pthread_mutex_t _mutex; // guards all that follows
    pthread_cond_t _condition;
    const bool _isManual;
    bool _isSet;
    bool _isClosed = false;
    unsigned _waiting = 0;
    unsigned _generation =
        0;                  ///< of a manual event: counts the moments that released all who waited
    unsigned _released = 0; ///< of an automatic one: how many of those who wait may go
    std::vector<Timer> _timers;
    std::atomic<unsigned> _wakes{0}; ///< counts the calls to those who wait, for one who is awake
};

/// Forgets the timers of an event that goes away.
void krForgetTimers(const KrEvent& event) noexcept;
