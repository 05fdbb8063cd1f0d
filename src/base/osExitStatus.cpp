#include <base/osExitStatus.h>

#include <platform/exitCodes.h>

#include <cstdio>
#include <ostream>

namespace Kr
{

namespace
{

struct CodeText
{
    std::uint32_t code;
    const char* text;
};

constexpr CodeText codeTexts[] = {
    {0x80000003, "breakpoint"},           {0xC0000005, "bad memory access"},
    {0xC0000006, "bad memory page"},      {0xC000001D, "illegal instruction"},
    {0xC0000094, "division by zero"},     {0xC00000FD, "stack overflow"},
    {0xC0000135, "a library is missing"}, {0xC000013A, "interrupted"},
    {0xC0000374, "damaged heap"},         {0xC0000409, "aborted"},
    {krKilled, "ended by force"},
};

constexpr std::uint32_t firstAbnormal = 0x80000000;
constexpr std::uint32_t signalMask = 0xFFFF;

} // namespace

OsExitStatus::OsExitStatus(std::uint32_t code) noexcept
    : _code(code)
{
}

/// The codes of warnings and errors of the system; programs that return negative numbers have codes
/// above all of them.
bool OsExitStatus::isAbnormal() const noexcept
{
    constexpr std::uint32_t firstNegative = 0xF0000000;
    return _code >= firstAbnormal && _code < firstNegative;
}

bool OsExitStatus::isTerminated() const noexcept
{
    return _code == krKilled;
}

std::string OsExitStatus::getText() const
{
    char text[64];
    for (const CodeText& entry : codeTexts)
    {
        if (entry.code != _code)
            continue;
        std::snprintf(text, sizeof text, "%s (0x%08lX)", entry.text,
                      static_cast<unsigned long>(_code));
        return text;
    }
    if ((_code & ~signalMask) == krSignalCode)
        std::snprintf(text, sizeof text, "signal %lu",
                      static_cast<unsigned long>(_code & signalMask));
    else if (isAbnormal())
        std::snprintf(text, sizeof text, "exception 0x%08lX", static_cast<unsigned long>(_code));
    else
        std::snprintf(text, sizeof text, "exit status %ld",
                      static_cast<long>(static_cast<std::int32_t>(_code)));
    return text;
}

std::ostream& operator<<(std::ostream& stream, OsExitStatus status)
{
    return stream << status.getText();
}

} // namespace Kr
