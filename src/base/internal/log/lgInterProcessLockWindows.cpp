#include <base/internal/log/lgInterProcessLock.h>

#include <platform/platform.h>

#include <thread>

namespace Kr
{

namespace
{

/// The byte that stands for the file.
OVERLAPPED lockedByte()
{
    OVERLAPPED range = {};
    range.OffsetHigh = 0x3FFFFFFF;
    return range;
}

} // namespace

LgInterProcessLock::LgInterProcessLock(void* file) noexcept
    : _file(file)
    , _held(false)
{
}

LgInterProcessLock::~LgInterProcessLock()
{
    release();
}

bool LgInterProcessLock::acquire(std::chrono::milliseconds patience) noexcept
{
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!tryAcquire())
    {
        // Any other failure will not pass by waiting: a file system without locks, for one.
        if (GetLastError() != ERROR_LOCK_VIOLATION || std::chrono::steady_clock::now() >= deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
}

void LgInterProcessLock::release() noexcept
{
    if (!_held)
        return;
    OVERLAPPED range = lockedByte();
    UnlockFileEx(_file, 0, 1, 0, &range);
    _held = false;
}

bool LgInterProcessLock::tryAcquire() noexcept
{
    OVERLAPPED range = lockedByte();
    if (!_held)
        _held = LockFileEx(_file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0,
                           &range) != 0;
    return _held;
}

} // namespace Kr
