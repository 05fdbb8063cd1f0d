#include <base/internal/errors/systemError.h>

#include <platform/platform.h>

#include <cstdio>

namespace Kr
{

namespace
{

/// The system ends its messages with a carriage return and a line feed.
void cutLineBreak(char* text, std::size_t length) noexcept
{
    for (std::size_t i = length; i > 0 && i + 2 > length; --i)
        if (text[i - 1] == '\r' || text[i - 1] == '\n')
            text[i - 1] = '\0';
}

} // namespace

void formatSystemError(unsigned long code, char* text, std::size_t size) noexcept
{
    const DWORD length =
        FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                       static_cast<DWORD>(code), 0, text, static_cast<DWORD>(size), nullptr);
    if (length == 0)
        std::snprintf(text, size, "Unknown system error %lu.", code);
    else
        cutLineBreak(text, length);
}

} // namespace Kr
