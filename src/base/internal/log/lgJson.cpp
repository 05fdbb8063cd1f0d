#include <base/internal/log/lgJson.h>

#include <base/internal/log/lgLineText.h>

namespace Kr
{

namespace
{

constexpr auto isSpecial = [](char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return LgLineText::isControl(c) || byte >= 0x80 || c == '"' || c == '\\';
};

bool isContinuation(unsigned char c)
{
    return (c & 0xC0) == 0x80;
}

/// The length of the well-formed UTF-8 sequence of several bytes at the start of the text, or 0.
std::size_t sequenceLength(std::string_view text)
{
    const auto byte = [text](std::size_t i)
    { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
    const unsigned lead = byte(0);
    const unsigned second = byte(1);
    const std::size_t length = lead >= 0xC2 && lead <= 0xDF   ? 2
                               : lead >= 0xE0 && lead <= 0xEF ? 3
                               : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                              : 0;
    // Overlong forms, surrogates, and what lies behind the last code point.
    if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
        (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F))
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if (!isContinuation(static_cast<unsigned char>(byte(i))))
            return 0;
    return length;
}

/// Appends what stands at the head of the text, a character that JSON wants escaped or a sequence
/// of several bytes, and takes it off.
void appendSpecial(std::string& line, std::string_view& text)
{
    if (LgLineText::beginsWithHighControl(text))
    {
        LgLineText::appendEscape(line, text[1], "u00");
        text.remove_prefix(2);
        return;
    }
    const char c = text.front();
    const std::size_t length = static_cast<unsigned char>(c) < 0x80 ? 1 : sequenceLength(text);
    if (c == '"' || c == '\\')
        line += '\\';
    if (LgLineText::isControl(c) || length == 0)
        LgLineText::appendEscape(line, c, "u00");
    else
        line.append(text.data(), length);
    text.remove_prefix(length == 0 ? 1 : length);
}

} // namespace

void LgJson::appendString(std::string& line, std::string_view text)
{
    line += '"';
    for (LgLineText::appendPlain(line, text, isSpecial); !text.empty();
         LgLineText::appendPlain(line, text, isSpecial))
        appendSpecial(line, text);
    line += '"';
}

} // namespace Kr
