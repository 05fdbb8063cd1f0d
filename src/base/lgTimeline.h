#pragma once

/// @file
/// What the threads did when, as a file for Perfetto or chrome://tracing (trace-event JSON).
///
/// The variable `KR_LOG_TIMELINE` names the file; without it nothing is recorded, and a span costs
/// one load and one test.
/// @code{.cpp}
/// void updateScene()
/// {
///     const Kr::LgSpan span("update scene");
///     load(); // the span ends with the block
/// }
/// @endcode
/// The messages of the log appear in the same picture, on the same clock. Each thread keeps its
/// spans in a ring of its own, without a lock, until the logger's reader writes them; spans that
/// find the ring full are counted, and the count is shown.
///
/// Pitfalls: the file is made anew, and belongs to one process; "%p" in its name stands for the
/// process's number. A name is cut to 47 bytes.

#include <base/hwCounter.h>
#include <base/krBaseApi.h>

#include <atomic>

namespace Kr
{

class KR_BASE_API LgTimeline
{
public:
    static bool isEnabled() noexcept { return _enabled.load(std::memory_order_relaxed); }

    /// Records a span of the calling thread, from one time stamp of the hardware counter to
    /// another: for those who measure themselves, such as profilers. The name is copied.
    static void addSpan(const char* name, unsigned long long start,
                        unsigned long long end) noexcept;

private:
    friend class LgSession;

    static std::atomic<bool> _enabled;
};

/// A span from its construction to the end of its life, on one thread.
class LgSpan
{
public:
    /// @param name must live as long as the span
    explicit LgSpan(const char* name) noexcept
        : _name(LgTimeline::isEnabled() ? name : nullptr)
        , _start(_name != nullptr ? HwCounter::timeStamp() : 0)
    {
    }

    LgSpan(const LgSpan&) = delete;
    LgSpan& operator=(const LgSpan&) = delete;

    ~LgSpan()
    {
        if (_name != nullptr)
            LgTimeline::addSpan(_name, _start, HwCounter::timeStamp());
    }

private:
    const char* const _name;
    const unsigned long long _start;
};

} // namespace Kr
