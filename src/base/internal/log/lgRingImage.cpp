#include <base/internal/log/lgRingImage.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>

namespace Kr
{

namespace
{

namespace Format = LgRingFormat;
using Chunk = LgRingImage::Chunk;

/// The value at a place, which the caller has checked.
template <class Value>
Value get(const Chunk& chunk, std::size_t place)
{
    Value value = {};
    std::memcpy(&value, chunk + place, sizeof value);
    return value;
}

template <std::size_t size>
std::string getText(const Chunk& chunk, std::size_t place)
{
    const auto* const text = reinterpret_cast<const char*>(chunk) + place; // NOLINT: bytes
    return {text, std::find(text, text + size, '\0')};
}

/// Whether that many bytes lie inside the chunk, and begin where such things do.
bool isInside(std::uint32_t place, std::uint64_t size)
{
    return place <= Format::chunkSize && size <= Format::chunkSize - place;
}

bool isRingSize(std::uint32_t size)
{
    return size >= 4 && size <= Format::chunkSize && (size & (size - 1)) == 0;
}

/// The two rings of a queue, from the last commit up to the last message that was completed.
class Rings
{
public:
    /// None if the numbers do not fit together.
    static std::optional<Rings> find(const Chunk& chunk, std::uint32_t side)
    {
        Rings rings(chunk, side);
        return rings.isSound() ? std::optional<Rings>(rings) : std::nullopt;
    }

    /// Takes the next entry; false if there is none, or its text is missing.
    bool take(LgRingImage::Message& message)
    {
        if (_mark.entry == _end)
            return false;
        const std::size_t entry = _entries + std::size_t{_mark.entry} * Format::Entry::size;
        const auto word = get<std::uint32_t>(_chunk, entry + Format::Entry::word);
        message.timeStamp = get<std::uint64_t>(_chunk, entry + Format::Entry::timeStamp);
        message.isCut = _chunk[entry + Format::Entry::cut] != 0;
        const bool isOverflow = _chunk[entry + Format::Entry::overflow] != 0;
        message.lost = isOverflow ? word & Format::Entry::countMask : 0;
        message.level = isOverflow ? LgTypes::Informational : static_cast<LgTypes::Level>(word);
        message.groupNumber =
            isOverflow ? 0 : get<std::uint16_t>(_chunk, entry + Format::Entry::group);
        _mark.entry = (_mark.entry + 1) & (_numEntries - 1);
        if (isOverflow)
        {
            message.isCut = false;
            message.text = "Event overflow [" + std::to_string(message.lost) + "]";
            return true;
        }
        return takeText(message.text) && word < LgTypes::NUM_LEVELS;
    }

private:
    Rings(const Chunk& chunk, std::uint32_t side)
        : _chunk(chunk)
        , _mark(get<Format::QueueMark>(chunk, offsetof(Format::Queue, marks) +
                                                  side * sizeof(Format::QueueMark)))
        , _entries(get<std::uint32_t>(chunk, offsetof(Format::Queue, entriesPlace)))
        , _numEntries(get<std::uint32_t>(chunk, offsetof(Format::Queue, numEntries)))
        , _characters(get<std::uint32_t>(chunk, offsetof(Format::Queue, charactersPlace)))
        , _numCharacters(get<std::uint32_t>(chunk, offsetof(Format::Queue, numCharacters)))
    {
    }

    bool isSound()
    {
        const auto endPlace = get<std::uint32_t>(_chunk, offsetof(Format::Queue, endPlace));
        const auto committedPlace =
            get<std::uint32_t>(_chunk, offsetof(Format::Queue, committedPlace));
        if (!isInside(endPlace, sizeof _end) || !isInside(committedPlace, sizeof _committed))
            return false;
        _end = get<std::uint32_t>(_chunk, endPlace);
        _committed = get<std::uint32_t>(_chunk, committedPlace);
        return isRingSize(_numEntries) && isRingSize(_numCharacters) &&
               isInside(_entries, std::uint64_t{_numEntries} * Format::Entry::size) &&
               isInside(_characters, _numCharacters) && _mark.entry < _numEntries &&
               _end < _numEntries && _mark.text < _numCharacters && _committed < _numCharacters;
    }

