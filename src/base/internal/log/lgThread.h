#pragma once

/// @file
/// Internal to the library: what the logger has to know of the calling thread on either side of its
/// queue. Plain data, which can be looked at while the thread ends.

#include <base/lgQueue.h>

#include <optional>

namespace Kr
{

struct LgThread
{
    class OutputGuard;

    LgQueue* queue = nullptr; ///< into which it logs; null if it has none yet
    bool isInOutput = false;  ///< whether it is draining, so that it must not log

    static LgThread& get() noexcept
    {
        static thread_local LgThread thread;
        return thread;
    }
};

/// Keeps the output path from logging into what it drains.
class LgThread::OutputGuard
{
public:
    OutputGuard();
    OutputGuard(const OutputGuard&) = delete;
    OutputGuard& operator=(const OutputGuard&) = delete;
    ~OutputGuard() { get().isInOutput = false; }

private:
    std::optional<LgQueue::SuppressGuard> _suppress;
};

} // namespace Kr
