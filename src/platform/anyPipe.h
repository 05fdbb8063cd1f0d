#pragma once

/// @file
/// Pipes to a child that are served side by side without threads: one transfer at a time runs on
/// each, and one wait is for all of them and for the process.

#include <platform/platform.h>

#include <cstddef>

/// This process's end of a pipe.
struct KrPipe
{
    HANDLE handle = nullptr; ///< null: not open
    bool isPending = false;  ///< a transfer is under way
    // Of the transfer:
    void* data = nullptr;
    DWORD size = 0;
    bool isWrite = false;
    OVERLAPPED overlapped = {}; ///< must not move while the transfer is pending
};

enum class KrTransfer
{
    moved,   ///< some bytes
    pending, ///< wait, then ask `krFinishTransfer`
    ended,   ///< the other end is closed
    failed   ///< with the last error set
};

/// Makes a pipe. `child` receives the end for `KrStart::streams`, which is closed behind the start.
bool krCreatePipe(KrPipe& pipe, HANDLE& child, bool isWrite);

/// Takes back what is pending, and closes.
void krClosePipe(KrPipe& pipe) noexcept;

/// Begins to move up to `size` bytes from or to `data`, which must stay until the transfer has
/// ended. None must be pending.
KrTransfer krBeginTransfer(KrPipe& pipe, void* data, DWORD size, DWORD& moved) noexcept;

/// Whether the pending transfer has ended by now.
KrTransfer krFinishTransfer(KrPipe& pipe, DWORD& moved) noexcept;

/// Ends the pending transfer; `moved` tells what it has moved until then.
KrTransfer krCancelTransfer(KrPipe& pipe, DWORD& moved) noexcept;

enum class KrWait
{
    over,
    processEnded,
    failed ///< with the last error set
};

/// Waits until one of the pending transfers may have ended, the process has, or the time is over.
/// A null process is left out.
KrWait krWaitForTransfers(KrPipe* pipes, std::size_t count, HANDLE process,
                          DWORD milliseconds) noexcept;
