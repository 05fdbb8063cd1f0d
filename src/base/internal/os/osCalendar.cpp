#include <base/internal/os/osCalendar.h>

namespace Kr
{

namespace
{

constexpr std::int64_t yearsPerEra = 400;
constexpr std::int64_t daysPerEra = 146097;
constexpr std::int64_t daysBefore1970 = 719468; ///< from the first of March of the year 0

} // namespace

std::int64_t OsCalendar::floorDivide(std::int64_t value, std::int64_t divisor) noexcept
{
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

std::int64_t OsCalendar::getNumber(const Day& day) noexcept
{
    const std::int64_t year = day.month <= 2 ? day.year - 1 : day.year;
    const std::int64_t era = floorDivide(year, yearsPerEra);
    const std::int64_t yearOfEra = year - era * yearsPerEra;
    const std::int64_t dayOfYear = (153 * ((day.month + 9) % 12) + 2) / 5 + day.day - 1;
    const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * daysPerEra + dayOfEra - daysBefore1970;
}

OsCalendar::Day OsCalendar::getDay(std::int64_t number) noexcept
{
    const std::int64_t era = floorDivide(number + daysBefore1970, daysPerEra);
    const std::int64_t dayOfEra = number + daysBefore1970 - era * daysPerEra;
    const std::int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t shifted = (5 * dayOfYear + 2) / 153; // months since March
    const int month = static_cast<int>(shifted < 10 ? shifted + 3 : shifted - 9);
    const std::int64_t year = yearOfEra + era * yearsPerEra + (month <= 2 ? 1 : 0);
    return {static_cast<int>(year), month,
            static_cast<int>(dayOfYear - (153 * shifted + 2) / 5 + 1)};
}

int OsCalendar::getWeekDay(const Day& day) noexcept
{
    const std::int64_t number = getNumber(day) + 4; // 1970 began on a Thursday
    return static_cast<int>(number - 7 * floorDivide(number, 7));
}

int OsCalendar::getYearDay(const Day& day) noexcept
{
    return static_cast<int>(getNumber(day) - getNumber({day.year, 1, 1})) + 1;
}

} // namespace Kr
