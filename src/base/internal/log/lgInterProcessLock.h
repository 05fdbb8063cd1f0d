#pragma once

/// @file
/// Keeps several processes that write one log file out of each other's way.
///
/// The lock lies on a file of its own beside the log, `events.log.lock`, which is its owner's
/// alone: whoever reads the log, whatever he locks for it, hinders nobody who writes. A process
/// that is killed leaves no lock behind, nor do the processes that it has forked.
/// @code{.cpp}
/// void append(Kr::LgInterProcessLock& lock)
/// {
///     if (lock.acquire(std::chrono::seconds(1)) == Kr::LgInterProcessLock::Outcome::held)
///         std::cout << "nobody else writes until the release\n";
///     lock.release();
/// }
/// @endcode

#include <chrono>
#include <memory>
#include <string>

class KrFileLock;

namespace Kr
{

class LgInterProcessLock
{
public:
    enum class Outcome
    {
        held,
        busy,
        impossible ///< it cannot be had here, however long one waits
    };

    /// @param path that of the file that the lock stands for
    explicit LgInterProcessLock(const std::string& path);
    LgInterProcessLock(const LgInterProcessLock&) = delete;
    LgInterProcessLock& operator=(const LgInterProcessLock&) = delete;
    ~LgInterProcessLock();

    /// Waits for the lock, but not longer than `patience`: a holder may have been stopped. Two
    /// locks of one process exclude each other too.
    Outcome acquire(std::chrono::milliseconds patience) noexcept;

    void release() noexcept;

    /// Releases the lock, if it is held, and removes its file.
    void remove() noexcept;

private:
    const std::unique_ptr<KrFileLock> _lock;
    bool _isHeld = false;
};

} // namespace Kr
