#pragma once

/// @file
/// Radical inverses: the digits of an integer, mirrored at the point. Digits are added from the
/// lowest on, each sum rounded to T, and that order is kept by every way through here.

#include <cstdint>

namespace Kr
{

template <class T>
class RadicalInverse
{
public:
    RadicalInverse(std::uint32_t base, T inverseBase)
        : _base(base)
        , _inverseBase(inverseBase)
    {
    }

    /// That of `n`.
    T get(std::uint32_t n) const;

    /// Those of `first`, `first + 1`, ...; integers wrap at 32 bits.
    void fill(std::uint32_t first, unsigned int count, T* array) const;

private:
    /// The values of all integers of some low digits, from which blocks start.
    struct LowDigits;

    LowDigits makeLowDigits(unsigned int count) const;
    void fillBlock(const LowDigits& low, std::uint32_t first, unsigned int count, T* array) const;

    std::uint32_t _base;
    T _inverseBase;
};

extern template class RadicalInverse<float>;
extern template class RadicalInverse<double>;

} // namespace Kr
