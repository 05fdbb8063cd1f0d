#pragma once

/// @file
/// Multiplication of a 64-bit count by a ratio of 64-bit integers without intermediate overflow:
/// the 128-bit product is formed and divided in 64-bit arithmetic, so it works alike on 32-bit
/// machines. Used by `DtTimeIndex::convert`; not exported.

#include <base/internal/numeric/twosComplement.h>

#include <cstdint>

namespace Kr
{

class WideRatio
{
public:
    struct Scaled;

    /// @param denominator not 0. The magnitudes of both terms are at most 2^62, as products of two
    ///        32-bit numbers are.
    WideRatio(std::int64_t numerator, std::int64_t denominator) noexcept
        : _numerator(numerator)
        , _denominator(denominator)
    {
    }

    /// count * numerator / denominator, truncated toward zero. When that does not fit in 64 bits
    /// the terms are reduced and the product wraps around before the division.
    std::int64_t scale(std::int64_t count) const noexcept
    {
        std::int64_t product = 0;
        if (__builtin_mul_overflow(count, _numerator, &product))
            return scaleWide(count);
        return _denominator == 1 ? product : TwosComplement::divide(product, _denominator);
    }

    /// The same, saying what happened.
    Scaled scaleExactly(std::int64_t count) const noexcept;

    /// The sign of a * b - c * d, computed in 128 bits.
    static int compareProducts(std::int64_t a, std::int64_t b, std::int64_t c,
                               std::int64_t d) noexcept;

private:
    std::int64_t scaleWide(std::int64_t count) const noexcept;
    std::int64_t scaleWrapping(std::int64_t count) const noexcept;
    bool canSplit() const noexcept;
    Scaled scaleSplit(std::int64_t count) const noexcept;
    Scaled scaleIn128Bits(std::int64_t count) const noexcept;
    WideRatio getReduced() const noexcept;

    std::int64_t _numerator;
    std::int64_t _denominator;
};

struct WideRatio::Scaled
{
    std::int64_t quotient; ///< truncated toward zero; meaningless unless it fits
    bool isExact;          ///< the division left no remainder
    bool fits;             ///< the quotient is a 64-bit integer
};

} // namespace Kr
