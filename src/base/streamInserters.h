#pragma once

/// @file
/// Stream insertion of 64-bit integers as plain decimal, whatever base, sign or grouping the
/// stream is set to. The digits are inserted as one C string, so a field width applies to them as
/// to any text.
/// @code
/// const long long count = 255;
/// Kr::operator<<(std::cout << std::hex, count) << '\n'; // decimal all the same
/// @endcode
///
/// Pitfall: `std::cout << count` takes the standard's own inserter, which obeys the stream's
/// settings. The two would be ambiguous inside the namespace `Kr` and under `using namespace Kr`;
/// this one is a template so that the standard's is preferred there. Tick counts (`DtTimeIndex`)
/// always print through these.

#include <base/krBaseApi.h>

#include <iosfwd>
#include <type_traits>

namespace Kr
{

/// What the operator below does.
KR_BASE_API std::ostream& insertDecimal(std::ostream& stream, long long value);
KR_BASE_API std::ostream& insertDecimal(std::ostream& stream, unsigned long long value);

/// Inserts a `long long`, or a `long` of 64 bits, signed or unsigned: a minus sign if negative, and
/// the digits.
template <class Integer,
          std::enable_if_t<std::is_integral_v<Integer> && sizeof(Integer) == 8, int> = 0>
std::ostream& operator<<(std::ostream& stream, const Integer& value)
{
    using Long = std::conditional_t<std::is_signed_v<Integer>, long long, unsigned long long>;
    return insertDecimal(stream, static_cast<Long>(value));
}

} // namespace Kr