    char at(std::uint32_t position) const
    {
        return static_cast<char>(_chunk[_characters + (position & (_numCharacters - 1))]);
    }

    /// Takes the next text, up to its terminator, and not beyond what was committed.
    bool takeText(std::string& text)
    {
        const bool isFirst = std::exchange(_mark.isOnEnd, 1) == 0;
        if (_mark.text == _committed)
            return isFirst; // an empty one
        std::uint32_t from = _mark.text;
        if (!isFirst && at(from) == '\0')
            from = (from + 1) & (_numCharacters - 1);
        const std::uint32_t room = (_committed - from) & (_numCharacters - 1);
        std::uint32_t length = 0;
        while (length < room && at(from + length) != '\0')
            text += at(from + length++);
        _mark.text = (from + length) & (_numCharacters - 1);
        return at(_mark.text) == '\0';
    }

    const Chunk& _chunk;
    Format::QueueMark _mark;
    std::uint32_t _entries;
    std::uint32_t _numEntries;
    std::uint32_t _characters;
    std::uint32_t _numCharacters;
    std::uint32_t _end = 0;
    std::uint32_t _committed = 0;
};

} // namespace

bool LgRingImage::readHeader(const Chunk& chunk)
{
    using Format::Header;
    const auto number = [&chunk](std::size_t place) { return get<std::uint32_t>(chunk, place); };
    if (std::memcmp(chunk, Format::magic, sizeof Format::magic) != 0 ||
        number(offsetof(Header, version)) != Format::version ||
        number(offsetof(Header, chunkSize)) != Format::chunkSize || !readClock(chunk))
        return false;
    _process = number(offsetof(Header, process));
    _isJson = number(offsetof(Header, isJson)) != 0;
    _hasTimeStamps = number(offsetof(Header, hasTimeStamps)) != 0;
    _keptFiles = static_cast<int>(std::clamp(number(offsetof(Header, keptFiles)), 1U, 999U));
    _maxFileSize = get<std::uint64_t>(chunk, offsetof(Header, maxFileSize));
    _side = number(offsetof(Header, generation)) & 1;
    for (std::size_t level = 0; level < LgTypes::NUM_LEVELS; ++level)
        readDestination(chunk, level);
    return true;
}

/// A clock with which no time of this millennium overflows.
bool LgRingImage::readClock(const Chunk& chunk)
{
    using Format::Header;
    constexpr std::int64_t maxRate = 1000000000000;
    constexpr std::int64_t maxTime = 4000000000000000000; // of the year 2096
    const auto time = get<std::int64_t>(chunk, offsetof(Header, anchorTime));
    const auto rate = get<std::int64_t>(chunk, offsetof(Header, rate));
    if (rate <= 0 || rate > maxRate || time < 0 || time > maxTime)
        return false;
    _clock = LgClock(get<std::uint64_t>(chunk, offsetof(Header, anchorStamp)), time, rate);
    return true;
}

void LgRingImage::readDestination(const Chunk& chunk, std::size_t level)
{
    using Format::Header;
    Destination& destination = _destinations[level];
    const std::size_t place = offsetof(Header, destinations) + level * sizeof(Format::Destination);
    const auto which = get<std::uint32_t>(chunk, place + offsetof(Format::Destination, which));
    destination.which = static_cast<Format::Destination::Which>(
        std::min<std::uint32_t>(which, Format::Destination::file));
    destination.path = getText<sizeof(Format::Destination::path)>(
        chunk, place + offsetof(Format::Destination, path));
    destination.mark = get<Format::LogMark>(
        chunk,
        offsetof(Header, marks) + (_side * LgTypes::NUM_LEVELS + level) * sizeof(Format::LogMark));
}

void LgRingImage::readChunk(const Chunk& chunk)
{
    switch (static_cast<Format::Kind>(get<std::uint32_t>(chunk, 0)))
    {
    case Format::Kind::names:
        readNames(chunk);
        break;
    case Format::Kind::queue:
        if (get<std::uint32_t>(chunk, offsetof(Format::Queue, isUsed)) == 1)
            readQueue(chunk);
        break;
    case Format::Kind::unused:
        break;
    }
}

void LgRingImage::readNames(const Chunk& chunk)
{
    constexpr std::size_t begin = sizeof(Format::Names);
    constexpr std::size_t head = 2 * sizeof(std::uint16_t);
    const auto size = get<std::uint32_t>(chunk, offsetof(Format::Names, size));
    const std::size_t end = begin + std::min<std::size_t>(size, Format::chunkSize - begin);
    for (std::size_t at = begin; end - at >= head;)
    {
        const auto number = get<std::uint16_t>(chunk, at);
        const auto length = get<std::uint16_t>(chunk, at + sizeof number);
        at += head;
        if (length > Format::maxNameLength || length > end - at)
            return;
        _names[number].assign(reinterpret_cast<const char*>(chunk) + at, length); // NOLINT: bytes
        at += length;
    }
}

void LgRingImage::readQueue(const Chunk& chunk)
{
    std::optional<Rings> rings = Rings::find(chunk, _side);
    if (!rings)
        return;
    std::vector<Message>& messages = _queues.emplace_back();
    Message message;
    message.queue = static_cast<std::uint32_t>(_queues.size() - 1);
    message.thread =
        static_cast<unsigned long>(get<std::uint64_t>(chunk, offsetof(Format::Queue, thread)));
    message.threadName = getText<Format::Queue::nameSize>(
        chunk, offsetof(Format::Queue, threadNames) + _side * Format::Queue::nameSize);
    for (; rings->take(message); message.text.clear())
    {
        message.timeStamp = limitStamp(message.timeStamp);
        messages.push_back(message);
    }
}

/// A stamp that is long before the clock or long behind it was never taken.
std::uint64_t LgRingImage::limitStamp(std::uint64_t timeStamp) const
{
    constexpr std::int64_t day = 86400;
    constexpr std::int64_t century = 36525 * day;
    const auto ticks = static_cast<std::int64_t>(timeStamp - _clock.getAnchorStamp());
    const std::int64_t seconds = ticks / _clock.getRate();
    return seconds > -day && seconds < century && _clock.getTimeOfDay(timeStamp) >= 0
               ? timeStamp
               : _clock.getAnchorStamp();
}

void LgRingImage::resolveGroups()
{
    for (std::vector<Message>& messages : _queues)
        for (Message& message : messages)
        {
            const auto name = _names.find(message.groupNumber);
            if (name != _names.end())
                message.group = name->second;
        }
}

std::vector<LgRingImage::Message> LgRingImage::takeMessages()
{
    resolveGroups();
    using Head = std::pair<std::uint64_t, std::size_t>; // a time stamp, and whose
    std::vector<Head> heads;
    std::vector<std::size_t> taken(_queues.size(), 0);
    const auto addHead = [&](std::size_t queue)
    {
        if (taken[queue] == _queues[queue].size())
            return;
        heads.emplace_back(_queues[queue][taken[queue]].timeStamp, queue);
        std::push_heap(heads.begin(), heads.end(), std::greater<Head>());
    };
    for (std::size_t queue = 0; queue < _queues.size(); ++queue)
        addHead(queue);
    std::vector<Message> messages;
    while (!heads.empty())
    {
        const std::size_t queue = heads.front().second;
        std::pop_heap(heads.begin(), heads.end(), std::greater<Head>());
        heads.pop_back();
        messages.push_back(std::move(_queues[queue][taken[queue]++]));
        addHead(queue);
    }
    _queues.clear();
    return messages;
}

} // namespace Kr
