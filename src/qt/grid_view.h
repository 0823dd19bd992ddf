// A grid on its screen: the table with its bars, every key, click and entry handed to the grid, and
// what the grid tells of it shown in the window's status line.
#pragma once

#include <memory>

#include "qt/control_view.h"

namespace owb {

class Grid;

std::unique_ptr<ControlView> makeGridView(ScreenWindow& window, Grid& grid);

}  // namespace owb
