// Where the user is in a grid and which cells he has chosen: the keys that move, and the block
// between two corners. The grid's current cell is the truth; a block that does not hold it counts
// no more. Moving goes over what is in sight, in the order in which the user sees it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace owb {

class Grid;

class GridCursor {
  public:
    explicit GridCursor(Grid& grid) : grid_(grid) {}

    // A key that moves or chooses: arrows, Home, End, PgUp, PgDn, Ctrl (to the block's edge, to the
    // corners), Shift (extends), Ctrl+Space, Shift+Space, Ctrl+A. False when it is none of these or
    // nothing is in sight.
    bool press(const std::string& key);
    // To the next cell that can be edited, row by row or down the column;
    // within a block of several cells around in that. False at the end.
    bool walk(bool forward, bool down);
    // Enter: down or to the right by the grid's setting; after Tab down, to where Tab began.
    bool enter(bool forward);
    bool tab(bool forward);

    // Places in sight, both ends counted.
    struct Block {
        size_t top = 0, left = 0, bottom = 0, right = 0;
        size_t rows() const { return bottom - top + 1; }
        size_t columns() const { return right - left + 1; }
        bool several() const { return rows() * columns() > 1; }
        Block with(size_t row, size_t column) const {
            return {std::min(top, row), std::min(left, column), std::max(bottom, row),
                    std::max(right, column)};
        }
        bool holds(size_t row, size_t column) const {
            return top <= row && row <= bottom && left <= column && column <= right;
        }
    };
    // The chosen cells: the current one alone where no block is chosen, its row in a list; nothing
    // while there is no current cell in sight.
    std::optional<Block> block() const;
    // From the block's first corner (or the current cell) to this place. The current cell stays:
    // what is typed goes there.
    void extendTo(size_t row, size_t column);
    // What a user must be able to see: the corner that he has moved, or the current cell.
    std::optional<std::pair<size_t, size_t>> moved() const;
    void choose(const Block& block);
    // To the next cell of this back colour, row by row, around; false when there is none.
    bool nextOfColor(uint32_t color);
    // False when there is no block of several cells.
    bool collapse();

    // "Row 12/2,000", and of several cells "Count 8  Sum 9.00  Avg 1.50".
    std::string summary() const;

    size_t pageRows = 20;  // rows that are seen at once, from the window

  private:
    struct Place {
        size_t row = 0, column = 0;
    };
    struct Cell {
        int row = -1, column = -1;
        bool operator==(const Cell&) const = default;
    };
    std::optional<Place> now() const;
    std::optional<Place> placeOf(Cell cell) const;
    Cell cellAt(Place place) const;
    bool filled(Place place) const;
    Place edge(Place from, int down, int across) const;
    Place rowEnd(Place from, bool last) const;
    bool editable(Place place) const;
    bool goTo(Place place, bool extends = false);

    Grid& grid_;
    // Corners of the block as cells of the grid, so that sorting does not move it elsewhere.
    Cell anchor_, end_;
    std::optional<size_t> tabBegan_;  // column in which a walk by Tab began
};

}  // namespace owb
