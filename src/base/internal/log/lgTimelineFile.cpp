#include <base/internal/log/lgTimelineFile.h>

#include <base/hwCounter.h>
#include <base/internal/errors/processIdentity.h>
#include <base/internal/log/lgJson.h>
#include <base/internal/log/lgLosses.h>
#include <base/internal/log/lgProgram.h>
#include <base/internal/log/lgStandardStream.h>
#include <base/internal/log/lgTimeText.h>
#include <base/internal/log/lgTry.h>
#include <base/lgCounters.h>

#include <algorithm>
#include <cstdio>
#include <new>
#include <utility>

namespace Kr
{

namespace
{

constexpr std::size_t batchSize = 64 * 1024;
constexpr std::size_t maxWaiting = 256 * 1024;
constexpr std::chrono::milliseconds retryInterval(250);
constexpr std::string_view separator = ",\n";
constexpr char ending[] = "\n]\n";
constexpr std::size_t endingSize = sizeof ending - 1;

std::uint64_t countIn(std::string_view text, std::string_view part)
{
    std::uint64_t count = 0;
    for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

/// Those that tell something: names, and what time it is, are told again.
std::uint64_t countEvents(std::string_view text)
{
    return countIn(text, ",\n{\"ph\":\"") - countIn(text, ",\n{\"ph\":\"M") -
           countIn(text, "\"cat\":\"clock\"");
}

} // namespace

LgTimelineFile::LgTimelineFile(std::unique_ptr<LgFile> file, const std::string& path,
                               const LgClock& clock)
    : _file(std::move(file))
    , _path(path)
    , _clock(clock)
    , _process(std::to_string(ProcessIdentity::getProcessId()))
    , _program(LgProgram::getName())
    , _startStamp(HwCounter::timeStamp())
{
    _waiting.reserve(2 * maxWaiting); // with the longest message behind it
}

LgTimelineFile::~LgTimelineFile()
{
    drain();
    flush(true);
    _lost += countEvents(_waiting) - (_reportSize != 0 ? 1 : 0) + LgLosses::takeUntoldSpans();
    if (_lost == 0)
        return;
    lgTry(
        [this]
        {
            LgStandardStream::complain(std::to_string(_lost) +
                                       " events were lost: the timeline could not be written to " +
                                       _path + "\n");
        });
}

void LgTimelineFile::addRing(std::shared_ptr<LgSpanRing> ring)
{
    std::list<std::shared_ptr<LgSpanRing>> one;
    one.push_back(std::move(ring));
    const std::lock_guard<std::mutex> lock(_mutex);
    _newRings.splice(_newRings.end(), one);
}

void LgTimelineFile::addMessage(const LgRecord& record) noexcept
{
    const std::size_t before = _waiting.size();
    if (lgTry([&] { performAddMessage(record); }))
    {
        if (_waiting.size() >= batchSize)
            flush();
        return;
    }
    _waiting.resize(before);
    ++_lost;
}

void LgTimelineFile::performAddMessage(const LgRecord& record)
{
    showThreadName(record.thread, record.threadName);
    beginEvent("i", record.thread);
    appendTime("ts", _clock.getElapsed(record.timeStamp));
    _waiting += ",\"s\":\"t\",\"cat\":\"";
    _waiting += LgTypes::getLevelName(record.level);
    _waiting += "\",\"name\":";
    LgJson::appendString(_waiting, record.text);
    if (!record.group.empty())
    {
        _waiting += ",\"args\":{\"group\":";
        LgJson::appendString(_waiting, record.group);
        _waiting += '}';
    }
    _waiting += '}';
}

/// What finds no memory waits for the next time.
void LgTimelineFile::drain() noexcept
{
    lgTry([this] { LgCounters::ask(&addCounter, this); });
    takeNewRings();
    lgTry([this] { drainRings(); });
    tellSpansWithoutRing();
}

/// Of threads that had no memory for a ring, or were at their end.
void LgTimelineFile::tellSpansWithoutRing()
{
    const std::uint32_t lost = LgLosses::takeUntoldSpans();
    if (lost == 0)
        return;
    const std::size_t before = _waiting.size();
    const auto tell = [&]
    {
        const std::string text = std::to_string(lost) + " spans lost: no ring for their thread";
        performAddMessage({LgTypes::Warning, HwCounter::timeStamp(), 0, {}, text, 0});
    };
    if (lgTry(tell))
        return;
    _waiting.resize(before);
    LgLosses::countSpans(lost);
}

/// Threads that have ended are let go; their end is looked at before their ring.
void LgTimelineFile::drainRings()
{
    const auto drainAndTest = [this](const std::shared_ptr<LgSpanRing>& ring)
    {
        const bool isEnded = ring->isEnded();
        drainRing(*ring);
        return isEnded;
    };
    _rings.remove_if(drainAndTest);
}

void LgTimelineFile::flush(bool now) noexcept
{
    if (_waiting.empty() && _lost == 0)
        return;
    if (!_isFailing || now || std::chrono::steady_clock::now() >= _nextTry)
    {
        if (writeWaiting())
            return;
        beginOutage();
    }
    if (_waiting.size() > maxWaiting)
        makeRoom();
}

bool LgTimelineFile::writeWaiting()
{
    do
    {
        if (getFixed() == 0)
            insertLossReport();
        if (_waiting.empty() || !write())
        {
            if (getFixed() == 0)
                takeOutLossReport();
            return false;
        }
    } while (!_waiting.empty());
    _isFailing = false;
    return true;
}

/// The file is whole afterwards: the bracket at its end makes way for what follows. Each event
/// brings the comma before it.
bool LgTimelineFile::write()
{
    const std::size_t fixed = getFixed();
    if (!_isStarted)
        _waiting.front() = '[';
    _waiting += ending;
    const std::size_t removed = _isStarted ? endingSize : 0;
    const bool isDone = _file->replaceEnd(removed, _waiting.data(), _waiting.size());
    _waiting.resize(_waiting.size() - endingSize);
    _waiting.front() = separator.front();
    if (!isDone)
        return false;
    _waiting.erase(0, fixed != 0 ? fixed : _waiting.size());
    _isStarted = true;
    _lost -= std::exchange(_reported, 0);
    _reportSize = 0;
    return true;
}

/// The size of what is being written, and not known to be there yet.
std::size_t LgTimelineFile::getFixed() const
{
    const std::size_t pending = _file->getPending();
    return pending != 0 ? pending - endingSize : 0;
}

void LgTimelineFile::sync() noexcept
{
    if (!_file->sync())
        beginOutage();
}

/// The event that tells of those that were lost, where they would have stood.
void LgTimelineFile::insertLossReport()
{
    if (_lost == 0)
        return;
    const std::size_t before = _waiting.size();
    startEvent("i", 0); // within what is reserved
    appendTime("ts", _clock.getElapsed(HwCounter::timeStamp()));
    _waiting += ",\"s\":\"p\",\"cat\":\"Warning\",\"name\":\"";
    _waiting += std::to_string(_lost);
    _waiting += " events were lost: the timeline could not be written\"}";
    std::rotate(_waiting.begin(), _waiting.begin() + static_cast<std::ptrdiff_t>(before),
                _waiting.end());
    _reportSize = _waiting.size() - before;
    _reported = _lost;
}

void LgTimelineFile::takeOutLossReport()
{
    _waiting.erase(0, _reportSize);
    _reportSize = 0;
    _reported = 0;
}

/// Drops the oldest events. The names of threads may be among them, so they are told again.
void LgTimelineFile::makeRoom()
{
    const std::size_t begin = getFixed();
    const std::size_t end = std::min(_waiting.find(separator, begin + batchSize), _waiting.size());
    _lost += countEvents(std::string_view(_waiting).substr(begin, end - begin));
    _waiting.erase(begin, end - begin);
    _hasHeader = false;
    _shownNames.clear();
}

void LgTimelineFile::beginOutage()
{
    _isFailing = true;
    _nextTry = std::chrono::steady_clock::now() + retryInterval;
    if (_hasComplained)
        return;
    _hasComplained = lgTry(
        [this]
        {
            LgStandardStream::complain("The timeline cannot be written to " + _path + ": " +
                                       _file->getProblem() + "\n");
        });
}

/// What stands before the first event: who this is, and what time it is where the timeline begins.
void LgTimelineFile::addHeader()
{
    _hasHeader = true;
    startEvent("M", 0);
    _waiting += ",\"name\":\"process_name\",\"args\":{\"name\":";
    LgJson::appendString(_waiting, _program);
    _waiting += "}}";
    if (_shownNames.find(0) == _shownNames.end())
        showThreadName(0, "main");
    startEvent("i", 0);
    appendTime("ts", _clock.getElapsed(_startStamp));
    _waiting += ",\"s\":\"p\",\"cat\":\"clock\",\"name\":\"";
    LgTimeText(_clock).append(_waiting, _startStamp);
    _waiting += "\"}";
}

void LgTimelineFile::beginEvent(const char* phase, unsigned long thread)
{
    if (!_hasHeader)
        addHeader();
    startEvent(phase, thread);
}

void LgTimelineFile::startEvent(const char* phase, unsigned long thread)
{
    _waiting += separator;
    _waiting += "{\"ph\":\"";
    _waiting += phase;
    _waiting += "\",\"pid\":";
    _waiting += _process;
    _waiting += ",\"tid\":";
    _waiting += std::to_string(thread);
}

/// The format's unit is the microsecond.
void LgTimelineFile::appendTime(const char* key, std::int64_t nanoseconds)
{
    char text[64];
    const std::int64_t size = nanoseconds < 0 ? -nanoseconds : nanoseconds;
    std::snprintf(text, sizeof text, ",\"%s\":%s%lld.%03d", key, nanoseconds < 0 ? "-" : "",
                  static_cast<long long>(size / 1000), static_cast<int>(size % 1000));
    _waiting += text;
}

void LgTimelineFile::addSpan(const LgSpanRing& ring, const LgSpanRing::Span& span)
{
    const std::int64_t start = _clock.getElapsed(span.start);
    beginEvent("X", ring.getThread());
    appendTime("ts", start);
    appendTime("dur", _clock.getElapsed(span.end) - start);
    _waiting += ",\"cat\":\"span\",\"name\":";
    LgJson::appendString(_waiting, span.name);
    _waiting += '}';
    if (_waiting.size() >= batchSize)
        flush();
}

void LgTimelineFile::addThreadName(unsigned long thread, std::string_view name)
{
    beginEvent("M", thread);
    _waiting += ",\"name\":\"thread_name\",\"args\":{\"name\":";
    LgJson::appendString(_waiting, name);
    _waiting += "}}";
}

/// Each time that a thread has got another name.
void LgTimelineFile::showThreadName(unsigned long thread, std::string_view name)
{
    if (name.empty())
        return;
    std::string& shown = _shownNames[thread];
    if (shown == name)
        return;
    shown = name;
    addThreadName(thread, name);
}

/// Writes a value that has changed.
void LgTimelineFile::addCounter(void* timeline, const char* name, double value)
{
    auto& self = *static_cast<LgTimelineFile*>(timeline);
    const auto found = self._counters.find(name);
    if (found != self._counters.end() && found->second == value)
        return;
    self._counters[name] = value;
    self.beginEvent("C", 0);
    self.appendTime("ts", self._clock.getElapsed(HwCounter::timeStamp()));
    self._waiting += ",\"name\":";
    LgJson::appendString(self._waiting, name);
    char text[64];
    std::snprintf(text, sizeof text, ",\"args\":{\"value\":%.17g}}", value);
    self._waiting += text;
}

void LgTimelineFile::takeNewRings()
{
    const std::lock_guard<std::mutex> lock(_mutex);
    _rings.splice(_rings.end(), _newRings);
}

void LgTimelineFile::drainRing(LgSpanRing& ring)
{
    ring.getLabel().copyTo(_threadName);
    const bool isNew = _shownNames.find(ring.getThread()) == _shownNames.end();
    if (_threadName.empty() && ring.getThread() != 0 && isNew)
        _threadName = "thread " + std::to_string(ring.getThread());
    showThreadName(ring.getThread(), _threadName);
    ring.drain([&](const LgSpanRing::Span& span) { addSpan(ring, span); });
    if (const std::uint32_t lost = ring.takeLost())
    {
        const std::string text = std::to_string(lost) + " spans lost";
        addMessage({LgTypes::Warning, HwCounter::timeStamp(), ring.getThread(), {}, text, 0});
    }
}

} // namespace Kr
