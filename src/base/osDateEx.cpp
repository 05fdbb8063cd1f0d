#include <base/osDateEx.h>

#include <cstdio>

namespace Kr
{

OsDateEx::OsDateEx(const char* file, int line) noexcept
    : ExBase(file, line)
{
}

OsDateEx::ExInvalidDate::ExInvalidDate(const char* file, int line, int year, int month, int day,
                                       int hour, int minute, double seconds)
    : ExConcrete(file, line)
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason, "Invalid date: %d-%d-%d %d:%d:%g.", year, month, day, hour,
                  minute, seconds);
    setReason(reason);
}

OsDateEx::ExInvalidFormat::ExInvalidFormat(const char* file, int line, const char* format)
    : ExConcrete(file, line)
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason, "Invalid date format: '%.256s'.", format);
    setReason(reason);
}

} // namespace Kr
