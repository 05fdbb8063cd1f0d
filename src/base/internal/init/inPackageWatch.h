#pragma once

/// @file
/// Tells one watcher of each package's start and stop, as they begin and end.

#include <atomic>

namespace Kr
{

/// A start or a stop, for as long as the object lives.
class InPackageWatch
{
public:
    using Watcher = void (*)(const char* package, bool isStart, bool isBegin);

    static void setWatcher(Watcher watcher) noexcept { _watcher.store(watcher); }

    InPackageWatch(const char* package, bool isStart)
        : _current(_watcher.load())
        , _package(package)
        , _isStart(isStart)
    {
        if (_current != nullptr)
            _current(_package, _isStart, true);
    }
    InPackageWatch(const InPackageWatch&) = delete;
    InPackageWatch& operator=(const InPackageWatch&) = delete;
    ~InPackageWatch()
    {
        if (_current != nullptr)
            _current(_package, _isStart, false);
    }

private:
    inline static std::atomic<Watcher> _watcher{nullptr};

    const Watcher _current;
    const char* const _package;
    const bool _isStart;
};

} // namespace Kr
