#pragma once

#include "canvas.h"
#include "gallery.h"

/// Draws one generator into a square: points, points of a globe, or bars under their density.
void drawExhibit(Canvas& canvas, const Exhibit& exhibit, unsigned int count, double x, double y,
                 double size);

/// The contact sheet of all generators, each with the same number of samples and a caption; 0 takes
/// what suits the pictures. Its width and height are those of `getSheetSize`.
void drawSheet(Canvas& canvas, const std::vector<Exhibit>& gallery);

struct SheetSize
{
    int width;
    int height;
};
SheetSize getSheetSize(std::size_t exhibitCount);
