#pragma once

/// @file
/// Internal to the library: everything that exists between the logger's start and its stop: the
/// queues, the reader that drains them, and where it takes the messages.

#include <base/internal/log/lgClock.h>
#include <base/internal/log/lgKeptRings.h>
#include <base/internal/log/lgLineFormat.h>
#include <base/internal/log/lgLossReport.h>
#include <base/internal/log/lgOutputs.h>
#include <base/internal/log/lgReader.h>
#include <base/internal/log/lgRegistry.h>
#include <base/internal/log/lgSettings.h>
#include <base/internal/log/lgTimelineFile.h>

#include <cstdint>
#include <memory>

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
    LgRegistry& getRegistry() { return _queues; }
    LgTimelineFile* getTimeline() { return _timeline.get(); }

    /// Where the queues lie that outlive the process; null if none do.
    const std::shared_ptr<LgKeptRings>& getKeptRings() const { return _keptRings; }

    /// Returns how many events there were. One thread at a time.
    std::size_t drain(LgDrain how) noexcept;

    /// Writes the rest of it.
    void close() noexcept;

    /// Messages that overflow entries or outputs report as lost.
    std::uint64_t getLostCount() const;

    /// Messages of which a part is missing.
    std::uint64_t getCutCount() const { return _reader.getCutCount(); }

    /// Makes the session that goes on in a forked process: the same settings, files of its own, and
    /// no timeline, which stays the parent's. What the parent's holds is let go of in any case.
    static LgSession* forFork(LgSession* parent);

private:
    std::size_t drainOnce(LgDrain how) noexcept;
    void openTimeline();
    void show(const LgRecord& record) noexcept;
    void drainTimeline(LgDrain how) noexcept;

    // The parent's session is kept as it was when the process forked; nothing of it can be closed
    // without harm to the parent.
    [[maybe_unused]] LgSession* const _predecessor;

    const LgSettings _settings;
    const LgClock _clock;
    const std::unique_ptr<LgLineFormat> _format;
    LgRegistry _queues;
    LgOutputs _outputs;
    LgReader _reader;
    LgLossReport _lossReport;
    std::unique_ptr<LgTimelineFile> _timeline;
    std::shared_ptr<LgKeptRings> _keptRings; // shared with the queues in it
};

} // namespace Kr
