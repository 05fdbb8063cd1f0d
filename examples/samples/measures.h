#pragma once

#include "gallery.h"

/// The L2 star discrepancy of points in the unit interval (`dimension` 1) or square (2): how far,
/// in the mean over all boxes from the origin, the share of points in a box is from its size.
double getDiscrepancy(const std::vector<Exhibit::Point>& points, unsigned int dimension);

/// The absolute error of the exhibit's integral.
double getIntegralError(const Exhibit& exhibit, const std::vector<Exhibit::Point>& points);
