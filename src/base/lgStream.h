#pragma once

/// @file
/// The ring of characters through which one thread hands texts to another, without a lock.
///
/// The producer appends values and ends each text; the consumer takes the texts in that order:
/// @code
/// Kr::LgStream stream;
/// stream << "took " << 3 << " steps of " << 0.25 << " m" << Kr::ends; // producer
///
/// std::string text(stream.getNextSize() + 1, '\0'); // consumer
/// stream >> text.data();                             // "took 3 steps of 0.250000 m"
/// @endcode
/// Nothing ever waits or allocates. What does not fit is cut: a value whose text is longer than the
/// free room becomes "#", and nothing more is taken while the ring is full. `hasOverflowed` tells.
///
/// Exactly one thread produces and one consumes. A text becomes visible to the consumer when it is
/// ended: the producer stores the position of its terminator with release order, after the
/// characters, and the consumer reads that position with acquire order, before them; the consumer's
/// own position takes the same road back (Lamport, "Proving the Correctness of Multiprocess
/// Programs", 1977).
///
/// Beyond what it takes by itself, a stream takes every type that has been taught: base/lgValues.h
/// tells how, and which of the library's and the standard's types have been.
///
/// Pitfalls: formatting is fixed, so numbers look the same whatever the locale; "%f" means six
/// decimals, also for 1e-9. A text cannot hold a NUL, which would end it: NULs are left out. In a
/// message of an `LgQueue`, nothing is appended after `ends` or once a full ring has cut it.

#include <base/internal/log/lgFormat.h>
#include <base/krBaseApi.h>
#include <base/lgTypes.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iosfwd>
#include <memory>
#include <string_view>
#include <type_traits>
#include <utility>

namespace Kr
{

class LgStream;

/// Which types a stream takes.
namespace LgTaken
{

// What a stream takes by itself. Not `bool`, which everything that is no value converts to.
void itself(const char*);
void itself(std::string_view);
void itself(char);
void itself(signed char);
void itself(unsigned char);
void itself(short);
void itself(unsigned short);
void itself(int);
void itself(unsigned int);
void itself(long);
void itself(unsigned long);
void itself(long long);
void itself(unsigned long long);
void itself(float);
void itself(double);
void itself(long double);
void itself(const void*);
void itself(std::nullptr_t);
void itself(LgStream& (*)(LgStream&));
void itself(const wchar_t*) = delete;
void itself(const char16_t*) = delete;
void itself(const char32_t*) = delete;

template <class T, class = void>
struct ByItself : std::false_type
{
};

template <class T>
struct ByItself<T, std::void_t<decltype(itself(std::declval<const T&>()))>> : std::true_type
{
};

template <class T, class = void>
struct ByOperator : std::false_type
{
};

template <class T>
struct ByOperator<
    T, std::void_t<decltype(operator<<(std::declval<LgStream&>(), std::declval<const T&>()))>>
    : std::true_type
{
};

template <class T>
struct IsTaken : std::disjunction<ByItself<T>, ByOperator<T>>
{
};

} // namespace LgTaken

class KR_BASE_API LgStream
{
public:
    /// What `getOutputFlags` returns.
    enum OutputFlags : unsigned int
    {
        TextWritten = 1,     ///< something was appended since the reset
        StringCompleted = 2, ///< the text was ended, or cut by the ring being full
    };

    /// @param ringSize the size of the ring in characters, a power of two from 4 up. The default is
    /// what the logger uses; small rings are for those who want to see them fill.
    explicit LgStream(unsigned int ringSize = defaultRingSize);

    /// With a ring of the caller's, which must outlive the stream.
    LgStream(char* ring, unsigned int ringSize);
    LgStream(const LgStream&) = delete;
    LgStream& operator=(const LgStream&) = delete;

    // The producer's side

    LgStream& operator<<(const char* text)
    {
        return append(text != nullptr ? text : "(null)",
                      std::strlen(text != nullptr ? text : "(null)"));
    }
    LgStream& operator<<(char* text) { return *this << static_cast<const char*>(text); }
    LgStream& operator<<(std::string_view text);
    LgStream& operator<<(char character)
    {
        return character != '\0' ? append(&character, 1) : append("", 0);
    }
    LgStream& operator<<(signed char character) { return *this << static_cast<char>(character); }
    LgStream& operator<<(unsigned char character) { return *this << static_cast<char>(character); }
    LgStream& operator<<(bool value) { return *this << (value ? "true" : "false"); }

