#pragma once

/// @file
/// The sequences in base 2 under Owen's scrambling: every seed gives another sequence, as even as
/// the original and without its patterns. Averages over several seeds are unbiased and their spread
/// tells the error; smooth functions are integrated with an error that falls like n^-1.5.
/// @code
/// const unsigned int pixel = 4711;
/// Kr::RnScrambledNiederreiterMultiRng<float> points(pixel); // each pixel its own points
/// float x[256], y[256], u[256], v[256];
/// float* coordinates[] = {x, y, u, v};
/// points.getSequence(256, coordinates);
/// @endcode
/// Every sample lies in [0, 1), for `float` too, which keeps its 24 highest bits.
///
/// Pitfall: take the points in numbers that are powers of two, from an index that is a multiple of
/// that number; the Van der Corput points are indexed from 1, like the unscrambled ones.
///
/// A. B. Owen: Randomly Permuted (t,m,s)-Nets and (t,s)-Sequences. Monte Carlo and Quasi-Monte
/// Carlo Methods in Scientific Computing, 1995. B. Burley: Practical Hash-Based Owen Scrambling.
/// Journal of Computer Graphics Techniques 9 (4), 2020.

#include <base/rnUnitRng.h>

#include <array>
#include <cstdint>

namespace Kr
{

/// The scrambled sequence of van der Corput in base 2.
template <class T>
class RnScrambledVanDerCorputRng : public RnUnitRng<T>
{
public:
    explicit RnScrambledVanDerCorputRng(unsigned int seed);

    using RnUnitRng<T>::operator();
    T operator()() override;
    /// @throws ExInternalError if `array` is null
    void getSequence(unsigned int n, T* array) override;
    /// The samples that `n` calls after `restart(index)` would give; the generator stays as it is.
    /// @throws ExInternalError if `array` is null
    void getBlock(unsigned int index, unsigned int n, T* array) const;

    /// `restart(0)`
    void restart() override;
    void restart(unsigned int index);
    unsigned int getIndex() const;
    unsigned int getSeed() const;
    char const* getName() const override;

private:
    std::uint32_t _seed;
    std::uint32_t _index;
};

template <class T>
unsigned int RnScrambledVanDerCorputRng<T>::getIndex() const
{
    return _index;
}

template <class T>
unsigned int RnScrambledVanDerCorputRng<T>::getSeed() const
{
    return _seed;
}

/// The scrambled sequence of Niederreiter, each coordinate with a scrambling of its own.
template <class T>
class RnScrambledNiederreiterMultiRng : public RnUnitMultiRng<T, 4>
{
public:
    explicit RnScrambledNiederreiterMultiRng(unsigned int seed);

    void getSample(T* const sample) override;
    /// @throws ExInternalError if `array` is null
    void getSequence(unsigned int n, T** const array) override;
    /// The points that `n` calls after `restart(index)` would give; the generator stays as it is.
    /// @throws ExInternalError if `array` is null
    void getBlock(unsigned int index, unsigned int n, T** const array) const;

    /// `restart(0)`
    void restart() override;
    void restart(unsigned int index);
    unsigned int getIndex() const;
    unsigned int getSeed() const;
    char const* getName() const override;

private:
    std::uint32_t _seed;
    std::array<std::uint32_t, 4> _coordinateSeeds;
    std::uint32_t _index;
};

template <class T>
unsigned int RnScrambledNiederreiterMultiRng<T>::getIndex() const
{
    return _index;
}

template <class T>
unsigned int RnScrambledNiederreiterMultiRng<T>::getSeed() const
{
    return _seed;
}

extern template class KR_BASE_API RnScrambledVanDerCorputRng<float>;
extern template class KR_BASE_API RnScrambledVanDerCorputRng<double>;
extern template class KR_BASE_API RnScrambledNiederreiterMultiRng<float>;
extern template class KR_BASE_API RnScrambledNiederreiterMultiRng<double>;

} // namespace Kr
