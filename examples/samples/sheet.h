#pragma once

#include "canvas.h"
#include "gallery.h"

/// Draws so many samples of one generator into a square: points, points of a globe, or bars under
/// their density. A count of 0 is the contact sheet's.
void drawExhibit(Canvas& canvas, const Exhibit& exhibit, unsigned int count, double x, double y,
                 double size);

/// The contact sheet of all generators, each with its caption. Its size is that of `getSheetSize`.
void drawSheet(Canvas& canvas, const std::vector<Exhibit>& gallery);

struct SheetSize
{
    int width;
    int height;
};
SheetSize getSheetSize(std::size_t exhibitCount);