    // The text that the format beside it gives in the "C" locale.
    LgStream& operator<<(short value) { return *this << static_cast<int>(value); }    ///< "%hd"
    LgStream& operator<<(unsigned short value) { return *this << unsigned{value}; }   ///< "%hu"
    LgStream& operator<<(int value) { return appendNumber(value); }                   ///< "%d"
    LgStream& operator<<(unsigned int value) { return appendNumber(value); }          ///< "%u"
    LgStream& operator<<(long value) { return appendNumber(value); }                  ///< "%ld"
    LgStream& operator<<(unsigned long value) { return appendNumber(value); }         ///< "%lu"
    LgStream& operator<<(long long value) { return appendNumber(value); }             ///< "%lld"
    LgStream& operator<<(unsigned long long value) { return appendNumber(value); }    ///< "%llu"
    LgStream& operator<<(float value) { return *this << static_cast<double>(value); } ///< "%f"
    LgStream& operator<<(double value);                                               ///< "%f"
    LgStream& operator<<(long double value);                                          ///< "%Lf"
    /// "%p", in the form of the platform's runtime library.
    LgStream& operator<<(const void* pointer);
    LgStream& operator<<(void* pointer) { return *this << static_cast<const void*>(pointer); }
    LgStream& operator<<(std::nullptr_t) { return *this << static_cast<const void*>(nullptr); }

    LgStream& operator<<(LgStream& (*manipulator)(LgStream&)) { return manipulator(*this); }

    LgStream& operator<<(std::ostream& (*manipulator)(std::ostream&)) = delete;

    /// What has not been taught does not compile: neither do wide texts, which would read as an
    /// address, nor the manipulators of `std::ostream`, which mean nothing here.
    template <class T, std::enable_if_t<!LgTaken::IsTaken<T>::value, int> = 0>
    LgStream& operator<<(const T&)
    {
        static_assert(LgTaken::IsTaken<T>::value,
                      "the log does not take values of this type; teach it with an operator: "
                      "Kr::LgStream& operator<<(Kr::LgStream&, const T&), see base/lgValues.h");
        return *this;
    }

    /// Ends the text and makes it visible to the consumer. `ends` calls it.
    void completeString();

    /// Whether there is no room for another character.
    bool isFull() const noexcept;

    /// The free room in characters.
    unsigned int getNumCharacters() const noexcept;

    /// The longest text that fits with its terminator whatever the state of an emptied ring.
    static constexpr unsigned int getMaxSize() noexcept { return defaultRingSize - 2; }

    void resetOutputFlags() noexcept { clearFlags(TextWritten | StringCompleted); }
    unsigned int getOutputFlags() const noexcept
    {
        return _flags & (TextWritten | StringCompleted);
    }

    // The consumer's side

    /// The length of the next text, without its terminator; 0 if there is none.
    unsigned int getNextSize() const noexcept;

    /// Takes the next text: copies it, with a terminator, to a buffer of at least
    /// `getNextSize() + 1` characters. An empty text if there is none.
    LgStream& operator>>(char* buffer) noexcept;

    // For either side

    /// Whether anything was cut since the consumer last took a text.
    bool hasOverflowed() const noexcept { return _overflowed.load(std::memory_order_relaxed); }

private:
    friend class LgQueue;
    friend class LgKeptRings;

    /// Frees a ring, unless it is somebody else's.
    struct RingDelete
    {
        void operator()(char* ring) const noexcept
        {
            if (!isBorrowed)
                delete[] ring;
        }
        bool isBorrowed; // false unless it is said
    };

    static constexpr unsigned int defaultRingSize = 32768;
    static constexpr std::size_t cacheLineSize = 64;
    /// Room in which every integer, and every double below 2^64, can be written.
    static constexpr unsigned int numberRoom = 32;

    /// What else `_flags` tells.
    enum InnerFlags : unsigned int
    {
        Published = 4, ///< the message's text is visible to the consumer
        Cut = 8,       ///< something of the message was cut
        HalfFull = 16, ///< no more than half of the ring is free
        FromKept = 32, ///< the message may take room that less severe ones may not
    };

    /// A message is a text that an entry of a queue announces. Texts and entries must agree in
    /// number, so a message never makes more than one text.
    enum class Message
    {
        None,
        Open,
        Closed
    };

    LgStream& append(const char* text, std::size_t length)
    {
        // An empty text takes the long way, as does every text that may not fit.
        if (length - 1 < _room)
            copyIn(text, static_cast<unsigned int>(length));
        else
            appendTight(text, length);
        return *this;
    }
    void setFlags(unsigned int flags) noexcept
    {
        _flags = static_cast<std::uint8_t>(_flags | flags);
    }
    void clearFlags(unsigned int flags) noexcept
    {
        _flags = static_cast<std::uint8_t>(_flags & ~flags);
    }
    inline void copyIn(const char* text, unsigned int length) noexcept;
    void appendTight(const char* text, std::size_t length) noexcept;
    void cutAll() noexcept;
    template <class Value>
    inline LgStream& appendNumber(Value value);

    inline void publish() noexcept;
    void publishTight() noexcept;
    inline void stepOverTerminator() noexcept;

