#include <base/assert.h>
#include <base/internal/random/lecuyerStep.h>
#include <base/rnLecuyerUniformRng.h>

#include <algorithm>
#include <type_traits>

namespace Kr
{

namespace
{

/// The second state that every generator starts with: seeding does not set it. It must not be 0,
/// from which the second generator would never leave.
constexpr std::uint32_t firstState2 = 55555;

constexpr unsigned int defaultSeed1 = 55555;
constexpr unsigned int defaultSeed2 = 99999;

/// One part in 2147483563 for double. The float scale is 2^-31, on purpose: the rounded result can
/// reach 1.
template <class T>
constexpr double scale = std::is_same_v<T, float> ? 1. / 2147483648. : 4.656613057391769e-10;

template <class T>
T getScaled(std::int32_t value)
{
    return static_cast<T>(value * scale<T>);
}

/// A seed is a signed 32-bit state, whose sign the first step takes away.
std::uint32_t getState1(unsigned int seed)
{
    constexpr std::int64_t modulus = Lecuyer::First::modulus;
    const std::int64_t state = seed < 0x80000000U ? seed : seed - (std::int64_t(1) << 32);
    return static_cast<std::uint32_t>((state % modulus + modulus) % modulus);
}

} // namespace

template <class T>
RnLecuyerUniformRng<T>::RnLecuyerUniformRng(unsigned int seed1, unsigned int seed2)
    : _seed1(seed1)
    , _seed2(seed2)
    , _state1(getState1(seed2))
    , _state2(firstState2)
{
}

template <class T>
RnLecuyerUniformRng<T>::RnLecuyerUniformRng(unsigned int seed1)
    : RnLecuyerUniformRng(seed1, defaultSeed2)
{
}

template <class T>
RnLecuyerUniformRng<T>::RnLecuyerUniformRng()
    : RnLecuyerUniformRng(defaultSeed1, defaultSeed2)
{
}

template <class T>
T RnLecuyerUniformRng<T>::eval()
{
    _state1 = Lecuyer::First::step(_state1);
    _state2 = Lecuyer::Second::step(_state2);
    return getScaled<T>(Lecuyer::combine(_state1, _state2));
}

template <class T>
T RnLecuyerUniformRng<T>::operator()()
{
    return eval();
}

template <class T>
void RnLecuyerUniformRng<T>::getSequence(unsigned int n, T* array)
{
    KR_ASSERT(array != nullptr || n == 0);
    constexpr unsigned int blockLength = 512;
    std::int32_t values[blockLength];
    while (n != 0)
    {
        const unsigned int count = std::min(n, blockLength);
        Lecuyer::fill(_state1, _state2, count, values);
        array = std::transform(values, values + count, array, getScaled<T>);
        n -= count;
    }
}

template <class T>
void RnLecuyerUniformRng<T>::restart()
{
    restart(getSeed1(), getSeed2());
}

template <class T>
void RnLecuyerUniformRng<T>::restart(unsigned int seed1, unsigned int seed2)
{
    _seed1 = seed1;
    _seed2 = seed2;
    _state1 = getState1(seed2); // not seed1, and nothing for the second: kept for compatibility
}

template <class T>
char const* RnLecuyerUniformRng<T>::getName() const
{
    return "Lecuyer";
}

template <class T>
void RnLecuyerUniformRng<T>::skip(std::uint64_t n)
{
    _state1 = Lecuyer::First::multiply(_state1, Lecuyer::First::getPower(n));
    _state2 = Lecuyer::Second::multiply(_state2, Lecuyer::Second::getPower(n));
}

template <class T>
void RnLecuyerUniformRng<T>::restartStream(unsigned int stream)
{
    // The period is (2147483563 - 1) * (2147483399 - 1) / 2, which holds 2047 times 2^50.
    KR_ASSERT(stream < getStreamCount());
    _state1 = getState1(defaultSeed2);
    _state2 = firstState2;
    skip(stream * getStreamLength());
}

template class RnLecuyerUniformRng<float>;
template class RnLecuyerUniformRng<double>;

} // namespace Kr
