#pragma once

/// @file
/// Internal to the library: a thread that makes the calls which may never come back, so that
/// whoever needs their results waits for a limited time only.
///
/// A call that takes longer keeps the thread: it gives the results to nobody, and the next errand
/// has another thread.
///
/// Used by one thread at a time.

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

namespace Kr
{

class LgHelper
{
public:
    /// What is to be done, with all that it needs: it may outlive whoever asked for it.
    class Errand
    {
    public:
        Errand() = default;
        Errand(const Errand&) = delete;
        Errand& operator=(const Errand&) = delete;
        virtual ~Errand();

        /// Whether the last run has come back, if there was one.
        bool isDone() const noexcept { return _isDone.load(std::memory_order_acquire); }

    protected:
        virtual void perform() noexcept = 0;

    private:
        friend class LgHelper;

        void run() noexcept;

        std::atomic<bool> _isDone{true};
    };

    LgHelper() = default;
    LgHelper(const LgHelper&) = delete;
    LgHelper& operator=(const LgHelper&) = delete;
    ~LgHelper();

    /// Runs the errand and returns when it is done, or the patience at its end: whether it is done.
    /// Where there is no thread to be had, the caller runs it, and has no limit.
    bool run(const std::shared_ptr<Errand>& errand, std::chrono::milliseconds patience) noexcept;

private:
    struct Desk;

    static void serve(const std::shared_ptr<Desk>& desk) noexcept;
    bool start() noexcept;
    void close() noexcept;

    std::shared_ptr<Desk> _desk; ///< the thread's; null: there is none
    std::thread _thread;
};

} // namespace Kr
