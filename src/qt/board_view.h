// Boards of cells, drawn: the days of a month, the months of a year.
#pragma once

#include <memory>

#include "qt/control_view.h"

namespace owb {

class CellBoard;

std::unique_ptr<ControlView> makeBoardView(ScreenWindow& window, CellBoard& board);

}  // namespace owb
