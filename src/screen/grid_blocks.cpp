#include "screen/grid_blocks.h"

#include <algorithm>

#include "base/number_text.h"
#include "base/utf8.h"
#include "screen/grid.h"

namespace owb {

namespace {

std::string sizeText(size_t rows, size_t columns) {
    return std::to_string(rows) + " x " + std::to_string(columns);
}

}  // namespace

GridBlocks::Texts GridBlocks::chosen() const {
    Texts texts;
    const auto block = grid_.cursor.block();
    if (!block) return texts;
    for (size_t r = block->top; r <= block->bottom; ++r) {
        texts.emplace_back();
        for (size_t c = block->left; c <= block->right; ++c)
            texts.back().push_back(grid_.cell(grid_.sight.rows()[r], grid_.sight.columns()[c]));
    }
    return texts;
}

std::string GridBlocks::copy() const {
    std::string out;
    for (const std::vector<std::string>& line : chosen()) {
        for (size_t c = 0; c < line.size(); ++c) out += (c > 0 ? "\t" : "") + line[c];
        out += '\n';
    }
    return out;
}

// The texts over an area of the sight, repeated as often as it takes.
bool GridBlocks::put(const Texts& texts, size_t top, size_t left, size_t rows, size_t columns) {
    std::vector<CellText> entries;
    for (size_t r = 0; r < rows; ++r)
        for (size_t c = 0; c < columns; ++c)
            entries.push_back({grid_.sight.rows()[top + r], grid_.sight.columns()[left + c],
                               texts[r % texts.size()][c % texts.front().size()]});
    return write(entries);
}

bool GridBlocks::paste(const std::string& text) {
    const auto block = grid_.cursor.block();
    if (!block || text.empty()) return false;
    std::string plain = text;
    std::erase(plain, '\r');
    if (plain.ends_with('\n')) plain.pop_back();
    Texts texts;
    size_t width = 1;
    for (const std::string& line : split(plain, '\n')) {
        texts.push_back(split(line, '\t'));
        width = std::max(width, texts.back().size());
    }
    for (std::vector<std::string>& line : texts) line.resize(width);
    const size_t height = texts.size();
    const bool several = block->several() && !grid_.singleRows;
    if (several && (height > block->rows() || width > block->columns())) {
        grid_.say("The block (" + sizeText(height, width) + ") is larger than what is chosen (" +
                      sizeText(block->rows(), block->columns()) + ").",
                  true);
        return false;
    }
    if (block->top + height > grid_.sight.rows().size() ||
        block->left + width > grid_.sight.columns().size()) {
        grid_.say("The block is larger than what is left of the grid.", true);
        return false;
    }
    const size_t rows = several ? block->rows() : height;
    const size_t columns = several ? block->columns() : width;
    if (!put(texts, block->top, block->left, rows, columns)) return false;
    const std::string told = grid_.said().text;
    if (rows * columns > 1 && !grid_.singleRows)
        grid_.cursor.choose(
            {block->top, block->left, block->top + rows - 1, block->left + columns - 1});
    grid_.say(told);
    return true;
}

bool GridBlocks::empty() {
    return typeIntoAll("");
}

bool GridBlocks::typeIntoAll(const std::string& text) {
    const auto block = grid_.cursor.block();
    return block && put({{text}}, block->top, block->left, block->rows(), block->columns());
}

bool GridBlocks::fillDown() {
    const auto block = grid_.cursor.block();
    if (!block) return false;
    Texts texts = chosen();
    if (block->rows() > 1) {
        texts.resize(1);
        return put(texts, block->top + 1, block->left, block->rows() - 1, block->columns());
    }
    if (block->top == 0) return false;
    for (size_t c = 0; c < block->columns(); ++c)
        texts[0][c] =
            grid_.cell(grid_.sight.rows()[block->top - 1], grid_.sight.columns()[block->left + c]);
    return put(texts, block->top, block->left, 1, block->columns());
}

bool GridBlocks::fillRight() {
    const auto block = grid_.cursor.block();
    if (!block) return false;
    Texts texts = chosen();
    if (block->columns() > 1) {
        for (std::vector<std::string>& line : texts) line.resize(1);
        return put(texts, block->top, block->left + 1, block->rows(), block->columns() - 1);
    }
    if (block->left == 0) return false;
    for (size_t r = 0; r < block->rows(); ++r)
        texts[r][0] =
            grid_.cell(grid_.sight.rows()[block->top + r], grid_.sight.columns()[block->left - 1]);
    return put(texts, block->top, block->left, block->rows(), 1);
}

// Upwards and to the left the repetition counts from what is chosen, too.
bool GridBlocks::fillTo(size_t row, size_t column) {
    const auto block = grid_.cursor.block();
    if (!block || grid_.singleRows || row >= grid_.sight.rows().size() ||
        column >= grid_.sight.columns().size() || block->holds(row, column))
        return false;
    Texts texts = chosen();
    GridCursor::Block whole = *block;
    std::vector<CellText> entries;
    const bool vertical = row < block->top || row > block->bottom;
    if (vertical) {
        whole.top = std::min(whole.top, row);
        whole.bottom = std::max(whole.bottom, row);
    } else {
        whole.left = std::min(whole.left, column);
        whole.right = std::max(whole.right, column);
    }
    const auto from = [](size_t at, size_t first, size_t count) {
        return at >= first ? (at - first) % count : (count - (first - at) % count) % count;
    };
    for (size_t r = whole.top; r <= whole.bottom; ++r)
        for (size_t c = whole.left; c <= whole.right; ++c)
            if (!block->holds(r, c))
                entries.push_back({grid_.sight.rows()[r], grid_.sight.columns()[c],
                                   texts[from(r, block->top, block->rows())]
                                        [from(c, block->left, block->columns())]});
    if (!write(entries)) return false;
    const std::string told = grid_.said().text;
    grid_.cursor.choose(whole);
    grid_.say(told);
    return true;
}

bool GridBlocks::write(const std::vector<CellText>& entries) {
    std::string reason, first;
    std::vector<CellText> open;
    for (const CellText& entry : entries) {
        if (!grid_.takesEdit(entry.row, entry.column, reason)) {
            if (!grid_.locked(entry.row, entry.column)) return grid_.say(reason, true), false;
            if (first.empty()) first = reason;
            continue;
        }
        const auto fits = grid_.fitted(entry.row, entry.column, entry.text, reason);
        if (!fits) return grid_.say(reason, true), false;
        open.push_back({entry.row, entry.column, *fits});
    }
    if (open.empty()) {
        if (!entries.empty())
            grid_.say(
                entries.size() == 1
                    ? first
                    : "0 set, " + groupIndian(std::to_string(entries.size())) + " skipped (locked)",
                true);
        return false;
    }
    return enter(open, entries.size() - open.size());
}

// What is shown of the block when it is taken back: its cells and what was chosen for it.
GridCursor::Block GridBlocks::area(const std::vector<CellText>& entries) const {
    GridCursor::Block all = grid_.cursor.block().value_or(GridCursor::Block{});
    for (const CellText& entry : entries) {
        const auto row = grid_.sight.placeOfRow(entry.row);
        const auto column = grid_.sight.placeOfColumn(entry.column);
        if (row && column) all = all.with(*row, *column);
    }
    return all;
}

bool GridBlocks::enter(const std::vector<CellText>& open, size_t skipped) {
    const GridHistory::Step step(grid_.history, area(open));
    const int row = grid_.currentRow(), column = grid_.currentColumn();
    size_t set = open.size();
    if (grid_.onBlock && open.size() > 1) {
        std::vector<std::string> before;
        for (const CellText& entry : open) before.push_back(grid_.cell(entry.row, entry.column));
        grid_.run([&] { grid_.onBlock(open); });
        for (size_t i = 0; i < open.size(); ++i)
            grid_.history.record(open[i].row, open[i].column, before[i]);
    } else {
        // The handlers of a screen may lock what comes later, or take rows away.
        std::string reason;
        set = 0;
        for (const CellText& entry : open)
            if (entry.row < grid_.rowCount() &&
                grid_.edit(entry.row, entry.column, entry.text, reason))
                ++set;
        skipped += open.size() - set;
    }
    // Each edit was at its own cell; the user is where he was.
    if (row >= 0 && static_cast<size_t>(row) < grid_.rowCount())
        grid_.goTo(static_cast<size_t>(row), static_cast<size_t>(column));
    if (open.size() + skipped == 1 && set == 1) return grid_.say(""), true;
    std::string told = groupIndian(std::to_string(set)) + " set";
    if (skipped > 0) told += ", " + groupIndian(std::to_string(skipped)) + " skipped (locked)";
    grid_.say(told);
    return set > 0;
}

}  // namespace owb
