#include "logJson.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>

namespace KrLog
{

namespace
{

constexpr char hexDigits[] = "0123456789abcdef";

void appendUtf8(std::string& text, std::uint32_t point)
{
    const auto append = [&text](std::uint32_t byte) { text += static_cast<char>(byte); };
    const auto continuation = [&](int shift) { append(0x80 | ((point >> shift) & 0x3F)); };
    if (point < 0x80)
    {
        append(point);
    }
    else if (point < 0x800)
    {
        append(0xC0 | (point >> 6));
        continuation(0);
    }
    else
    {
        append(point < 0x10000 ? 0xE0 | (point >> 12) : 0xF0 | (point >> 18));
        if (point >= 0x10000)
            continuation(12);
        continuation(6);
        continuation(0);
    }
}

/// Reads a text of JSON from its beginning on.
class Reading
{
public:
    explicit Reading(std::string_view text)
        : _rest(text)
    {
    }

    bool take(char c)
    {
        skipBlanks();
        if (_rest.empty() || _rest.front() != c)
            return false;
        _rest.remove_prefix(1);
        return true;
    }

    bool isAtEnd()
    {
        skipBlanks();
        return _rest.empty();
    }

    bool takeString(std::string& value)
    {
        value.clear();
        if (!take('"'))
            return false;
        while (!_rest.empty() && _rest.front() != '"')
        {
            const char c = _rest.front();
            _rest.remove_prefix(1);
            if (c != '\\')
                value += c;
            else if (!takeEscape(value))
                return false;
        }
        return take('"');
    }

    /// A string, a number or a literal.
    bool takeValue(std::string& value)
    {
        skipBlanks();
        if (!_rest.empty() && _rest.front() == '"')
            return takeString(value);
        value = _rest.substr(0, _rest.find_first_of(", \t}"));
        _rest.remove_prefix(value.size());
        return !value.empty() && value.find_first_of("{[\"") == value.npos;
    }

private:
    void skipBlanks()
    {
        _rest.remove_prefix(std::min(_rest.find_first_not_of(" \t\r"), _rest.size()));
    }

    bool takeEscape(std::string& value)
    {
        constexpr std::string_view letters = "\"\\/bfnrt";
        constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
        if (_rest.empty())
            return false;
        const char letter = _rest.front();
        _rest.remove_prefix(1);
        if (letter == 'u')
            return takeCodePoint(value);
        const std::size_t at = letters.find(letter);
        if (at == letters.npos)
            return false;
        value += meanings[at];
        return true;
    }

    bool takeHex(std::uint32_t& unit)
    {
        if (_rest.size() < 4)
            return false;
        const char* const end = _rest.data() + 4;
        const auto [stop, error] = std::from_chars(_rest.data(), end, unit, 16);
        _rest.remove_prefix(4);
        return stop == end && error == std::errc();
    }

    bool takeCodePoint(std::string& value)
    {
        std::uint32_t point = 0;
        if (!takeHex(point))
            return false;
        if (point >= 0xD800 && point < 0xDC00)
        {
            std::uint32_t low = 0;
            if (_rest.substr(0, 2) != "\\u")
                return false;
            _rest.remove_prefix(2);
            if (!takeHex(low) || low < 0xDC00 || low > 0xDFFF)
                return false;
            point = 0x10000 + ((point - 0xD800) << 10) + (low - 0xDC00);
        }
        if (point >= 0xDC00 && point < 0xE000)
            return false;
        appendUtf8(value, point);
        return true;
    }

    std::string_view _rest;
};

/// The length of the well-formed UTF-8 sequence at the start of the text, or 0.
std::size_t sequenceLength(std::string_view text)
{
    const auto byte = [text](std::size_t i)
    { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
    const unsigned lead = byte(0);
    const std::size_t length = lead < 0x80                    ? 1
                               : lead >= 0xC2 && lead <= 0xDF ? 2
                               : lead >= 0xE0 && lead <= 0xEF ? 3
                               : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                              : 0;
    // Overlong forms, surrogates, and what lies behind the last code point.
    if ((lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xED && byte(1) > 0x9F) ||
        (lead == 0xF0 && byte(1) < 0x90) || (lead == 0xF4 && byte(1) > 0x8F))
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
    return length;
}

/// Also those behind U+007F, which come as two bytes.
bool isControl(std::string_view sequence)
{
    const auto first = static_cast<unsigned char>(sequence.front());
    return sequence.size() == 1 ? first < 0x20 || first == 0x7F
                                : first == 0xC2 && static_cast<unsigned char>(sequence[1]) < 0xA0;
}

void appendHex(std::string& line, const char* prefix, unsigned byte)
{
    line += prefix;
    line += hexDigits[byte >> 4 & 15];
    line += hexDigits[byte & 15];
}

/// The letter behind the backslash of a character that has one, or 0.
char escapeLetter(char c)
{
    const std::size_t at = std::string_view("\n\r\t").find(c);
    return at != std::string_view::npos ? "nrt"[at] : '\0';
}

/// Appends the text with an escape in the place of each control character, of each byte that is not
/// UTF-8, and of what else is `special`.
void appendEscaped(std::string& line, std::string_view text, const char* hexPrefix,
                   std::string_view special)
{
    while (!text.empty())
    {
        const std::size_t length = sequenceLength(text);
        const std::string_view sequence = text.substr(0, length == 0 ? 1 : length);
        const char c = sequence.front();
        if (const char letter = escapeLetter(c))
            line.append({'\\', letter});
        else if (special.find(c) != special.npos)
            line.append({'\\', c});
        else if (length == 0 || isControl(sequence))
            appendHex(line, hexPrefix, static_cast<unsigned char>(sequence.back()));
        else
            line += sequence;
        text.remove_prefix(sequence.size());
    }
}

} // namespace

bool readObject(std::string_view text,
                const std::function<void(const std::string&, const std::string&)>& take)
{
    Reading reading(text);
    if (!reading.take('{'))
        return false;
    std::string name;
    std::string value;
    do
    {
        if (!reading.takeString(name) || !reading.take(':') || !reading.takeValue(value))
            return false;
        take(name, value);
    } while (reading.take(','));
    return reading.take('}') && reading.isAtEnd();
}

void appendJson(std::string& line, std::string_view text)
{
    line += '"';
    appendEscaped(line, text, "\\u00", "\"\\");
    line += '"';
}

void appendVisible(std::string& line, std::string_view text)
{
    appendEscaped(line, text, "\\x", "");
}

} // namespace KrLog
