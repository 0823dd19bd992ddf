// What a user does to the cells of a grid: moving, clicking, editing.
#include <algorithm>

#include "base/date_time.h"
#include "base/number_text.h"
#include "base/utf8.h"
#include "screen/grid.h"
#include "screen/print_pages.h"
#include "screen/screen.h"

namespace owb {

bool Grid::goTo(size_t row, size_t c) {
    if (!takesInput() || row >= rows_ || c >= columns_.size()) return false;
    // What is typed elsewhere is entered first; while it does not fit, the user stays with it.
    if (entry.busy() && (row != entry.row() || c != entry.column()) && !entry.commit())
        return false;
    if (static_cast<int>(row) == currentRow_ && static_cast<int>(c) == currentColumn_) return true;
    setCurrent(static_cast<int>(row), static_cast<int>(c));
    if (onCurrentChange) run([&] { onCurrentChange(row, c); });
    return true;
}

bool Grid::clickCell(size_t row, size_t c) {
    if (!goTo(row, c)) return false;
    if (onCellClick) run([&] { onCellClick(row, c); });
    return true;
}

bool Grid::doubleClickCell(size_t row, size_t c) {
    if (!goTo(row, c)) return false;
    if (onCellDoubleClick) run([&] { onCellDoubleClick(row, c); });
    return true;
}

bool Grid::rightClickCell(size_t row, size_t c) {
    if (!goTo(row, c)) return false;
    if (onRightClick) run([&] { onRightClick(row, c); });
    return true;
}

std::string Grid::cellName(size_t row, size_t c) const {
    const size_t place = sight.placeOfRow(row).value_or(row);
    return "row " + std::to_string(place + 1) + ", \"" + columns_[c].caption + "\"";
}

bool Grid::takesEntries() const {
    return std::any_of(columns_.begin(), columns_.end(),
                       [](const GridColumn& column) { return !column.locked; }) ||
           std::any_of(styles_.begin(), styles_.end(),
                       [](const Style& style) { return style.locked == false; });
}

bool Grid::takesEdit(size_t row, size_t c, std::string& reason) const {
    if (!takesInput())
        reason = name() + " takes no entry now.";
    else if (row >= rows_ || c >= columns_.size())
        reason = "There is no such cell.";
    else if (locked(row, c))
        reason = "The cell in " + cellName(row, c) + " is locked.";
    else if (!mayWrite())
        reason = "Permission denied.";
    else
        return true;
    return false;
}

std::optional<std::string> Grid::fitted(size_t row, size_t c, const std::string& text,
                                        std::string& reason) const {
    const std::string trimmed = trim(text);
    const auto refused = [&](const char* what) -> std::optional<std::string> {
        reason = "\"" + trimmed + "\" is no " + what + ": " + cellName(row, c) + ".";
        return std::nullopt;
    };
    switch (cellType(row, c)) {
        case CellType::Text:
            return text;
        case CellType::Number: {
            if (trimmed.empty()) return trimmed;
            std::string plain = trimmed;
            std::erase(plain, ',');
            const size_t digits = plain.find_first_not_of("+-");
            const bool good = digits != std::string::npos && digits <= 1 &&
                              plain.find_first_not_of("0123456789.", digits) == std::string::npos &&
                              plain.find_first_of("0123456789") != std::string::npos &&
                              std::count(plain.begin(), plain.end(), '.') <= 1;
            if (!good) return refused("number");
            const int decimals = columns_[c].decimals;
            return formatNumber(textToNumber(plain[0] == '+' ? plain.substr(1) : plain),
                                decimals > 0 ? "0." + std::string(decimals, '0') : "0");
        }
        case CellType::Date: {
            if (trimmed.empty()) return trimmed;
            const auto date = parseEntryDate(trimmed, screen().entryDay());
            if (!date) return refused("date");
            return dateText(*date, "dd/mm/yyyy");
        }
        case CellType::Check:
            if (equalsIgnoreCaseAscii(trimmed, "Yes") || trimmed == "1") return "1";
            if (equalsIgnoreCaseAscii(trimmed, "No") || trimmed == "0" || trimmed.empty())
                return "0";
            return refused("Yes or No");
        case CellType::Combo: {
            for (const std::string& choice : choices(row, c))
                if (compareText(choice, trimmed) == 0) return choice;
            if (trimmed.empty() || columns_[c].editable) return trimmed;
            return refused("entry of the list");
        }
    }
    return std::nullopt;
}

bool Grid::beginEdit(size_t row, size_t c, std::string& reason) {
    if (!takesEdit(row, c, reason)) return false;
    goTo(row, c);
    if (onEditBegin) run([&] { onEditBegin(row, c); });
    return takesEdit(row, c, reason);  // the handler may have locked it
}

bool Grid::edit(size_t row, size_t c, const std::string& text, std::string& reason) {
    return beginEdit(row, c, reason) && endEdit(row, c, text, reason);
}

bool Grid::endEdit(size_t row, size_t c, const std::string& text, std::string& reason) {
    if (!takesEdit(row, c, reason)) return false;
    const std::optional<std::string> fits = fitted(row, c, text, reason);
    if (!fits) return false;
    const std::string before = cell(row, c);
    if (*fits == before) return true;
    setCell(row, c, *fits);
    const GridHistory::Step step(history);
    if (onEditEnd) run([&] { onEditEnd(row, c, before); });
    history.record(row, c, before);
    return true;
}

bool Grid::check(size_t row, size_t c, bool on, std::string& reason) {
    if (row < rows_ && c < columns_.size() && cellType(row, c) != CellType::Check) {
        reason = "There is no check box in " + cellName(row, c) + ".";
        return false;
    }
    return edit(row, c, on ? "Yes" : "No", reason);
}

bool Grid::pick(size_t row, size_t c) {
    std::string reason;
    if (!onPickCell) return false;
    if (!takesEdit(row, c, reason)) return say(reason, true), true;
    run([&] { onPickCell(row, c); });
    return true;
}

bool Grid::key(const std::string& key) {
    if (Control::key(key) || entry.press(key)) return true;
    if (key == "Ctrl+P") print();
    return key == "Ctrl+P";
}

void Grid::print() {
    frontEnd().print(*this, screen().printHeading());
}

void Grid::leave() {
    if (entry.busy() && !entry.commit())
        screen().setFocus(*this);
    else
        Control::leave();
}

void Grid::say(std::string text, bool refusal) {
    said_ = {std::move(text), refusal};
    ++content_;
}

}  // namespace owb
