#include "script/grid_keys.h"

#include <algorithm>
#include <cstddef>

#include "screen/grid.h"
#include "script/script_words.h"

namespace owb {

namespace {

// The cells that are shown, and where the current one stands among them.
struct ShownCells {
    explicit ShownCells(Grid& grid)
        : grid(grid), rows(shownRows(grid)), columns(shownColumns(grid)) {
        const auto at = std::find(rows.begin(), rows.end(), static_cast<size_t>(grid.currentRow()));
        if (grid.currentRow() < 0 || at == rows.end()) return;
        row = at - rows.begin();
        const auto across =
            std::find(columns.begin(), columns.end(), static_cast<size_t>(grid.currentColumn()));
        // A current column that is hidden still has its row.
        column = across == columns.end() ? 0 : across - columns.begin();
    }

    bool goTo(std::ptrdiff_t r, std::ptrdiff_t c) const {
        const auto within = [](std::ptrdiff_t at, const std::vector<size_t>& all) {
            return all[std::clamp<std::ptrdiff_t>(at, 0, std::ssize(all) - 1)];
        };
        return grid.goTo(within(r, rows), within(c, columns));
    }

    Grid& grid;
    const std::vector<size_t> rows, columns;
    std::ptrdiff_t row = -1, column = -1;  // -1: no current cell
};

bool move(const ShownCells& shown, const std::string& key) {
    const std::ptrdiff_t lastRow = std::ssize(shown.rows) - 1;
    const std::ptrdiff_t lastColumn = std::ssize(shown.columns) - 1;
    struct Move {
        const char* key;
        std::ptrdiff_t row, column;
    };
    for (const Move& m : {Move{"Up", shown.row - 1, shown.column},
                          {"Down", shown.row + 1, shown.column},
                          {"Left", shown.row, shown.column - 1},
                          {"Right", shown.row, shown.column + 1},
                          {"Home", shown.row, 0},
                          {"End", shown.row, lastColumn},
                          {"Ctrl+Home", 0, 0},
                          {"Ctrl+End", lastRow, lastColumn}})
        // The first such key begins with the first cell.
        if (key == m.key) return shown.row < 0 ? shown.goTo(0, 0) : shown.goTo(m.row, m.column);
    return false;
}

bool walk(const ShownCells& shown, bool forward) {
    const std::ptrdiff_t width = std::ssize(shown.columns), cells = std::ssize(shown.rows) * width;
    const std::ptrdiff_t step = forward ? 1 : -1;
    std::ptrdiff_t at = shown.row * width + shown.column;
    if (shown.row < 0) at = forward ? -1 : cells;
    for (at += step; at >= 0 && at < cells; at += step)
        if (!shown.grid.locked(shown.rows[at / width], shown.columns[at % width]))
            return shown.goTo(at / width, at % width);
    return false;
}

}  // namespace

bool pressInGrid(Grid& grid, const std::string& key) {
    const ShownCells shown(grid);
    if (!grid.takesInput() || shown.rows.empty() || shown.columns.empty()) return false;
    if (key == "Tab" || key == "Shift+Tab") return walk(shown, key == "Tab");
    const bool enter = key == "Enter" || key == "Shift+Enter";
    if (enter && walk(shown, key == "Enter")) return true;
    if (!enter && key != "Space") return move(shown, key);
    if (shown.row < 0) return false;
    const auto row = static_cast<size_t>(grid.currentRow());
    const auto column = static_cast<size_t>(grid.currentColumn());
    if (enter) return grid.onCellDoubleClick && grid.doubleClickCell(row, column);
    std::string reason;
    return grid.cellType(row, column) == CellType::Check &&
           grid.check(row, column, !grid.checked(row, column), reason);
}

}  // namespace owb
