#include <base/internal/log/lgTimelineFile.h>

#include <base/hwCounter.h>
#include <base/internal/log/lgJson.h>
#include <base/internal/log/lgProcess.h>

#include <algorithm>
#include <cstdio>

namespace Kr
{

namespace
{

constexpr std::size_t batchSize = 64 * 1024;

} // namespace

LgTimelineFile::LgTimelineFile(std::unique_ptr<LgFile> file, const std::string& name,
                               const LgClock& clock)
    : _file(std::move(file))
    , _name(name)
    , _clock(clock)
    , _process(std::to_string(LgProcess::getProcessId()))
    , _isStarted(false)
    , _hasComplained(false)
{
    addThreadName(0);
}

LgTimelineFile::~LgTimelineFile()
{
    drain();
    flush();
    if (_isStarted)
        _file->append("\n]\n", 3);
}

void LgTimelineFile::addRing(std::shared_ptr<LgSpanRing> ring)
{
    const std::lock_guard<std::mutex> lock(_mutex);
    _newRings.push_back(std::move(ring));
}

void LgTimelineFile::addMessage(const LgRecord& record)
{
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
    if (_waiting.size() >= batchSize)
        flush();
}

/// Threads that have ended are let go; their end is looked at before their ring.
void LgTimelineFile::drain()
{
    takeNewRings();
    const auto drainAndTest = [this](const std::shared_ptr<LgSpanRing>& ring)
    {
        const bool isEnded = ring->isEnded();
        drainRing(*ring);
        return isEnded;
    };
    _rings.erase(std::remove_if(_rings.begin(), _rings.end(), drainAndTest), _rings.end());
}

/// Each event brings the comma before it, so that the file lacks but its bracket at any time.
void LgTimelineFile::flush()
{
    if (_waiting.empty())
        return;
    if (!_isStarted)
        _waiting.replace(0, 1, "[");
    if (_file->append(_waiting.data(), _waiting.size()))
        _isStarted = true;
    else if (!_hasComplained)
    {
        _hasComplained = true;
        std::fprintf(stderr, "The timeline cannot be written to %s: %s\n", _name.c_str(),
                     _file->getProblem().c_str());
    }
    _waiting.clear();
}

void LgTimelineFile::beginEvent(const char* phase, unsigned long thread)
{
    _waiting += ",\n{\"ph\":\"";
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
    _waiting += ",\"name\":";
    LgJson::appendString(_waiting, span.name);
    _waiting += '}';
    if (_waiting.size() >= batchSize)
        flush();
}

void LgTimelineFile::addThreadName(unsigned long thread)
{
    beginEvent("M", thread);
    _waiting += ",\"name\":\"thread_name\",\"args\":{\"name\":\"";
    _waiting += thread == 0 ? "main" : "thread " + std::to_string(thread);
    _waiting += "\"}}";
}

void LgTimelineFile::takeNewRings()
{
    const std::lock_guard<std::mutex> lock(_mutex);
    for (std::shared_ptr<LgSpanRing>& ring : _newRings)
    {
        if (ring->getThread() != 0)
            addThreadName(ring->getThread());
        _rings.push_back(std::move(ring));
    }
    _newRings.clear();
}

void LgTimelineFile::drainRing(LgSpanRing& ring)
{
    ring.drain([&](const LgSpanRing::Span& span) { addSpan(ring, span); });
    if (const std::uint32_t lost = ring.takeLost())
    {
        const std::string text = std::to_string(lost) + " spans lost";
        addMessage({LgTypes::Warning, HwCounter::timeStamp(), ring.getThread(), {}, text, 0});
    }
}

} // namespace Kr
