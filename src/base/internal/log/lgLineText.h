#pragma once

/// @file
/// Internal to the library: numbers and texts as the forms of a record write them, behind what the
/// line holds already.

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>

namespace Kr
{
namespace LgLineText
{

inline constexpr auto isControl = [](char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F;
};

/// Whether the text begins with one of the control characters U+0080 to U+009F, in UTF-8: its
/// second byte is the character's number. Terminals obey them as they do those below.
inline bool beginsWithHighControl(std::string_view text)
{
    return text.size() > 1 && text[0] == '\xC2' &&
           (static_cast<unsigned char>(text[1]) & 0xE0) == 0x80;
}

/// Appends the character's escape: a backslash and the letter that C has for it, or else
/// `numberPrefix` and two hexadecimal digits.
void appendEscape(std::string& line, char c, const char* numberPrefix);

/// Appends the characters up to the first one for which `isSpecial` holds, and takes them off.
template <class IsSpecial>
void appendPlain(std::string& line, std::string_view& text, IsSpecial isSpecial)
{
    const auto end = std::find_if(text.begin(), text.end(), isSpecial);
    const auto length = static_cast<std::size_t>(end - text.begin());
    line.append(text.data(), length);
    text.remove_prefix(length);
}

template <class Number>
void appendNumber(std::string& line, Number number)
{
    char digits[24];
    line.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

} // namespace LgLineText
} // namespace Kr
