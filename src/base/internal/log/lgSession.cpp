#include <base/internal/log/lgSession.h>

#include <base/internal/log/lgFile.h>
#include <base/lgTimeline.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <system_error>

namespace Kr
{

namespace
{

// The reader looks often while there is something to do, and soon seldom when there is not.
constexpr std::chrono::milliseconds shortestPause(1);
constexpr std::chrono::milliseconds longestPause(16);

class StandardStream : public LgFile
{
public:
    explicit StandardStream(std::FILE* stream)
        : _stream(stream)
    {
    }

    bool append(const char* text, std::size_t size) noexcept override
    {
        return std::fwrite(text, 1, size, _stream) == size && std::fflush(_stream) == 0;
    }

    bool sync() noexcept override { return true; }
    std::string getProblem() const override { return "The stream does not take it."; }

private:
    std::FILE* const _stream;
};

bool isSame(const LgDestination& a, const LgDestination& b)
{
    return a.kind == b.kind && (a.kind != LgDestination::file || a.path == b.path);
}

} // namespace

LgSession::LgSession(const LgSettings& settings, LgSession* predecessor)
    : _predecessor(predecessor)
    , _settings(settings)
    , _format(_clock, settings.isJson, settings.hasTimeStamps)
    , _reader(_registry)
    , _isStopping(false)
{
    openOutputs();
    openTimeline();
}

LgSession::~LgSession()
{
    LgTimeline::_enabled = false;
    stopReader();
}

std::size_t LgSession::drain(LgDrain how)
{
    const std::size_t count = _reader.flushAll();
    if (_timeline != nullptr)
    {
        _timeline->drain();
        _timeline->flush();
    }
    if (how == LgDrain::toDisk)
        _registry.syncOutputs();
    else
        _registry.flushOutputs(how == LgDrain::toSystem);
    return count;
}

std::uint64_t LgSession::getLostCount() const
{
    return _reader.getOverflowCount() + _registry.getLostCount();
}

void LgSession::startReader(std::size_t (*drainAll)())
{
    if (_thread.joinable())
        return;
    try
    {
        _thread = std::thread([this, drainAll] { run(drainAll); });
    }
    catch (const std::system_error&)
    {
        // Without a thread to spare, the log is drained by flushes and at the end.
    }
}

void LgSession::stopReader()
{
    {
        const std::lock_guard<std::mutex> lock(_stopMutex);
        _isStopping = true;
    }
    _stopChanged.notify_all();
    if (_thread.joinable())
        _thread.join();
}

LgSession* LgSession::forFork(LgSession* parent)
{
    LgSettings settings = parent->_settings;
    settings.timelinePath.clear();
    LgTimeline::_enabled = false;
    return new LgSession(settings, parent);
}

std::shared_ptr<LgOutput> LgSession::makeOutput(const LgDestination& destination)
{
    LgFileSettings file;
    switch (destination.kind)
    {
    case LgDestination::none:
        return nullptr;
    case LgDestination::standardOutput:
        return std::make_shared<LgOutput>(std::make_unique<StandardStream>(stdout),
                                          "the standard output", _format);
    case LgDestination::standardError:
        return std::make_shared<LgOutput>(std::make_unique<StandardStream>(stderr),
                                          "the standard error stream", _format);
    case LgDestination::file:
        break;
    }
    file.path = destination.path;
    file.maxSize = _settings.maxFileSize;
    file.keptFiles = _settings.keptFiles;
    file.isLocked = _settings.isLockedBetweenProcesses;
    const std::uint64_t maxBatch = file.maxSize != 0 ? file.maxSize : LgOutput::batchSize;
    return std::make_shared<LgOutput>(
        LgFile::create(file), file.path, _format,
        static_cast<std::size_t>(std::min<std::uint64_t>(maxBatch, LgOutput::batchSize)));
}

/// Levels with the same destination share its output.
void LgSession::openOutputs()
{
    const auto& destinations = _settings.destinations;
    for (std::size_t i = 0; i < destinations.size(); ++i)
    {
        const auto level = static_cast<LgTypes::Level>(i);
        const auto same =
            std::find_if(destinations.begin(), destinations.end(),
                         [&](const LgDestination& each) { return isSame(each, destinations[i]); });
        const auto first = static_cast<std::size_t>(same - destinations.begin());
        if (first == i)
            _registry.setOutput(level, makeOutput(destinations[i]));
        else
            _registry.shareOutput(level, static_cast<LgTypes::Level>(first));
    }
}

void LgSession::openTimeline()
{
    if (_settings.timelinePath.empty())
        return;
    LgFileSettings file;
    file.path = _settings.timelinePath;
    file.isExclusive = true;
    _timeline = std::make_unique<LgTimelineFile>(LgFile::create(file), file.path, _clock);
    _reader.setWatcher([this](const LgRecord& record) { _timeline->addMessage(record); });
    LgTimeline::_enabled = true;
}

void LgSession::run(std::size_t (*drainAll)())
{
    std::chrono::milliseconds pause = shortestPause;
    std::unique_lock<std::mutex> lock(_stopMutex);
    while (!_stopChanged.wait_for(lock, pause, [this] { return _isStopping; }))
    {
        lock.unlock();
        pause = drainAll() != 0 ? shortestPause : std::min(2 * pause, longestPause);
        lock.lock();
    }
}

} // namespace Kr
