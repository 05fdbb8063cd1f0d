#pragma once

/// @file
/// An exact fraction of two 32-bit integers: the rate of a tick count, in ticks per second.
/// @code
/// const Kr::Rational ntsc(30000, 1001);
/// const double framesPerSecond = ntsc.getDouble();           // 29.97...
/// const double frameDuration = ntsc.getReciprocalDouble();   // seconds
/// @endcode
///
/// Pitfalls:
/// - the default value is 1/1, not 0/1: a default rate is one tick per second;
/// - equality is exact, but the ordering operators compare doubles with the tolerance of
///   `FloatUtil` (1e-7): 1/3 is neither smaller nor greater than 333333333/1000000000, and still
///   not equal to it;
/// - a numerator of -2147483648 has no positive counterpart: such a value is kept as given,
///   unreduced. A denominator of -2147483648 likewise stays negative.
///
/// A value type; distinct values can be used by distinct threads.

#include <base/internal/numeric/rounded.h>
#include <base/krBaseApi.h>

#include <cstdint>
#include <iosfwd>

namespace Kr
{

class KR_BASE_API Rational
{
public:
    /// 1/1.
    Rational() noexcept
        : _numerator(1)
        , _denominator(1)
    {
    }

    /// See `setValue`.
    Rational(std::int32_t numerator, std::int32_t denominator)
        : Rational(normalise(numerator, denominator))
    {
    }

    /// Stores the fraction in lowest terms with a positive denominator; a zero is stored as 0/1.
    /// @throws RationalEx::ExDenominatorZero if `denominator` is 0; the value is then unchanged
    void setValue(std::int32_t numerator, std::int32_t denominator)
    {
        *this = normalise(numerator, denominator);
    }

    /// Carries the sign of the value.
    std::int32_t getNumerator() const noexcept { return _numerator; }
    std::int32_t getDenominator() const noexcept { return _denominator; }

    /// Numerator divided by denominator.
    double getDouble() const noexcept
    {
        return Rounded::divide(static_cast<double>(_numerator), static_cast<double>(_denominator));
    }
    float getFloat() const noexcept { return static_cast<float>(getDouble()); }

    /// Denominator divided by numerator; an infinity for a zero value.
    double getReciprocalDouble() const noexcept
    {
        return Rounded::divide(static_cast<double>(_denominator), static_cast<double>(_numerator));
    }
    float getReciprocalFloat() const noexcept { return static_cast<float>(getReciprocalDouble()); }

    /// Writes "(30000/1001=29.97)": the double in the stream's current format, no line end.
    void dump(std::ostream& stream) const;

private:
    friend class DtTime;

    // By value, so that the fraction travels in registers.
    static Rational normalise(std::int32_t numerator, std::int32_t denominator);
    void lowestTerms() noexcept;

    /// The product of fractions whose terms have products of 32 bits.
    static Rational multiply(const Rational& a, const Rational& b) noexcept;
    static bool canMultiply(const Rational& a, const Rational& b) noexcept;

    std::int32_t _numerator;
    std::int32_t _denominator;
};

/// Exact: values are kept in lowest terms.
inline bool operator==(const Rational& a, const Rational& b) noexcept
{
    return a.getNumerator() == b.getNumerator() && a.getDenominator() == b.getDenominator();
}

inline bool operator!=(const Rational& a, const Rational& b) noexcept
{
    return !(a == b);
}

/// Tolerant on purpose, unlike equality: by `FloatUtil::isSmaller` and its kin on the doubles.
KR_BASE_API bool operator<(const Rational& a, const Rational& b) noexcept;
KR_BASE_API bool operator<=(const Rational& a, const Rational& b) noexcept;
KR_BASE_API bool operator>(const Rational& a, const Rational& b) noexcept;
KR_BASE_API bool operator>=(const Rational& a, const Rational& b) noexcept;

/// As `Rational::dump`.
KR_BASE_API std::ostream& operator<<(std::ostream& stream, const Rational& value);

} // namespace Kr
