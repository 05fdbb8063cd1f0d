#pragma once

/// @file
/// An instant or a duration: a tick count with the rate of its ticks.
/// @code
/// const Kr::DtTime film(48, 24, 1), pal(50, 25, 1); // two seconds each
/// assert(film == pal);
/// std::cout << film + pal;                          // (2400 @ (600/1=600))
/// @endcode
///
/// Values at different rates compare exactly, by cross-multiplication, and combine at a common
/// rate: the product of both rates, where the ticks of either are whole, kept within a million
/// ticks per second and per tick.
///
/// Pitfalls, all of them kept on purpose; `DtTimeUtil` has exact forms beside them:
/// - the result of mixing rates is at the common rate, not at either operand's;
/// - **the common rate is formed in 32 bits and wraps around**: the sum of times at 44100/1 and
///   96000/1 is at a negative rate and means nothing. `DtTimeUtil::getExactSum` gives it at
///   14112000/1;
/// - **a common rate below a tick in a million seconds is clamped to that**: the sum of times at
///   30/1001 and 15/1001 is in ticks of 11.6 days, and nearly always 0. `DtTimeUtil::getExactSum`
///   gives it at 30/1001;
/// - `*`, `/` and `%` between two times work on the raw counts at the common rate;
/// - a negative rate is accepted and turns the comparisons round;
/// - comparisons hold while count * denominator * other numerator fits in 64 bits, and wrap around
///   beyond: `DtTimeUtil::compareExactly` does not.
///
/// A value type; distinct values can be used by distinct threads. An operation that raises leaves
/// its value as it was.

#include <base/dtTimeIndex.h>
#include <base/krBaseApi.h>
#include <base/rational.h>

#include <cstdint>
#include <iosfwd>

namespace Kr
{

class KR_BASE_API DtTime
{
public:
    /// 0 at 1/1.
    DtTime() noexcept = default;

    /// @throws DtEx::BadRate if the rate is zero
    DtTime(const DtTimeIndex& count, const Rational& rate);

    /// @throws RationalEx::ExDenominatorZero if the denominator is 0
    /// @throws DtEx::BadRate if the numerator is 0
    DtTime(const DtTimeIndex& count, std::int32_t numerator, std::int32_t denominator);

    DtTimeIndex getCount() const noexcept { return _count; }

    /// In ticks per second; never zero.
    Rational getRate() const noexcept { return _rate; }

    bool isRateEqual(const DtTime& other) const noexcept { return _rate == other._rate; }

    /// The same instant at another rate, its count truncated toward zero.
    /// @throws DtEx::BadRate if the rate is zero
    DtTime convertRate(const Rational& rate) const;

    /// @name Arithmetic on the count; the rate stays
    /// @{
    inline DtTime& operator+=(const DtTimeIndex& other) noexcept;
    inline DtTime& operator-=(const DtTimeIndex& other) noexcept;
    inline DtTime& operator*=(const DtTimeIndex& other) noexcept;
    inline DtTime& operator/=(const DtTimeIndex& divisor);
    inline DtTime& operator%=(const DtTimeIndex& divisor);

    DtTime operator+(const DtTimeIndex& other) const noexcept { return DtTime(*this) += other; }
    DtTime operator-(const DtTimeIndex& other) const noexcept { return DtTime(*this) -= other; }
    DtTime operator*(const DtTimeIndex& other) const noexcept { return DtTime(*this) *= other; }
    DtTime operator/(const DtTimeIndex& divisor) const { return DtTime(*this) /= divisor; }
    DtTime operator%(const DtTimeIndex& divisor) const { return DtTime(*this) %= divisor; }

    DtTime& operator++() noexcept { return *this += 1; }
    DtTime& operator--() noexcept { return *this -= 1; }
    inline DtTime operator++(int) noexcept;
    inline DtTime operator--(int) noexcept;
    /// @}

