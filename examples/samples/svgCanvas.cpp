#include "canvas.h"

#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace
{

class SvgCanvas : public Canvas
{
public:
    SvgCanvas(const std::string& file, int width, int height)
        : _file(file)
    {
        _text << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << width << "\" height=\""
              << height << "\" viewBox=\"0 0 " << width << ' ' << height
              << "\" stroke-linecap=\"round\" "
              << "font-family=\"Helvetica, Arial, sans-serif\">\n";
    }

    void fillBox(double x, double y, double width, double height, std::uint32_t colour) override
    {
        _text << "<rect x=\"" << x << "\" y=\"" << y << "\" width=\"" << width << "\" height=\""
              << height << "\" fill=\"" << getColour(colour) << "\"/>\n";
    }
    void fillDot(double x, double y, double radius, std::uint32_t colour) override
    {
        _text << "<circle cx=\"" << x << "\" cy=\"" << y << "\" r=\"" << radius << "\" fill=\""
              << getColour(colour) << "\"/>\n";
    }
    void drawLine(double x0, double y0, double x1, double y1, double width,
                  std::uint32_t colour) override
    {
        _text << "<line x1=\"" << x0 << "\" y1=\"" << y0 << "\" x2=\"" << x1 << "\" y2=\"" << y1
              << "\" stroke=\"" << getColour(colour) << "\" stroke-width=\"" << width << "\"/>\n";
    }
    void drawText(double x, double y, double height, const std::string& text,
                  std::uint32_t colour) override
    {
        _text << "<text x=\"" << x << "\" y=\"" << y << "\" font-size=\"" << height * 1.38
              << "\" fill=\"" << getColour(colour) << "\" letter-spacing=\"" << height * 0.06
              << "\">" << text << "</text>\n";
    }
    void save() override { writeFile(_file, _text.str() + "</svg>\n"); }

private:
    static std::string getColour(std::uint32_t colour)
    {
        char text[8];
        std::snprintf(text, sizeof text, "#%06x", static_cast<unsigned int>(colour & 0xFFFFFF));
        return text;
    }

    std::string _file;
    std::ostringstream _text;
};

} // namespace

void writeFile(const std::string& file, const std::string& bytes)
{
    std::ofstream os(file, std::ios::binary);
    os << bytes;
    if (!os.flush())
        throw std::runtime_error("cannot write " + file);
}

std::unique_ptr<Canvas> makeSvgCanvas(const std::string& file, int width, int height)
{
    return std::make_unique<SvgCanvas>(file, width, height);
}

std::unique_ptr<Canvas> makeCanvas(const std::string& file, int width, int height)
{
    const std::string extension = file.size() > 4 ? file.substr(file.size() - 4) : "";
    if (extension == ".svg")
        return makeSvgCanvas(file, width, height);
    if (extension == ".png")
        return makePngCanvas(file, width, height);
    throw std::runtime_error(file + ": a picture's name ends with .svg or .png");
}
