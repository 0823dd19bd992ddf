#include "screen/grid_cursor.h"

#include <algorithm>

#include "base/number_text.h"
#include "screen/grid.h"

namespace owb {

// --- places ---

std::optional<GridCursor::Place> GridCursor::placeOf(Cell cell) const {
    if (cell.row < 0 || cell.column < 0) return std::nullopt;
    const auto row = grid_.sight.placeOfRow(static_cast<size_t>(cell.row));
    if (!row) return std::nullopt;
    // A current column that is out of sight still has its row.
    return Place{*row, grid_.sight.placeOfColumn(static_cast<size_t>(cell.column)).value_or(0)};
}

GridCursor::Cell GridCursor::cellAt(Place place) const {
    return {static_cast<int>(grid_.sight.rows()[place.row]),
            static_cast<int>(grid_.sight.columns()[place.column])};
}

std::optional<GridCursor::Place> GridCursor::now() const {
    return placeOf({grid_.currentRow(), grid_.currentColumn()});
}

bool GridCursor::filled(Place place) const {
    return !grid_.cell(grid_.sight.rows()[place.row], grid_.sight.columns()[place.column]).empty();
}

bool GridCursor::editable(Place place) const {
    return !grid_.locked(grid_.sight.rows()[place.row], grid_.sight.columns()[place.column]);
}

bool GridCursor::goTo(Place place, bool extends) {
    place.row = std::min(place.row, grid_.sight.rows().size() - 1);
    place.column = std::min(place.column, grid_.sight.columns().size() - 1);
    if (extends) {
        extendTo(place.row, place.column);
        return true;
    }
    const Cell cell = cellAt(place);
    anchor_ = end_ = {};
    return grid_.goTo(static_cast<size_t>(cell.row), static_cast<size_t>(cell.column));
}

// As in a spreadsheet: along what is filled to its end, or over what is empty to what is filled.
GridCursor::Place GridCursor::edge(Place from, int down, int across) const {
    const auto next = [&](Place at) -> std::optional<Place> {
        at.row += static_cast<size_t>(down);
        at.column += static_cast<size_t>(across);
        // A step below 0 wraps to a number beyond every end.
        if (at.row >= grid_.sight.rows().size() || at.column >= grid_.sight.columns().size())
            return std::nullopt;
        return at;
    };
    std::optional<Place> ahead = next(from);
    if (!ahead) return from;
    const bool within = filled(from) && filled(*ahead);
    Place at = *ahead;
    while (within == filled(at)) {
        ahead = next(at);
        if (!ahead || (within && !filled(*ahead))) return at;
        at = *ahead;
    }
    return at;
}

// The first or last cell of the row that can be edited; of a row that cannot be, the end itself.
GridCursor::Place GridCursor::rowEnd(Place from, bool last) const {
    const size_t columns = grid_.sight.columns().size();
    for (size_t i = 0; i < columns; ++i) {
        const Place at{from.row, last ? columns - 1 - i : i};
        if (editable(at)) return at;
    }
    return {from.row, last ? columns - 1 : 0};
}

// --- moving ---

bool GridCursor::press(const std::string& key) {
    if (grid_.sight.rows().empty() || grid_.sight.columns().empty()) return false;
    const size_t lastRow = grid_.sight.rows().size() - 1;
    const size_t lastColumn = grid_.sight.columns().size() - 1;
    const std::optional<Place> current = now();
    const Place at = current.value_or(Place{});
    if (!grid_.singleRows) {
        if (key == "Ctrl+A") return choose({0, 0, lastRow, lastColumn}), true;
        const Block chosen = block().value_or(Block{});
        if (current && key == "Ctrl+Space")
            return choose({0, chosen.left, lastRow, chosen.right}), true;
        if (current && key == "Shift+Space")
            return choose({chosen.top, 0, chosen.bottom, lastColumn}), true;
    }
    const bool extends = key.starts_with("Shift+") || key.starts_with("Ctrl+Shift+");
    // What is extended goes on from the corner that moved last.
    const bool several = current && block()->several();
    const Place from = extends && several ? placeOf(end_).value_or(at) : at;
    const size_t up = from.row == 0 ? 0 : from.row - 1;
    const size_t left = from.column == 0 ? 0 : from.column - 1;
    const size_t pageUp = from.row - std::min(from.row, pageRows);
    std::string plain = key;
    if (const size_t shift = plain.find("Shift+"); shift != std::string::npos)
        plain.erase(shift, 6);
    struct Move {
        const char* key;
        Place to;
    };
    for (const Move& m : {Move{"Up", {up, from.column}},
                          {"Down", {from.row + 1, from.column}},
                          {"Left", {from.row, left}},
                          {"Right", {from.row, from.column + 1}},
                          {"Home", rowEnd(from, false)},
                          {"End", rowEnd(from, true)},
                          {"PgUp", {pageUp, from.column}},
                          {"PgDown", {from.row + pageRows, from.column}},
                          {"Ctrl+Up", edge(from, -1, 0)},
                          {"Ctrl+Down", edge(from, 1, 0)},
                          {"Ctrl+Left", edge(from, 0, -1)},
                          {"Ctrl+Right", edge(from, 0, 1)},
                          {"Ctrl+Home", {0, 0}},
                          {"Ctrl+End", {lastRow, lastColumn}}}) {
        if (plain != m.key) continue;
        tabBegan_.reset();
        // The first such key begins with the first cell.
        return current ? goTo(m.to, extends && !grid_.singleRows) : goTo({0, 0});
    }
    return false;
}

bool GridCursor::walk(bool forward, bool down) {
    const size_t rows = grid_.sight.rows().size(), columns = grid_.sight.columns().size();
    if (rows == 0 || columns == 0) return false;
    const std::optional<Block> chosen = grid_.singleRows ? std::nullopt : block();
    const bool around = chosen && chosen->several();
    const Block area = around ? *chosen : Block{0, 0, rows - 1, columns - 1};
    const std::optional<Place> at = now();
    const size_t cells = area.rows() * area.columns();
    // Number of a cell on the walk's way through the area.
    const auto numberOf = [&](Place p) {
        return down ? (p.column - area.left) * area.rows() + p.row - area.top
                    : (p.row - area.top) * area.columns() + p.column - area.left;
    };
    const auto cellOf = [&](size_t number) {
        return down
                   ? Place{area.top + number % area.rows(), area.left + number / area.rows()}
                   : Place{area.top + number / area.columns(), area.left + number % area.columns()};
    };
    size_t number = at ? numberOf(*at) : (forward ? cells - 1 : 0);
    for (size_t step = 0; step < cells; ++step) {
        if (!around && at && number == (forward ? cells - 1 : 0)) return false;
        number = (number + (forward ? 1 : cells - 1)) % cells;
        const Place to = cellOf(number);
        if (!around && at && down && to.column != at->column) return false;
        if (!editable(to)) continue;
        const Cell anchor = anchor_, end = end_;
        const bool gone = goTo(to);
        if (around) anchor_ = anchor, end_ = end;
        return gone;
    }
    return false;
}

bool GridCursor::enter(bool forward) {
    const std::optional<Place> at = now();
    const std::optional<Block> chosen = block();
    bool down = grid_.enterGoes == Grid::EnterGoes::Down;
    if (grid_.enterGoes == Grid::EnterGoes::ByColumn && at)
        down = grid_.column(grid_.sight.columns()[at->column]).type == CellType::Number;
    const std::optional<size_t> began = std::exchange(tabBegan_, std::nullopt);
    const bool around = chosen && chosen->several() && !grid_.singleRows;
    if (down && began && at && !around) {
        const size_t row = forward ? at->row + 1 : at->row - 1;  // below 0: beyond every end
        if (row < grid_.sight.rows().size()) return goTo({row, *began});
    }
    return walk(forward, down);
}

bool GridCursor::tab(bool forward) {
    const std::optional<Place> at = now();
    const std::optional<size_t> began = tabBegan_;
    if (!walk(forward, false)) return false;
    if (at) tabBegan_ = began.value_or(at->column);
    return true;
}

bool GridCursor::nextOfColor(uint32_t color) {
    const size_t columns = grid_.sight.columns().size();
    const size_t cells = grid_.sight.rows().size() * columns;
    const std::optional<Place> at = now();
    const size_t from = at ? at->row * columns + at->column + 1 : 0;
    for (size_t i = 0; i < cells; ++i) {
        const Place to{(from + i) % cells / columns, (from + i) % columns};
        if (grid_.backColor(grid_.sight.rows()[to.row], grid_.sight.columns()[to.column]) == color)
            return goTo(to);
    }
    return false;
}

// --- the block ---

std::optional<GridCursor::Block> GridCursor::block() const {
    const std::optional<Place> at = now();
    if (!at) return std::nullopt;
    if (grid_.singleRows) return Block{at->row, 0, at->row, grid_.sight.columns().size() - 1};
    const std::optional<Place> a = placeOf(anchor_), b = placeOf(end_);
    if (a && b) {
        const Block chosen{std::min(a->row, b->row), std::min(a->column, b->column),
                           std::max(a->row, b->row), std::max(a->column, b->column)};
        if (chosen.holds(at->row, at->column)) return chosen;
    }
    return Block{at->row, at->column, at->row, at->column};
}

void GridCursor::extendTo(size_t row, size_t column) {
    const std::optional<Place> at = now();
    if (!at || grid_.singleRows) return void(goTo({row, column}));
    if (!block()->several()) anchor_ = cellAt(*at);
    end_ = cellAt({row, column});
    grid_.say("");
}

std::optional<std::pair<size_t, size_t>> GridCursor::moved() const {
    const std::optional<Block> chosen = block();
    const std::optional<Place> at =
        chosen && chosen->several() && !grid_.singleRows ? placeOf(end_) : now();
    if (!at) return std::nullopt;
    return std::pair(at->row, at->column);
}

// The current cell stays where it is when the block holds it.
void GridCursor::choose(const Block& block) {
    const std::optional<Place> at = now();
    if (!at || !block.holds(at->row, at->column)) goTo({block.top, block.left});
    anchor_ = cellAt({block.top, block.left});
    end_ = cellAt({block.bottom, block.right});
    grid_.say("");
}

bool GridCursor::collapse() {
    const std::optional<Block> chosen = block();
    anchor_ = end_ = {};
    tabBegan_.reset();
    if (!chosen || !chosen->several() || grid_.singleRows) return false;
    grid_.say("");
    return true;
}

std::string GridCursor::summary() const {
    const std::optional<Block> chosen = block();
    if (!chosen) return grid_.sight.summary();
    const auto grouped = [](size_t number) { return groupIndian(std::to_string(number)); };
    std::string text = "Row " + grouped(now()->row + 1) + "/" + grouped(grid_.sight.rows().size());
    if (const std::string part = grid_.sight.summary(); !part.empty()) text += "  (" + part + ")";
    if (!chosen->several() || grid_.singleRows) return text;
    size_t count = 0, numbers = 0;
    double sum = 0;
    for (size_t r = chosen->top; r <= chosen->bottom; ++r)
        for (size_t c = chosen->left; c <= chosen->right; ++c) {
            const size_t row = grid_.sight.rows()[r], column = grid_.sight.columns()[c];
            const std::string& cell = grid_.cell(row, column);
            count += !cell.empty();
            std::string plain = cell;
            std::erase(plain, ',');
            const CellType type = grid_.cellType(row, column);
            if (type == CellType::Check || type == CellType::Date || !parseNumber(plain)) continue;
            sum += textToNumber(plain);
            ++numbers;
        }
    text += "   Count " + grouped(count);
    if (numbers > 0)
        text += "   Sum " + groupIndian(formatNumber(sum, "0.00")) + "   Avg " +
                groupIndian(formatNumber(sum / static_cast<double>(numbers), "0.00"));
    return text;
}

}  // namespace owb
