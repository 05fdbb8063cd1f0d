#pragma once

/// @file
/// Directions, as unit vectors, from points of the unit square: on the sphere, the hemisphere
/// around +z, the same weighted with the cosine to +z, and in a cone around +z.
/// @code
/// Kr::RnHaltonBiRng<double> points;
/// Kr::RnCosineHemisphereMultiRng<double> bounce(&points);
/// double direction[3];
/// bounce.getSample(direction);                     // z is its cosine to the normal
/// const double density = bounce.getPdf(direction); // z / pi, per steradian
/// @endcode
/// Evenly spread points give evenly spread directions: the first coordinate decides on z, with
/// equal steps for equal solid angles (or projected ones), the second on the angle around z, from
/// +x to +y.
///
/// Pitfalls: `getPdf` wants a unit vector. The interval and its fraction are those of the box
/// around all directions. Coordinates of the source outside [0, 1] are taken as 0 or 1.

#include <base/rnBiRng.h>
#include <base/rnMultiRng.h>

namespace Kr
{

/// What all of them have in common.
template <class T>
class RnDirectionMultiRng : public RnMultiRng<T, 3>
{
public:
    void getSample(T* const sample) override;
    void getSequence(unsigned int n, T** const array) override;

    void getEfficientWidth(T* const width) const override;
    void getEfficientMin(T* const min) const override;
    void getEfficientMax(T* const max) const override;
    T getEfficientFraction() const override;

    /// Restarts the source.
    void restart() override;
    RnBiRng<T>* getRng() const;

protected:
    explicit RnDirectionMultiRng(RnBiRng<T>* rng);

    /// The least z of all directions, and the greatest distance from the z axis.
    struct Bounds
    {
        double minZ;
        double radius;
    };
    virtual Bounds getBounds() const = 0;

private:
    /// 1 - z, for a first coordinate from 0 to 1.
    virtual double getDepth(double u) const = 0;
    void getDirection(T u, T v, T& x, T& y, T& z) const;

    RnBiRng<T>* _rng;
};

template <class T>
RnBiRng<T>* RnDirectionMultiRng<T>::getRng() const
{
    return _rng;
}

/// Uniform in the cone of all directions that are at most an angle away from +z.
template <class T>
class RnConeMultiRng : public RnDirectionMultiRng<T>
{
public:
    /// Borrows the source. The angle, in radians, is above 0 and at most pi.
    /// @throws ExInternalError if the source is null or the angle is outside
    RnConeMultiRng(RnBiRng<T>* rng, T halfAngle);

    /// One divided by the solid angle of the cone, in steradians; 0 outside.
    T getPdf(T* const x) const override;
    char const* getName() const override;

protected:
    struct Depth
    {
        double value; ///< 1 - z at the rim
    };
    RnConeMultiRng(RnBiRng<T>* rng, Depth depth);
    typename RnDirectionMultiRng<T>::Bounds getBounds() const override;

private:
    double getDepth(double u) const override;

    double _depth;
};

/// Uniform on the sphere.
template <class T>
class RnSphereMultiRng : public RnConeMultiRng<T>
{
public:
    /// Borrows the source.
    /// @throws ExInternalError if it is null
    explicit RnSphereMultiRng(RnBiRng<T>* rng);
    char const* getName() const override;
};

/// Uniform on the hemisphere around +z.
template <class T>
class RnHemisphereMultiRng : public RnConeMultiRng<T>
{
public:
    /// Borrows the source.
    /// @throws ExInternalError if it is null
    explicit RnHemisphereMultiRng(RnBiRng<T>* rng);
    char const* getName() const override;
};

/// On the hemisphere around +z, with a density in proportion to z.
template <class T>
class RnCosineHemisphereMultiRng : public RnDirectionMultiRng<T>
{
public:
    /// Borrows the source.
    /// @throws ExInternalError if it is null
    explicit RnCosineHemisphereMultiRng(RnBiRng<T>* rng);

    /// z / pi per steradian; 0 below the horizon.
    T getPdf(T* const x) const override;
    char const* getName() const override;

protected:
    typename RnDirectionMultiRng<T>::Bounds getBounds() const override;

private:
    double getDepth(double u) const override;
};

extern template class KR_BASE_API RnDirectionMultiRng<float>;
extern template class KR_BASE_API RnDirectionMultiRng<double>;
extern template class KR_BASE_API RnConeMultiRng<float>;
extern template class KR_BASE_API RnConeMultiRng<double>;
extern template class KR_BASE_API RnSphereMultiRng<float>;
extern template class KR_BASE_API RnSphereMultiRng<double>;
extern template class KR_BASE_API RnHemisphereMultiRng<float>;
extern template class KR_BASE_API RnHemisphereMultiRng<double>;
extern template class KR_BASE_API RnCosineHemisphereMultiRng<float>;
extern template class KR_BASE_API RnCosineHemisphereMultiRng<double>;

} // namespace Kr
