#include "canvas.h"

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#include <stb_image_write.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <map>
#include <stdexcept>
#include <vector>

namespace
{

/// Letters as strokes on a grid 4 wide and 6 high, from the top left: each pair of digits is a
/// point, a space lifts the pen.
const std::map<char, const char*> letters = {{'A', "062046 1434"},
                                             {'B', "06003041423303 3344453606"},
                                             {'C', "4130100105163645"},
                                             {'D', "00062644422000"},
                                             {'E', "40000646 0333"},
                                             {'F', "400006 0333"},
                                             {'G', "41301001051636454323"},
                                             {'H', "0006 4046 0343"},
                                             {'I', "2026"},
                                             {'J', "4045361605"},
                                             {'K', "0006 4003 1346"},
                                             {'L', "000646"},
                                             {'M', "0600234046"},
                                             {'N', "06004640"},
                                             {'O', "100105163645413010"},
                                             {'P', "06003041423303"},
                                             {'Q', "100105163645413010 2446"},
                                             {'R', "06003041423303 2346"},
                                             {'S', "413010010213334445361605"},
                                             {'T', "0040 2026"},
                                             {'U', "000516364540"},
                                             {'V', "002640"},
                                             {'W', "0016233640"},
                                             {'X', "0046 4006"},
                                             {'Y', "002340 2326"},
                                             {'Z', "00400646"},
                                             {'0', "100105163645413010"},
                                             {'1', "112026"},
                                             {'2', "01103041420646"},
                                             {'3', "01103041423313 3344453616 1605"},
                                             {'4', "36300444"},
                                             {'5', "400002324345361605"},
                                             {'6', "4130100105163645443304"},
                                             {'7', "004016"},
                                             {'8', "100102133342413010 1304051636454433"},
                                             {'9', "0516364541301001021343"},
                                             {'.', "2626"},
                                             {',', "2617"},
                                             {'-', "1333"},
                                             {'+', "1333 2224"},
                                             {'*', "2124 1233 3213"},
                                             {'/', "0640"},
                                             {'=', "0242 0444"},
                                             {':', "2222 2525"},
                                             {'(', "30212536"},
                                             {')', "10212516"},
                                             {'^', "122032"}};

/// Between two letters, in steps of the grid.
constexpr double letterGap = 1.9;

class PngCanvas : public Canvas
{
public:
    PngCanvas(const std::string& file, int width, int height)
        : _file(file)
        , _width(width)
        , _height(height)
        , _pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3, 255)
    {
    }

    void fillBox(double x, double y, double width, double height, std::uint32_t colour) override
    {
        const auto getShare = [](double pixel, double from, double to)
        { return std::clamp(std::min(pixel + 1, to) - std::max(pixel, from), 0., 1.); };
        visit(x, y, x + width, y + height, colour,
              [&](int i, int j) { return getShare(i, x, x + width) * getShare(j, y, y + height); });
    }

    void fillDot(double x, double y, double radius, std::uint32_t colour) override
    {
        drawLine(x, y, x, y, 2 * radius, colour);
    }

    /// Coverage falls from 1 to 0 over the pixel that the edge goes through.
    void drawLine(double x0, double y0, double x1, double y1, double width,
                  std::uint32_t colour) override
    {
        const double dx = x1 - x0, dy = y1 - y0, length2 = dx * dx + dy * dy, radius = width / 2;
        const auto getCoverage = [&](int i, int j)
        {
            const double px = i + 0.5 - x0, py = j + 0.5 - y0;
            const double along =
                length2 > 0 ? std::clamp((px * dx + py * dy) / length2, 0., 1.) : 0;
            return std::clamp(radius + 0.5 - getLength(px - along * dx, py - along * dy), 0., 1.);
        };
        visit(std::min(x0, x1) - radius - 1, std::min(y0, y1) - radius - 1,
              std::max(x0, x1) + radius + 1, std::max(y0, y1) + radius + 1, colour, getCoverage);
    }

