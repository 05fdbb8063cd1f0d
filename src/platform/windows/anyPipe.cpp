#include <platform/anyPipe.h>

#include <atomic>
#include <cstdio>
#include <initializer_list>

namespace
{

constexpr DWORD room = 65536;
constexpr std::size_t maxPipes = 3;

/// The system's unnamed pipes cannot be served without waiting, so each has a name of its own.
HANDLE createOurEnd(bool isWrite, char* name, std::size_t size)
{
    static std::atomic<unsigned> number{0};
    std::snprintf(name, size, "\\\\.\\pipe\\libKRbase-%lu-%u", GetCurrentProcessId(), ++number);
    const DWORD access = isWrite ? PIPE_ACCESS_OUTBOUND : PIPE_ACCESS_INBOUND;
    return CreateNamedPipeA(name, access | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
                            PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT |
                                PIPE_REJECT_REMOTE_CLIENTS,
                            1, room, room, 0, nullptr);
}

/// What a call on the pipe has come to. No bytes are no end: the child may write none.
KrTransfer outcome(KrPipe& pipe, bool isDone)
{
    const DWORD error = isDone ? ERROR_SUCCESS : GetLastError();
    pipe.isPending = error == ERROR_IO_PENDING || error == ERROR_IO_INCOMPLETE;
    if (isDone)
        return KrTransfer::moved;
    if (pipe.isPending || error == ERROR_OPERATION_ABORTED)
        return KrTransfer::pending;
    const bool isEnded =
        error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA || error == ERROR_PIPE_NOT_CONNECTED;
    return isEnded ? KrTransfer::ended : KrTransfer::failed;
}

} // namespace

bool krCreatePipe(KrPipe& pipe, HANDLE& child, bool isWrite)
{
    char name[64];
    const HANDLE ours = createOurEnd(isWrite, name, sizeof name);
    if (ours == INVALID_HANDLE_VALUE)
        return false;
    pipe.handle = ours;
    pipe.isWrite = isWrite;
    pipe.overlapped = {};
    pipe.overlapped.hEvent = CreateEventA(nullptr, 1, 0, nullptr);
    // The runtimes of some programs ask what is at their output's other end.
    child = CreateFileA(name, isWrite ? GENERIC_READ : GENERIC_WRITE | FILE_READ_ATTRIBUTES, 0,
                        nullptr, OPEN_EXISTING, 0, nullptr);
    if (child != INVALID_HANDLE_VALUE && pipe.overlapped.hEvent != nullptr)
        return true;
    const DWORD error = GetLastError();
    if (child != INVALID_HANDLE_VALUE)
        CloseHandle(child);
    krClosePipe(pipe);
    SetLastError(error);
    return false;
}

void krClosePipe(KrPipe& pipe) noexcept
{
    DWORD moved = 0;
    if (pipe.isPending)
        krCancelTransfer(pipe, moved);
    for (const HANDLE handle : {pipe.handle, pipe.overlapped.hEvent})
        if (handle != nullptr)
            CloseHandle(handle);
    pipe.handle = nullptr;
    pipe.overlapped.hEvent = nullptr;
}

KrTransfer krBeginTransfer(KrPipe& pipe, void* data, DWORD size, DWORD& moved) noexcept
{
    moved = 0;
    pipe.data = data;
    pipe.size = size;
    const BOOL isDone = pipe.isWrite ? WriteFile(pipe.handle, data, size, &moved, &pipe.overlapped)
                                     : ReadFile(pipe.handle, data, size, &moved, &pipe.overlapped);
    return outcome(pipe, isDone != 0);
}

KrTransfer krFinishTransfer(KrPipe& pipe, DWORD& moved) noexcept
{
    moved = 0;
    return outcome(pipe, GetOverlappedResult(pipe.handle, &pipe.overlapped, &moved, 0) != 0);
}

KrTransfer krCancelTransfer(KrPipe& pipe, DWORD& moved) noexcept
{
    moved = 0;
    CancelIoEx(pipe.handle, &pipe.overlapped);
    return outcome(pipe, GetOverlappedResult(pipe.handle, &pipe.overlapped, &moved, 1) != 0);
}

KrWait krWaitForTransfers(KrPipe* pipes, std::size_t count, HANDLE process,
                          DWORD milliseconds) noexcept
{
    HANDLE wanted[maxPipes + 1];
    DWORD used = 0;
    for (std::size_t i = 0; i < count && i < maxPipes; ++i)
        if (pipes[i].isPending)
            wanted[used++] = pipes[i].overlapped.hEvent;
    if (process != nullptr)
        wanted[used++] = process;
    if (used == 0)
        Sleep(milliseconds);
    else if (WaitForMultipleObjects(used, wanted, 0, milliseconds) == WAIT_FAILED)
        return KrWait::failed;
    // The wait itself tells of one only.
    const bool hasEnded = process != nullptr && WaitForSingleObject(process, 0) == WAIT_OBJECT_0;
    return hasEnded ? KrWait::processEnded : KrWait::over;
}