    /// @name Arithmetic between times
    /// On the counts when the rates are equal; otherwise on the counts converted to the common
    /// rate (truncated toward zero), which becomes the result's rate.
    /// @throws RationalEx::ExDenominatorZero, DtEx::BadRate if the common rate's 32-bit products
    ///         wrap around to zero
    /// @{
    DtTime& operator+=(const DtTime& other);
    DtTime& operator-=(const DtTime& other);
    DtTime& operator*=(const DtTime& other);
    DtTime& operator/=(const DtTime& divisor);
    DtTime& operator%=(const DtTime& divisor);

    DtTime operator+(const DtTime& other) const { return DtTime(*this) += other; }
    DtTime operator-(const DtTime& other) const { return DtTime(*this) -= other; }
    DtTime operator*(const DtTime& other) const { return DtTime(*this) *= other; }
    DtTime operator/(const DtTime& divisor) const { return DtTime(*this) /= divisor; }
    DtTime operator%(const DtTime& divisor) const { return DtTime(*this) %= divisor; }
    /// @}

    /// Writes "(48 @ (24/1=24))", no line end.
    void dump(std::ostream& stream) const;

private:
    template <class Operation>
    DtTime& combine(const DtTime& other, Operation operation);

    DtTimeIndex _count;
    Rational _rate;
};

/// As `DtTime::dump`.
KR_BASE_API std::ostream& operator<<(std::ostream& stream, const DtTime& time);

/// @name Comparison across rates
/// a < b holds when `crossMultLhs(a, b)` < `crossMultRhs(a, b)`, and so on: both times as counts
/// of one tick that divides the ticks of either rate.
/// @{

/// a's count * a's denominator * b's numerator, in 64 bits.
inline DtTimeIndex crossMultLhs(const DtTime& a, const DtTime& b) noexcept
{
    return a.getCount() * a.getRate().getDenominator() * b.getRate().getNumerator();
}

/// b's count * b's denominator * a's numerator, in 64 bits.
inline DtTimeIndex crossMultRhs(const DtTime& a, const DtTime& b) noexcept
{
    return crossMultLhs(b, a);
}

inline bool operator<(const DtTime& a, const DtTime& b) noexcept
{
    return crossMultLhs(a, b) < crossMultRhs(a, b);
}

inline bool operator<=(const DtTime& a, const DtTime& b) noexcept
{
    return crossMultLhs(a, b) <= crossMultRhs(a, b);
}

inline bool operator==(const DtTime& a, const DtTime& b) noexcept
{
    return crossMultLhs(a, b) == crossMultRhs(a, b);
}

inline bool operator>=(const DtTime& a, const DtTime& b) noexcept
{
    return crossMultLhs(a, b) >= crossMultRhs(a, b);
}

inline bool operator>(const DtTime& a, const DtTime& b) noexcept
{
    return crossMultLhs(a, b) > crossMultRhs(a, b);
}

inline bool operator!=(const DtTime& a, const DtTime& b) noexcept
{
    return crossMultLhs(a, b) != crossMultRhs(a, b);
}
/// @}

// ------------------------------------------------------------------------------------------------

inline DtTime& DtTime::operator+=(const DtTimeIndex& other) noexcept
{
    _count += other;
    return *this;
}

inline DtTime& DtTime::operator-=(const DtTimeIndex& other) noexcept
{
    _count -= other;
    return *this;
}

inline DtTime& DtTime::operator*=(const DtTimeIndex& other) noexcept
{
    _count *= other;
    return *this;
}

inline DtTime& DtTime::operator/=(const DtTimeIndex& divisor)
{
    _count /= divisor;
    return *this;
}

inline DtTime& DtTime::operator%=(const DtTimeIndex& divisor)
{
    _count %= divisor;
    return *this;
}

inline DtTime DtTime::operator++(int) noexcept
{
    const DtTime former(*this);
    ++*this;
    return former;
}

inline DtTime DtTime::operator--(int) noexcept
{
    const DtTime former(*this);
    --*this;
    return former;
}

} // namespace Kr
