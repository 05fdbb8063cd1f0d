#include <base/lgStream.h>

#include <base/assert.h>
#include <base/internal/log/lgFormat.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

namespace Kr
{

namespace
{

constexpr int decimals = 6; // of "%f"

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

char toCapital(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// Some standard libraries write a `long double` with the decimal point of the locale, which may
/// have several characters. Returns the end of the text with a point in its place.
char* setPoint(const char* begin, char* end)
{
    char* const fraction = end - decimals;
    char* point = fraction;
    while (point != begin && !isDigit(point[-1]))
        --point;
    *point = '.';
    std::memmove(point + 1, fraction, decimals);
    return point + 1 + decimals;
}

} // namespace

LgStream::LgStream(unsigned int ringSize)
    : _mask(ringSize - 1)
    , _room((ringSize - 1) / 2)
{
    KR_ASSERT(ringSize >= 4 && (ringSize & (ringSize - 1)) == 0);
    _buffer.reset(new char[ringSize]);
    _buffer[0] = '\0';
}

LgStream::LgStream(char* ring, unsigned int ringSize)
    : _buffer(ring, RingDelete{true})
    , _mask(ringSize - 1)
    , _room((ringSize - 1) / 2)
{
    KR_ASSERT(ring != nullptr && ringSize >= 4 && (ringSize & (ringSize - 1)) == 0);
    _buffer[0] = '\0';
}

// The producer's side

/// The free room as the consumer's position leaves it. A terminator that waits in the last free
/// place takes one more.
unsigned int LgStream::getRoom(unsigned int readPosition) const noexcept
{
    const unsigned int room = (readPosition - 1 - _writePosition) & _mask;
    return _pendingAdvance && room != 0 ? room - 1 : room;
}

unsigned int LgStream::getNumCharacters() const noexcept
{
    return getRoom(_readPosition.load(std::memory_order_acquire));
}

bool LgStream::isFull() const noexcept
{
    return ((_writePosition + 1) & _mask) == _readPosition.load(std::memory_order_acquire);
}

/// Looks at the consumer's position again, and steps over a waiting terminator once there is room
/// behind it. Returns whether there is any room. The next look is due when half of the ring is
/// filled, then when all is that is not kept for severe messages, then when all of it is.
bool LgStream::updateRoom() noexcept
{
    const unsigned int half = (_mask + 1) / 2;
    const unsigned int room = getNumCharacters();
    if (room != 0 && _pendingAdvance)
    {
        _writePosition = (_writePosition + 1) & _mask;
        _pendingAdvance = false;
    }
    const unsigned int mostKept = getMostKept(_mask + 1, _rank);
    if (room > half)
        _room = room - half;
    else if (room > mostKept)
        _room = room - mostKept;
    else
        takeWholeRoom(room);
    setFlags(room > half ? 0U : HalfFull);
    return _room != 0;
}

/// Takes all that messages of this rank may, and has it returned if others may not.
void LgStream::takeWholeRoom(unsigned int room) noexcept
{
    const unsigned int kept = getKept(_mask + 1, _rank);
    _room = room > kept ? room - kept : 0;
    setFlags(static_cast<unsigned int>(HalfFull) |
             (kept != getMostKept(_mask + 1, _rank) ? FromKept : 0U));
}

/// Room that only severe messages may take is granted to one of them at a time.
void LgStream::returnKept() noexcept
{
    if ((_flags & FromKept) != 0)
        _room = 0;
    clearFlags(FromKept);
}

unsigned int LgStream::getKept(unsigned int ringSize, LgTypes::Level rank) noexcept
{
    if (rank <= LgTypes::Error)
        return 0;
    return rank == LgTypes::Warning ? ringSize / 32 : ringSize / 8;
}

unsigned int LgStream::getMostKept(unsigned int ringSize, LgTypes::Level rank) noexcept
{
    return rank == LgTypes::InternalError ? 0 : getKept(ringSize, LgTypes::Tracing);
}

/// For a text that may not fit in the room last seen.
void LgStream::appendTight(const char* text, std::size_t length) noexcept
{
    if (_message == Message::Closed || !updateRoom())
    {
        cutAll();
        return;
    }
    if (length > _room)
        takeWholeRoom(getNumCharacters());
    if (length <= _room)
    {
        copyIn(text, static_cast<unsigned int>(length));
        return;
    }
    _overflowed.store(true, std::memory_order_relaxed);
    setFlags(Cut);
    copyIn("#", 1);
}

void LgStream::cutAll() noexcept
{
    _overflowed.store(true, std::memory_order_relaxed);
    setFlags(static_cast<unsigned int>(StringCompleted) | Cut);
    if (_message == Message::Open)
        _message = Message::Closed; // no hole in a message should room come back meanwhile
}

void LgStream::completeString()
{
    if (_pendingAdvance && !updateRoom())
    {
        _overflowed.store(true, std::memory_order_relaxed); // not even an empty text fits
        setFlags(StringCompleted);
    }
    else if (_message == Message::None)
    {
        publish();
    }
    else if (_message == Message::Open)
    {
        // An empty message gets no entry, so it must not make a text either.
        setFlags(StringCompleted);
        if ((_flags & TextWritten) == 0)
            return;
        publish();
        _message = Message::Closed;
        _room = 0; // what is appended now takes the long way, and is refused there
    }
}

/// Whether the ring was found half full since the last call.
bool LgStream::takeHalfFull() noexcept
{
    const bool isHalfFull = (_flags & HalfFull) != 0;
    clearFlags(HalfFull);
    return isHalfFull;
}

void LgStream::endMessage() noexcept
{
    if ((_flags & Published) == 0)
        publish();
    _message = Message::None;
    returnKept();
}

/// The terminator may have taken the last free place.
void LgStream::publishTight() noexcept
{
    if (updateRoom())
        stepOverTerminator();
    else
        _pendingAdvance = true;
}

LgStream& LgStream::operator<<(std::string_view text)
{
    if (text.empty())
        return append("", 0);
    while (const void* nul = std::memchr(text.data(), '\0', text.size()))
    {
        const auto length = static_cast<std::size_t>(static_cast<const char*>(nul) - text.data());
        append(text.data(), length);
        text.remove_prefix(length + 1);
    }
    return append(text.data(), text.size());
}

LgStream& LgStream::operator<<(double value)
{
    if (LgFormat::isEveryday(value))
        return appendNumber(value);
    char text[400]; // the longest has 317 characters
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 6);
    return append(text, static_cast<std::size_t>(end.ptr - text));
}

LgStream& LgStream::operator<<(long double value)
{
    char text[std::numeric_limits<long double>::max_exponent10 + 16];
    char* end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals).ptr;
    if (std::isfinite(value))
        end = setPoint(text, end);
    return append(text, static_cast<std::size_t>(end - text));
}

