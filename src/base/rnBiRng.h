#pragma once

/// @file
/// The interface of every generator of pairs: points of a plane, lens positions, pairs of angles.
/// @code
/// Kr::RnHaltonBiRng<float> points;
/// Kr::RnBiRng<float>& anyGenerator = points;
/// float x, y;
/// anyGenerator.getSample(x, y); // (0.5, 0.333...)
/// @endcode
/// T is `float` or `double`. See `RnRng` for what all generators have in common.

#include <base/krBaseApi.h>

namespace Kr
{

template <class T>
class RnBiRng
{
public:
    /// The next pair.
    virtual void getSample(T& x, T& y) = 0;
    /// The next `n` pairs: their first coordinates into `array0`, their second into `array1`.
    virtual void getSequence(unsigned int n, T* array0, T* array1) = 0;

    /// The width of the interval in which each coordinate falls.
    virtual void getEfficientWidth(T& x, T& y) const = 0;
    /// The lower end of those intervals.
    virtual void getEfficientMin(T& x, T& y) const = 0;
    /// The upper end of those intervals.
    virtual void getEfficientMax(T& x, T& y) const = 0;
    /// The fraction of that rectangle that the distribution actually covers.
    virtual T getEfficientFraction() const = 0;
    /// The probability density at (x, y), per unit of area.
    virtual T getPdf(T x, T y) const = 0;

    /// Goes back to the start of the sequence.
    virtual void restart() = 0;
    /// What the generator is called; the text lives for ever.
    virtual char const* getName() const = 0;

    virtual ~RnBiRng() = default;

protected:
    RnBiRng() = default;
    RnBiRng(const RnBiRng&) = default;
    RnBiRng& operator=(const RnBiRng&) = default;
};

extern template class KR_BASE_API RnBiRng<float>;
extern template class KR_BASE_API RnBiRng<double>;

} // namespace Kr
