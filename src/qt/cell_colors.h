// The screens' colours on the desktop's palette. Colours that a screen gives stand as they are in
// light and dark; what is written on them is chosen so that it can be read.
#pragma once

#include <QPalette>

#include "screen/grid.h"

namespace owb {

struct CellColors {
    QColor back, fore;
};

CellColors cellColors(Color back, Color fore, const QPalette& palette);

}  // namespace owb
