#pragma once

#include <cstdint>
#include <memory>
#include <string>

/// What pictures are drawn on: the same strokes make an SVG or a PNG file. The origin is at the top
/// left; lengths are in pixels, colours 0xRRGGBB.
class Canvas
{
public:
    virtual ~Canvas() = default;
    virtual void fillBox(double x, double y, double width, double height, std::uint32_t colour) = 0;
    virtual void fillDot(double x, double y, double radius, std::uint32_t colour) = 0;
    virtual void drawLine(double x0, double y0, double x1, double y1, double width,
                          std::uint32_t colour) = 0;
    /// Letters of the given height, from x on, standing on y. In a PNG small letters are small
    /// capitals.
    virtual void drawText(double x, double y, double height, const std::string& text,
                          std::uint32_t colour) = 0;
    /// Writes the file; throws std::runtime_error if that fails.
    virtual void save() = 0;
};

/// By the file's extension, .svg or .png.
std::unique_ptr<Canvas> makeCanvas(const std::string& file, int width, int height);
std::unique_ptr<Canvas> makeSvgCanvas(const std::string& file, int width, int height);
std::unique_ptr<Canvas> makePngCanvas(const std::string& file, int width, int height);

/// All at once; throws std::runtime_error if that fails.
void writeFile(const std::string& file, const std::string& bytes);
