#include <platform/posix/childProcess.h>

#include <platform/exitCodes.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>

#include <poll.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

namespace
{

struct SignalCode
{
    int signal;
    DWORD code;
};

/// What ends a process on the system that the codes come from too.
constexpr SignalCode signalCodes[] = {
    {SIGABRT, 0xC0000409}, {SIGBUS, 0xC0000006}, {SIGFPE, 0xC0000094},  {SIGILL, 0xC000001D},
    {SIGINT, 0xC000013A},  {SIGKILL, krKilled},  {SIGSEGV, 0xC0000005}, {SIGTRAP, 0x80000003},
};

DWORD codeOfSignal(int signal)
{
    for (const SignalCode& entry : signalCodes)
        if (entry.signal == signal)
            return entry.code;
    return krSignalCode | static_cast<DWORD>(signal);
}

double toSeconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

/// The system's call also tells what the process has used, which the library's leaves out.
int waitFor(int descriptor, siginfo_t& info, int options, rusage* usage)
{
    info.si_pid = 0;
    return static_cast<int>(::syscall(SYS_waitid, P_PIDFD, descriptor, &info, options, usage));
}

void* waitForEnd(void* descriptor)
{
    const int process = static_cast<int>(reinterpret_cast<std::intptr_t>(descriptor));
    siginfo_t info{};
    while (waitFor(process, info, WEXITED, nullptr) != 0 && errno == EINTR)
        continue;
    ::close(process);
    return nullptr;
}

/// Has a thread wait for a process that nobody holds any longer, so that its end leaves nothing.
void abandon(int descriptor) noexcept
{
    sigset_t all;
    sigset_t previous;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &previous); // no signal of the program's is for it
    pthread_attr_t attributes;
    ::pthread_attr_init(&attributes);
    ::pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    ::pthread_attr_setstacksize(
        &attributes, std::max(std::size_t{65536}, static_cast<std::size_t>(PTHREAD_STACK_MIN)));
    pthread_t thread;
    auto* const argument =
        reinterpret_cast<void*>(static_cast<std::intptr_t>(descriptor)); // NOLINT
    if (::pthread_create(&thread, &attributes, waitForEnd, argument) != 0)
        ::close(descriptor);
    ::pthread_attr_destroy(&attributes);
    ::pthread_sigmask(SIG_SETMASK, &previous, nullptr);
}

} // namespace

KrChildProcess::KrChildProcess(int descriptor, pid_t number, bool leadsGroup) noexcept
    : _descriptor(descriptor)
    , _number(number)
    , _leadsGroup(leadsGroup)
{
}

KrChildProcess::~KrChildProcess()
{
    siginfo_t info{};
    if (!hasEnded())
    {
        abandon(_descriptor);
        return;
    }
    if (_leadsGroup)
        waitFor(_descriptor, info, WEXITED | WNOHANG, nullptr);
    ::close(_descriptor);
}

bool KrChildProcess::wait(KrMoment deadline) noexcept
{
    while (!hasEnded())
    {
        const KrMoment rest = deadline - krNow();
        if (deadline != krNever && rest <= 0)
            return false;
        // Rounded up, so that the last round does not spin.
        const KrMoment milliseconds =
            (rest + krNanosecondsPerMillisecond - 1) / krNanosecondsPerMillisecond;
        pollfd wanted{_descriptor, POLLIN, 0};
        ::poll(&wanted, 1,
               deadline == krNever ? -1
                                   : static_cast<int>(std::min<KrMoment>(milliseconds, INT_MAX)));
    }
    return true;
}

bool KrChildProcess::hasEnded() noexcept
{
    const KrMutexLock lock(_mutex);
    if (!_hasEnded)
        fetchStatus();
    return _hasEnded;
}

void KrChildProcess::fetchStatus() noexcept
{
    siginfo_t info{};
    rusage usage{};
    const int options = WEXITED | WNOHANG | (_leadsGroup ? WNOWAIT : 0);
    if (waitFor(_descriptor, info, options, &usage) != 0)
    {
        // Another part of the program has fetched it, or has had the system throw them all away.
        _hasEnded = true;
        _exitCode = krStatusLost;
        return;
    }
    if (info.si_pid == 0)
        return;
    _hasEnded = true;
    _processorTime = toSeconds(usage.ru_utime) + toSeconds(usage.ru_stime);
    if (info.si_code == CLD_EXITED)
        _exitCode = static_cast<DWORD>(info.si_status);
    else if (info.si_status == SIGKILL && _terminationCode != 0)
        _exitCode = _terminationCode;
    else
        _exitCode = codeOfSignal(info.si_status);
}

DWORD KrChildProcess::getExitCode() noexcept
{
    return hasEnded() ? _exitCode : STILL_ACTIVE;
}

bool KrChildProcess::signal(int number) noexcept
{
    const int result =
        _leadsGroup
            ? ::kill(-_number, number)
            : static_cast<int>(::syscall(SYS_pidfd_send_signal, _descriptor, number, nullptr, 0));
    if (result != 0)
        SetLastError(errno == ESRCH ? ERROR_ACCESS_DENIED : krErrorFromErrno(errno));
    return result == 0;
}

bool KrChildProcess::terminate(DWORD code) noexcept
{
    {
        const KrMutexLock lock(_mutex);
        _terminationCode = code;
    }
    return signal(SIGKILL);
}

double KrChildProcess::getProcessorTime() noexcept
{
    clockid_t clock{};
    timespec time{};
    if (!hasEnded() && ::clock_getcpuclockid(_number, &clock) == 0 &&
        ::clock_gettime(clock, &time) == 0)
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    return _processorTime;
}

// The call

BOOL GetExitCodeProcess(HANDLE process, DWORD* code) noexcept
{
    auto* const object = krObject<KrChildProcess>(process);
    if (object != nullptr)
        *code = object->getExitCode();
    return object != nullptr;
}
