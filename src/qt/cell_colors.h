// The screens' colours on the desktop's palette. In a light palette a screen's colour stands as it
// is; in a dark one it is blended with the ground, for drawing only. What is written on it is
// chosen so that it can be read, and lines so that they can be seen.
#pragma once

#include <QPalette>

#include "qt/contrast.h"
#include "screen/color.h"

namespace owb {

struct CellColors {
    QColor back, fore;
};

CellColors cellColors(Color back, Color fore, const QPalette& palette);
// Lines between cells and around boxes: 3 to 1 against the ground of cells.
QColor lineColor(const QPalette& palette);

}  // namespace owb
