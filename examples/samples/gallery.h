#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// A generator, and what is known about it.
struct Exhibit
{
    using Point = std::array<double, 3>;

    enum Kind
    {
        Line,  ///< single values
        Plane, ///< points, of which the first two coordinates are drawn
        Globe  ///< directions
    };

    std::string name;
    std::string detail;
    Kind kind;
    bool isUnit; ///< uniform on the unit interval or square, so that it has a discrepancy
    std::array<double, 2> min, max;
    /// The first n samples, from the start of the sequence.
    std::function<std::vector<Point>(unsigned int n)> draw;
    /// The density of a single value, for `Line`.
    std::function<double(double x)> getPdf;
    /// A function whose mean over the distribution is 1.
    std::function<double(const Point&)> integrand;
};

/// All generators of the library.
std::vector<Exhibit> getGallery();
