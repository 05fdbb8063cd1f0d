#pragma once

/// @file
/// Directions, as unit vectors, from points of the unit square: on the sphere, the hemisphere
/// around an axis, the same weighted with the cosine to the axis, and in a cone around it. The axis
/// is +z, unless the caller gives another.
/// @code
/// Kr::RnHaltonBiRng<double> points;
/// Kr::RnCosineHemisphereMultiRng<double> bounce(&points);
/// double direction[3];
/// bounce.getSample(direction);                     // z is its cosine to the normal
/// const double density = bounce.getPdf(direction); // z / pi, per steradian
///
/// const double normal[] = {0, 3, 4}; // of any length
/// bounce.setAxis(normal);
/// bounce.getSample(direction); // around (0, 0.6, 0.8)
/// @endcode
/// Evenly spread points give evenly spread directions: the first coordinate decides on the angle to
/// the axis, with equal steps for equal solid angles (or projected ones), the second on the angle
/// around it, from the frame's x to its y.
///
/// Pitfalls: `getPdf` wants a unit vector. The interval and its fraction are those of the box
/// around all directions. Coordinates of the source outside [0, 1] are taken as 0 or 1. Around
/// another axis than +z samples are unit vectors, lie in the box and keep to the rim within some
/// units in the last place.

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

    /// Takes an axis in place of +z; it need not have the length 1. The frame's x and y are made
    /// from it (T. Duff et al.: Building an Orthonormal Basis, Revisited. Journal of Computer
    /// Graphics Techniques 6 (1), 2017): for +z and all above the horizon, +x and +y turned along
    /// with +z the shortest way.
    /// @throws ExInternalError if the axis is null, or its length is 0 or not finite
    void setAxis(const T* axis);

    /// Takes a frame in place of +x, +y and +z: three unit vectors at right angles to each other,
    /// which is not checked. The last is the axis.
    /// @throws ExInternalError if a vector is null
    void setFrame(const T* x, const T* y, const T* z);

    /// The unit vector of the axis.
    void getAxis(T* axis) const;

protected:
    explicit RnDirectionMultiRng(RnBiRng<T>* rng);

    /// The cosine of a direction to the axis.
    double getCosine(const T* direction) const;

    /// By how much rounding can change it.
    double getCosineError() const;

    /// The cosine and the sine of the greatest angle to the axis.
    struct Rim
    {
        double cosine;
        double sine;
    };
    virtual Rim getRim() const = 0;

private:
    /// 1 less the cosine to the axis, for a first coordinate from 0 to 1.
    virtual double getDepth(double u) const = 0;
    void getDirection(T u, T v, T& x, T& y, T& z) const;
    void setFrame(const double (&frame)[3][3]);
    double getExtent(double cosine) const;

    RnBiRng<T>* _rng;
    bool _isTurned = false;
    double _frame[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}; ///< x, y and z
};

template <class T>
RnBiRng<T>* RnDirectionMultiRng<T>::getRng() const
{
    return _rng;
}

/// Uniform in the cone of all directions that are at most an angle away from the axis.
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
        double value; ///< 1 less the cosine of the rim
    };
    RnConeMultiRng(RnBiRng<T>* rng, Depth depth);
    typename RnDirectionMultiRng<T>::Rim getRim() const override;

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

/// Uniform on the hemisphere around the axis.
template <class T>
class RnHemisphereMultiRng : public RnConeMultiRng<T>
{
public:
    /// Borrows the source.
    /// @throws ExInternalError if it is null
    explicit RnHemisphereMultiRng(RnBiRng<T>* rng);
    char const* getName() const override;
};

/// On the hemisphere around the axis, with a density in proportion to the cosine.
template <class T>
class RnCosineHemisphereMultiRng : public RnDirectionMultiRng<T>
{
public:
    /// Borrows the source.
    /// @throws ExInternalError if it is null
    explicit RnCosineHemisphereMultiRng(RnBiRng<T>* rng);

    /// The cosine to the axis / pi per steradian; 0 below the horizon.
    T getPdf(T* const x) const override;
    char const* getName() const override;

protected:
    typename RnDirectionMultiRng<T>::Rim getRim() const override;

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
