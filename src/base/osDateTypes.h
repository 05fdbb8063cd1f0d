#pragma once

/// @file
/// A date with its time of day. `OsDateUtil` makes, converts and formats it.
/// @code
/// // base/osDateUtil.h
/// const auto now = Kr::OsDateUtil::getCurrentTime(Kr::OsDateTypes::LocalTime);
/// std::cout << now.getYear() << ", day " << now.getDay() << '\n' << now << '\n';
/// @endcode

#include <base/krBaseApi.h>

#include <cstdint>
#include <iosfwd>

namespace Kr
{

struct OsDateTypes
{
    enum TimeMode
    {
        LocalTime = 0,    ///< of the process's time zone, by the rules in force at that date
        UniversalTime = 1 ///< UTC
    };

    /// Calendar fields of the Gregorian calendar, and how far they are from universal time: so a
    /// date is one moment, also in the hour that a change of the clocks repeats.
    class KR_BASE_API DateRep
    {
    public:
        DateRep() noexcept; ///< 1970-01-01 00:00:00 UTC

        int getYear() const noexcept;       ///< 1601 to 30827
        int getMonth() const noexcept;      ///< 1 to 12
        int getDay() const noexcept;        ///< 1 to 31
        int getHour() const noexcept;       ///< 0 to 23
        int getMinute() const noexcept;     ///< 0 to 59
        double getSeconds() const noexcept; ///< 0 to below 60
        TimeMode getMode() const noexcept;
        int getUtcOffset() const noexcept; ///< minutes ahead of universal time
        int getWeekDay() const noexcept;   ///< 0 is Sunday
        int getYearDay() const noexcept;   ///< 1 is the first of January

        /// Negative, zero or positive: which of the moments is the earlier, to the microsecond.
        int compare(const DateRep& other) const noexcept;

    private:
        friend class OsDateUtil;

        std::int64_t getMicroseconds() const noexcept; ///< since 1970-01-01 00:00 UTC

        std::int32_t _year = 1970;
        std::int32_t _month = 1;
        std::int32_t _day = 1;
        std::int32_t _hour = 0;
        std::int32_t _minute = 0;
        std::int32_t _utcOffset = 0;
        double _seconds = 0.;
        TimeMode _mode = UniversalTime;
    };
};

// By the moments that they are, whatever their mode.
inline bool operator==(const OsDateTypes::DateRep& lhs, const OsDateTypes::DateRep& rhs) noexcept
{
    return lhs.compare(rhs) == 0;
}
inline bool operator!=(const OsDateTypes::DateRep& lhs, const OsDateTypes::DateRep& rhs) noexcept
{
    return lhs.compare(rhs) != 0;
}
inline bool operator<(const OsDateTypes::DateRep& lhs, const OsDateTypes::DateRep& rhs) noexcept
{
    return lhs.compare(rhs) < 0;
}
inline bool operator<=(const OsDateTypes::DateRep& lhs, const OsDateTypes::DateRep& rhs) noexcept
{
    return lhs.compare(rhs) <= 0;
}
inline bool operator>(const OsDateTypes::DateRep& lhs, const OsDateTypes::DateRep& rhs) noexcept
{
    return lhs.compare(rhs) > 0;
}
inline bool operator>=(const OsDateTypes::DateRep& lhs, const OsDateTypes::DateRep& rhs) noexcept
{
    return lhs.compare(rhs) >= 0;
}

/// As ISO 8601 has it, in whole seconds: "2026-11-21T14:03:09+01:00", "2026-11-21T13:03:09Z".
KR_BASE_API std::ostream& operator<<(std::ostream& stream, const OsDateTypes::DateRep& date);

} // namespace Kr
