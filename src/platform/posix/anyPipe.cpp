#include <platform/anyPipe.h>
#include <platform/posix/event.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <new>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace
{

constexpr std::size_t maxPipes = 3;

/// A pipe that is full each time gets room, so that its two sides need not take turns. Only such a
/// one: the system gives room to all pipes of a user together.
constexpr int ordinaryRoom = 65536;
constexpr int wideRoom = 1 << 18;

class PipeEnd : public KrHandleObject
{
public:
    explicit PipeEnd(int descriptor) noexcept
        : _descriptor(descriptor)
    {
    }
    ~PipeEnd() override { ::close(_descriptor); }

    int getDescriptor() const noexcept override { return _descriptor; }

    bool _isWidened = false;

private:
    const int _descriptor;
};

HANDLE makeEnd(int descriptor)
{
    const int kept = krKeepPrivate(descriptor);
    if (kept < 0)
    {
        SetLastError(krErrorFromErrno(errno));
        return nullptr;
    }
    auto* const object = new (std::nothrow) PipeEnd(kept);
    if (object == nullptr)
        ::close(kept);
    const HANDLE end = KrHandleObject::open(object);
    return end != INVALID_HANDLE_VALUE ? end : nullptr;
}

/// Keeps the signal from the thread by which the system tells of a pipe that nobody reads.
class NoPipeSignal
{
public:
    NoPipeSignal() noexcept
    {
        sigset_t pending;
        ::sigemptyset(&_signal);
        ::sigaddset(&_signal, SIGPIPE);
        ::sigpending(&pending);
        _wasPending = ::sigismember(&pending, SIGPIPE) == 1;
        ::pthread_sigmask(SIG_BLOCK, &_signal, &_previous);
    }
    NoPipeSignal(const NoPipeSignal&) = delete;
    NoPipeSignal& operator=(const NoPipeSignal&) = delete;
    ~NoPipeSignal()
    {
        constexpr timespec none{};
        while (_isRaised && !_wasPending && ::sigtimedwait(&_signal, nullptr, &none) < 0 &&
               errno == EINTR)
            continue;
        ::pthread_sigmask(SIG_SETMASK, &_previous, nullptr);
    }

    void setRaised() noexcept { _isRaised = true; }

private:
    sigset_t _signal;
    sigset_t _previous;
    bool _wasPending = false;
    bool _isRaised = false;
};

ssize_t writeQuietly(int descriptor, const void* data, std::size_t size) noexcept
{
    ssize_t count = -1;
    int error = 0;
    {
        NoPipeSignal guard;
        count = ::write(descriptor, data, size);
        error = errno;
        if (count < 0 && error == EPIPE)
            guard.setRaised();
    }
    errno = error;
    return count;
}

void widenIfFull(PipeEnd& end, ssize_t moved) noexcept
{
    if (end._isWidened || moved < ordinaryRoom)
        return;
    end._isWidened = true;
    ::fcntl(end.getDescriptor(), F_SETPIPE_SZ, wideRoom); // the system may say no
}

/// One try of the transfer that the pipe describes.
KrTransfer transfer(KrPipe& pipe, DWORD& moved) noexcept
{
    moved = 0;
    auto* const end = krObject<PipeEnd>(pipe.handle);
    if (end == nullptr)
        return KrTransfer::failed;
    ssize_t count = -1;
    do
        count = pipe.isWrite ? writeQuietly(end->getDescriptor(), pipe.data, pipe.size)
                             : ::read(end->getDescriptor(), pipe.data, pipe.size);
    while (count < 0 && errno == EINTR);
    pipe.isPending = count < 0 && errno == EAGAIN;
    if (pipe.isPending)
        return KrTransfer::pending;
    if (count == 0 || (count < 0 && errno == EPIPE))
        return KrTransfer::ended;
    if (count < 0)
    {
        SetLastError(krErrorFromErrno(errno));
        return KrTransfer::failed;
    }
    widenIfFull(*end, count);
    moved = static_cast<DWORD>(count);
    return KrTransfer::moved;
}

} // namespace

bool krCreatePipe(KrPipe& pipe, HANDLE& child, bool isWrite)
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
    {
        SetLastError(krErrorFromErrno(errno));
        return false;
    }
    const int ours = ends[isWrite ? 1 : 0];
    ::fcntl(ours, F_SETFL, ::fcntl(ours, F_GETFL) | O_NONBLOCK);
    pipe.handle = makeEnd(ours);
    child = makeEnd(ends[isWrite ? 0 : 1]);
    pipe.isWrite = isWrite;
    if (pipe.handle != nullptr && child != nullptr)
        return true;
    krClosePipe(pipe);
    if (child != nullptr)
        CloseHandle(child);
    return false;
}

void krClosePipe(KrPipe& pipe) noexcept
{
    if (pipe.handle != nullptr)
        CloseHandle(pipe.handle);
    pipe.handle = nullptr;
    pipe.isPending = false;
}

KrTransfer krBeginTransfer(KrPipe& pipe, void* data, DWORD size, DWORD& moved) noexcept
{
    pipe.data = data;
    pipe.size = size;
    return transfer(pipe, moved);
}

KrTransfer krFinishTransfer(KrPipe& pipe, DWORD& moved) noexcept
{
    return transfer(pipe, moved);
}

KrTransfer krCancelTransfer(KrPipe& pipe, DWORD& moved) noexcept
{
    moved = 0;
    pipe.isPending = false;
    return KrTransfer::pending;
}

KrWait krWaitForTransfers(KrPipe* pipes, std::size_t count, HANDLE process,
                          DWORD milliseconds) noexcept
{
    pollfd wanted[maxPipes + 1];
    nfds_t used = 0;
    for (std::size_t i = 0; i < count && i < maxPipes; ++i)
        if (pipes[i].isPending)
            wanted[used++] = {krObject<KrHandleObject>(pipes[i].handle)->getDescriptor(),
                              static_cast<short>(pipes[i].isWrite ? POLLOUT : POLLIN), 0};
    if (process != nullptr)
        wanted[used++] = {krObject<KrHandleObject>(process)->getDescriptor(), POLLIN, 0};
    const int limit =
        milliseconds == INFINITE ? -1 : static_cast<int>(std::min<DWORD>(milliseconds, INT_MAX));
    const int ready = ::poll(wanted, used, limit);
    if (ready < 0 && errno != EINTR)
    {
        SetLastError(krErrorFromErrno(errno));
        return KrWait::failed;
    }
    const bool hasEnded = ready > 0 && process != nullptr && wanted[used - 1].revents != 0;
    return hasEnded ? KrWait::processEnded : KrWait::over;
}
