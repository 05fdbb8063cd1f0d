#pragma once

/// @file
/// The sequence of van der Corput: the radical inverses of 1, 2, 3, ... in a base. Each new point
/// falls into the widest gaps that are left, so any number of points covers [0, 1) evenly.
/// @code
/// Kr::RnVanDerCorputRng<double> shutter; // 0.5, 0.25, 0.75, 0.125, 0.625, ...
/// double times[64];
/// shutter.getSequence(64, times);
/// shutter.getBlock(1000000, 64, times); // the points after the millionth, for any thread
/// @endcode
/// Pitfalls:
/// - a base is at least 2. Base 0 divides by zero and base 1 never ends; neither is checked;
/// - the sequence begins with the inverse of 1; 0 comes only when the 32-bit index wraps to 0;
/// - two sequences are independent only if their bases have no common factor.
///
/// J. G. van der Corput: Verteilungsfunktionen. Proceedings of the Royal Academy, Amsterdam, 38,
/// 1935.

#include <base/rnUnitRng.h>

#include <cstdint>

namespace Kr
{

template <class T>
class RnVanDerCorputRng : public RnUnitRng<T>
{
public:
    explicit RnVanDerCorputRng(unsigned int base);
    /// In base 2.
    RnVanDerCorputRng();

    using RnUnitRng<T>::operator();
    T operator()() override;
    /// @throws ExInternalError if `array` is null
    void getSequence(unsigned int n, T* array) override;
    /// The samples that `n` calls after `restart(index)` would give; the generator stays as it is.
    /// @throws ExInternalError if `array` is null
    void getBlock(unsigned int index, unsigned int n, T* array) const;

    /// `restart(0)`
    void restart() override;
    /// The next sample is the radical inverse of `index + 1`.
    void restart(unsigned int index);
    unsigned int getIndex() const;

    /// Keeps the index, and returns the previous base.
    unsigned int setBase(unsigned int base);
    unsigned int getBase() const;
    char const* getName() const override;

private:
    std::uint32_t _base;
    T _inverseBase;
    std::uint32_t _index;
};

template <class T>
unsigned int RnVanDerCorputRng<T>::getIndex() const
{
    return _index;
}

template <class T>
unsigned int RnVanDerCorputRng<T>::getBase() const
{
    return _base;
}

extern template class KR_BASE_API RnVanDerCorputRng<float>;
extern template class KR_BASE_API RnVanDerCorputRng<double>;

} // namespace Kr
