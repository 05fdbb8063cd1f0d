#pragma once

/// @file
/// Internal to the library: everything that exists between the logger's start and its stop.

#include <base/internal/log/lgLineFormat.h>
#include <base/internal/log/lgReader.h>
#include <base/internal/log/lgRegistry.h>
#include <base/internal/log/lgSettings.h>
#include <base/internal/log/lgTimelineFile.h>

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>

namespace Kr
{

/// How far a drain goes.
enum class LgDrain
{
    toBuffers, ///< to the system, unless an output has just failed
    toSystem,  ///< to the system, so that the end of the process does no harm
    toDisk     ///< so that the end of the system does no harm
};

class LgSession
{
public:
    /// @param predecessor a session of the process that this one was forked from
    explicit LgSession(const LgSettings& settings, LgSession* predecessor = nullptr);
    LgSession(const LgSession&) = delete;
    LgSession& operator=(const LgSession&) = delete;
    ~LgSession();

    const LgSettings& getSettings() const { return _settings; }
    LgRegistry& getRegistry() { return _registry; }
    LgTimelineFile* getTimeline() { return _timeline.get(); }

    /// Returns how many events there were. One thread at a time.
    std::size_t drain(LgDrain how);

    /// Writes the rest of it.
    void close() { _registry.closeOutputs(); }

    /// Messages that overflow entries or outputs report as lost.
    std::uint64_t getLostCount() const;

    /// Starts the thread that calls `drainAll` now and then, if it does not run yet.
    void startReader(std::size_t (*drainAll)());

    /// Returns when the thread has ended.
    void stopReader();

    /// Makes the session that goes on in a forked process: the same settings, files of its own, and
    /// no timeline, which stays the parent's.
    static LgSession* forFork(LgSession* parent);

private:
    std::shared_ptr<LgOutput> makeOutput(const LgDestination& destination);
    void openOutputs();
    void openTimeline();
    void run(std::size_t (*drainAll)());

    // The parent's session is kept as it was when the process forked; nothing of it can be closed
    // without harm to the parent.
    [[maybe_unused]] LgSession* const _predecessor;

    const LgSettings _settings;
    const LgClock _clock;
    LgLineFormat _format;
    LgRegistry _registry;
    LgReader _reader;
    std::unique_ptr<LgTimelineFile> _timeline;

    std::thread _thread;
    std::mutex _stopMutex;
    std::condition_variable _stopChanged;
    bool _isStopping;
};

} // namespace Kr
