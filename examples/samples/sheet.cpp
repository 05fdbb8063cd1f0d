#include "sheet.h"

#include "measures.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace
{

constexpr std::uint32_t paper = 0xF7F5F0, cell = 0xFFFFFF, ink = 0x1F2A37, faint = 0xE3E0D8,
                        grey = 0x7C8591;
/// By kind: values, points, directions; and what is behind a globe.
constexpr std::uint32_t colours[] = {0x2A6F97, 0x1F2A37, 0xA4432C};
constexpr std::uint32_t behind = 0xE2B9AC, curve = 0xD1902C;

constexpr int columns = 5;
constexpr double margin = 80, cellSize = 300, gap = 40, caption = 72, heading = 160;
constexpr unsigned int pointCount = 512, valueCount = 8192, barCount = 48;
/// As parts of a cell's size: what stays free inside of its frame, and the radius of a dot.
constexpr double inset = 0.04, dot = 0.0078;

void drawPoints(Canvas& canvas, const Exhibit& exhibit, unsigned int count, double x, double y,
                double size)
{
    const double left = x + inset * size, bottom = y + (1 - inset) * size;
    const double inner = (1 - 2 * inset) * size;
    for (const Exhibit::Point& p : exhibit.draw(count))
    {
        const double u = (p[0] - exhibit.min[0]) / (exhibit.max[0] - exhibit.min[0]);
        const double v = (p[1] - exhibit.min[1]) / (exhibit.max[1] - exhibit.min[1]);
        if (0 <= u && u <= 1 && 0 <= v && v <= 1)
            canvas.fillDot(left + u * inner, bottom - v * inner, dot * size,
                           colours[Exhibit::Plane]);
    }
}

/// Seen from above; the lower half first, since it is behind.
void drawGlobe(Canvas& canvas, const Exhibit& exhibit, unsigned int count, double x, double y,
               double size)
{
    const double radius = size * (0.5 - inset), middleX = x + size / 2, middleY = y + size / 2;
    canvas.fillDot(middleX, middleY, radius + 1.5, faint);
    canvas.fillDot(middleX, middleY, radius, cell);
    const std::vector<Exhibit::Point> points = exhibit.draw(count);
    for (const bool isFront : {false, true})
        for (const Exhibit::Point& p : points)
            if ((p[2] >= 0) == isFront)
                canvas.fillDot(middleX + p[0] * radius, middleY - p[1] * radius, dot * size,
                               isFront ? colours[Exhibit::Globe] : behind);
}

void drawBars(Canvas& canvas, const Exhibit& exhibit, unsigned int count, double x, double y,
              double size)
{
    const double range = exhibit.max[0] - exhibit.min[0];
    std::vector<double> bars(barCount);
    for (const Exhibit::Point& p : exhibit.draw(count))
    {
        const double bar = std::floor((p[0] - exhibit.min[0]) / range * barCount);
        if (0 <= bar && bar < barCount)
            bars[static_cast<std::size_t>(bar)] += barCount / range / count;
    }
    double top = *std::max_element(bars.begin(), bars.end());
    top = std::max(top, exhibit.getPdf(exhibit.min[0] + range / 2)) * 1.18;
    const double left = x + inset * size, base = y + (1 - inset) * size;
    const double inner = (1 - 2 * inset) * size, width = inner / barCount;
    for (unsigned int i = 0; i < barCount; ++i)
        canvas.fillBox(left + i * width + 0.6, base - bars[i] / top * inner, width - 1.2,
                       bars[i] / top * inner, colours[Exhibit::Line]);
    canvas.drawLine(left, base, left + inner, base, 1.2, grey);
    constexpr int steps = 240;
    for (int i = 0; i < steps; ++i)
    {
        const auto getHeight = [&](int step)
        {
            return base - exhibit.getPdf(exhibit.min[0] + range * (step + 0.5) / (steps + 1)) /
                              top * inner;
        };
        canvas.drawLine(left + inner * i / steps, getHeight(i), left + inner * (i + 1) / steps,
                        getHeight(i + 1), 2, curve);
    }
}

unsigned int getCount(const Exhibit& exhibit)
{
    return exhibit.kind == Exhibit::Line ? valueCount : pointCount;
}

std::string getMeasure(const Exhibit& exhibit)
{
    const unsigned int count = getCount(exhibit);
    char text[64];
    if (exhibit.isUnit)
        std::snprintf(text, sizeof text, "n %u  D %.5f", count,
                      getDiscrepancy(exhibit.draw(count), exhibit.kind == Exhibit::Plane ? 2 : 1));
    else
        std::snprintf(text, sizeof text, "n %u", count);
    return text;
}

} // namespace

void drawExhibit(Canvas& canvas, const Exhibit& exhibit, unsigned int count, double x, double y,
                 double size)
{
    canvas.fillBox(x - 1.5, y - 1.5, size + 3, size + 3, faint);
    canvas.fillBox(x, y, size, size, cell);
    using Draw = void (*)(Canvas&, const Exhibit&, unsigned int, double, double, double);
    constexpr Draw draws[] = {drawBars, drawPoints, drawGlobe};
    draws[exhibit.kind](canvas, exhibit, count != 0 ? count : getCount(exhibit), x, y, size);
}

SheetSize getSheetSize(std::size_t exhibitCount)
{
    const double rows = std::ceil(static_cast<double>(exhibitCount) / columns);
    return {static_cast<int>(2 * margin + columns * cellSize + (columns - 1) * gap),
            static_cast<int>(heading + rows * (cellSize + caption) + (rows - 1) * gap + margin)};
}

void drawSheet(Canvas& canvas, const std::vector<Exhibit>& gallery)
{
    const SheetSize sheet = getSheetSize(gallery.size());
    canvas.fillBox(0, 0, sheet.width, sheet.height, paper);
    canvas.drawText(margin, 88, 32, "libKRbase: All Generators", ink);
    canvas.drawText(
        margin, 126, 13,
        "Black: pairs.  Red: directions, seen along the axis.  Blue: values, under their "
        "density.  n: samples.  D: L2 star discrepancy.",
        grey);
    for (std::size_t i = 0; i < gallery.size(); ++i)
    {
        const double x = margin + static_cast<double>(i % columns) * (cellSize + gap);
        const double y = heading + static_cast<double>(i / columns) * (cellSize + caption + gap);
        drawExhibit(canvas, gallery[i], 0, x, y, cellSize);
        canvas.drawText(x, y + cellSize + 28, 16, gallery[i].name, ink);
        canvas.drawText(x, y + cellSize + 50, 12, gallery[i].detail, grey);
        canvas.drawText(x, y + cellSize + 70, 12, getMeasure(gallery[i]), grey);
    }
}
