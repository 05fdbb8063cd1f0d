#pragma once

/// @file
/// A process that this one has started, on a POSIX host.

#include <platform/posix/event.h>

#include <pthread.h>
#include <sys/types.h>

/// Holds the process by a descriptor of its own, so that its number cannot come to mean another
/// process. Its status is fetched as soon as somebody looks, which leaves no zombie; the leader of
/// a group keeps its number, and so the group's, until the handle is closed.
class KrChildProcess : public KrWaitable
{
public:
    KrChildProcess(int descriptor, pid_t number, bool leadsGroup) noexcept;

    /// A process that still runs is waited for by a thread.
    ~KrChildProcess() override;

    bool wait(KrMoment deadline) noexcept override;
    int getDescriptor() const noexcept override { return _descriptor; }

    /// STILL_ACTIVE while it runs.
    DWORD getExitCode() noexcept;
    bool signal(int number) noexcept;
    bool terminate(DWORD code) noexcept;
    double getProcessorTime() noexcept;

private:
    bool hasEnded() noexcept;
    void fetchStatus() noexcept;

    const int _descriptor;
    const pid_t _number;
    const bool _leadsGroup;
    pthread_mutex_t _mutex = PTHREAD_MUTEX_INITIALIZER; ///< guards all that follows
    bool _hasEnded = false;
    DWORD _exitCode = STILL_ACTIVE;
    DWORD _terminationCode = 0; ///< 0: nobody has ended it
    double _processorTime = 0.;
};
