#include "screen/grid_sight.h"

#include <algorithm>

#include "base/date_time.h"
#include "base/number_text.h"
#include "base/utf8.h"
#include "screen/grid.h"

namespace owb {

// --- what is in sight ---

void GridSight::changed() {
    stale_ = true;
    refresh();
}

void GridSight::refresh() const {
    if (!stale_ && seenShape_ == grid_.shape()) return;
    stale_ = false;
    seenShape_ = grid_.shape();
    ++version_;
    filteredOut_.assign(grid_.rowCount(), false);
    for (size_t r = 0; r < grid_.rowCount() && !filters_.empty(); ++r) filteredOut_[r] = !passes(r);
    collectRows();
    collectColumns();
}

void GridSight::collectRows() const {
    rows_.clear();
    for (size_t r = 0; r < grid_.rowCount(); ++r)
        if (!grid_.hiddenByScreen(r) && !filteredOut_[r]) rows_.push_back(r);
    if (order_) {
        const size_t c = order_->column;
        const CellType type = grid_.column(c).type;
        const auto dayOf = [&](size_t row) {
            const auto date = parseTypedDate(grid_.cell(row, c));
            return date ? date->day : 0;
        };
        const auto before = [&](size_t a, size_t b) {
            if (type == CellType::Number) return grid_.number(a, c) < grid_.number(b, c);
            if (type == CellType::Date) return dayOf(a) < dayOf(b);
            return compareText(grid_.cell(a, c), grid_.cell(b, c)) < 0;
        };
        std::stable_sort(rows_.begin(), rows_.end(), [&](size_t a, size_t b) {
            return order_->descending ? before(b, a) : before(a, b);
        });
    }
    placeOfRow_.assign(grid_.rowCount(), std::nullopt);
    for (size_t place = 0; place < rows_.size(); ++place) placeOfRow_[rows_[place]] = place;
}

void GridSight::collectColumns() const {
    columns_.clear();
    for (size_t i = 0; i < grid_.columnCount(); ++i) {
        const size_t c = columnOrder_.empty() ? i : columnOrder_[i];
        if (!grid_.column(c).hidden && !columnHidden(c)) columns_.push_back(c);
    }
}

const std::vector<size_t>& GridSight::rows() const {
    refresh();
    return rows_;
}

const std::vector<size_t>& GridSight::columns() const {
    refresh();
    return columns_;
}

std::optional<size_t> GridSight::placeOfRow(size_t row) const {
    refresh();
    return row < placeOfRow_.size() ? placeOfRow_[row] : std::nullopt;
}

std::optional<size_t> GridSight::placeOfColumn(size_t c) const {
    const auto at = std::find(columns().begin(), columns().end(), c);
    if (at == columns_.end()) return std::nullopt;
    return static_cast<size_t>(at - columns_.begin());
}

uint64_t GridSight::version() const {
    refresh();
    return version_;
}

void GridSight::reset() {
    order_.reset();
    filters_.clear();
    hiddenColumns_.clear();
    columnOrder_.clear();
    frozen_.reset();
    stale_ = true;
}

// --- order ---

void GridSight::sort(std::optional<Order> order) {
    order_ = order;
    changed();
}

void GridSight::sortNext(size_t c) {
    if (!order_ || order_->column != c)
        sort(Order{c, false});
    else if (!order_->descending)
        sort(Order{c, true});
    else
        sort(std::nullopt);
}

// --- filters ---

bool GridSight::passes(size_t row, std::optional<size_t> except) const {
    return std::all_of(filters_.begin(), filters_.end(), [&](const auto& filter) {
        return filter.first == except || filter.second.contains(grid_.cell(row, filter.first));
    });
}

std::vector<std::pair<std::string, size_t>> GridSight::values(size_t c) const {
    std::map<std::string, size_t> counts;
    for (size_t r = 0; r < grid_.rowCount(); ++r)
        if (!grid_.hiddenByScreen(r) && passes(r, c)) ++counts[grid_.cell(r, c)];
    std::vector<std::pair<std::string, size_t>> values(counts.begin(), counts.end());
    if (grid_.column(c).type == CellType::Number)
        std::stable_sort(values.begin(), values.end(), [](const auto& a, const auto& b) {
            return textToNumber(a.first) < textToNumber(b.first);
        });
    return values;
}

void GridSight::filter(size_t c, std::set<std::string> texts) {
    filters_[c] = std::move(texts);
    changed();
}

void GridSight::clearFilter(size_t c) {
    filters_.erase(c);
    changed();
}

void GridSight::clearFilters() {
    filters_.clear();
    changed();
}

bool GridSight::filteredOut(size_t row) const {
    if (filters_.empty()) return false;
    refresh();
    return filteredOut_[row];
}

std::string GridSight::summary() const {
    if (rows().size() == grid_.rowCount()) return "";
    const auto grouped = [](size_t count) { return groupIndian(std::to_string(count)); };
    return grouped(rows_.size()) + " of " + grouped(grid_.rowCount()) + " shown";
}

// --- columns ---

void GridSight::hideColumn(size_t c, bool hidden) {
    if (!hidden)
        hiddenColumns_.erase(c);
    else if (columns().size() > 1)
        hiddenColumns_.insert(c);
    changed();
}

void GridSight::moveColumn(size_t c, size_t place) {
    if (columnOrder_.empty())
        for (size_t i = 0; i < grid_.columnCount(); ++i) columnOrder_.push_back(i);
    const std::optional<size_t> before =
        place < columns().size() ? std::optional(columns_[place]) : std::nullopt;
    if (before == c) return;
    std::erase(columnOrder_, c);
    const auto at =
        before ? std::find(columnOrder_.begin(), columnOrder_.end(), *before) : columnOrder_.end();
    columnOrder_.insert(at, c);
    changed();
}

void GridSight::setColumnOrder(const std::vector<size_t>& order) {
    std::vector<size_t> sorted = order;
    std::sort(sorted.begin(), sorted.end());
    for (size_t c = 0; c < sorted.size(); ++c)
        if (sorted[c] != c) return;
    if (order.size() != grid_.columnCount()) return;
    columnOrder_ = order;
    changed();
}

size_t GridSight::frozen() const {
    if (frozen_) return std::min(*frozen_, columns().size());
    return static_cast<size_t>(std::count_if(columns().begin(), columns().end(),
                                             [&](size_t c) { return c < grid_.frozenColumns; }));
}

}  // namespace owb
