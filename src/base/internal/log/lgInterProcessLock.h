#pragma once

/// @file
/// Keeps several processes that write one log file out of each other's way.
///
/// The lock lies on the file itself, on one byte far behind its end, where it hinders nobody who
/// reads. It belongs to the file's handle: a process that is killed leaves no lock behind.
/// @code{.cpp}
/// void append(void* file)
/// {
///     Kr::LgInterProcessLock lock(file);
///     if (lock.acquire(std::chrono::seconds(1)))
///         std::cout << "nobody else writes until the end of the block\n";
/// }
/// @endcode
/// Pitfall: the handle must be open for reading and for appending or writing.

#include <chrono>

namespace Kr
{

class LgInterProcessLock
{
public:
    /// @param file the system's handle of the open file; it must outlive the lock
    explicit LgInterProcessLock(void* file) noexcept;
    LgInterProcessLock(const LgInterProcessLock&) = delete;
    LgInterProcessLock& operator=(const LgInterProcessLock&) = delete;
    ~LgInterProcessLock();

    /// Waits for the lock, but not longer than `patience`: a holder may have been stopped. Tells
    /// whether the lock is held. Two handles of one process exclude each other too.
    bool acquire(std::chrono::milliseconds patience) noexcept;

    void release() noexcept;

private:
    bool tryAcquire() noexcept;

    void* const _file;
    bool _held;
};

} // namespace Kr
