// What a script is told of a board of cells.
#pragma once

#include <ostream>

namespace owb {

class CellBoard;

// As CSV, a line for each cell that can be picked: its text, its tip, and what marks it (today,
// chosen, off, holiday, current), blanks between.
void tellBoard(const CellBoard& board, std::ostream& out);

}  // namespace owb
