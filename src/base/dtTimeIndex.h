#pragma once

/// @file
/// A signed 64-bit count of ticks. What a tick lasts is said by a rate (`Rational`, ticks per
/// second) beside it; `DtTime` carries both.
/// @code
/// const Kr::DtTimeIndex samples(48000);
/// const Kr::Rational audio(48000, 1), ntsc(30000, 1001);
/// const Kr::DtTimeIndex frames = samples.convert(audio, ntsc, std::round_toward_zero); // 29
/// @endcode
///
/// Arithmetic is that of the machine's 64-bit integers: it wraps around, division and remainder
/// truncate toward zero, and the least value divided by -1 is itself. A zero divisor is a fault of
/// the caller's, reported as a failed assertion (`ExInternalError`), after which the index is as it
/// was.
///
/// Pitfalls:
/// - an index converts implicitly to `long long`: `2 * index` and `index < 5` are plain integer
///   expressions (and `2 * index` is not guarded against overflow, as `index * 2` is);
/// - `convert` is exact for `std::round_toward_zero` only: the other styles go through a double,
///   which holds no more than 53 bits.
///
/// A value type; distinct values can be used by distinct threads.

#include <base/assert.h>
#include <base/internal/numeric/rounded.h>
#include <base/internal/numeric/twosComplement.h>
#include <base/krBaseApi.h>
#include <base/rational.h>

#include <iosfwd>
#include <limits>
#include <type_traits>

namespace Kr
{

class KR_BASE_API DtTimeIndex
{
public:
    struct Conversion;

    constexpr DtTimeIndex(long long count = 0) noexcept
        : _count(count)
    {
    }

    constexpr operator long long() const noexcept { return _count; }
    float getFloat() const noexcept { return Rounded::toFloat(_count); }
    double getDouble() const noexcept { return Rounded::toDouble(_count); }

    /// @name Arithmetic
    /// @{
    inline DtTimeIndex& operator+=(long long other) noexcept;
    inline DtTimeIndex& operator-=(long long other) noexcept;
    inline DtTimeIndex& operator*=(long long other) noexcept;
    inline DtTimeIndex& operator/=(long long divisor);
    inline DtTimeIndex& operator%=(long long divisor);

    DtTimeIndex operator+(DtTimeIndex other) const noexcept { return other += _count; }
    DtTimeIndex operator-(DtTimeIndex other) const noexcept { return DtTimeIndex(*this) -= other; }
    DtTimeIndex operator*(DtTimeIndex other) const noexcept { return other *= _count; }
    DtTimeIndex operator/(DtTimeIndex divisor) const { return DtTimeIndex(*this) /= divisor; }
    DtTimeIndex operator%(DtTimeIndex divisor) const { return DtTimeIndex(*this) %= divisor; }
    DtTimeIndex operator-() const noexcept { return TwosComplement::negate(_count); }

    DtTimeIndex& operator++() noexcept { return *this += 1; }
    DtTimeIndex& operator--() noexcept { return *this -= 1; }
    inline DtTimeIndex operator++(int) noexcept;
    inline DtTimeIndex operator--(int) noexcept;
    /// @}

    /// @name The count as a time of day
    /// Signed: a negative count gives negative parts. The rate is not zero (a failed assertion).
    /// @{

    /// Whole hours; they are not limited to 24.
    long long getHours(const Rational& rate) const;

    /// Whole minutes within the hour, -59 to 59.
    long long getMinutes(const Rational& rate) const;

    /// Seconds within the minute, with their fraction.
    double getSeconds(const Rational& rate) const;
    /// @}

    /// The same instant as a count at another rate.
    ///
    /// - `std::round_toward_zero`: exact integer arithmetic, truncated toward zero. A result that
    ///   does not fit wraps around (see `convertChecked`).
    /// - `std::round_to_nearest` (halves up), `std::round_toward_infinity`,
    ///   `std::round_toward_neg_infinity`: the quotient in double, rounded.
    /// - `std::round_indeterminate`: in double, rounded away from zero. This is intended.
    /// - any other value gives 0.
    ///
    /// A double that does not fit gives the least count.
    /// @throws RationalEx::ExDenominatorZero if `fromRate` is zero and the style is
    ///         `std::round_toward_zero`
    DtTimeIndex convert(const Rational& fromRate, const Rational& toRate,
                        std::float_round_style style) const;

    /// As `convert`, and tells whether the result is the very same instant.
    /// @throws DtEx::CountOverflow if the result does not fit in 64 bits
    /// @throws RationalEx::ExDenominatorZero if `fromRate` is zero, whatever the style
    Conversion convertChecked(const Rational& fromRate, const Rational& toRate,
                              std::float_round_style style = std::round_toward_zero) const;

private:
    friend class DtTimeUtil;

    long long getWholeSeconds(const Rational& rate) const;
    double convertDouble(const Rational& fromRate, const Rational& toRate,
                         std::float_round_style style) const;
    static double roundInStyle(double count, std::float_round_style style) noexcept;

    long long _count;
};

/// What `DtTimeIndex::convertChecked` returns.
struct DtTimeIndex::Conversion
{
    DtTimeIndex count;
    bool isExact; ///< nothing was rounded away
};

/// Plain decimal, through the inserters for 64-bit integers.
KR_BASE_API std::ostream& operator<<(std::ostream& stream, const DtTimeIndex& index);

/// @name Arithmetic with a plain integer on the right
/// Without these `index + 5` would be ambiguous between the index's own and the built-in operator.
/// @{
template <class Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
DtTimeIndex operator+(const DtTimeIndex& index, Integer other) noexcept
{
    return index.operator+(static_cast<long long>(other));
}

template <class Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
DtTimeIndex operator-(const DtTimeIndex& index, Integer other) noexcept
{
    return index.operator-(static_cast<long long>(other));
}

template <class Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
DtTimeIndex operator*(const DtTimeIndex& index, Integer other) noexcept
{
    return index.operator*(static_cast<long long>(other));
}

template <class Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
DtTimeIndex operator/(const DtTimeIndex& index, Integer divisor)
{
    return index.operator/(static_cast<long long>(divisor));
}

template <class Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
DtTimeIndex operator%(const DtTimeIndex& index, Integer divisor)
{
    return index.operator%(static_cast<long long>(divisor));
}
/// @}

// ------------------------------------------------------------------------------------------------

inline DtTimeIndex& DtTimeIndex::operator+=(long long other) noexcept
{
    _count = TwosComplement::add(_count, other);
    return *this;
}

inline DtTimeIndex& DtTimeIndex::operator-=(long long other) noexcept
{
    _count = TwosComplement::subtract(_count, other);
    return *this;
}

inline DtTimeIndex& DtTimeIndex::operator*=(long long other) noexcept
{
    _count = TwosComplement::multiply(_count, other);
    return *this;
}

inline DtTimeIndex& DtTimeIndex::operator/=(long long divisor)
{
    KR_ASSERT(divisor != 0);
    _count = TwosComplement::divide(_count, divisor);
    return *this;
}

inline DtTimeIndex& DtTimeIndex::operator%=(long long divisor)
{
    KR_ASSERT(divisor != 0);
    _count = TwosComplement::remainder(_count, divisor);
    return *this;
}

inline DtTimeIndex DtTimeIndex::operator++(int) noexcept
{
    const DtTimeIndex former(*this);
    ++*this;
    return former;
}

inline DtTimeIndex DtTimeIndex::operator--(int) noexcept
{
    const DtTimeIndex former(*this);
    --*this;
    return former;
}

} // namespace Kr
