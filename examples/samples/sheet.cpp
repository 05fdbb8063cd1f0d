#include "sheet.h"

#include "measures.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace
{

constexpr std::uint32_t paper = 0xF7F5F0, cell = 0xFFFFFF, ink = 0x1F2A37, faint = 0xE3E0D8,
                        grey = 0x7C8591;
/// By kind: lines, planes, globes; and what is behind a globe.
constexpr std::uint32_t colours[] = {0x2A6F97, 0x1F2A37, 0xA4432C};
constexpr std::uint32_t behind = 0xE2B9AC, curve = 0xD1902C;

constexpr int columns = 6;
constexpr double margin = 70, cellSize = 280, gap = 36, caption = 62, heading = 130;
constexpr unsigned int pointCount = 512, valueCount = 8192, barCount = 48;

void drawPoints(Canvas& canvas, const Exhibit& exhibit, unsigned int count, double x, double y,
                double size)
{
    const double radius = size * 0.0078;
    for (const Exhibit::Point& p : exhibit.draw(count))
    {
        const double u = (p[0] - exhibit.min[0]) / (exhibit.max[0] - exhibit.min[0]);
        const double v = (p[1] - exhibit.min[1]) / (exhibit.max[1] - exhibit.min[1]);
        if (0 <= u && u <= 1 && 0 <= v && v <= 1)
            canvas.fillDot(x + u * size, y + (1 - v) * size, radius, colours[Exhibit::Plane]);
    }
}

/// Seen from above; the lower half first, since it is behind.
void drawGlobe(Canvas& canvas, const Exhibit& exhibit, unsigned int count, double x, double y,
               double size)
{
    const double radius = size * 0.47, middleX = x + size / 2, middleY = y + size / 2;
    canvas.fillDot(middleX, middleY, radius + 1.5, faint);
    canvas.fillDot(middleX, middleY, radius, cell);
    const std::vector<Exhibit::Point> points = exhibit.draw(count);
    for (const bool isFront : {false, true})
        for (const Exhibit::Point& p : points)
            if ((p[2] >= 0) == isFront)
                canvas.fillDot(middleX + p[0] * radius, middleY - p[1] * radius, size * 0.0078,
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
    const double base = y + size * 0.94, height = size * 0.88, width = size / barCount;
    for (unsigned int i = 0; i < barCount; ++i)
        canvas.fillBox(x + i * width + 0.6, base - bars[i] / top * height, width - 1.2,
                       bars[i] / top * height, colours[Exhibit::Line]);
    canvas.drawLine(x, base, x + size, base, 1.2, grey);
    constexpr int steps = 240;
    for (int i = 0; i < steps; ++i)
    {
        const auto getHeight = [&](int step)
        {
            return base - exhibit.getPdf(exhibit.min[0] + range * (step + 0.5) / (steps + 1)) /
                              top * height;
        };
        canvas.drawLine(x + size * i / steps, getHeight(i), x + size * (i + 1) / steps,
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
    canvas.drawText(margin, 72, 26, "libKRbase: all generators", Canvas::Left, ink);
    canvas.drawText(
        margin, 104, 11.5,
        "Black: pairs.  Red: directions, seen along the axis.  Blue: values, under their density.  "
        "D: L2 star discrepancy.",
        Canvas::Left, grey);
    for (std::size_t i = 0; i < gallery.size(); ++i)
    {
        const double x = margin + static_cast<double>(i % columns) * (cellSize + gap);
        const double y = heading + static_cast<double>(i / columns) * (cellSize + caption + gap);
        drawExhibit(canvas, gallery[i], 0, x, y, cellSize);
        canvas.drawText(x, y + cellSize + 25, 13.5, gallery[i].name, Canvas::Left, ink);
        canvas.drawText(x, y + cellSize + 44, 9.5, gallery[i].detail, Canvas::Left, grey);
        canvas.drawText(x, y + cellSize + 60, 9.5, getMeasure(gallery[i]), Canvas::Left, grey);
    }
}
