#include <base/internal/log/lgKeptRings.h>

#include <base/internal/errors/processIdentity.h>
#include <base/internal/errors/threadLabel.h>
#include <base/internal/log/lgLogMark.h>
#include <base/internal/log/lgSharedFile.h>
#include <base/internal/log/lgStandardStream.h>
#include <base/internal/log/lgTry.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

namespace Kr
{

namespace
{

// Where the parts of a queue lie in its chunk.
constexpr std::uint32_t queuePlace = 256;
constexpr std::uint32_t entriesPlace = 2048;
constexpr std::uint32_t numEntries = 1024;
constexpr std::uint32_t charactersPlace = entriesPlace + numEntries * LgRingFormat::Entry::size;
constexpr std::uint32_t numCharacters = 32768;

static_assert(sizeof(LgRingFormat::Header) <= LgRingFormat::chunkSize);
static_assert(sizeof(LgRingFormat::Queue) <= queuePlace);
static_assert(queuePlace % alignof(LgQueue) == 0 && queuePlace + sizeof(LgQueue) <= entriesPlace);
static_assert(sizeof(LgQueue::Entry) == LgRingFormat::Entry::size);
static_assert(charactersPlace + numCharacters <= LgRingFormat::chunkSize);
static_assert(LgRingFormat::Queue::nameSize == ThreadLabel::size);

template <std::size_t size>
void copyText(char (&to)[size], std::string_view text)
{
    const std::size_t length = std::min(text.size(), size - 1);
    std::memcpy(to, text.data(), length);
    to[length] = '\0';
}

LgRingFormat::Destination describe(const LgDestination& destination)
{
    LgRingFormat::Destination described = {};
    described.which = destination.kind == LgDestination::none   ? LgRingFormat::Destination::nowhere
                      : destination.kind == LgDestination::file ? LgRingFormat::Destination::file
                                                                : LgRingFormat::Destination::stream;
    if (destination.path.size() < sizeof described.path)
        copyText(described.path, destination.path);
    return described;
}

} // namespace

LgKeptRings::LgKeptRings(const LgSettings& settings, const LgClock& clock)
    : _settings(settings)
    , _clock(clock)
{
    _threadName.reserve(ThreadLabel::size); // so that a commit needs no memory
    for (std::size_t level = 0; level < LgTypes::NUM_LEVELS; ++level)
        _ownPaths[level] = LgSharedFile::getOwnPath(settings.destinations[level].path,
                                                    ProcessIdentity::getProcessId());
}

LgKeptRings::~LgKeptRings()
{
    LgGroupNames::removeWatcher(this);
}

LgQueue* LgKeptRings::addQueue(unsigned long thread,
                               const std::shared_ptr<const ThreadLabel>& label) noexcept
{
    const std::lock_guard<std::mutex> lock(_mutex);
    try
    {
        void* const memory = open() ? takeChunk() : nullptr;
        if (memory == nullptr)
        {
            complain("there is no room for its rings");
            return nullptr;
        }
        const Place place = build(memory, thread);
        place.queue->setLabel(label); // before the reader finds the queue
        label->copyTo(_threadName);
        for (auto& name : place.chunk->threadNames)
            copyText(name, _threadName);
        _places.push_back(place);
        place.chunk->isUsed.store(1, std::memory_order_release);
        return place.queue;
    }
    catch (const std::bad_alloc&)
    {
        complain("there is not enough memory");
        return nullptr;
    }
}

/// Makes the file by the first call. The caller holds the lock.
bool LgKeptRings::open()
{
    if (_isOpened)
        return _header != nullptr;
    _isOpened = true;
    std::string problem;
    _file = LgRingFile::create(_settings, problem);
    void* const memory = _file != nullptr ? _file->addChunk() : nullptr;
    if (memory == nullptr)
    {
        if (!problem.empty())
            complain(problem.c_str());
        return false;
    }
    auto* const header = new (memory) LgRingFormat::Header{};
    writeHeader(*header);
    LgGroupNames::setWatcher(this);
    std::memcpy(header->magic, LgRingFormat::magic, sizeof header->magic);
    _header = header;
    return true;
}

void LgKeptRings::writeHeader(LgRingFormat::Header& header) const
{
    header.version = LgRingFormat::version;
    header.chunkSize = LgRingFormat::chunkSize;
    header.process = ProcessIdentity::getProcessId();
    header.isJson = _settings.isJson ? 1 : 0;
    header.hasTimeStamps = _settings.hasTimeStamps ? 1 : 0;
    header.keptFiles = static_cast<std::uint32_t>(_settings.keptFiles);
    header.maxFileSize = _settings.maxFileSize;
    header.anchorStamp = _clock.getAnchorStamp();
    header.anchorTime = _clock.getAnchorTime();
    header.rate = _clock.getRate();
    for (std::size_t level = 0; level < LgTypes::NUM_LEVELS; ++level)
        header.destinations[level] = describe(_settings.destinations[level]);
    markLogs(header.marks[0]);
}

/// Levels that share a log are asked for once.
void LgKeptRings::markLogs(LgRingFormat::LogMark (&marks)[LgTypes::NUM_LEVELS]) const noexcept
{
    const auto& all = _settings.destinations;
    for (std::size_t level = 0; level < LgTypes::NUM_LEVELS; ++level)
    {
        std::size_t same = 0;
        while (all[same].kind != all[level].kind || all[same].path != all[level].path)
            ++same;
        if (all[level].kind != LgDestination::file)
            marks[level] = {};
        else if (same < level)
            marks[level] = marks[same];
        else
            marks[level] = {LgLogMark::find(all[level].path), LgLogMark::find(_ownPaths[level])};
    }
}

/// The caller holds the lock.
void* LgKeptRings::takeChunk()
{
    _places.reserve(_places.size() + 1);
    _freeChunks.reserve(_places.size() + _freeChunks.size() + 1); // so that removal cannot fail
    if (_freeChunks.empty())
        return _file->addChunk();
    void* const chunk = _freeChunks.back();
    _freeChunks.pop_back();
    return chunk;
}

/// Puts a queue into a chunk that is not in use yet.
LgKeptRings::Place LgKeptRings::build(void* memory, unsigned long thread) const
{
    auto* const bytes = static_cast<char*>(memory);
    auto* const entries = reinterpret_cast<LgQueue::Entry*>(bytes + entriesPlace); // NOLINT
    for (std::uint32_t i = 0; i < numEntries; ++i)
        new (entries + i) LgQueue::Entry;
    auto* const queue = new (bytes + queuePlace) LgQueue(
        thread, LgQueue::Rings{entries, numEntries, bytes + charactersPlace, numCharacters});
    queue->holdBack();
    const auto placeOf = [bytes](const void* part)
    { return static_cast<std::uint32_t>(static_cast<const char*>(part) - bytes); };
    auto* const chunk = new (memory) LgRingFormat::Queue{};
    chunk->kind = LgRingFormat::Kind::queue;
    chunk->thread = thread;
    chunk->endPlace = placeOf(&queue->_end);
    chunk->committedPlace = placeOf(&queue->_stream._committedPosition);
    chunk->entriesPlace = entriesPlace;
    chunk->numEntries = numEntries;
    chunk->charactersPlace = charactersPlace;
    chunk->numCharacters = numCharacters;
    return {chunk, queue};
}

void LgKeptRings::removeQueue(LgQueue* queue) noexcept
{
    const std::lock_guard<std::mutex> lock(_mutex);
    const auto place = std::find_if(_places.begin(), _places.end(),
                                    [queue](const Place& each) { return each.queue == queue; });
    place->chunk->isUsed.store(0, std::memory_order_release);
    queue->release();
    queue->~LgQueue();
    _freeChunks.push_back(place->chunk);
    _places.erase(place);
}

void LgKeptRings::commit() noexcept
{
    const std::lock_guard<std::mutex> lock(_mutex);
    if (_header == nullptr)
        return;
    const std::uint32_t generation = _header->generation.load(std::memory_order_relaxed) + 1;
    const std::uint32_t side = generation & 1;
    markLogs(_header->marks[side]);
    for (const Place& place : _places)
        mark(place, side);
    _header->generation.store(generation, std::memory_order_release);
    for (const Place& place : _places)
        place.queue->release();
}

void LgKeptRings::mark(const Place& place, std::uint32_t side)
{
    const LgQueue& queue = *place.queue;
    LgRingFormat::QueueMark& to = place.chunk->marks[side];
    to.entry = queue._next;
    to.text = queue._stream._nextPosition;
    to.isOnEnd = queue._stream._stringRead ? 1 : 0;
    _threadName.clear();
    if (queue.getLabel() != nullptr)
        queue.getLabel()->copyTo(_threadName);
    copyText(place.chunk->threadNames[side], _threadName);
}

void LgKeptRings::close() noexcept
{
    const std::lock_guard<std::mutex> lock(_mutex);
    LgGroupNames::removeWatcher(this);
    _header = nullptr;
    if (_file != nullptr)
        _file->removeName();
}

/// The parent may have held the lock.
void LgKeptRings::abandon() noexcept
{
    _isAbandoned = true;
    if (_file != nullptr)
        _file->abandon();
}

/// Beyond the room for it a name is lost, and its messages are of no group.
void LgKeptRings::nameAdded(std::uint16_t number, std::string_view name) noexcept
{
    if (_isAbandoned)
        return;
    name = name.substr(0, LgRingFormat::maxNameLength);
    const auto length = static_cast<std::uint16_t>(name.size());
    const auto size = static_cast<std::uint32_t>(sizeof number + sizeof length + name.size());
    constexpr std::uint32_t room = LgRingFormat::chunkSize - sizeof(LgRingFormat::Names);
    if (_names == nullptr || room - _names->size.load(std::memory_order_relaxed) < size)
    {
        void* const memory = _file->addChunk();
        if (memory == nullptr)
            return;
        _names = new (memory) LgRingFormat::Names{};
        _names->kind = LgRingFormat::Kind::names;
    }
    const std::uint32_t used = _names->size.load(std::memory_order_relaxed);
    char* const to = reinterpret_cast<char*>(_names + 1) + used; // NOLINT: what stands behind it
    std::memcpy(to, &number, sizeof number);
    std::memcpy(to + sizeof number, &length, sizeof length);
    std::memcpy(to + sizeof number + sizeof length, name.data(), name.size());
    _names->size.store(used + size, std::memory_order_release);
}

void LgKeptRings::complain(const char* problem) noexcept
{
    if (!_hasComplained)
        _hasComplained = lgTry(
            [problem]
            {
                LgStandardStream::complain(
                    std::string("The log does not survive a kill of the process: ") + problem +
                    '\n');
            });
}

} // namespace Kr
