#include "screen/grid_menu.h"

#include "screen/grid.h"

namespace owb {

namespace {

using Items = std::vector<GridMenuItem>;

// What a key does, as an item.
GridMenuItem keyItem(Grid& grid, const std::string& caption, const std::string& key,
                     bool enabled = true) {
    return {caption, key, [&grid, key] { grid.entry.press(key); }, enabled};
}

GridMenuItem columnsItem(Grid& grid) {
    GridMenuItem item{"Co&lumns"};
    for (size_t c = 0; c < grid.columnCount(); ++c) {
        if (grid.column(c).hidden) continue;
        const bool shown = !grid.sight.columnHidden(c);
        item.below.push_back({grid.column(c).caption, "",
                              [&grid, c, shown] { grid.sight.hideColumn(c, shown); },
                              !shown || grid.sight.columns().size() > 1, true, shown});
    }
    return item;
}

GridMenuItem enterItem(Grid& grid) {
    GridMenuItem item{"Enter &goes"};
    for (const auto& [caption, way] :
         {std::pair("As the column has it", Grid::EnterGoes::ByColumn),
          std::pair("Down", Grid::EnterGoes::Down), std::pair("Right", Grid::EnterGoes::Right)})
        item.below.push_back({caption, "", [&grid, way = way] { grid.enterGoes = way; }, true, true,
                              grid.enterGoes == way});
    return item;
}

void addColumn(Items& items, Grid& grid, size_t c) {
    using Order = GridSight::Order;
    GridSight& sight = grid.sight;
    const auto& order = sight.order();
    const auto orderItem = [&](const char* caption, std::optional<Order> wanted) {
        const bool now =
            order.has_value() == wanted.has_value() &&
            (!order || (order->column == c && order->descending == wanted->descending));
        items.push_back({caption, "", [&sight, wanted] { sight.sort(wanted); }, true, true, now});
    };
    orderItem("Sort &ascending", Order{c, false});
    orderItem("Sort &descending", Order{c, true});
    orderItem("&Order of the screen", std::nullopt);
    const std::string& text = grid.text();
    if (static_cast<int>(c) == grid.currentColumn())
        items.push_back({"Only rows with \"" + text + "\"", "",
                         [&sight, c, text] { sight.filter(c, {text}); }});
    items.push_back(
        {"All ro&ws", "", [&sight] { sight.clearFilters(); }, !sight.filters().empty()});
    const auto place = sight.placeOfColumn(c);
    const bool frozen = place && sight.frozen() == *place + 1;
    items.push_back({"&Keep the columns up to here in sight", "",
                     [&sight, place, frozen] { sight.freeze(frozen ? 0 : *place + 1); },
                     place.has_value(), true, frozen});
}

}  // namespace

std::vector<GridMenuItem> gridMenu(Grid& grid, std::optional<size_t> column) {
    const bool open = grid.takesEntries();
    Items items{keyItem(grid, "Cu&t", "Ctrl+X", open),
                keyItem(grid, "&Copy", "Ctrl+C"),
                keyItem(grid, "&Paste", "Ctrl+V", open),
                keyItem(grid, "Fill do&wn", "Ctrl+D", open),
                keyItem(grid, "Fill r&ight", "Ctrl+R", open),
                {"-"},
                keyItem(grid, "&Undo", "Ctrl+Z", grid.history.canUndo()),
                keyItem(grid, "R&edo", "Ctrl+Y", grid.history.canRedo()),
                keyItem(grid, "&Find...", "Ctrl+F"),
                {"Pr&int...", "Ctrl+P", [&grid] { grid.print(); }},
                {"-"}};
    if (column) addColumn(items, grid, *column);
    items.push_back(columnsItem(grid));
    items.push_back(enterItem(grid));
    return items;
}

}  // namespace owb
