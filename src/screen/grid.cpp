#include "screen/grid.h"

#include <algorithm>

#include "base/number_text.h"
#include "base/utf8.h"

namespace owb {

Grid::Grid(Screen& screen, std::string name, std::vector<GridColumn> columns)
    : Control(screen, std::move(name)), columns_(std::move(columns)) {}

std::string Grid::text() const {
    if (currentRow_ < 0 || currentColumn_ < 0) return "";
    return cell(static_cast<size_t>(currentRow_), static_cast<size_t>(currentColumn_));
}

void Grid::setColumns(std::vector<GridColumn> columns) {
    setRowCount(0);
    const bool same =
        std::equal(columns.begin(), columns.end(), columns_.begin(), columns_.end(),
                   [](const GridColumn& a, const GridColumn& b) { return a.caption == b.caption; });
    columns_ = std::move(columns);
    ++shape_;
    if (same) return;
    sight.reset();
    history.clear();
}

GridColumn& Grid::changeColumn(size_t c) {
    ++shape_;
    return columns_[c];
}

std::optional<size_t> Grid::findColumn(std::string_view caption) const {
    for (size_t c = 0; c < columns_.size(); ++c)
        if (equalsIgnoreCaseAscii(columns_[c].caption, caption)) return c;
    return std::nullopt;
}

void Grid::setRowCount(size_t rows) {
    cells_.resize(rows * columns_.size());
    styleOf_.resize(rows * columns_.size());
    hiddenRows_.resize(rows);
    if (rows < rows_) {
        const auto gone = [&](const auto& entry) { return entry.first >= cells_.size(); };
        std::erase_if(tags_, gone);
        std::erase_if(choices_, gone);
        history.rowsGone();
    }
    if (rows == 0) styles_.assign(1, Style{});
    rows_ = rows;
    if (currentRow_ >= static_cast<int>(rows)) setCurrent(-1, -1);
    ++shape_;
}

size_t Grid::addRow(std::vector<std::string> cells) {
    cells.resize(columns_.size());
    cells_.insert(cells_.end(), std::make_move_iterator(cells.begin()),
                  std::make_move_iterator(cells.end()));
    styleOf_.resize(cells_.size());
    hiddenRows_.push_back(false);
    ++shape_;
    return rows_++;
}

void Grid::removeRow(size_t row) {
    const auto from = static_cast<std::ptrdiff_t>(row * columns_.size());
    const auto to = from + static_cast<std::ptrdiff_t>(columns_.size());
    cells_.erase(cells_.begin() + from, cells_.begin() + to);
    styleOf_.erase(styleOf_.begin() + from, styleOf_.begin() + to);
    hiddenRows_.erase(hiddenRows_.begin() + static_cast<std::ptrdiff_t>(row));
    // What stands apart moves up with its row.
    const auto moveUp = [&](auto& map) {
        std::remove_reference_t<decltype(map)> moved;
        for (auto& [place, value] : map) {
            if (place >= static_cast<uint64_t>(to))
                moved[place - columns_.size()] = std::move(value);
            else if (place < static_cast<uint64_t>(from))
                moved[place] = std::move(value);
        }
        map = std::move(moved);
    };
    moveUp(tags_);
    moveUp(choices_);
    history.rowsGone();
    --rows_;
    if (currentRow_ >= static_cast<int>(rows_)) setCurrent(-1, -1);
    ++shape_;
}

void Grid::setRowHidden(size_t row, bool hidden) {
    if (hiddenRows_[row] == hidden) return;
    hiddenRows_[row] = hidden;
    ++shape_;
}

size_t Grid::visibleRowCount() const {
    return sight.rows().size();
}

double Grid::number(size_t row, size_t c) const {
    std::string text = cell(row, c);
    std::erase(text, ',');
    return textToNumber(text);
}

std::string Grid::totalText(size_t c) const {
    double sum = 0;
    for (const size_t row : sight.rows()) sum += number(row, c);
    const int decimals = columns_[c].decimals;
    return groupIndian(formatNumber(sum, decimals > 0 ? "0." + std::string(decimals, '0') : "0"));
}

void Grid::setCell(size_t row, size_t c, std::string text) {
    cells_[place(row, c)] = std::move(text);
    ++content_;
}

template <typename Change>
void Grid::changeStyle(size_t row, size_t c, Change change) {
    Style changed = style(row, c);
    change(changed);
    auto known = std::find(styles_.begin(), styles_.end(), changed);
    if (known == styles_.end()) known = styles_.insert(known, changed);
    styleOf_[place(row, c)] = static_cast<uint16_t>(known - styles_.begin());
    ++content_;
}

void Grid::setBackColor(size_t row, size_t c, Color color) {
    changeStyle(row, c, [&](Style& style) { style.back = color; });
}

void Grid::setForeColor(size_t row, size_t c, Color color) {
    changeStyle(row, c, [&](Style& style) { style.fore = color; });
}

bool Grid::locked(size_t row, size_t c) const {
    return style(row, c).locked.value_or(columns_[c].locked);
}

void Grid::setLocked(size_t row, size_t c, bool locked) {
    changeStyle(row, c, [&](Style& style) { style.locked = locked; });
}

void Grid::setCellType(size_t row, size_t c, CellType type) {
    changeStyle(row, c, [&](Style& style) { style.type = type; });
}

CellType Grid::cellType(size_t row, size_t c) const {
    return style(row, c).type.value_or(columns_[c].type);
}

const std::string& Grid::cellTag(size_t row, size_t c) const {
    static const std::string none;
    const auto found = tags_.find(place(row, c));
    return found == tags_.end() ? none : found->second;
}

void Grid::setCellTag(size_t row, size_t c, std::string tag) {
    if (tag.empty())
        tags_.erase(place(row, c));
    else
        tags_[place(row, c)] = std::move(tag);
}

const std::vector<std::string>& Grid::choices(size_t row, size_t c) const {
    const auto found = choices_.find(place(row, c));
    return found == choices_.end() ? columns_[c].choices : found->second;
}

void Grid::setChoices(size_t row, size_t c, std::vector<std::string> choices) {
    choices_[place(row, c)] = std::move(choices);
    ++content_;
}

void Grid::setCurrent(int row, int c) {
    if (row == currentRow_ && c == currentColumn_) return;
    currentRow_ = row;
    currentColumn_ = c;
    ++content_;
}

}  // namespace owb
