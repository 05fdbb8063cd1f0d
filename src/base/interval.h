#pragma once

/// @file
/// Closed intervals [lower, upper]: arithmetic, set operations, and how one lies against another.
/// @code
/// const Kr::Interval<double> visible(0., 10.), shot(8., 12.);
/// if (visible.getExclusiveContainment(shot) != Kr::Interval<double>::Disjoint)
///     draw(visible.getIntersection(shot)); // [8, 10]
/// const Kr::Interval<double> volume = visible * -2.; // [-20, 0]
/// @endcode
/// T is `float`, `double`, an integer, or a class over `long long` such as `DtTimeIndex` (include
/// <base/dtTimeIndexInterval.h>); nothing else compiles.
///
/// An interval always has lower <= upper; ends given in the wrong order are exchanged. The one
/// exception is the empty interval, `getEmpty()`: the intersection of disjoint intervals, and the
/// start of a hull that grows by `extend`. Arithmetic with it gives it again.
///
/// Arithmetic is that of closed intervals: the result holds every value that the operation gives
/// for values of its operands, so `x - x` holds zero but is not zero. The rules of the types:
/// - floating point: ends are rounded to nearest (not outward: the last bit of an end is not
///   guaranteed); zero times infinity is zero, since no value of an interval is infinite. A NaN end
///   is kept: the interval contains nothing, meets nothing and makes what it enters NaN;
/// - integers: ends saturate at the type's limits instead of wrapping around (at 0, where an
///   unsigned difference would fall below), and division truncates toward zero. The empty interval
///   is [greatest, least].
///
/// A value type; distinct intervals can be used by distinct threads.
/// Source: R. E. Moore, Interval Analysis, 1966.

#include <base/assert.h>
#include <base/internal/numeric/rounded.h>
#include <base/krBaseApi.h>

#include <iosfwd>
#include <type_traits>

namespace Kr
{

template <class T>
class Interval
{
    static_assert(std::is_same_v<T, float> || std::is_same_v<T, double> ||
                      (std::is_integral_v<T> && !std::is_same_v<T, bool>) ||
                      (std::is_class_v<T> && std::is_convertible_v<T, long long>),
                  "the ends of an Interval are float, double, integers or tick counts");

public:
    /// How one interval lies against another.
    enum Containment
    {
        Disjoint = 0,
        Inside = 1,      ///< this lies within the other, or equals it
        Overlapping = 2, ///< they meet, and each has a part outside the other
        Enclosing = 3    ///< this covers the other, and more
    };

    /// [0, 0]
    Interval();
    /// [value, value]
    explicit Interval(const T& value);
    /// Exchanges the ends if they come in the wrong order.
    Interval(const T& lower, const T& upper);

    /// The interval that holds nothing.
    static Interval getEmpty();

    const T& getLower() const { return _lower; }
    const T& getUpper() const { return _upper; }

    /// upper - lower; 0 if empty.
    T getWidth() const;
    /// The middle; an integer's is rounded down. 0 if empty.
    T getCentre() const;

    /// @name Membership
    /// @{
    bool isEmpty() const { return _upper < _lower; }
    bool contains(const T& value) const { return _lower <= value && value <= _upper; }
    /// The empty interval is contained in every interval.
    bool contains(const Interval& other) const;
    /// Whether they share a value; a shared end is one.
    bool intersects(const Interval& other) const;

    bool operator==(const Interval& other) const;
    bool operator!=(const Interval& other) const { return !(*this == other); }
    /// @}

    /// @name Set operations
    /// @{

    /// The values in both; empty if there is none.
    Interval getIntersection(const Interval& other) const;
    /// The smallest interval that holds both: their union, and the gap between them if there is
    /// one.
    Interval getUnion(const Interval& other) const;
    /// Grows to hold the value.
    Interval& extend(const T& value);
    /// @}

    /// @name Containment of this interval against another
    /// Intervals that only touch at an end overlap inclusively and are disjoint exclusively. The
    /// empty interval is disjoint from all.
    /// @{
    Containment getInclusiveContainment(const Interval& other) const;
    Containment getExclusiveContainment(const Interval& other) const;
    /// @}

    /// @name Arithmetic
    /// @{
    Interval operator-() const;
    Interval operator+(const Interval& other) const;
    Interval operator-(const Interval& other) const;
    Interval operator*(const Interval& other) const;
    /// @throws ExInternalError if the divisor holds zero
    Interval operator/(const Interval& divisor) const;

    Interval operator+(const T& val) const { return *this + Interval(val); }
    Interval operator-(const T& val) const { return *this - Interval(val); }
    Interval operator*(const T& val) const { return *this * Interval(val); }
    /// @throws ExInternalError if the divisor is zero or NaN
    Interval operator/(const T& val) const;

    /// [1 / upper, 1 / lower]. Of an integer's interval only -1, 0 and 1 can come out.
    /// @throws ExInternalError if the interval holds zero
    Interval reciprocal() const;

    Interval& operator+=(const Interval& other) { return *this = *this + other; }
    Interval& operator-=(const Interval& other) { return *this = *this - other; }
    Interval& operator*=(const Interval& other) { return *this = *this * other; }
    Interval& operator/=(const Interval& divisor) { return *this = *this / divisor; }
    Interval& operator+=(const T& val) { return *this = *this + val; }
    Interval& operator-=(const T& val) { return *this = *this - val; }
    Interval& operator*=(const T& val) { return *this = *this * val; }
    Interval& operator/=(const T& val) { return *this = *this / val; }
    /// @}

    /// @name Arithmetic with a scalar on the left
    /// @{
    friend Interval operator+(const T& val, const Interval& interval) { return interval + val; }
    friend Interval operator-(const T& val, const Interval& interval)
    {
        return Interval(val) - interval;
    }
    friend Interval operator*(const T& val, const Interval& interval) { return interval * val; }
    /// @throws ExInternalError if the interval holds zero
    friend Interval operator/(const T& val, const Interval& interval)
    {
        return Interval(val) / interval;
    }
    /// @}

private:
    struct Ends;

    void checkHoldsNoZero() const;
    static Interval getHull(const T& a, const T& b, const T& c, const T& d);
    bool isWithin(const Interval& other) const;

    /// By three-bit codes; see the two containments.
    static const Containment _exclContMap[8];
    static const Containment _inclContMap[8];

    T _lower;
    T _upper;
};

/// Writes "[lower, upper]", and "[]" for the empty interval.
template <class T>
std::ostream& operator<<(std::ostream& os, const Interval<T>& interval);

// Compiled once, for the types that the library uses itself.
extern template KR_BASE_API std::ostream& operator<<(std::ostream&, const Interval<float>&);
extern template KR_BASE_API std::ostream& operator<<(std::ostream&, const Interval<double>&);

} // namespace Kr

#include <base/interval.inline>
