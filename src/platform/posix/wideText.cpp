#include <platform/posix/wideText.h>

#include <platform/platform.h>

#include <algorithm>
#include <cstdint>
#include <new>

namespace
{

constexpr char32_t malformed = 0xFFFFFFFF;
constexpr char32_t firstSupplementary = 0x10000;

bool isSurrogate(char32_t code)
{
    return code >= 0xD800 && code <= 0xDFFF;
}

/// Takes a character off the text's begin.
char32_t takeNarrow(std::string_view& text)
{
    static constexpr char32_t least[] = {0, 0x80, 0x800, firstSupplementary};
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t more = first < 0x80 ? 0 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
    if ((first >= 0x80 && first < 0xC2) || first > 0xF4 || text.size() <= more)
        return malformed;
    char32_t code = more == 0 ? first : first & (0x3FU >> more);
    for (std::size_t i = 1; i <= more; ++i)
    {
        const auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xC0U) != 0x80)
            return malformed;
        code = code << 6 | (next & 0x3FU);
    }
    if (code < least[more] || code > 0x10FFFF || isSurrogate(code))
        return malformed;
    text.remove_prefix(more + 1);
    return code;
}

char32_t takeWide(std::u16string_view& wide)
{
    const char32_t code = wide.front();
    wide.remove_prefix(1);
    if (!isSurrogate(code))
        return code;
    const bool isLow = code >= 0xDC00;
    if (isLow || wide.empty() || wide.front() < 0xDC00 || wide.front() > 0xDFFF)
        return malformed;
    const char32_t low = wide.front();
    wide.remove_prefix(1);
    return firstSupplementary + ((code - 0xD800) << 10) + (low - 0xDC00);
}

void putWide(char32_t code, std::u16string& wide)
{
    if (code < firstSupplementary)
    {
        wide += static_cast<char16_t>(code);
        return;
    }
    wide += static_cast<char16_t>(0xD800 + ((code - firstSupplementary) >> 10));
    wide += static_cast<char16_t>(0xDC00 + (code & 0x3FFU));
}

void putNarrow(char32_t code, std::string& text)
{
    const auto tail = [&](unsigned shift)
    { text += static_cast<char>(0x80U | ((code >> shift) & 0x3FU)); };
    if (code < 0x80)
        text += static_cast<char>(code);
    else if (code < 0x800)
        text += static_cast<char>(0xC0U | code >> 6);
    else if (code < firstSupplementary)
        text += static_cast<char>(0xE0U | code >> 12);
    else
        text += static_cast<char>(0xF0U | code >> 18);
    if (code >= firstSupplementary)
        tail(12);
    if (code >= 0x800)
        tail(6);
    if (code >= 0x80)
        tail(0);
}

int refuse(DWORD error)
{
    SetLastError(error);
    return 0;
}

/// Does what the two calls have in common.
template <class From, class To>
int convert(UINT page, const From* from, int length, To* to, int size,
            bool (*change)(std::basic_string_view<From>, std::basic_string<To>&)) noexcept
{
    if (page != CP_UTF8 || from == nullptr || length <= 0 || size < 0)
        return refuse(ERROR_INVALID_PARAMETER);
    try
    {
        std::basic_string<To> changed;
        if (!change({from, static_cast<std::size_t>(length)}, changed))
            return refuse(ERROR_NO_UNICODE_TRANSLATION);
        const int needed = static_cast<int>(changed.size());
        if (size != 0 && needed > size)
            return refuse(ERROR_INSUFFICIENT_BUFFER);
        if (size != 0)
            std::copy(changed.begin(), changed.end(), to);
        return needed;
    }
    catch (const std::bad_alloc&)
    {
        return refuse(ERROR_NOT_ENOUGH_MEMORY);
    }
}

} // namespace

bool krWiden(std::string_view text, std::u16string& wide)
{
    wide.reserve(wide.size() + text.size());
    while (!text.empty())
    {
        const char32_t code = takeNarrow(text);
        if (code == malformed)
            return false;
        putWide(code, wide);
    }
    return true;
}

bool krNarrow(std::u16string_view wide, std::string& text)
{
    text.reserve(text.size() + wide.size());
    while (!wide.empty())
    {
        const char32_t code = takeWide(wide);
        if (code == malformed)
            return false;
        putNarrow(code, text);
    }
    return true;
}

int MultiByteToWideChar(UINT page, DWORD, const char* text, int length, WCHAR* wide,
                        int size) noexcept
{
    return convert(page, text, length, wide, size, krWiden);
}

int WideCharToMultiByte(UINT page, DWORD, const WCHAR* wide, int length, char* text, int size,
                        const char*, BOOL*) noexcept
{
    return convert(page, wide, length, text, size, krNarrow);
}
