#include <base/assert.h>
#include <base/internal/random/elementary.h>
#include <base/rnDirectionMultiRng.h>

#include <cmath>
#include <limits>

namespace Kr
{

namespace
{

constexpr double pi = 3.14159265358979323846;

/// A NaN becomes 0.
double getClamped(double u)
{
    return u > 0. ? (u < 1. ? u : 1.) : 0.;
}

/// The sine of an angle whose cosine is 1 - depth, without cancellation near the axis.
double getSine(double depth)
{
    return std::sqrt(depth * (2. - depth));
}

} // namespace

template <class T>
RnDirectionMultiRng<T>::RnDirectionMultiRng(RnBiRng<T>* rng)
    : _rng(rng)
{
    KR_ASSERT(_rng);
}

template <class T>
void RnDirectionMultiRng<T>::getDirection(T u, T v, T& x, T& y, T& z) const
{
    const double depth = getDepth(getClamped(static_cast<double>(u)));
    const double sine = getSine(depth);
    const Elementary::SinCos around = Elementary::sinCosOfTurns(getClamped(static_cast<double>(v)));
    const double local[] = {sine * around.cos, sine * around.sin, 1. - depth};
    const auto turn = [this, &local](unsigned int d)
    {
        const double sum = local[0] * _frame[0][d] + local[1] * _frame[1][d];
        return static_cast<T>(_isTurned ? sum + local[2] * _frame[2][d] : local[d]);
    };
    x = turn(0);
    y = turn(1);
    z = turn(2);
}

template <class T>
void RnDirectionMultiRng<T>::getSample(T* const sample)
{
    T u = 0, v = 0;
    _rng->getSample(u, v);
    getDirection(u, v, sample[0], sample[1], sample[2]);
}

template <class T>
void RnDirectionMultiRng<T>::getSequence(unsigned int n, T** const array)
{
    KR_ASSERT(array);
    _rng->getSequence(n, array[0], array[1]);
    for (unsigned int i = 0; i < n; ++i)
        getDirection(array[0][i], array[1][i], array[0][i], array[1][i], array[2][i]);
}

template <class T>
void RnDirectionMultiRng<T>::getEfficientWidth(T* const width) const
{
    for (unsigned int d = 0; d < 3; ++d)
        width[d] = static_cast<T>(getExtent(_frame[2][d]) + getExtent(-_frame[2][d]));
}

template <class T>
void RnDirectionMultiRng<T>::getEfficientMin(T* const min) const
{
    for (unsigned int d = 0; d < 3; ++d)
        min[d] = static_cast<T>(-getExtent(-_frame[2][d]));
}

template <class T>
void RnDirectionMultiRng<T>::getEfficientMax(T* const max) const
{
    for (unsigned int d = 0; d < 3; ++d)
        max[d] = static_cast<T>(getExtent(_frame[2][d]));
}

/// How far the directions go along one that has that cosine to the axis: all the way if it is
/// within the rim, else as far as the point of the rim that is nearest.
template <class T>
double RnDirectionMultiRng<T>::getExtent(double cosine) const
{
    const Rim rim = getRim();
    if (cosine >= rim.cosine)
        return 1.;
    return cosine * rim.cosine + getSine(1. - cosine) * rim.sine;
}

template <class T>
T RnDirectionMultiRng<T>::getEfficientFraction() const
{
    return 1;
}

template <class T>
void RnDirectionMultiRng<T>::restart()
{
    _rng->restart();
}

template <class T>
void RnDirectionMultiRng<T>::setAxis(const T* axis)
{
    KR_ASSERT(axis);
    double unit[] = {static_cast<double>(axis[0]), static_cast<double>(axis[1]),
                     static_cast<double>(axis[2])};
    const double greatest = std::fmax(std::fmax(std::fabs(unit[0]), std::fabs(unit[1])), //
                                      std::fabs(unit[2]));
    for (double& component : unit)
        component /= greatest; // so that no square overflows or vanishes
    const double length = std::sqrt(unit[0] * unit[0] + unit[1] * unit[1] + unit[2] * unit[2]);
    KR_ASSERT_TEXT(length > 0., "the axis is finite and not 0", __LINE__);
    const double x = unit[0] / length, y = unit[1] / length, z = unit[2] / length;
    const double sign = z < 0. ? -1. : 1.;
    const double a = -1. / (sign + z);
    const double b = x * y * a;
    setFrame({{1. + sign * x * x * a, sign * b, -sign * x}, {b, sign + y * y * a, -y}, {x, y, z}});
}

template <class T>
void RnDirectionMultiRng<T>::setFrame(const T* x, const T* y, const T* z)
{
    KR_ASSERT(x && y && z);
    const T* const axes[] = {x, y, z};
    double frame[3][3];
    for (unsigned int i = 0; i < 3; ++i)
        for (unsigned int d = 0; d < 3; ++d)
            frame[i][d] = static_cast<double>(axes[i][d]);
    setFrame(frame);
}

/// +x, +y and +z need no turning, and keep their samples to the bit.
template <class T>
void RnDirectionMultiRng<T>::setFrame(const double (&frame)[3][3])
{
    _isTurned = false;
    for (unsigned int i = 0; i < 3; ++i)
        for (unsigned int d = 0; d < 3; ++d)
        {
            _frame[i][d] = frame[i][d];
            _isTurned = _isTurned || frame[i][d] != (i == d ? 1. : 0.);
        }
}

template <class T>
void RnDirectionMultiRng<T>::getAxis(T* axis) const
{
    KR_ASSERT(axis);
    for (unsigned int d = 0; d < 3; ++d)
        axis[d] = static_cast<T>(_frame[2][d]);
}

template <class T>
double RnDirectionMultiRng<T>::getCosine(const T* direction) const
{
    double sum = 0.;
    for (unsigned int d = 0; d < 3; ++d)
        sum += static_cast<double>(direction[d]) * _frame[2][d];
    return sum;
}

template <class T>
double RnDirectionMultiRng<T>::getCosineError() const
{
    return _isTurned ? 4. * static_cast<double>(std::numeric_limits<T>::epsilon()) : 0.;
}

// --- cone, sphere, hemisphere
// ---------------------------------------------------------------------

namespace
{

/// 1 - cos(angle) as twice the square of the half angle's sine.
double getRimDepth(double halfAngle)
{
    KR_ASSERT_TEXT(halfAngle > 0. && halfAngle < 3.1415928, "halfAngle > 0 && halfAngle <= pi",
                   __LINE__);
    const double sine = Elementary::sinCosOfTurns(halfAngle / (4. * pi)).sin;
    return std::fmin(2. * sine * sine, 2.);
}

} // namespace

template <class T>
RnConeMultiRng<T>::RnConeMultiRng(RnBiRng<T>* rng, T halfAngle)
    : RnDirectionMultiRng<T>(rng)
    , _depth(getRimDepth(static_cast<double>(halfAngle)))
{
}

template <class T>
RnConeMultiRng<T>::RnConeMultiRng(RnBiRng<T>* rng, Depth depth)
    : RnDirectionMultiRng<T>(rng)
    , _depth(depth.value)
{
}

template <class T>
double RnConeMultiRng<T>::getDepth(double u) const
{
    return u * _depth;
}

template <class T>
typename RnDirectionMultiRng<T>::Rim RnConeMultiRng<T>::getRim() const
{
    return {1. - _depth, getSine(_depth)};
}

template <class T>
T RnConeMultiRng<T>::getPdf(T* const x) const
{
    // Rounded like a sample at the rim, so that every sample has its density.
    const double rim = static_cast<double>(static_cast<T>(1. - _depth));
    const bool isInside = this->getCosine(x) >= rim - this->getCosineError();
    return isInside ? static_cast<T>(1. / (2. * pi * _depth)) : T(0);
}

template <class T>
char const* RnConeMultiRng<T>::getName() const
{
    return "Cone";
}

template <class T>
RnSphereMultiRng<T>::RnSphereMultiRng(RnBiRng<T>* rng)
    : RnConeMultiRng<T>(rng, typename RnConeMultiRng<T>::Depth{2.})
{
}

template <class T>
char const* RnSphereMultiRng<T>::getName() const
{
    return "Sphere";
}

template <class T>
RnHemisphereMultiRng<T>::RnHemisphereMultiRng(RnBiRng<T>* rng)
    : RnConeMultiRng<T>(rng, typename RnConeMultiRng<T>::Depth{1.})
{
}

template <class T>
char const* RnHemisphereMultiRng<T>::getName() const
{
    return "Hemisphere";
}

// --- cosine-weighted hemisphere
// -------------------------------------------------------------------

template <class T>
RnCosineHemisphereMultiRng<T>::RnCosineHemisphereMultiRng(RnBiRng<T>* rng)
    : RnDirectionMultiRng<T>(rng)
{
}

/// z is sqrt(1 - u); in this form nothing cancels near the axis.
template <class T>
double RnCosineHemisphereMultiRng<T>::getDepth(double u) const
{
    return u / (1. + std::sqrt(1. - u));
}

template <class T>
typename RnDirectionMultiRng<T>::Rim RnCosineHemisphereMultiRng<T>::getRim() const
{
    return {0., 1.};
}

template <class T>
T RnCosineHemisphereMultiRng<T>::getPdf(T* const x) const
{
    const double cosine = this->getCosine(x);
    return cosine > 0. ? static_cast<T>(cosine / pi) : T(0);
}

template <class T>
char const* RnCosineHemisphereMultiRng<T>::getName() const
{
    return "Cosine-weighted Hemisphere";
}

template class RnDirectionMultiRng<float>;
template class RnDirectionMultiRng<double>;
template class RnConeMultiRng<float>;
template class RnConeMultiRng<double>;
template class RnSphereMultiRng<float>;
template class RnSphereMultiRng<double>;
template class RnHemisphereMultiRng<float>;
template class RnHemisphereMultiRng<double>;
template class RnCosineHemisphereMultiRng<float>;
template class RnCosineHemisphereMultiRng<double>;

} // namespace Kr
