// Entries into many cells at once: paste, fill, empty, one text into all. Cells that are locked are
// skipped and counted; a text that does not fit refuses the whole block before anything is entered.
// A block is one step of undo, and one call to the screen where it takes blocks (Grid::onBlock).
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "screen/grid_cursor.h"

namespace owb {

class Grid;

struct CellText {
    size_t row, column;
    std::string text;
};

class GridBlocks {
  public:
    explicit GridBlocks(Grid& grid) : grid_(grid) {}

    // What was done and what was skipped is told by Grid::said(): "42 set, 3 skipped (locked)".
    // All give false when nothing was entered.

    // The chosen cells as tab-separated lines.
    std::string copy() const;
    // At the upper left corner of what is chosen. Of several chosen cells all are filled, the block
    // is repeated; one that is larger than they are, or than what is left of the grid, is refused.
    bool paste(const std::string& text);
    bool empty();
    // From the first chosen row (column) to the others; of one cell: from its neighbour.
    bool fillDown();
    bool fillRight();
    // What is chosen is repeated up to this place in sight, down or to the right, up or to the
    // left.
    bool fillTo(size_t row, size_t column);
    bool typeIntoAll(const std::string& text);
    bool write(const std::vector<CellText>& entries);

  private:
    using Texts = std::vector<std::vector<std::string>>;
    Texts chosen() const;
    bool put(const Texts& texts, size_t top, size_t left, size_t rows, size_t columns);
    bool enter(const std::vector<CellText>& open, size_t skipped);
    GridCursor::Block area(const std::vector<CellText>& entries) const;

    Grid& grid_;
};

}  // namespace owb
