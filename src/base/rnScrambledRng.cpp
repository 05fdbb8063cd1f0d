#include <base/assert.h>
#include <base/internal/random/niederreiterTable.h>
#include <base/internal/random/reversedBits.h>
#include <base/rnScrambledRng.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <type_traits>

namespace Kr
{

namespace
{

/// Turns each bit over, or not, by those below it: S. Laine, T. Karras, Stratified Sampling for
/// Stochastic Transparency, 2011, with the constants that N. Vegdahl found in 2021.
template <class Bits>
Bits getScrambledUpwards(Bits bits, Bits seed)
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

using Words = Lanes<std::uint32_t>;

/// The fractions of four 32-bit numerators; a float keeps the 24 highest bits. The conversions are
/// the signed ones, which are fast, and all is exact.
template <class T>
void storeFractions(Words bits, T* array)
{
    Lanes<T> fractions;
    if constexpr (std::is_same_v<T, float>)
    {
        const auto high = reinterpret_cast<Lanes<std::int32_t>>(bits >> 8);
        fractions = __builtin_convertvector(high, Lanes<T>) * (1.F / 16777216.F);
    }
    else
    {
        const auto less = reinterpret_cast<Lanes<std::int32_t>>(bits ^ 0x80000000U);
        fractions = (__builtin_convertvector(less, Lanes<T>) + 2147483648.) * (1. / 4294967296.);
    }
    std::memcpy(array, &fractions, sizeof fractions);
}

/// Scrambles four fractions that come mirrored, which is the order that the scrambling wants. A
/// radical inverse is its index mirrored.
template <class T>
void storeScrambled(Words mirrored, Words mixedSeeds, T* array)
{
    storeFractions(getReversedBits(getScrambledUpwards(mirrored, mixedSeeds)), array);
}

/// Scrambles one coordinate of many points.
template <class T>
void scramble(const std::uint32_t* mirrored, unsigned int count, std::uint32_t mixedSeed, T* array)
{
    constexpr unsigned int length = 4;
    const Words seeds = mixedSeed + Words{};
    Words words{};
    for (; count >= length; count -= length, mirrored += length, array += length)
    {
        std::memcpy(&words, mirrored, sizeof words);
        storeScrambled(words, seeds, array);
    }
    T rest[length];
    std::memcpy(&words, mirrored, count * sizeof *mirrored);
    storeScrambled(words, seeds, rest);
    std::copy_n(rest, count, array);
}

constexpr unsigned int tileLength = 128;

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
    const std::uint32_t bits = getScrambledUpwards<std::uint32_t>(++_index, getMixed(_seed));
    T fractions[4];
    storeFractions(getReversedBits(bits) + Words{}, fractions);
    return fractions[0];
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
    for (unsigned int done = 0, count = 0; done < n; done += count)
    {
        count = std::min(n - done, tileLength);
        std::uint32_t indices[tileLength];
        std::iota(indices, indices + count, index + 1 + done);
        scramble(indices, count, mixedSeed, array + done);
    }
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
    const Words point = Niederreiter::getPoint(_index + skippedCount);
    ++_index;
    Words seeds;
    std::memcpy(&seeds, &_coordinateSeeds, sizeof seeds);
    storeScrambled(getReversedBits(point << 1), seeds, sample);
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
    for (unsigned int done = 0, count = 0; done < n; done += count)
    {
        count = std::min(n - done, tileLength);
        std::uint32_t words[4][tileLength];
        std::uint32_t* const columns[] = {words[0], words[1], words[2], words[3]};
        Niederreiter::fillMirrored(index + done + skippedCount, count, columns);
        for (unsigned int c = 0; c < 4; ++c)
            scramble(words[c], count, _coordinateSeeds[c], array[c] + done);
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