/// A runtime library that puts no prefix before the digits writes capitals.
LgStream& LgStream::operator<<(const void* pointer)
{
    char text[numberRoom];
    const int length = std::snprintf(text, sizeof text, "%p", pointer);
    if (text[0] == '0' && text[1] != 'x')
        std::transform(text, text + length, text, toCapital);
    return append(text, static_cast<std::size_t>(length));
}

// The consumer's side

/// Where the next text begins: behind the terminator of the text read last, if one was read.
unsigned int LgStream::findStart(unsigned int readPosition) const noexcept
{
    const bool onTerminator = _stringRead && _buffer[readPosition] == '\0';
    return onTerminator ? (readPosition + 1) & _mask : readPosition;
}

/// Where the text that begins at `start` ends. There is a terminator at `committed` at the latest.
unsigned int LgStream::findEnd(unsigned int start, unsigned int committed) const noexcept
{
    const char* const ring = _buffer.get();
    const unsigned int last = start <= committed ? committed : _mask;
    const void* end = std::memchr(ring + start, '\0', last - start + 1);
    if (end == nullptr)
        end = std::memchr(ring, '\0', committed + 1);
    return static_cast<unsigned int>(static_cast<const char*>(end) - ring);
}

unsigned int LgStream::getNextSize() const noexcept
{
    const unsigned int committed = _committedPosition.load(std::memory_order_acquire);
    if (_nextPosition == committed)
        return 0;
    const unsigned int start = findStart(_nextPosition);
    return (findEnd(start, committed) - start) & _mask;
}

LgStream& LgStream::operator>>(char* buffer) noexcept
{
    const unsigned int committed = _committedPosition.load(std::memory_order_acquire);
    unsigned int size = 0;
    if (_nextPosition != committed)
    {
        const unsigned int start = findStart(_nextPosition);
        const unsigned int end = findEnd(start, committed);
        size = (end - start) & _mask;
        const unsigned int head = end < start ? _mask + 1 - start : size;
        std::memcpy(buffer, _buffer.get() + start, head);
        std::memcpy(buffer + head, _buffer.get(), size - head);
        _nextPosition = end;
        if (!_holdsBack)
            release();
        _overflowed.store(false, std::memory_order_relaxed);
    }
    buffer[size] = '\0';
    _stringRead = true;
    return *this;
}

} // namespace Kr
