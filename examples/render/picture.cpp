#include "picture.h"

#include <base/osSafeWriter.h>

#include <algorithm>

namespace
{

constexpr std::size_t headerSize = 54;

std::size_t rowSize(int width)
{
    return (static_cast<std::size_t>(width) * 3 + 3) / 4 * 4;
}

/// From light to the byte of a display, by a gamma of 2.
std::uint8_t encode(float light)
{
    return static_cast<std::uint8_t>(255.999F * Kr::FloatUtil::sqrt(std::clamp(light, 0.0F, 1.0F)));
}

void put(std::uint8_t* header, std::size_t offset, std::uint32_t value)
{
    for (int i = 0; i < 4; ++i)
        header[offset + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value >> 8 * i);
}

} // namespace

Picture::Picture(int width, int height)
    : _width(width)
    , _height(height)
    , _rows(rowSize(width) * static_cast<std::size_t>(height))
{
}

void Picture::setPixel(int x, int y, const Vector3& light)
{
    std::uint8_t* const pixel = &_rows[rowSize(_width) * static_cast<std::size_t>(_height - 1 - y) +
                                       3 * static_cast<std::size_t>(x)];
    pixel[0] = encode(light.z);
    pixel[1] = encode(light.y);
    pixel[2] = encode(light.x);
}

void Picture::write(const Kr::OsFilePath& path) const
{
    std::uint8_t header[headerSize] = {'B', 'M'};
    put(header, 2, static_cast<std::uint32_t>(headerSize + _rows.size()));
    put(header, 10, headerSize);
    put(header, 14, 40);
    put(header, 18, static_cast<std::uint32_t>(_width));
    put(header, 22, static_cast<std::uint32_t>(_height));
    put(header, 26, 1 | 24 << 16); // one plane, 24 bits a pixel
    put(header, 34, static_cast<std::uint32_t>(_rows.size()));

    Kr::OsSafeWriter writer(path);
    writer.write(header, headerSize);
    writer.write(_rows.data(), static_cast<unsigned long>(_rows.size()));
    writer.commit();
}
