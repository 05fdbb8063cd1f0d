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

    explicit LgReaderThread(Drain drain);
    LgReaderThread(const LgReaderThread&) = delete;
    LgReaderThread& operator=(const LgReaderThread&) = delete;

    /// Starts the thread, if it does not run yet and the system has one to spare. One caller at a
    /// time.
    void start() noexcept;
    bool isStarted() const noexcept { return _isStarted.load(std::memory_order_relaxed); }

    /// Returns when the thread has ended. It may be started again.
    void stop();

    /// May be called by any thread at any time. A system call the first time, nothing as long as
    /// the thread has not answered.
    void wake() noexcept;

private:
    void run();
    bool waitFor(std::chrono::milliseconds pause);

    const Drain _drain;

    std::thread _thread;
    std::mutex _mutex;
    std::condition_variable _changed;
    std::atomic<bool> _isStarted{false};
    std::atomic<bool> _isWoken{false};
    bool _isStopping = false;
};

} // namespace Kr
