#pragma once

#include <cstdint>
#include <memory>
#include <string>

/// What pictures are drawn on: the same strokes make an SVG or a PNG file. The origin is at the top
/// left; lengths are in pixels, colours 0xRRGGBB.
class Canvas
{
public:
    enum Anchor
    {
        Left,
        Centre
    };

    virtual ~Canvas() = default;
    virtual void fillBox(double x, double y, double width, double height, std::uint32_t colour) = 0;
    virtual void fillDot(double x, double y, double radius, std::uint32_t colour) = 0;
    virtual void drawLine(double x0, double y0, double x1, double y1, double width,
                          std::uint32_t colour) = 0;
    /// Capitals of the given height, standing on y.
    virtual void drawText(double x, double y, double height, const std::string& text, Anchor anchor,
                          std::uint32_t colour) = 0;
    /// Writes the file; throws std::runtime_error if that fails.
    virtual void save() = 0;
};

/// By the file's extension, .svg or .png.
std::unique_ptr<Canvas> makeCanvas(const std::string& file, int width, int height);
std::unique_ptr<Canvas> makeSvgCanvas(const std::string& file, int width, int height);
std::unique_ptr<Canvas> makePngCanvas(const std::string& file, int width, int height);
