#include "screen/grid_find.h"

#include <algorithm>

#include "base/utf8.h"
#include "screen/grid.h"

namespace owb {

void GridFind::setOpen(bool on) {
    open_ = on;
    grid_.say("");
}

void GridFind::setText(const std::string& text) {
    text_ = text;
    if (hits().empty()) return;
    // The nearest hit, the current cell counted in.
    const auto row = static_cast<size_t>(std::max(grid_.currentRow(), 0));
    const auto column = static_cast<size_t>(std::max(grid_.currentColumn(), 0));
    if (!isHit(row, column)) next();
}

const std::vector<GridFind::Hit>& GridFind::hits() const {
    if (!open_ || text_.empty()) {
        hits_.clear();
        hitCells_.clear();
        seenText_.clear();
        return hits_;
    }
    if (seenText_ == text_ && seenContent_ == grid_.content() &&
        seenSight_ == grid_.sight.version())
        return hits_;
    seenText_ = text_;
    seenContent_ = grid_.content();
    seenSight_ = grid_.sight.version();
    hits_.clear();
    hitCells_.clear();
    const std::string wanted = foldText(text_);
    for (const size_t r : grid_.sight.rows())
        for (const size_t c : grid_.sight.columns()) {
            if (foldText(grid_.cell(r, c)).find(wanted) == std::string::npos) continue;
            hits_.push_back({r, c});
            hitCells_.insert(place(r, c));
        }
    return hits_;
}

uint64_t GridFind::place(size_t row, size_t c) const {
    return row * grid_.columnCount() + c;
}

bool GridFind::isHit(size_t row, size_t c) const {
    return !hits().empty() && hitCells_.contains(place(row, c));
}

bool GridFind::next(bool forward) {
    const std::vector<Hit>& all = hits();
    if (all.empty()) return false;
    const auto placeOf = [&](const Hit& hit) {
        return std::pair(grid_.sight.placeOfRow(hit.row).value_or(0),
                         grid_.sight.placeOfColumn(hit.column).value_or(0));
    };
    Hit to = forward ? all.front() : all.back();
    if (grid_.currentRow() >= 0) {
        const auto now = placeOf({static_cast<size_t>(grid_.currentRow()),
                                  static_cast<size_t>(std::max(grid_.currentColumn(), 0))});
        const auto beyond = [&](const Hit& hit) {
            return forward ? placeOf(hit) > now : placeOf(hit) < now;
        };
        if (forward) {
            if (const auto at = std::find_if(all.begin(), all.end(), beyond); at != all.end())
                to = *at;
        } else if (const auto at = std::find_if(all.rbegin(), all.rend(), beyond);
                   at != all.rend()) {
            to = *at;
        }
    }
    return grid_.goTo(to.row, to.column);
}

bool GridFind::typeAhead(const std::string& letters) {
    ahead_ += letters;
    const std::string wanted = foldText(ahead_);
    std::vector<size_t> columns = grid_.sight.columns();
    std::stable_partition(columns.begin(), columns.end(), [&](size_t c) {
        const GridColumn& column = grid_.column(c);
        return column.type == CellType::Text && column.align != Align::Right;
    });
    for (const size_t c : columns)
        for (const size_t r : grid_.sight.rows())
            if (foldText(grid_.cell(r, c)).starts_with(wanted)) return grid_.goTo(r, c);
    return false;
}

}  // namespace owb
