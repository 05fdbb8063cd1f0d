#pragma once

/// @file
/// Two's-complement arithmetic that wraps around, for the places where wrapping is the defined
/// result: the built-in operators leave signed overflow undefined.
/// @code
/// const std::int32_t product = Kr::TwosComplement::multiply(65536, 65537); // 65536, modulo 2^32
/// @endcode

#include <cstdint>
#include <limits>
#include <type_traits>

namespace Kr
{

/// All operations are for `std::int32_t` and wider.
class TwosComplement
{
public:
    template <class T>
    static constexpr T add(T a, T b) noexcept
    {
        return fromBits<T>(bits(a) + bits(b));
    }

    template <class T>
    static constexpr T subtract(T a, T b) noexcept
    {
        return fromBits<T>(bits(a) - bits(b));
    }

    template <class T>
    static constexpr T multiply(T a, T b) noexcept
    {
        return fromBits<T>(bits(a) * bits(b));
    }

    /// The least value is its own negative.
    template <class T>
    static constexpr T negate(T a) noexcept
    {
        return fromBits<T>(std::make_unsigned_t<T>{0} - bits(a));
    }

    /// Truncates toward zero; the least value divided by -1 is itself. `b` is not 0.
    template <class T>
    static constexpr T divide(T a, T b) noexcept
    {
        return b == -1 ? negate(a) : static_cast<T>(a / b);
    }

    /// The remainder of `divide`, with the sign of `a`. `b` is not 0.
    template <class T>
    static constexpr T remainder(T a, T b) noexcept
    {
        return b == -1 ? T{0} : static_cast<T>(a % b);
    }

    /// The absolute value, which always fits in the unsigned type.
    template <class T>
    static constexpr std::make_unsigned_t<T> magnitude(T a) noexcept
    {
        return a < 0 ? bits(negate(a)) : bits(a);
    }

    /// Whether a double, truncated toward zero, is a 64-bit integer; a NaN is not.
    static constexpr bool canTruncate(double value) noexcept
    {
        constexpr double limit = 9223372036854775808.; // 2^63
        return value >= -limit && value < limit;
    }

    /// A double truncated toward zero; the least value for one that does not fit, as the
    /// processor's own conversion gives.
    static constexpr std::int64_t truncate(double value) noexcept
    {
        return canTruncate(value) ? static_cast<std::int64_t>(value)
                                  : std::numeric_limits<std::int64_t>::min();
    }

private:
    template <class T>
    static constexpr std::make_unsigned_t<T> bits(T value) noexcept
    {
        return static_cast<std::make_unsigned_t<T>>(value);
    }

    template <class T>
    static constexpr T fromBits(std::make_unsigned_t<T> value) noexcept
    {
        return static_cast<T>(value);
    }
};

} // namespace Kr
