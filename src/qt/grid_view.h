// A grid on its screen: every move and edit goes through the model, the reason of a refusal and the
// sum of the selection stand in the window's status line.
#pragma once

#include <memory>

#include "qt/control_view.h"

namespace owb {

class Grid;

std::unique_ptr<ControlView> makeGridView(ScreenWindow& window, Grid& grid);

}  // namespace owb
