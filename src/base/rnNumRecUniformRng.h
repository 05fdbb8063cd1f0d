#pragma once

/// @file
/// A small congruential generator whose order is shuffled by a table of 97 entries: uniform on
/// [0, 1), with 1771875 different values. For sequences that must be replayed exactly by their
/// seed.
/// @code
/// Kr::RnNumRecUniformRng<float> noise(42);
/// const float first = noise();
/// noise.restart();
/// assert(noise() == first);
/// @endcode
/// Pitfalls: with so few values, do not take it where more than 20 bits of a sample matter; take
/// `RnLecuyerUniformRng` there. A generator cannot be copied. It makes its samples 64 at a time:
/// one that gives only a few costs more.
///
/// C. Bays, S. D. Durham: Improving a Poor Random Number Generator. ACM Transactions on
/// Mathematical Software 2 (1), 1976.

#include <base/rnUnitRng.h>

#include <cstdint>
#include <memory>

namespace Kr
{

template <class T>
class RnNumRecUniformRng : public RnUnitRng<T>
{
public:
    explicit RnNumRecUniformRng(unsigned int seed);
    /// With the seed 0.
    RnNumRecUniformRng();
    RnNumRecUniformRng(const RnNumRecUniformRng&) = delete;
    RnNumRecUniformRng& operator=(const RnNumRecUniformRng&) = delete;
    ~RnNumRecUniformRng() override;

    using RnUnitRng<T>::operator();
    T operator()() override;
    void getSequence(unsigned int n, T* array) override;
    /// The next sample, a multiple of 1/1771875.
    T eval();

    /// `restart(getSeed())`: replays the sequence.
    void restart() override;
    void restart(unsigned int seed);
    unsigned int getSeed() const;
    char const* getName() const override;

private:
    static const T RM; ///< 1/1771875

    enum : unsigned int
    {
        aheadLength = 64
    };

    static T getFraction(std::uint32_t entry);
    std::uint32_t exchange(std::uint32_t last, std::uint32_t replacement);
    void makeGroups(unsigned int n, T* array);

    std::uint32_t _last; ///< the entry of the sample made last; it chooses the next
    unsigned int _seed;
    std::uint32_t _x; ///< the state put into the table last
    std::unique_ptr<std::uint32_t[]> _table;
    unsigned int _next; ///< of the samples made ahead
    T _ahead[aheadLength];
};

template <class T>
unsigned int RnNumRecUniformRng<T>::getSeed() const
{
    return _seed;
}

extern template class KR_BASE_API RnNumRecUniformRng<float>;
extern template class KR_BASE_API RnNumRecUniformRng<double>;

} // namespace Kr
