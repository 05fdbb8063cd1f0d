// Shows what the generators do: pictures of their samples, and how fast their errors fall.
//
//   samples                         the discrepancy and the error of an integral, of all generators
//   samples --sheet FILE            the contact sheet of all generators
//   samples --draw NUMBER FILE [N]  one generator, by its number in the table, with N samples
//
// The name of FILE ends with .png or .svg.

#include "measures.h"
#include "sheet.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>

namespace
{

using Measure = double (*)(const Exhibit&, const std::vector<Exhibit::Point>&);

double getExhibitDiscrepancy(const Exhibit& exhibit, const std::vector<Exhibit::Point>& points)
{
    return getDiscrepancy(points, exhibit.kind == Exhibit::Plane ? 2 : 1);
}

void printTable(const char* title, const std::vector<Exhibit>& gallery, bool isUnitOnly,
                Measure measure)
{
    std::printf("%s\n%38s", title, "");
    for (int power = 4; power <= 16; power += 2)
        std::printf("%9s", ("2^" + std::to_string(power)).c_str());
    std::printf("\n");
    for (std::size_t i = 0; i < gallery.size(); ++i)
    {
        const Exhibit& exhibit = gallery[i];
        if (isUnitOnly && !exhibit.isUnit)
            continue;
        std::printf("%3d  %-14s %-18s", static_cast<int>(i), exhibit.name.c_str(),
                    exhibit.detail.c_str());
        for (int power = 4; power <= 16; power += 2)
            std::printf("%9.1e", measure(exhibit, exhibit.draw(1U << power)));
        std::printf("\n");
    }
    std::printf("\n");
}

void drawSheetFile(const std::string& file, const std::vector<Exhibit>& gallery)
{
    const SheetSize size = getSheetSize(gallery.size());
    const std::unique_ptr<Canvas> canvas = makeCanvas(file, size.width, size.height);
    drawSheet(*canvas, gallery);
    canvas->save();
}

unsigned long getNumber(const char* text, unsigned long end)
{
    char* rest = nullptr;
    const unsigned long number = std::strtoul(text, &rest, 10);
    if (*text < '0' || *text > '9' || *rest != '\0' || number >= end)
        throw std::invalid_argument("'" + std::string(text) + "' is not a number below " +
                                    std::to_string(end));
    return number;
}

void drawFile(const std::vector<Exhibit>& gallery, const char* number, const std::string& file,
              const char* count)
{
    constexpr int size = 640, border = 20;
    const Exhibit& exhibit = gallery[getNumber(number, gallery.size())];
    const std::unique_ptr<Canvas> canvas = makeCanvas(file, size + 2 * border, size + 2 * border);
    canvas->fillBox(0, 0, size + 2 * border, size + 2 * border, 0xF7F5F0);
    const auto sampleCount =
        static_cast<unsigned int>(count != nullptr ? getNumber(count, 10000001) : 0);
    drawExhibit(*canvas, exhibit, sampleCount, border, border, size);
    canvas->save();
}

int run(int argc, char* argv[])
{
    const std::vector<Exhibit> gallery = getGallery();
    if (argc == 1)
    {
        printTable("L2 star discrepancy, by the number of samples", gallery, true,
                   getExhibitDiscrepancy);
        printTable("Error of an integral that is 1, by the number of samples", gallery, false,
                   getIntegralError);
    }
    else if (argc == 3 && std::strcmp(argv[1], "--sheet") == 0)
        drawSheetFile(argv[2], gallery);
    else if ((argc == 4 || argc == 5) && std::strcmp(argv[1], "--draw") == 0)
        drawFile(gallery, argv[2], argv[3], argc == 5 ? argv[4] : nullptr);
    else
    {
        std::cerr
            << "usage: samples [--sheet FILE | --draw NUMBER FILE [N]]\n"
               "  FILE ends with .png or .svg; without arguments the generators are measured\n";
        return 2;
    }
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    try
    {
        return run(argc, argv);
    }
    catch (const std::exception& error)
    {
        std::cerr << "samples: " << error.what() << '\n';
        return 1;
    }
}
