#pragma once

/// @file
/// What the log takes beside plain values, and how it is taught to take more.
/// @code{.cpp}
/// struct Colour
/// {
///     float red, green, blue;
/// };
///
/// Kr::LgStream& operator<<(Kr::LgStream& stream, const Colour& colour)
/// {
///     return stream << '(' << colour.red << ' ' << colour.green << ' ' << colour.blue << ')';
/// }
///
/// void paint(const Kr::LgMinorGroup& group, const Colour& colour)
/// {
///     KR_LOG(group, Tracing) << "painting in " << colour; // (0.500000 0.250000 0.000000)
/// }
/// @endcode
/// The operator stands in the namespace of its type, where the compiler looks for it; for a type
/// that is not yours, such as `std::vector<Colour>`, in `Kr`. It serves derived types, too. It must
/// be declared before the statement that needs it.
///
/// | type | text |
/// |---|---|
/// | exceptions, `std::exception` and `ExBase` | the reason |
/// | `std::chrono::duration` | the count and its unit: 250ms |
/// | `std::thread::id` | the standard library's number |
/// | `Rational`, `DtTime`, `DtRefTime`, `DtTimeMark`, profilers, `ProfConsolidator`,
/// `ProfHistogram`, `PrCounter`, `PrQuery` | as in a `std::ostream` of its own, whatever the locale
/// |
///
/// Pitfalls: what the last two lines name is formatted in the statement by a `std::ostream`, which
/// takes a microsecond where a number takes nanoseconds. A duration in floating point has six
/// decimals, as every number of the log.

#include <base/exBase.h>
#include <base/krBaseApi.h>
#include <base/lgStream.h>

#include <chrono>
#include <exception>
#include <thread>
#include <type_traits>

namespace Kr
{

class DtRefTime;
class DtTime;
class DtTimeMark;
class PrCounter;
class PrQuery;
class ProfConsolidator;
class ProfHistogram;
class Rational;

/// The reason of a `std::exception`, or else of an `ExBase`: most of the library's are both.
template <class Exception,
          std::enable_if_t<std::is_convertible_v<const Exception*, const std::exception*> ||
                               std::is_convertible_v<const Exception*, const ExBase*>,
                           int> = 0>
LgStream& operator<<(LgStream& stream, const Exception& exception)
{
    if constexpr (std::is_convertible_v<const Exception*, const ExBase*>)
        return stream << static_cast<const ExBase&>(exception).getReason();
    else
        return stream << static_cast<const std::exception&>(exception).what();
}

/// Writes the unit of a duration whose count is in so many seconds: "ms", or "[1/24]s".
KR_BASE_API LgStream& insertUnit(LgStream& stream, long long numerator, long long denominator);

template <class Count, class Period>
LgStream& operator<<(LgStream& stream, const std::chrono::duration<Count, Period>& duration)
{
    return insertUnit(stream << duration.count(), Period::num, Period::den);
}

KR_BASE_API LgStream& operator<<(LgStream& stream, const std::thread::id& thread);

KR_BASE_API LgStream& operator<<(LgStream& stream, const DtRefTime& time);
KR_BASE_API LgStream& operator<<(LgStream& stream, const DtTime& time);
KR_BASE_API LgStream& operator<<(LgStream& stream, const DtTimeMark& mark);
KR_BASE_API LgStream& operator<<(LgStream& stream, const PrCounter& counter);
KR_BASE_API LgStream& operator<<(LgStream& stream, const PrQuery& query);
KR_BASE_API LgStream& operator<<(LgStream& stream, const ProfConsolidator& consolidator);
KR_BASE_API LgStream& operator<<(LgStream& stream, const ProfHistogram& histogram);
KR_BASE_API LgStream& operator<<(LgStream& stream, const Rational& value);

} // namespace Kr
