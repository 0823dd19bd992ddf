// Types into a grid as hands do, and reads back what came of it.
#pragma once

#include <sstream>
#include <string>

#include "screen/grid.h"
#include "screen/screen.h"
#include "support/screens.h"

namespace owb::test {

// A grid on a screen of its own.
class GridScreen final : public Screen {
  public:
    GridScreen(FrontEnd& frontEnd, std::vector<GridColumn> columns)
        : Screen(frontEnd, "Grid", "Grid"), grid(*this, "fpgGrid", std::move(columns)) {}
    Grid grid;
};

// Keys by name with blanks between, "2 Down Down 3": a word of one character, or one that begins
// with a quote, is typed text.
inline void typeKeys(Grid& grid, const std::string& keys) {
    std::istringstream words(keys);
    for (std::string word; words >> word;) {
        if (word.size() == 1 || word[0] == '\'') {
            const std::string text = word.size() == 1 ? word : word.substr(1);
            for (const char c : text) grid.entry.type(std::string(1, c));
        } else {
            grid.key(word);
        }
    }
}

// Cells in sight with blanks between, rows with "/"; "-" for an empty one.
inline std::string cellsOf(const Grid& grid) {
    std::string all;
    for (const size_t r : grid.sight.rows()) {
        if (!all.empty()) all += " / ";
        for (const size_t c : grid.sight.columns()) {
            if (c != grid.sight.columns().front()) all += ' ';
            all += grid.cell(r, c).empty() ? "-" : grid.cell(r, c);
        }
    }
    return all;
}

// The current cell and, of several, the chosen ones: "1,0 (0,0-1,2)"; "typing <text>" behind it.
inline std::string handsOf(const Grid& grid) {
    if (grid.currentRow() < 0) return "none";
    const auto row = grid.sight.placeOfRow(static_cast<size_t>(grid.currentRow()));
    const auto column = grid.sight.placeOfColumn(static_cast<size_t>(grid.currentColumn()));
    std::string text = std::to_string(row.value_or(99)) + "," + std::to_string(column.value_or(99));
    if (const auto block = grid.cursor.block(); block && block->several())
        text += " (" + std::to_string(block->top) + "," + std::to_string(block->left) + "-" +
                std::to_string(block->bottom) + "," + std::to_string(block->right) + ")";
    if (grid.entry.busy()) text += " typing " + grid.entry.text();
    return text;
}

}  // namespace owb::test
