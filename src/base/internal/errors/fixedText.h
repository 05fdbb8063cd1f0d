#pragma once

/// @file
/// Texts in arrays of fixed size, built without allocating.

#include <cstddef>
#include <cstring>

namespace Kr
{

/// A caller's text, or the empty one for null.
inline const char* orEmpty(const char* text) noexcept
{
    return text != nullptr ? text : "";
}

/// Collects a text in an array. What does not fit is cut; there is always a terminator.
class FixedText
{
public:
    /// @param size the array's, the terminator included; at least 1
    FixedText(char* array, std::size_t size) noexcept
        : _begin(array)
        , _end(array)
        , _room(size - 1)
    {
        *_end = '\0';
    }

    void append(const char* text, std::size_t length) noexcept
    {
        const std::size_t taken = length < _room ? length : _room;
        std::memcpy(_end, text, taken);
        _end += taken;
        _room -= taken;
        *_end = '\0';
    }

    void append(const char* text) noexcept { append(text, std::strlen(text)); }

    std::size_t getLength() const noexcept { return static_cast<std::size_t>(_end - _begin); }

private:
    char* const _begin;
    char* _end;
    std::size_t _room;
};

} // namespace Kr
