#include <base/internal/log/lgSession.h>

#include <base/internal/log/lgColumnFormat.h>
#include <base/internal/log/lgJsonFormat.h>
#include <base/internal/log/lgTimedFile.h>
#include <base/lgListener.h>
#include <base/lgTimeline.h>

namespace Kr
{

namespace
{

std::unique_ptr<LgLineFormat> makeFormat(const LgClock& clock, const LgSettings& settings)
{
    if (settings.isJson)
        return std::make_unique<LgJsonFormat>(clock, settings.hasTimeStamps);
    return std::make_unique<LgColumnFormat>(clock, settings.hasTimeStamps);
}

} // namespace

LgSession::LgSession(const LgSettings& settings, LgSession* predecessor)
    : _predecessor(predecessor)
    , _settings(settings)
    , _format(makeFormat(_clock, settings))
    , _reader(_queues, _outputs)
    , _lossReport(_reader)
{
    _outputs.open(_settings, *_format);
    openTimeline();
    if (_settings.survivesKill)
        _keptRings = std::make_shared<LgKeptRings>(_settings, _clock);
    _reader.setWatcher([this](const LgRecord& record) { show(record); });
}

LgSession::~LgSession()
{
    LgTimeline::_enabled = false;
}

/// Queues that are kept give no room back before what was read is written. A loss that stands
/// behind such messages is read in a second round.
std::size_t LgSession::drain(LgDrain how) noexcept
{
    std::size_t count = drainOnce(how);
    if (_keptRings == nullptr || count == 0)
        return count;
    _keptRings->commit();
    if (_reader.eventsPending())
    {
        count += drainOnce(how);
        _keptRings->commit();
    }
    return count;
}

void LgSession::close() noexcept
{
    _outputs.close();
    if (_keptRings != nullptr)
        _keptRings->close();
}

std::size_t LgSession::drainOnce(LgDrain how) noexcept
{
    _queues.makeSpares();
    const std::size_t count = _reader.flushAll();
    _lossReport.tell(how != LgDrain::toBuffers);
    drainTimeline(how);
    if (how == LgDrain::toDisk)
        _outputs.sync();
    else
        _outputs.flush(how == LgDrain::toSystem);
    return count;
}

std::uint64_t LgSession::getLostCount() const
{
    return _reader.getOverflowCount() + _outputs.getLostCount();
}

LgSession* LgSession::forFork(LgSession* parent)
{
    LgTimeline::_enabled = false;
    if (parent->_keptRings != nullptr)
        parent->_keptRings->abandon();
    LgSettings settings = parent->_settings;
    settings.timelinePath.clear();
    return new LgSession(settings, parent);
}

void LgSession::drainTimeline(LgDrain how) noexcept
{
    if (_timeline == nullptr)
        return;
    _timeline->drain();
    _timeline->flush();
    if (how == LgDrain::toDisk)
        _timeline->sync();
}

void LgSession::show(const LgRecord& record) noexcept
{
    if (_timeline != nullptr)
        _timeline->addMessage(record);
    if (LgListener::isAny())
        LgListener::notify({record.level, _clock.getTimeOfDay(record.timeStamp), record.thread,
                            record.threadName, record.group, record.text, record.lost,
                            record.isCut});
}

void LgSession::openTimeline()
{
    if (_settings.timelinePath.empty())
        return;
    LgFileSettings file;
    file.path = _settings.timelinePath;
    file.privateFolder = _settings.getPrivateFolder(file.path);
    file.isExclusive = true;
    _timeline = std::make_unique<LgTimelineFile>(LgTimedFile::create(file, _outputs.getHelper()),
                                                 file.path, _clock);
    LgTimeline::_enabled = true;
}

} // namespace Kr
