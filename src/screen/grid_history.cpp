#include "screen/grid_history.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "base/number_text.h"
#include "screen/grid.h"

namespace owb {

void GridHistory::clear() {
    if (replaying_) return;  // a handler reads the rows again: the step stays until it is done
    done_.clear();
    undone_.clear();
    now_ = {};
}

void GridHistory::rowsGone() {
    if (!grid_.rowKey) clear();
}

void GridHistory::record(size_t row, size_t column, const std::string& before) {
    if (replaying_ || row >= grid_.rowCount() || grid_.cell(row, column) == before) return;
    const Step step(*this);
    now_.cells.push_back(
        {grid_.rowKey ? grid_.rowKey(row) : "", row, column, before, grid_.cell(row, column)});
}

void GridHistory::closed() {
    if (--open_ > 0) return;
    Changes step = std::exchange(now_, {});
    if (step.cells.empty()) return;
    step.sight = grid_.sight.version();
    undone_.clear();
    done_.push_back(std::move(step));
    if (done_.size() > kSteps) done_.pop_front();
}

bool GridHistory::undo() {
    return replay(done_, undone_, true);
}

bool GridHistory::redo() {
    return replay(undone_, done_, false);
}

bool GridHistory::replay(std::deque<Changes>& from, std::deque<Changes>& to, bool back) {
    const std::string what = back ? "undo" : "redo";
    if (from.empty()) return grid_.say("There is nothing to " + what + "."), false;
    Changes& step = from.back();
    std::map<std::string, size_t> rows;
    if (grid_.rowKey)
        for (size_t r = 0; r < grid_.rowCount(); ++r) rows[grid_.rowKey(r)] = r;
    std::vector<CellText> entries;
    const auto refuse = [&](const std::string& reason) {
        grid_.say("Cannot " + what + ". " + reason, true);
        return false;
    };
    // Backwards: where one cell was changed twice, its first text is the last to be entered.
    for (size_t i = 0; i < step.cells.size(); ++i) {
        Change& change = step.cells[back ? step.cells.size() - 1 - i : i];
        if (grid_.rowKey) {
            const auto found = rows.find(change.rowKey);
            if (found == rows.end()) return refuse("The row has gone.");
            change.row = found->second;
        }
        std::string reason;
        if (!grid_.takesEdit(change.row, change.column, reason)) return refuse(reason);
        if (grid_.cell(change.row, change.column) != (back ? change.after : change.before))
            return refuse("The cell in " + grid_.cellName(change.row, change.column) +
                          " holds something else by now.");
        entries.push_back({change.row, change.column, back ? change.before : change.after});
    }
    replaying_ = true;
    const bool entered = grid_.blocks.write(entries);
    replaying_ = false;
    if (!entered) return false;
    const std::string told = entries.size() == 1
                                 ? grid_.cellName(entries[0].row, entries[0].column)
                                 : groupIndian(std::to_string(entries.size())) + " cells";
    to.push_back(std::move(step));
    from.pop_back();
    show(to.back(), entries);
    grid_.say((back ? "Undone: " : "Entered again: ") + told);
    return true;
}

// What the step was about is chosen, where it is still in sight as it was; otherwise the cells that
// have changed.
void GridHistory::show(const Changes& step, const std::vector<CellText>& entries) {
    std::optional<GridCursor::Block> block;
    if (step.sight == grid_.sight.version()) block = step.area;
    for (const CellText& entry : entries) {
        const auto row = grid_.sight.placeOfRow(entry.row);
        const auto column = grid_.sight.placeOfColumn(entry.column);
        if (!row || !column) continue;
        if (!block) block = GridCursor::Block{*row, *column, *row, *column};
        block = block->with(*row, *column);
    }
    if (!block) return;
    grid_.cursor.collapse();
    grid_.goTo(grid_.sight.rows()[block->top], grid_.sight.columns()[block->left]);
    if (block->several()) grid_.cursor.choose(*block);
}

}  // namespace owb
