#pragma once

/// @file
/// Internal to the library: writes the timeline, the spans of all threads and the messages of the
/// log, as trace events.

#include <base/internal/log/lgClock.h>
#include <base/internal/log/lgFile.h>
#include <base/internal/log/lgRecord.h>
#include <base/internal/log/lgSpanRing.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Kr
{

class LgTimelineFile
{
public:
    LgTimelineFile(std::unique_ptr<LgFile> file, const std::string& name, const LgClock& clock);
    LgTimelineFile(const LgTimelineFile&) = delete;
    LgTimelineFile& operator=(const LgTimelineFile&) = delete;

    /// Drains the rings and closes the array.
    ~LgTimelineFile();

    /// May be called by any thread.
    void addRing(std::shared_ptr<LgSpanRing> ring);

    /// The rest is for one thread at a time.
    void addMessage(const LgRecord& record);
    void drain();
    void flush();

private:
    void beginEvent(const char* phase, unsigned long thread);
    void appendTime(const char* key, std::int64_t nanoseconds);
    void addSpan(const LgSpanRing& ring, const LgSpanRing::Span& span);
    void addThreadName(unsigned long thread);
    void takeNewRings();
    void drainRing(LgSpanRing& ring);

    const std::unique_ptr<LgFile> _file;
    const std::string _name;
    const LgClock& _clock;
    const std::string _process;
    std::string _waiting;
    bool _isStarted;
    bool _hasComplained;

    std::mutex _mutex; // guards what producers add
    std::vector<std::shared_ptr<LgSpanRing>> _newRings;
    std::vector<std::shared_ptr<LgSpanRing>> _rings;
};

} // namespace Kr
