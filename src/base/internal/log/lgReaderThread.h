#pragma once

/// @file
/// Internal to the library: the thread that drains the log: now and then, and at once when a
/// producer wakes it.

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <thread>

namespace Kr
{

class LgReaderThread
{
public:
    /// Drains everything and returns how many events there were.
    using Drain = std::size_t (*)() noexcept;

    /// @param predecessor that of the process that this one was forked from: its thread is not
    /// there, so nothing of it can be used or destroyed
    explicit LgReaderThread(Drain drain, LgReaderThread* predecessor = nullptr);
    LgReaderThread(const LgReaderThread&) = delete;
    LgReaderThread& operator=(const LgReaderThread&) = delete;

    /// Starts the thread, if it does not run yet. One caller at a time.
    void start() noexcept;

    /// Returns when the thread has ended. It may be started again.
    void stop();

    /// May be called by any thread at any time. A system call the first time, nothing as long as
    /// the thread has not answered.
    void wake() noexcept;

private:
    void run();
    bool waitFor(std::chrono::milliseconds pause);

    [[maybe_unused]] LgReaderThread* const _predecessor;
    const Drain _drain;

    std::thread _thread;
    std::mutex _mutex;
    std::condition_variable _changed;
    std::atomic<bool> _isWoken{false};
    bool _isStopping = false;
};

} // namespace Kr
