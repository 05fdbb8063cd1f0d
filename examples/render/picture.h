#pragma once

#include "vector3.h"

#include <base/osFilePath.h>

#include <cstdint>
#include <vector>

/// Colours, row by row from the top, written as a BMP file.
class Picture
{
public:
    Picture(int width, int height);

    int getWidth() const { return _width; }
    int getHeight() const { return _height; }

    void setPixel(int x, int y, const Vector3& light);
    /// Replaces the file as a whole. Raises what the file system raises.
    void write(const Kr::OsFilePath& path) const;

private:
    int _width;
    int _height;
    std::vector<std::uint8_t> _rows; ///< blue, green, red, each row padded to four bytes
};
