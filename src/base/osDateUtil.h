#pragma once

/// @file
/// Making, converting, comparing and formatting dates.
/// @code
/// using Kr::OsDateTypes;
/// using Kr::OsDateUtil;
///
/// OsDateTypes::DateRep release;
/// OsDateUtil::makeTime(2026, 11, 21, 14, 3, 9.5, OsDateTypes::LocalTime, release);
/// std::cout << OsDateUtil::format(release, "%A %d %B %Y, %H:%M:%S.%f") << '\n';
/// if (OsDateUtil::getCurrentTime(OsDateTypes::UniversalTime) < release)
///     std::cout << "not yet\n";
/// @endcode
/// Everything counts in the Gregorian calendar; only the time zone is the system's. Pitfall: a
/// local time that a change of the clocks leaves out or repeats is one of two moments, which the
/// system chooses; dates that were converted from universal time keep the right one.

#include <base/krBaseApi.h>
#include <base/osDateTypes.h>

#include <chrono>
#include <cstdint>
#include <string>

namespace Kr
{

class KR_BASE_API OsDateUtil
{
public:
    using TimePoint = std::chrono::time_point<std::chrono::system_clock, std::chrono::microseconds>;

    /// Sets `rep` from calendar fields. Raises `OsDateEx::ExInvalidDate`, and leaves `rep` as it
    /// was, if a field is out of its range (see `DateRep`); `ExSysErrorWindows` if the system
    /// cannot place a local time.
    static void makeTime(int year, int month, int day, int hour, int minute, double seconds,
                         OsDateTypes::TimeMode mode, OsDateTypes::DateRep& rep);

    static OsDateTypes::DateRep getCurrentTime(OsDateTypes::TimeMode mode);

    /// The same moment in the other mode.
    static OsDateTypes::DateRep convert(const OsDateTypes::DateRep& date,
                                        OsDateTypes::TimeMode mode);

    /// The moment for `std::chrono`, to the nearest microsecond, and back.
    static TimePoint getTimePoint(const OsDateTypes::DateRep& date);
    static OsDateTypes::DateRep fromTimePoint(TimePoint time, OsDateTypes::TimeMode mode);

    /// Negative, zero or positive: which of the moments is the earlier.
    static int compare(const OsDateTypes::DateRep& lhs, const OsDateTypes::DateRep& rhs) noexcept;

    /// Replaces the conversions in the text, which mean what they do for `std::strftime` in the "C"
    /// locale: %Y %m %d %H %M %S %y %j %a %A %b %B %F %T %%; and %z, which gives "Z" for universal
    /// time and "+hh:mm" for a local one, and %f, the microseconds in six digits. Raises
    /// `OsDateEx::ExInvalidFormat` for any other, and `ExInternalError` for a null pointer.
    static std::string format(const OsDateTypes::DateRep& date, const char* text);

    static bool isLeapYear(int year) noexcept;
    static int getDaysInMonth(int year, int month) noexcept;      ///< 0 if there is no such month
    static int getWeekDay(int year, int month, int day) noexcept; ///< 0 is Sunday
    static int getYearDay(int year, int month, int day) noexcept; ///< 1 is the first of January

private:
    static OsDateTypes::DateRep fromMicroseconds(std::int64_t microseconds) noexcept;

    // The system's part (osDateUtilWindows)
    static std::int64_t performGetCurrentTime() noexcept;          ///< microseconds since 1970, UTC
    static int performGetOffset(const OsDateTypes::DateRep& date); ///< of its fields' moment
};

} // namespace Kr
