#pragma once

/// @file
/// Niederreiter's sequence in base 2, in four dimensions: pixel and lens, or two bounces of light.
/// More even in four dimensions than Halton's, and several times faster.
/// @code
/// Kr::RnNiederreiterMultiRng<float> points;
/// float x[1024], y[1024], u[1024], v[1024];
/// float* coordinates[] = {x, y, u, v};
/// points.getSequence(1024, coordinates);
/// points.getBlock(1 << 20, 1024, coordinates); // 1024 points from any place, for any thread
/// @endcode
/// Pitfalls: take the points in numbers that are powers of two. The first 4096 points of the
/// sequence, which line up, are left out; after 2^31 points they repeat.
///
/// H. Niederreiter: Low-Discrepancy and Low-Dispersion Sequences. Journal of Number Theory 30,
/// 1988. P. Bratley, B. L. Fox, H. Niederreiter: Implementation and Tests of Low-Discrepancy
/// Sequences. ACM Transactions on Modeling and Computer Simulation 2 (3), 1992.

#include <base/rnUnitRng.h>

#include <cstdint>

namespace Kr
{

template <class T>
class RnNiederreiterMultiRng : public RnUnitMultiRng<T, 4>
{
public:
    RnNiederreiterMultiRng();

    void getSample(T* const sample) override;
    /// A derived class's `getSample` is called for each point; without one, this is the fast path.
    /// @throws ExInternalError if `array` is null
    void getSequence(unsigned int n, T** const array) override;
    /// The points that `n` calls after `restart(index)` would give; the generator stays as it is.
    /// @throws ExInternalError if `array` is null
    void getBlock(unsigned int index, unsigned int n, T** const array) const;

    /// `restart(0)`
    void restart() override;
    /// The next point is the one at `index`.
    void restart(unsigned int index);
    unsigned int getIndex() const;
    char const* getName() const override;

private:
    std::uint32_t _index;
};

template <class T>
unsigned int RnNiederreiterMultiRng<T>::getIndex() const
{
    return _index;
}

extern template class KR_BASE_API RnNiederreiterMultiRng<float>;
extern template class KR_BASE_API RnNiederreiterMultiRng<double>;

} // namespace Kr
