#pragma once

/// @file
/// How a thread is awake when a timer is due. From the moment that the kernel is asked for until
/// the thread runs it takes some microseconds, or some tens in a virtual machine whose processor
/// sleeps as well. So a thread asks for a little earlier, by what these delays have been of late,
/// and stays awake for what is left.

#include <platform/posix/event.h>

#include <atomic>

/// How much earlier than a timer threads ask to be woken. All threads learn together; an update
/// that gets lost to another does not matter.
class KrWakeLead
{
public:
    KrMoment get() const noexcept { return _lead.load(std::memory_order_relaxed); }

    /// Takes in how long after the moment asked for a thread was awake. Being late counts for more
    /// than being early, so most wakings come within the lead; one that takes very long, on a busy
    /// machine, counts as the greatest lead.
    void learn(KrMoment delay) noexcept;

    /// A tenth of the least sleep.
    static constexpr KrMoment greatest = krNanosecondsPerMillisecond / 10;

private:
    std::atomic<KrMoment> _lead{0};
};

KrWakeLead& krWakeLead() noexcept;

/// Counts the threads that stay awake: they leave at least one processor to the others.
class KrAwake
{
public:
    KrAwake() noexcept;
    KrAwake(const KrAwake&) = delete;
    KrAwake& operator=(const KrAwake&) = delete;
    ~KrAwake();

    bool isAllowed() const noexcept { return _isAllowed; }

private:
    bool _isAllowed;
};

/// Lets the other thread of the processor's core run, for a moment.
inline void krPause() noexcept
{
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}
