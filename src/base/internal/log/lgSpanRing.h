#pragma once

/// @file
/// Internal to the library: the spans of one thread that wait to be written. One producer, one
/// consumer, no lock.

#include <base/internal/errors/threadLabel.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <memory>

namespace Kr
{

class LgSpanRing
{
public:
    struct Span
    {
        unsigned long long start;
        unsigned long long end;
        char name[48];
    };

    /// Made by the producer.
    explicit LgSpanRing(unsigned long thread)
        : _thread(thread)
        , _label(ThreadLabel::ofCaller())
    {
    }

    unsigned long getThread() const { return _thread; }
    const ThreadLabel& getLabel() const { return *_label; }

    /// For the producer. A span that finds no room is counted.
    void add(const char* name, unsigned long long start, unsigned long long end) noexcept
    {
        const std::uint32_t at = _end.load(std::memory_order_relaxed);
        if (at - _begin.load(std::memory_order_acquire) == size)
        {
            _lost.fetch_add(1, std::memory_order_relaxed);
            return;
        }
        Span& span = _spans[at % size];
        span.start = start;
        span.end = end;
        std::strncpy(span.name, name, sizeof span.name - 1);
        span.name[sizeof span.name - 1] = '\0';
        _end.store(at + 1, std::memory_order_release);
    }

    /// For the consumer: passes each span to `take`.
    template <class Take>
    void drain(Take take)
    {
        std::uint32_t at = _begin.load(std::memory_order_relaxed);
        for (const std::uint32_t end = _end.load(std::memory_order_acquire); at != end; ++at)
        {
            take(_spans[at % size]);
            _begin.store(at + 1, std::memory_order_release);
        }
    }

    /// For the consumer: how many were lost since the last call.
    std::uint32_t takeLost() { return _lost.exchange(0, std::memory_order_relaxed); }

    /// For the producer, when its thread ends; and for the consumer.
    void end() { _isEnded.store(true, std::memory_order_release); }
    bool isEnded() const { return _isEnded.load(std::memory_order_acquire); }

private:
    static constexpr std::uint32_t size = 4096;

    const unsigned long _thread;
    const std::shared_ptr<const ThreadLabel> _label;
    std::atomic<std::uint32_t> _begin{0};
    std::atomic<std::uint32_t> _end{0};
    std::atomic<std::uint32_t> _lost{0};
    std::atomic<bool> _isEnded{false};
    std::array<Span, size> _spans;
};

} // namespace Kr
