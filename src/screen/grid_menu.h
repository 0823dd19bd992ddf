// What a grid offers in its menu by itself, below the items of its screen: copy and paste, undo,
// find, the order of rows, the columns, which way Enter goes.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace owb {

class Grid;

struct GridMenuItem {
    std::string caption;   // "-" between groups
    std::string key = "";  // that does the same
    std::function<void()> act = {};
    bool enabled = true;
    bool checkable = false;
    bool checked = false;
    std::vector<GridMenuItem> below = {};
};

// Of a column, where the menu was opened on one.
std::vector<GridMenuItem> gridMenu(Grid& grid, std::optional<size_t> column);

}  // namespace owb
