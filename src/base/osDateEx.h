#pragma once

/// @file
/// The exceptions of dates.
/// @code
/// try
/// {
///     Kr::OsDateTypes::DateRep date;
///     Kr::OsDateUtil::makeTime(2023, 2, 29, 0, 0, 0., Kr::OsDateTypes::UniversalTime, date);
/// }
/// catch (const Kr::OsDateEx::ExInvalidDate& error)
/// {
///     std::cerr << error.getReason() << '\n'; // Invalid date: 2023-2-29 0:0:0.
/// }
/// @endcode

#include <base/exBase.h>

namespace Kr
{

class KR_BASE_API OsDateEx : public ExBase
{
public:
    class ExInvalidDate;
    class ExInvalidFormat;

protected:
    OsDateEx(const char* file, int line) noexcept;
};

/// "Invalid date: 2023-2-29 0:0:0.": there is no such day or time, or its year is not from 1601 to
/// 30827.
class KR_BASE_API OsDateEx::ExInvalidDate
    : public ExConcrete<OsDateEx::ExInvalidDate, std::invalid_argument, OsDateEx>
{
public:
    ExInvalidDate(const char* file, int line, int year, int month, int day, int hour, int minute,
                  double seconds);
};

/// "Invalid date format: '%Q'.": a conversion that does not exist; the format is cut at 256
/// characters.
class KR_BASE_API OsDateEx::ExInvalidFormat
    : public ExConcrete<OsDateEx::ExInvalidFormat, std::invalid_argument, OsDateEx>
{
public:
    ExInvalidFormat(const char* file, int line, const char* format);
};

} // namespace Kr
