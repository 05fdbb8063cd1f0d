#include <base/assert.h>
#include <base/internal/random/niederreiterTable.h>
#include <base/internal/random/radicalInverse.h>
#include <base/rnScrambledRng.h>

#include <type_traits>

namespace Kr
{

namespace
{

/// Turns each bit over, or not, by those below it: S. Laine, T. Karras, Stratified Sampling for
/// Stochastic Transparency, 2011, with the constants that N. Vegdahl found in 2021.
constexpr std::uint32_t getScrambledUpwards(std::uint32_t bits, std::uint32_t seed)
{
    bits ^= bits * 0x3D20ADEAU;
    bits += seed;
    bits *= (seed >> 16) | 1U;
    bits ^= bits * 0x05526C56U;
    bits ^= bits * 0x53A22864U;
    return bits;
}

/// Spreads a seed over all bits, so that neighbours have nothing in common: the finaliser of
/// MurmurHash3.
constexpr std::uint32_t getMixed(std::uint32_t seed)
{
    seed = (seed ^ seed >> 16) * 0x85EBCA6BU;
    seed = (seed ^ seed >> 13) * 0xC2B2AE35U;
    return seed ^ seed >> 16;
}

template <class T>
T getFraction(std::uint32_t bits)
{
    if constexpr (std::is_same_v<T, float>)
        return static_cast<T>(bits >> 8) * (1.F / 16777216.F);
    else
        return bits * (1. / 4294967296.);
}

/// A radical inverse is its index mirrored, which is the order that the scrambling wants.
template <class T>
T getScrambledInverse(std::uint32_t n, std::uint32_t mixedSeed)
{
    return getFraction<T>(getReversedBits(getScrambledUpwards(n, mixedSeed)));
}

} // namespace

template <class T>
RnScrambledVanDerCorputRng<T>::RnScrambledVanDerCorputRng(unsigned int seed)
    : _seed(seed)
    , _index(0)
{
}

template <class T>
T RnScrambledVanDerCorputRng<T>::operator()()
{
    return getScrambledInverse<T>(++_index, getMixed(_seed));
}

template <class T>
void RnScrambledVanDerCorputRng<T>::getSequence(unsigned int n, T* array)
{
    getBlock(_index, n, array);
    _index += n;
}

template <class T>
void RnScrambledVanDerCorputRng<T>::getBlock(unsigned int index, unsigned int n, T* array) const
{
    KR_ASSERT(array);
    const std::uint32_t mixedSeed = getMixed(_seed);
    for (unsigned int i = 0; i < n; ++i)
        array[i] = getScrambledInverse<T>(index + 1 + i, mixedSeed);
}

template <class T>
void RnScrambledVanDerCorputRng<T>::restart()
{
    restart(0);
}

template <class T>
void RnScrambledVanDerCorputRng<T>::restart(unsigned int index)
{
    _index = index;
}

template <class T>
char const* RnScrambledVanDerCorputRng<T>::getName() const
{
    return "Owen-scrambled Van der Corput";
}

// --- Niederreiter
// ---------------------------------------------------------------------------------

namespace
{

/// The points of the sequence as it is: the same that are left out there are left out here.
constexpr std::uint32_t skippedCount = 4096;

template <class T>
T getScrambledFraction(std::uint32_t bits, std::uint32_t mixedSeed)
{
    return getScrambledInverse<T>(getReversedBits(bits << 1), mixedSeed);
}

} // namespace

template <class T>
RnScrambledNiederreiterMultiRng<T>::RnScrambledNiederreiterMultiRng(unsigned int seed)
    : _seed(seed)
    , _index(0)
{
    std::uint32_t next = seed;
    for (std::uint32_t& coordinateSeed : _coordinateSeeds)
        coordinateSeed = next = getMixed(next + 0x9E3779B9U);
}

template <class T>
void RnScrambledNiederreiterMultiRng<T>::getSample(T* const sample)
{
    const Niederreiter::Row point = Niederreiter::getPoint(_index + skippedCount);
    ++_index;
    for (unsigned int c = 0; c < point.size(); ++c)
        sample[c] = getScrambledFraction<T>(point[c], _coordinateSeeds[c]);
}

template <class T>
void RnScrambledNiederreiterMultiRng<T>::getSequence(unsigned int n, T** const array)
{
    getBlock(_index, n, array);
    _index += n;
}

template <class T>
void RnScrambledNiederreiterMultiRng<T>::getBlock(unsigned int index, unsigned int n,
                                                  T** const array) const
{
    KR_ASSERT(array);
    for (unsigned int i = 0; i < n; ++i)
    {
        const Niederreiter::Row point = Niederreiter::getPoint(index + i + skippedCount);
        for (unsigned int c = 0; c < point.size(); ++c)
            array[c][i] = getScrambledFraction<T>(point[c], _coordinateSeeds[c]);
    }
}

template <class T>
void RnScrambledNiederreiterMultiRng<T>::restart()
{
    restart(0);
}

template <class T>
void RnScrambledNiederreiterMultiRng<T>::restart(unsigned int index)
{
    _index = index;
}

template <class T>
char const* RnScrambledNiederreiterMultiRng<T>::getName() const
{
    return "Owen-scrambled Niederreiter";
}

template class RnScrambledVanDerCorputRng<float>;
template class RnScrambledVanDerCorputRng<double>;
template class RnScrambledNiederreiterMultiRng<float>;
template class RnScrambledNiederreiterMultiRng<double>;

} // namespace Kr
