#include <base/internal/log/lgRescue.h>

#include <base/hwCounter.h>
#include <base/internal/log/lgColumnFormat.h>
#include <base/internal/log/lgFolder.h>
#include <base/internal/log/lgJsonFormat.h>
#include <base/internal/log/lgOutputs.h>
#include <base/internal/log/lgRingFile.h>
#include <base/internal/log/lgSharedFile.h>
#include <base/internal/log/lgThread.h>
#include <base/internal/log/lgWritten.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>

namespace Kr
{

namespace
{

using Message = LgRingImage::Message;

bool isRings(const std::string& name)
{
    constexpr std::string_view prefix = LgRingFormat::namePrefix;
    constexpr std::string_view suffix = LgRingFormat::nameSuffix;
    return name.size() > prefix.size() + suffix.size() &&
           name.compare(0, prefix.size(), prefix) == 0 &&
           name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
}

std::vector<std::string> findRings(const std::string& folder, std::error_code& error)
{
    std::vector<std::string> paths;
    const std::filesystem::directory_iterator end;
    for (std::filesystem::directory_iterator entry(folder, error); !error && entry != end;
         entry.increment(error))
        if (isRings(entry->path().filename().string()))
            paths.push_back(entry->path().string());
    std::sort(paths.begin(), paths.end());
    return paths;
}

std::unique_ptr<LgLineFormat> makeFormat(const LgRingImage& image, const LgClock& clock,
                                         std::uint32_t process)
{
    if (image.isJson())
        return std::make_unique<LgJsonFormat>(clock, image.hasTimeStamps(), process);
    return std::make_unique<LgColumnFormat>(clock, image.hasTimeStamps(), process);
}

LgRecord toRecord(const Message& message)
{
    return {message.level, message.timeStamp, message.thread,
            message.group, message.text,      static_cast<int>(message.lost),
            message.isCut, message.threadName};
}

/// Whether all of it is in the system's hands.
bool finish(LgOutputs& outputs)
{
    outputs.sync();
    outputs.close();
    return outputs.getLostCount() == 0;
}

/// What is told of a process, as a record of the one that tells it.
bool announce(const LgRingImage& image, const LgSettings& settings, std::size_t messages,
              std::uint64_t lost)
{
    const std::string text =
        "process " + std::to_string(image.getProcess()) +
        " ended before it had written its log; recovered: " + std::to_string(messages) +
        " messages, and the loss of " + std::to_string(lost);
    const LgClock clock;
    const std::unique_ptr<LgLineFormat> format =
        image.isJson() ? std::unique_ptr<LgLineFormat>(
                             std::make_unique<LgJsonFormat>(clock, image.hasTimeStamps()))
                       : std::make_unique<LgColumnFormat>(clock, image.hasTimeStamps());
    LgOutputs outputs;
    outputs.open(settings, *format);
    outputs.write({LgTypes::Warning, HwCounter::timeStamp(), 0, "Logger", text});
    return finish(outputs);
}

} // namespace

LgRescue::LgRescue(const std::string& folder, const LgSettings* own)
    : _folder(folder)
    , _own(own)
{
}

LgRescue::Result LgRescue::run()
{
    std::error_code error;
    if (_own != nullptr && !isUsable())
        return {};
    for (const std::string& path : findRings(_folder, error))
        rescue(path);
    if (error)
        _result.problems.push_back(_folder + " cannot be listed: " + error.message());
    return std::move(_result);
}

/// Whether this process has a folder there that it may write to.
bool LgRescue::isUsable() const
{
    std::error_code error;
    const std::string file = (std::filesystem::path(_folder) / "events.log").string();
    return std::filesystem::is_directory(_folder, error) &&
           LgFolder::makeAbove(file, _own->getPrivateFolder(file));
}

/// A file goes when all that it held is written; until then nothing is lost by another try.
void LgRescue::rescue(const std::string& path)
{
    const std::unique_ptr<LgFoundRings> rings = LgFoundRings::open(path);
    LgRingImage image;
    if (rings == nullptr || !read(*rings, image))
        return;
    const LgSettings settings = makeSettings(image);
    const std::vector<Message> messages = findUnwritten(image, settings);
    if (!write(image, settings, messages))
        _result.problems.push_back("What stands in " + path +
                                   " cannot be written: it stays there.");
    else if (!rings->remove())
        _result.problems.push_back(path + " is written into the log, but cannot be removed.");
}

bool LgRescue::read(LgFoundRings& rings, LgRingImage& image) const
{
    const auto chunk = std::make_unique<LgRingImage::Chunk[]>(1);
    if (!rings.readChunk(chunk[0]) || !image.readHeader(chunk[0]))
        return false;
    for (std::uint32_t i = 1; i < LgRingFormat::maxChunks && rings.readChunk(chunk[0]); ++i)
        image.readChunk(chunk[0]);
    return true;
}

LgSettings LgRescue::makeSettings(const LgRingImage& image) const
{
    LgSettings settings;
    settings.directory = _folder;
    settings.isDirectoryPrivate = _own != nullptr && _own->isDirectoryPrivate;
    settings.isJson = image.isJson();
    settings.hasTimeStamps = image.hasTimeStamps();
    settings.maxFileSize = _own != nullptr ? _own->maxFileSize : image.getMaxFileSize();
    settings.keptFiles = _own != nullptr ? _own->keptFiles : image.getKeptFiles();
    for (std::size_t level = 0; level < LgTypes::NUM_LEVELS; ++level)
        settings.destinations[level] = findDestination(image, level);
    return settings;
}

/// A stream is gone with its process.
LgDestination LgRescue::findDestination(const LgRingImage& image, std::size_t level) const
{
    const auto which = image.getDestination(level);
    if (which == LgRingFormat::Destination::nowhere)
        return {LgDestination::none, ""};
    const std::string& path = image.getPath(level);
    if (which == LgRingFormat::Destination::file && isTrusted(path))
        return {LgDestination::file, path};
    const char* const name = level == LgTypes::Profiling ? "prof.log" : "events.log";
    return {LgDestination::file, (std::filesystem::path(_folder) / name).string()};
}

bool LgRescue::isTrusted(const std::string& path) const
{
    const auto isOwn = [&path](const LgDestination& each)
    { return each.kind == LgDestination::file && each.path == path; };
    if (_own != nullptr && std::any_of(_own->destinations.begin(), _own->destinations.end(), isOwn))
        return true;
    const std::filesystem::path file(path);
    std::error_code error;
    return file.has_filename() && !isRings(file.filename().string()) &&
           std::filesystem::equivalent(file.parent_path(), _folder, error);
}

/// Those that do not stand in their log.
std::vector<Message> LgRescue::findUnwritten(LgRingImage& image, const LgSettings& settings) const
{
    std::vector<Message> messages = image.takeMessages();
    std::vector<bool> isWritten(messages.size(), false);
    std::vector<std::string> searched;
    for (std::size_t level = 0; level < LgTypes::NUM_LEVELS; ++level)
    {
        const std::string& path = settings.destinations[level].path;
        const bool isNew = std::find(searched.begin(), searched.end(), path) == searched.end();
        if (!isNew || image.getPath(level) != path)
            continue; // nothing was written to a log that only replaces one
        searched.push_back(path);
        searchLog(image, settings, level, messages, isWritten);
    }
    std::size_t number = 0;
    const auto isDone = [&](const Message& message) {
        return isWritten[number++] ||
               settings.destinations[message.level].kind == LgDestination::none;
    };
    messages.erase(std::remove_if(messages.begin(), messages.end(), isDone), messages.end());
    return messages;
}

/// Searches the level's log for the messages that go there.
void LgRescue::searchLog(const LgRingImage& image, const LgSettings& settings, std::size_t level,
                         const std::vector<Message>& messages, std::vector<bool>& isWritten) const
{
    const std::string& path = settings.destinations[level].path;
    const auto format = makeFormat(image, image.getClock(), image.getProcess());
    std::vector<LgWritten::Line> lines;
    std::vector<std::size_t> numbers;
    for (std::size_t i = 0; i < messages.size(); ++i)
        if (settings.destinations[messages[i].level].path == path)
        {
            numbers.push_back(i);
            lines.push_back({messages[i].queue, ""});
            format->append(lines.back().text, toRecord(messages[i]));
        }
    const std::string ownPath = LgSharedFile::getOwnPath(path, image.getProcess());
    const std::vector<bool> found = LgWritten::find(lines, path, ownPath, image.getMark(level));
    for (std::size_t i = 0; i < numbers.size(); ++i)
        isWritten[numbers[i]] = found[i];
}

bool LgRescue::write(const LgRingImage& image, const LgSettings& settings,
                     const std::vector<Message>& messages)
{
    if (messages.empty())
        return true;
    std::uint64_t lost = 0;
    std::size_t count = 0;
    for (const Message& message : messages)
    {
        lost += message.lost;
        count += message.lost == 0 ? 1 : 0;
    }
    const LgThread::OutputGuard guard;
    if (!announce(image, settings, count, lost))
        return false;
    const auto format = makeFormat(image, image.getClock(), image.getProcess());
    LgOutputs outputs;
    outputs.open(settings, *format);
    for (const Message& message : messages)
        outputs.write(toRecord(message));
    if (!finish(outputs))
        return false;
    ++_result.processes;
    _result.messages += count;
    _result.lost += lost;
    return true;
}

} // namespace Kr
