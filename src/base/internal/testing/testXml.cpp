#include <base/internal/testing/testXml.h>

#include <cstdint>
#include <cstdio>

namespace Kr
{

namespace
{

bool isAllowed(std::uint32_t character)
{
    if (character < 0x20)
        return character == '\t' || character == '\n' || character == '\r';
    return character != 0x7f && (character < 0xd800 || character > 0xdfff) && character != 0xfffe &&
           character != 0xffff && character <= 0x10ffff;
}

std::string escapeCharacter(std::string_view character)
{
    switch (character[0])
    {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\n':
        return "&#10;"; // a plain one in an attribute reads as a blank
    case '\r':
        return "&#13;";
    case '\t':
        return "&#9;";
    default:
        return std::string(character);
    }
}

} // namespace

std::string TestXml::escape(std::string_view text)
{
    std::string escaped;
    while (!text.empty())
    {
        std::size_t length = getCharacterLength(text);
        if (length > 0)
            escaped += escapeCharacter(text.substr(0, length));
        else
        {
            char code[8];
            std::snprintf(code, sizeof code, "\\x%02x", static_cast<unsigned char>(text[0]));
            escaped += code;
            length = 1;
        }
        text.remove_prefix(length);
    }
    return escaped;
}

std::size_t TestXml::getCharacterLength(std::string_view text) noexcept
{
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80)
        return isAllowed(lead) ? 1 : 0;
    const std::size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
    if (lead < 0xc2 || lead > 0xf4 || text.size() < length)
        return 0;
    std::uint32_t character = lead & (0xffU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i)
    {
        const auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xc0) != 0x80)
            return 0;
        character = character << 6 | (next & 0x3fU);
    }
    constexpr std::uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000}; // no longer form of a lower one
    return character >= least[length] && isAllowed(character) ? length : 0;
}

} // namespace Kr
