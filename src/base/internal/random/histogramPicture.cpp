#include <base/internal/random/histogramPicture.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ostream>

namespace Kr
{

namespace
{

double getScale(const std::vector<double>& weights)
{
    const double greatest = *std::max_element(weights.begin(), weights.end());
    return greatest > 0. ? 1. / greatest : 0.;
}

void writeLittleEndian(std::ostream& os, std::uint32_t value, int byteCount)
{
    for (int i = 0; i < byteCount; ++i)
        os.put(static_cast<char>(value >> 8 * i & 0xFF));
}

} // namespace

void writeBars(std::ostream& os, const std::vector<double>& weights)
{
    constexpr unsigned int width = 1024, height = 512;
    os << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 1024 512\" fill=\"#345\">\n";
    const double scale = getScale(weights);
    const auto count = static_cast<unsigned int>(weights.size());
    for (unsigned int i = 0; i < count; ++i)
    {
        const unsigned int left = width * i / count;
        const unsigned int right = width * (i + 1) / count;
        const auto bar = static_cast<unsigned int>(std::lround(weights[i] * scale * height));
        os << "<rect x=\"" << left << "\" y=\"" << height - bar << "\" width=\""
           << std::max(right - left - (count <= width / 4 ? 1 : 0), 1U) << "\" height=\"" << bar
           << "\"/>\n";
    }
    os << "</svg>\n";
}

void writePixels(std::ostream& os, const std::vector<double>& weights, unsigned int width,
                 unsigned int height)
{
    constexpr std::uint32_t headerSize = 54, greyCount = 256;
    const std::uint32_t rowSize = (width + 3) / 4 * 4;
    const std::uint32_t start = headerSize + 4 * greyCount;
    os << "BM";
    for (const std::uint32_t field : {start + rowSize * height, 0U, start, 40U, width, height})
        writeLittleEndian(os, field, 4);
    writeLittleEndian(os, 1, 2); // planes
    writeLittleEndian(os, 8, 2); // bits a pixel
    for (const std::uint32_t field : {0U, rowSize * height, 0U, 0U, greyCount, 0U})
        writeLittleEndian(os, field, 4);
    for (std::uint32_t grey = 0; grey < greyCount; ++grey)
        writeLittleEndian(os, grey * 0x010101U, 4);
    const double scale = getScale(weights);
    for (unsigned int j = 0; j < height; ++j)
    {
        for (unsigned int i = 0; i < width; ++i)
            os.put(static_cast<char>(
                std::lround(std::sqrt(weights[std::size_t(j) * width + i] * scale) * 255.)));
        writeLittleEndian(os, 0, static_cast<int>(rowSize - width));
    }
}

BoxWriter::BoxWriter(std::ostream& os)
    : _os(os)
    , _vertexCount(0)
{
}

void BoxWriter::write(const Corner& min, const Corner& max)
{
    char line[128];
    for (unsigned int corner = 0; corner < 8; ++corner)
    {
        std::snprintf(line, sizeof line, "v %.9g %.9g %.9g\n", (corner & 1 ? max : min)[0],
                      (corner & 2 ? max : min)[1], (corner & 4 ? max : min)[2]);
        _os << line;
    }
    // Counter-clockwise from outside: bottom, top, front, back, left, right.
    static constexpr unsigned int faces[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                                 {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
    for (const auto& face : faces)
    {
        _os << 'f';
        for (const unsigned int corner : face)
            _os << ' ' << _vertexCount + corner + 1;
        _os << '\n';
    }
    _vertexCount += 8;
}

} // namespace Kr
