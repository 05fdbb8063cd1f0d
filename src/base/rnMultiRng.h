#pragma once

/// @file
/// The interface of every generator of vectors of N coordinates: points of a cube, directions.
/// @code
/// Kr::RnNiederreiterMultiRng<float> points; // N is 4
/// Kr::RnMultiRng<float, 4>& anyGenerator = points;
/// float x[1024], y[1024], u[1024], v[1024];
/// float* coordinates[] = {x, y, u, v};
/// anyGenerator.getSequence(1024, coordinates); // several times faster than 1024 calls
/// @endcode
/// T is `float` or `double`, N is 2, 3 or 4. See `RnRng` for what all generators have in common.

#include <base/krBaseApi.h>

namespace Kr
{

template <class T, unsigned int N>
class RnMultiRng
{
public:
    /// The next vector, into `sample[0]` to `sample[N - 1]`.
    virtual void getSample(T* const sample) = 0;
    /// The next `n` vectors. `array` holds N arrays, one for each coordinate, of `n` values each:
    /// coordinate c of vector i goes to `array[c][i]`.
    virtual void getSequence(unsigned int n, T** const array) = 0;

    /// The widths of the N intervals in which the coordinates fall.
    virtual void getEfficientWidth(T* const width) const = 0;
    /// The lower ends of those intervals.
    virtual void getEfficientMin(T* const min) const = 0;
    /// The upper ends of those intervals.
    virtual void getEfficientMax(T* const max) const = 0;
    /// The fraction of that box that the distribution actually covers.
    virtual T getEfficientFraction() const = 0;
    /// The probability density at the N coordinates `x`; they are only read.
    virtual T getPdf(T* const x) const = 0;

    /// Goes back to the start of the sequence.
    virtual void restart() = 0;
    /// What the generator is called; the text lives for ever.
    virtual char const* getName() const = 0;

    virtual ~RnMultiRng() = default;

protected:
    RnMultiRng() = default;
    RnMultiRng(const RnMultiRng&) = default;
    RnMultiRng& operator=(const RnMultiRng&) = default;
};

extern template class KR_BASE_API RnMultiRng<float, 2>;
extern template class KR_BASE_API RnMultiRng<float, 3>;
extern template class KR_BASE_API RnMultiRng<float, 4>;
extern template class KR_BASE_API RnMultiRng<double, 2>;
extern template class KR_BASE_API RnMultiRng<double, 3>;
extern template class KR_BASE_API RnMultiRng<double, 4>;

} // namespace Kr
