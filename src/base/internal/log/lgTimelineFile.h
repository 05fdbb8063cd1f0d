#pragma once

/// @file
/// Internal to the library: writes the timeline, the spans of all threads and the messages of the
/// log, as trace events.
///
/// While the file cannot be written, the youngest events wait; an event tells later how many others
/// there were. So it is with those that find no memory. The file is whole all the time.

#include <base/internal/log/lgClock.h>
#include <base/internal/log/lgFile.h>
#include <base/internal/log/lgRecord.h>
#include <base/internal/log/lgSpanRing.h>

#include <chrono>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace Kr
{

class LgTimelineFile
{
public:
    LgTimelineFile(std::unique_ptr<LgFile> file, const std::string& path, const LgClock& clock);
    LgTimelineFile(const LgTimelineFile&) = delete;
    LgTimelineFile& operator=(const LgTimelineFile&) = delete;

    /// Drains the rings.
    ~LgTimelineFile();

    /// May be called by any thread.
    void addRing(std::shared_ptr<LgSpanRing> ring);

    /// The rest is for one thread at a time.
    void addMessage(const LgRecord& record) noexcept;
    void drain() noexcept;

    /// Writes what waits. After a failure the next try is made a little later, unless `now` is set.
    void flush(bool now = false) noexcept;

    /// Returns when what was written is on the disk.
    void sync() noexcept;

private:
    bool writeWaiting();
    bool write();
    std::size_t getFixed() const;
    void insertLossReport();
    void takeOutLossReport();
    void performAddMessage(const LgRecord& record);
    void drainRings();
    void tellSpansWithoutRing();
    void makeRoom();
    void beginOutage();
    void addHeader();
    void startEvent(const char* phase, unsigned long thread);
    void beginEvent(const char* phase, unsigned long thread);
    void appendTime(const char* key, std::int64_t nanoseconds);
    void addSpan(const LgSpanRing& ring, const LgSpanRing::Span& span);
    void addThreadName(unsigned long thread, std::string_view name);
    void showThreadName(unsigned long thread, std::string_view name);
    static void addCounter(void* timeline, const char* name, double value);
    void takeNewRings();
    void drainRing(LgSpanRing& ring);

    const std::unique_ptr<LgFile> _file;
    const std::string _path;
    const LgClock& _clock;
    const std::string _process;
    const std::string _program;
    std::map<unsigned long, std::string> _shownNames; ///< by thread
    std::string _threadName;
    std::map<std::string, double> _counters; ///< as they were written last
    std::string _waiting;
    const unsigned long long _startStamp;
    bool _hasHeader = false;
    bool _isStarted = false; ///< the bracket stands at the file's end
    bool _isFailing = false;
    bool _hasComplained = false;
    std::chrono::steady_clock::time_point _nextTry;
    std::uint64_t _lost = 0;     ///< events of which the file does not tell
    std::uint64_t _reported = 0; ///< so many of them are told by what waits first
    std::size_t _reportSize = 0; ///< of that; 0: there is none

    std::mutex _mutex; // guards what producers add
    std::list<std::shared_ptr<LgSpanRing>> _newRings;
    std::list<std::shared_ptr<LgSpanRing>> _rings;
};

} // namespace Kr
