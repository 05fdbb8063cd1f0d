#pragma once

/// @file
/// Powers of two and base-2 logarithms of unsigned 32-bit integers.
/// @code
/// const std::uint32_t textureWidth = Kr::Pow2::ceil(640); // 1024
/// @endcode
/// Pitfall: `ceil` of a value above 2^31 is 1, because the power that it would need does not fit.
///
/// Stateless: every function may be called by any thread.

#include <base/assert.h>

#include <cstdint>

namespace Kr
{

class Pow2
{
public:
    /// 2 to the power of n modulo 32.
    static constexpr std::uint32_t exp(std::uint32_t n) noexcept;

    /// The greatest n with 2^n <= a: the index of the highest bit set.
    /// @throws ExInternalError if a is 0
    static constexpr std::uint32_t log2Floor(std::uint32_t a);

    /// The least n with 2^n >= a; up to 32.
    /// @throws ExInternalError if a is 0
    static constexpr std::uint32_t log2Ceil(std::uint32_t a);

    /// The least power of two not below a; 0 for 0, 1 above 2^31.
    static constexpr std::uint32_t ceil(std::uint32_t a) noexcept;

private:
    static constexpr std::uint32_t highestBit(std::uint32_t a) noexcept;
};

} // namespace Kr

#include <base/pow2.inline>
