#include <base/assert.h>
#include <base/internal/random/elementary.h>
#include <base/rnDirectionMultiRng.h>

#include <cmath>

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
    x = static_cast<T>(sine * around.cos);
    y = static_cast<T>(sine * around.sin);
    z = static_cast<T>(1. - depth);
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
    const Bounds bounds = getBounds();
    width[0] = width[1] = static_cast<T>(2. * bounds.radius);
    width[2] = static_cast<T>(1. - bounds.minZ);
}

template <class T>
void RnDirectionMultiRng<T>::getEfficientMin(T* const min) const
{
    const Bounds bounds = getBounds();
    min[0] = min[1] = static_cast<T>(-bounds.radius);
    min[2] = static_cast<T>(bounds.minZ);
}

template <class T>
void RnDirectionMultiRng<T>::getEfficientMax(T* const max) const
{
    max[0] = max[1] = static_cast<T>(getBounds().radius);
    max[2] = 1;
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
typename RnDirectionMultiRng<T>::Bounds RnConeMultiRng<T>::getBounds() const
{
    return {1. - _depth, _depth < 1. ? getSine(_depth) : 1.};
}

template <class T>
T RnConeMultiRng<T>::getPdf(T* const x) const
{
    // Rounded like a sample at the rim, so that every sample has its density.
    const bool isInside = x[2] >= static_cast<T>(1. - _depth);
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
typename RnDirectionMultiRng<T>::Bounds RnCosineHemisphereMultiRng<T>::getBounds() const
{
    return {0., 1.};
}

template <class T>
T RnCosineHemisphereMultiRng<T>::getPdf(T* const x) const
{
    return x[2] > 0 ? static_cast<T>(static_cast<double>(x[2]) / pi) : T(0);
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