    void drawText(double x, double y, double height, const std::string& text,
                  std::uint32_t colour) override
    {
        for (const char c : text)
        {
            const Letter letter = getLetter(c);
            const double unit = getUnit(c, height);
            drawLetter(x - letter.left * unit, y - 6 * unit, unit, letter.strokes, colour);
            x += letter.width * unit;
        }
    }

    void save() override
    {
        const auto append = [](void* bytes, void* data, int size)
        {
            static_cast<std::string*>(bytes)->append(static_cast<const char*>(data),
                                                     static_cast<std::size_t>(size));
        };
        std::string bytes;
        if (stbi_write_png_to_func(append, &bytes, _width, _height, 3, _pixels.data(), 0) == 0)
            throw std::runtime_error("cannot encode " + _file);
        writeFile(_file, bytes);
    }

private:
    /// In nothing but correctly rounded operations, for the same pixels everywhere.
    static double getLength(double x, double y) { return std::sqrt(x * x + y * y); }

    /// Blends the colour into all pixels of a rectangle, by the coverage of each.
    template <class Coverage>
    void visit(double left, double top, double right, double bottom, std::uint32_t colour,
               Coverage coverage)
    {
        const int beginX = std::max(0, static_cast<int>(std::floor(left)));
        const int endX = std::min(_width, static_cast<int>(std::ceil(right)));
        const int endY = std::min(_height, static_cast<int>(std::ceil(bottom)));
        for (int j = std::max(0, static_cast<int>(std::floor(top))); j < endY; ++j)
            for (int i = beginX; i < endX; ++i)
                blend(i, j, colour, coverage(i, j));
    }

    void blend(int i, int j, std::uint32_t colour, double share)
    {
        unsigned char* const pixel =
            &_pixels[(static_cast<std::size_t>(j) * static_cast<std::size_t>(_width) +
                      static_cast<std::size_t>(i)) *
                     3];
        for (unsigned int c = 0; c < 3; ++c)
        {
            const double target = colour >> (16 - 8 * c) & 0xFF;
            pixel[c] =
                static_cast<unsigned char>(std::lround(pixel[c] + (target - pixel[c]) * share));
        }
    }

    struct Letter
    {
        const char* strokes;
        int left;
        double width; ///< with the gap to the next one
    };

    /// What a step of the letters' grid is; small letters are small capitals.
    static double getUnit(char c, double height)
    {
        return height / 6 * (std::islower(static_cast<unsigned char>(c)) != 0 ? 0.8 : 1);
    }

    static Letter getLetter(char c)
    {
        const auto found =
            letters.find(static_cast<char>(std::toupper(static_cast<unsigned char>(c))));
        if (found == letters.end())
            return {"", 0, 3};
        int left = 4, right = 0;
        for (const char* point = found->second; point[0] != '\0'; point += point[2] == ' ' ? 3 : 2)
        {
            left = std::min(left, point[0] - '0');
            right = std::max(right, point[0] - '0');
        }
        return {found->second, left, right - left + letterGap};
    }

    void drawLetter(double x, double y, double unit, const char* strokes, std::uint32_t colour)
    {
        bool isDown = false;
        double lastX = 0, lastY = 0;
        for (const char* point = strokes; point[0] != '\0'; point += 2)
        {
            if (*point == ' ')
            {
                isDown = false;
                ++point;
            }
            const double nextX = x + (point[0] - '0') * unit, nextY = y + (point[1] - '0') * unit;
            if (isDown)
                drawLine(lastX, lastY, nextX, nextY, std::max(1.2, unit * 0.85), colour);
            lastX = nextX;
            lastY = nextY;
            isDown = true;
        }
    }

    std::string _file;
    int _width;
    int _height;
    std::vector<unsigned char> _pixels;
};

} // namespace

std::unique_ptr<Canvas> makePngCanvas(const std::string& file, int width, int height)
{
    return std::make_unique<PngCanvas>(file, width, height);
}
