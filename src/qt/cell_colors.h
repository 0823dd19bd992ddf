// The screens' colours on the desktop's palette. In a light palette a screen's colour stands as it is;
// in a dark one it is blended with the ground, for drawing only. What is written on it is chosen so
// that it can be read, and lines so that they can be seen.
#pragma once

#include <QPalette>

#include "screen/color.h"

namespace owb {

struct CellColors {
    QColor back, fore;
};

CellColors cellColors(Color back, Color fore, const QPalette& palette);
// Lines between cells and around boxes: 3 to 1 against the ground of cells.
QColor lineColor(const QPalette& palette);
// The same hue, moved towards black or white until it stands off the ground by this contrast.
QColor standingOff(const QColor& color, const QColor& ground, double contrast);
QColor mixed(const QColor& ground, const QColor& over, double share);
// Contrast of two colours by their relative luminance, 1 to 21 (WCAG 2.1, 1.4.3).
double contrastOf(const QColor& a, const QColor& b);

}  // namespace owb
