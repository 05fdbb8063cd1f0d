#pragma once

/// @file
/// The files that histograms are looked at with.

#include <array>
#include <iosfwd>
#include <vector>

namespace Kr
{

/// An SVG picture of bars, 1024 by 512.
void writeBars(std::ostream& os, const std::vector<double>& weights);

/// A BMP picture of 256 greys, the first row at the bottom.
void writePixels(std::ostream& os, const std::vector<double>& weights, unsigned int width,
                 unsigned int height);

/// Boxes of an OBJ scene.
class BoxWriter
{
public:
    using Corner = std::array<double, 3>;

    explicit BoxWriter(std::ostream& os);
    void write(const Corner& min, const Corner& max);

private:
    std::ostream& _os;
    unsigned long _vertexCount;
};

} // namespace Kr
