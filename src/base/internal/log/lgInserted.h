#pragma once

/// @file
/// Internal to the library: values as a `std::ostream` writes them, straight into a message.

#include <base/lgStream.h>

#include <locale>
#include <ostream>
#include <streambuf>

namespace Kr
{

/// Appends what it is given to the stream of a message.
class LgStreamBuffer : public std::streambuf
{
public:
    explicit LgStreamBuffer(LgStream& stream)
        : _stream(stream)
    {
    }

private:
    int_type overflow(int_type character) override
    {
        if (!traits_type::eq_int_type(character, traits_type::eof()))
            _stream << traits_type::to_char_type(character);
        return traits_type::not_eof(character);
    }

    std::streamsize xsputn(const char* text, std::streamsize size) override
    {
        _stream << std::string_view(text, static_cast<std::size_t>(size));
        return size;
    }

    LgStream& _stream;
};

/// Inserts the value with so many digits, whatever the locale.
template <class Value>
LgStream& insertAsInOstream(LgStream& stream, const Value& value, int precision = 6)
{
    LgStreamBuffer buffer(stream);
    std::ostream os(&buffer);
    os.imbue(std::locale::classic());
    os.precision(precision);
    os << value;
    return stream;
}

} // namespace Kr
