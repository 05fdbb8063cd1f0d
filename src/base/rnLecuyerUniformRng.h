#pragma once

/// @file
/// The combined multiplicative congruential generator of L'Ecuyer: uniform on [0, 1), 31 good bits
/// a sample, a period of 2.3e18, and the pseudo-random generator of choice here.
/// @code
/// Kr::RnLecuyerUniformRng<double> uniform;
/// double dice[1000];
/// uniform.getSequence(1000, dice); // several times faster than a thousand calls
///
/// // Work in parallel: every thread has a piece of the sequence of its own.
/// const unsigned int thread = 17;
/// Kr::RnLecuyerUniformRng<double> mine;
/// mine.restartStream(thread); // 2^50 samples, none of which another stream has
/// @endcode
/// Pitfalls:
/// - seeding sets only the first of the two states, to the second seed; the second state continues
///   from wherever it was. So `restart` does not, in general, replay the sequence. To replay, copy
///   the generator, or use `restartStream`;
/// - the first seed is remembered, but does not touch the sequence;
/// - the `float` generator rounds, and can return exactly 1; the `double` generator cannot.
///
/// P. L'Ecuyer: Efficient and Portable Combined Random Number Generators. Communications of the ACM
/// 31 (6), 1988. The states are added here, where the paper takes their difference.

#include <base/rnUnitRng.h>

#include <cstdint>

namespace Kr
{

template <class T>
class RnLecuyerUniformRng : public RnUnitRng<T>
{
public:
    RnLecuyerUniformRng(unsigned int seed1, unsigned int seed2);
    /// With 99999 as the second seed.
    explicit RnLecuyerUniformRng(unsigned int seed1);
    /// With the seeds 55555 and 99999.
    RnLecuyerUniformRng();

    using RnUnitRng<T>::operator();
    T operator()() override;
    void getSequence(unsigned int n, T* array) override;
    /// The next sample.
    T eval();

    /// `restart(getSeed1(), getSeed2())`
    void restart() override;
    /// Sets the first state to `seed2`, and remembers both seeds.
    void restart(unsigned int seed1, unsigned int seed2);
    unsigned int getSeed1() const;
    unsigned int getSeed2() const;
    char const* getName() const override;

    /// @name Pieces of the sequence
    /// @{

    /// Leaves out the next `n` samples, in a time that grows with the logarithm of `n`.
    void skip(std::uint64_t n);

    /// Goes to the start of one of `getStreamCount()` pieces of the default generator's sequence,
    /// each `getStreamLength()` samples long, no two of which have a place in common. The
    /// remembered seeds stay.
    /// @throws ExInternalError if there is no such stream
    void restartStream(unsigned int stream);
    static unsigned int getStreamCount();
    static std::uint64_t getStreamLength();
    /// @}

private:
    unsigned int _seed1;
    unsigned int _seed2;
    /// The two states, modulo 2147483563 and 2147483399; reduced only as far as 32 bits need.
    std::uint32_t _state1;
    std::uint32_t _state2;
};

template <class T>
unsigned int RnLecuyerUniformRng<T>::getSeed1() const
{
    return _seed1;
}

template <class T>
unsigned int RnLecuyerUniformRng<T>::getSeed2() const
{
    return _seed2;
}

template <class T>
unsigned int RnLecuyerUniformRng<T>::getStreamCount()
{
    return 2047;
}

template <class T>
std::uint64_t RnLecuyerUniformRng<T>::getStreamLength()
{
    return std::uint64_t(1) << 50;
}

extern template class KR_BASE_API RnLecuyerUniformRng<float>;
extern template class KR_BASE_API RnLecuyerUniformRng<double>;

} // namespace Kr
