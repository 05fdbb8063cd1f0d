#include <base/internal/log/lgLineText.h>

namespace Kr
{

namespace
{

constexpr char hexDigits[] = "0123456789abcdef";

/// The letter after the backslash, or 0 for a character that has none.
char escapeLetter(char c)
{
    switch (c)
    {
    case '\n':
        return 'n';
    case '\r':
        return 'r';
    case '\t':
        return 't';
    default:
        return '\0';
    }
}

} // namespace

void LgLineText::appendEscape(std::string& line, char c, const char* numberPrefix)
{
    line += '\\';
    if (const char letter = escapeLetter(c))
    {
        line += letter;
        return;
    }
    const auto byte = static_cast<unsigned char>(c);
    line += numberPrefix;
    line += hexDigits[byte >> 4];
    line += hexDigits[byte & 15];
}

} // namespace Kr
