#pragma once

/// @file
/// Any engine of the standard library as a generator on [0, 1).
/// @code{.cpp}
/// #include <base/rnGaussianRng.h>
///
/// #include <random>
///
/// double drawFromTwister()
/// {
///     Kr::RnStdEngineRng<double, std::mt19937> uniform(std::mt19937(42));
///     return Kr::RnGaussianRng<double>(&uniform)();
/// }
/// @endcode
/// A sample has as many random bits as T has digits (24 or 53), whatever the range of the engine:
/// its values are joined, and those at the end of a range that is no power of two are thrown away.
/// The samples are the same on every system.

#include <base/rnUnitRng.h>

#include <cstdint>
#include <limits>

namespace Kr
{

/// The part that does not depend on the engine.
template <class T>
class RnStdEngineRngBase : public RnUnitRng<T>
{
public:
    char const* getName() const override;

protected:
    /// The lowest bits, as many as T has digits, as a fraction.
    static T getFraction(std::uint64_t bits);
    /// @throws ExInternalError if it is null and not empty
    static void checkArray(unsigned int n, const T* array);
};

extern template class KR_BASE_API RnStdEngineRngBase<float>;
extern template class KR_BASE_API RnStdEngineRngBase<double>;

template <class T, class Engine>
class RnStdEngineRng : public RnStdEngineRngBase<T>
{
public:
    /// Takes the engine as it is; `restart` comes back to that.
    explicit RnStdEngineRng(const Engine& engine = Engine())
        : _start(engine)
        , _engine(engine)
    {
    }

    using RnUnitRng<T>::operator();
    T operator()() override;
    /// @throws ExInternalError if `array` is null and `n` is not 0
    void getSequence(unsigned int n, T* array) override;
    void restart() override { _engine = _start; }
    const Engine& getEngine() const { return _engine; }

private:
    /// Of the range of the engine, less 1.
    static constexpr std::uint64_t range =
        static_cast<std::uint64_t>(Engine::max()) - static_cast<std::uint64_t>(Engine::min());
    /// How many bits a value gives: all of a power of two, four less of others, so that few values
    /// are thrown away.
    static constexpr unsigned int getChunkBits();
    std::uint64_t getChunk();

    Engine _start;
    Engine _engine;
};

// --------------------------------------------------------------------------------------------------

template <class T, class Engine>
constexpr unsigned int RnStdEngineRng<T, Engine>::getChunkBits()
{
    unsigned int bits = 0;
    while (bits < 64 && range >> bits != 0)
        ++bits;
    if ((range & (range + 1)) == 0)
        return bits;
    return bits > 5 ? bits - 5 : 1;
}

template <class T, class Engine>
std::uint64_t RnStdEngineRng<T, Engine>::getChunk()
{
    constexpr unsigned int bits = getChunkBits();
    constexpr std::uint64_t mask =
        bits < 64 ? (std::uint64_t(1) << bits % 64) - 1 : ~std::uint64_t(0);
    constexpr std::uint64_t end = range - (range & mask); // what is above is incomplete
    for (;;)
    {
        const std::uint64_t value =
            static_cast<std::uint64_t>(_engine()) - static_cast<std::uint64_t>(Engine::min());
        if ((range & mask) == mask || value < end)
            return value & mask;
    }
}

template <class T, class Engine>
T RnStdEngineRng<T, Engine>::operator()()
{
    constexpr unsigned int chunkBits = getChunkBits();
    constexpr unsigned int bitCount = std::numeric_limits<T>::digits;
    std::uint64_t bits = getChunk();
    for (unsigned int count = chunkBits; count < bitCount; count += chunkBits)
        bits = bits << chunkBits % 64 | getChunk(); // once only, so below 64, if the chunk is long
    return RnStdEngineRngBase<T>::getFraction(bits);
}

template <class T, class Engine>
void RnStdEngineRng<T, Engine>::getSequence(unsigned int n, T* array)
{
    RnStdEngineRngBase<T>::checkArray(n, array);
    for (unsigned int i = 0; i < n; ++i)
        array[i] = (*this)();
}

} // namespace Kr