    /// What `LgQueue` calls around a message. The rank is the level that counts where room is
    /// kept for severe messages: "Internal Error" takes all that there is.
    bool hasRoom(LgTypes::Level rank) noexcept { return hasSeenRoom(rank) || updateRoom(); }
    bool hasSeenRoom(LgTypes::Level rank) noexcept
    {
        _rank = rank;
        return _room != 0;
    }
    inline void beginMessage() noexcept;
    inline bool endOrdinaryMessage() noexcept;
    void endMessage() noexcept;
    bool isCut() const noexcept { return (_flags & Cut) != 0; }
    bool takeHalfFull() noexcept;
    void returnKept() noexcept;

    /// How much of a ring of that size messages of the rank leave to severer ones, and how much the
    /// least severe do.
    static unsigned int getKept(unsigned int ringSize, LgTypes::Level rank) noexcept;
    static unsigned int getMostKept(unsigned int ringSize, LgTypes::Level rank) noexcept;

    bool updateRoom() noexcept;
    unsigned int getUsable(unsigned int room) const noexcept;
    void takeWholeRoom(unsigned int room) noexcept;
    unsigned int getRoom(unsigned int readPosition) const noexcept;
    unsigned int findStart(unsigned int readPosition) const noexcept;
    unsigned int findEnd(unsigned int start, unsigned int committed) const noexcept;

    /// What `LgQueue` calls to give back the room of what was read.
    void holdBack() noexcept { _holdsBack = true; }
    void release() noexcept { _readPosition.store(_nextPosition, std::memory_order_release); }

    // Both sides read these: positions count modulo the ring's size.
    std::unique_ptr<char[], RingDelete> _buffer;
    unsigned int _mask; // the ring's size less 1

    // The consumer writes these: up to where there is room again ...
    alignas(cacheLineSize) std::atomic<unsigned int> _readPosition{0};
    unsigned int _nextPosition = 0; // ... and up to where it has read, the same if it holds nothing
    bool _stringRead = false;       // that stands on the terminator of a text
    bool _holdsBack = false;

    // ... and the producer these.
    alignas(cacheLineSize) std::atomic<unsigned int> _committedPosition{0};
    unsigned int _writePosition = 0;
    unsigned int _room;      // what may be stored without another look at the read position
    std::uint8_t _flags = 0; // read as wide as it is written, or the processor waits
    bool _pendingAdvance = false;
    Message _message = Message::None;
    LgTypes::Level _rank = LgTypes::InternalError;

    std::atomic<bool> _overflowed{false};
};

/// Ends the current text: `stream << "done" << Kr::ends`.
inline LgStream& ends(LgStream& stream)
{
    stream.completeString();
    return stream;
}

inline void LgStream::copyIn(const char* text, unsigned int length) noexcept
{
    const unsigned int toEnd = _mask + 1 - _writePosition;
    char* const to = _buffer.get() + _writePosition;
    if (length < toEnd)
    {
        std::memcpy(to, text, length);
    }
    else
    {
        std::memcpy(to, text, toEnd);
        std::memcpy(_buffer.get(), text + toEnd, length - toEnd);
    }
    _writePosition = (_writePosition + length) & _mask;
    _room -= length;
    setFlags(TextWritten);
}

inline void LgStream::publish() noexcept
{
    _buffer[_writePosition] = '\0';
    _committedPosition.store(_writePosition, std::memory_order_release);
    setFlags(static_cast<unsigned int>(StringCompleted) | Published);
    if (_room != 0)
        stepOverTerminator();
    else
        publishTight();
}

inline void LgStream::stepOverTerminator() noexcept
{
    _writePosition = (_writePosition + 1) & _mask;
    --_room;
}

/// That the ring is half full is told with the message.
inline void LgStream::beginMessage() noexcept
{
    clearFlags(~(static_cast<unsigned int>(HalfFull) | FromKept));
    _message = Message::Open;
}

/// Ends a message to which nothing special has happened; else returns false.
inline bool LgStream::endOrdinaryMessage() noexcept
{
    if (_flags != TextWritten || _room == 0)
        return false;
    publish();
    _message = Message::None;
    return true;
}

/// Writes straight into the ring where it has room for any number, else by way of a copy.
template <class Value>
inline LgStream& LgStream::appendNumber(Value value)
{
    if (_room >= numberRoom && _writePosition + numberRoom <= _mask)
    {
        char* const to = _buffer.get() + _writePosition;
        const auto length = static_cast<unsigned int>(LgFormat::write(to, value) - to);
        _writePosition += length;
        _room -= length;
        setFlags(TextWritten);
        return *this;
    }
    char text[numberRoom];
    return append(text, static_cast<std::size_t>(LgFormat::write(text, value) - text));
}

} // namespace Kr
