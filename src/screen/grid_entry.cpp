#include "screen/grid_entry.h"

#include <algorithm>

#include "base/utf8.h"
#include "screen/front_end.h"
#include "screen/grid.h"

namespace owb {

// --- one entry ---

bool GridEntry::refuse(const std::string& reason) {
    refusal_ = reason;
    grid_.say(reason, true);
    return false;
}

bool GridEntry::begin(State state, const std::string& text) {
    if (grid_.currentRow() < 0) return false;
    const auto row = static_cast<size_t>(grid_.currentRow());
    const auto column = static_cast<size_t>(grid_.currentColumn());
    std::string reason;
    if (!grid_.beginEdit(row, column, reason)) return grid_.say(reason, true), true;
    state_ = state;
    row_ = row;
    column_ = column;
    shape_ = grid_.shape();
    listOpen_ = false;
    text_.clear();
    refusal_.clear();
    setText(text);
    return true;
}

bool GridEntry::edit() {
    if (grid_.currentRow() < 0) return false;
    return begin(State::Edit, grid_.text());
}

// What passes the screen's filter of characters.
std::string GridEntry::accepted(const std::string& text) const {
    if (!grid_.cellFilter) return text;
    std::string kept;
    for (size_t at = 0; at < text.size();)
        if (const char32_t c = grid_.cellFilter(row_, column_, nextCodePoint(text, at), kept))
            appendCodePoint(kept, c);
    return kept;
}

bool GridEntry::codes() const {
    return grid_.cellType(row_, column_) == CellType::Combo;
}

std::vector<std::string> GridEntry::startingWith(const std::string& text) const {
    std::vector<std::string> codes;
    const std::string wanted = foldText(trim(text));
    for (const std::string& code : grid_.choices(row_, column_))
        if (foldText(code).starts_with(wanted)) codes.push_back(code);
    return codes;
}

std::vector<std::string> GridEntry::candidates() const {
    return listAll_ ? grid_.choices(row_, column_) : startingWith(text_);
}

void GridEntry::setText(const std::string& text) {
    if (!busy()) return;
    text_ = accepted(text);
    refusal_.clear();
    listAll_ = false;
    chosen_ = listOpen_ && !candidates().empty() ? 0 : -1;
    grid_.say("");
    if (codes() && !grid_.column(column_).editable && candidates().empty()) {
        listOpen_ = false;
        refuse("No code begins with \"" + text_ + "\".");
    }
}

void GridEntry::cancel() {
    state_ = State::Ready;
    listOpen_ = false;
    text_.clear();
    refusal_.clear();
    grid_.say("");
}

bool GridEntry::commit() {
    if (!busy()) return true;
    // The screen has read its rows anew meanwhile: the cell is another one.
    if (shape_ != grid_.shape()) return cancel(), true;
    const bool whole = codes() && !grid_.column(column_).editable;
    const std::vector<std::string> possible = startingWith(text_);
    const bool isCode = std::any_of(possible.begin(), possible.end(), [&](const auto& code) {
        return compareText(code, trim(text_)) == 0;
    });
    if (whole && !isCode && !trim(text_).empty()) {
        if (possible.empty()) return refuse("No code begins with \"" + text_ + "\".");
        openList();
        listAll_ = false;
        chosen_ = 0;
        return refuse("\"" + text_ + "\" is no whole code.");
    }
    std::string reason;
    if (!grid_.takesEdit(row_, column_, reason) || !grid_.fitted(row_, column_, text_, reason))
        return refuse(reason);
    const std::string text = text_;
    const size_t row = row_, column = column_;
    cancel();  // the handlers find the grid ready
    if (!grid_.endEdit(row, column, text, reason)) grid_.say(reason, true);
    return true;
}

// --- keys ---

bool GridEntry::press(const std::string& key) {
    if (!grid_.takesInput()) return false;
    if (busy() && shape_ != grid_.shape()) cancel();
    grid_.find.endTyping();
    if (listOpen_ && pressInList(key)) return true;
    if (busy()) return pressBusy(key);
    grid_.say("");
    return grid_.cursor.press(key) || pressReady(key) || pressBlock(key) || pressOther(key);
}

// Enters what is typed and goes on as the key says.
bool GridEntry::finish(const std::string& key) {
    if (!commit()) return true;
    if (key == "Tab" || key == "Shift+Tab") return grid_.cursor.tab(key == "Tab");
    if (key == "Enter" || key == "Shift+Enter")
        grid_.cursor.enter(key == "Enter");
    else
        grid_.cursor.press(key);
    return true;
}

bool GridEntry::pressBusy(const std::string& key) {
    if (key == "Esc") return cancel(), true;
    if (key == "F2") {
        state_ = state_ == State::Enter ? State::Edit : State::Enter;
        return true;
    }
    if (key == "F4" || key == "Alt+Down") {
        if (codes())
            openList();
        else if (const std::string text = text_; grid_.cellType(row_, column_) == CellType::Date)
            return cancel(), grid_.pick(row_, column_);
        return true;
    }
    if (key == "Ctrl+Enter" || key == "Alt+Enter") {
        std::string reason;
        if (!grid_.fitted(row_, column_, text_, reason)) return refuse(reason), true;
        const std::string text = text_;
        cancel();
        return grid_.blocks.typeIntoAll(text), true;
    }
    if (key == "Ctrl+Tab" || key == "Ctrl+Shift+Tab" || key == "F6" || key == "Shift+F6")
        return !commit();
    // In either state.
    static constexpr const char* kGoOn[] = {"Enter", "Shift+Enter", "Tab",  "Shift+Tab",
                                            "Up",    "Down",        "PgUp", "PgDown"};
    // Only where typing began the entry; otherwise they are the caret's.
    static constexpr const char* kCarets[] = {"Left",      "Right",     "Home",      "End",
                                              "Ctrl+Up",   "Ctrl+Down", "Ctrl+Left", "Ctrl+Right",
                                              "Ctrl+Home", "Ctrl+End"};
    const auto among = [&](const auto& keys) {
        return std::find(std::begin(keys), std::end(keys), key) != std::end(keys);
    };
    if (among(kGoOn) || (state_ == State::Enter && among(kCarets))) return finish(key);
    return false;
}

bool GridEntry::pressInList(const std::string& key) {
    const int count = static_cast<int>(candidates().size());
    if (key == "Esc" || key == "F4" || key == "Alt+Up") {
        listOpen_ = false;
        grid_.say("");
        return true;
    }
    const int step = key == "Down" ? 1 : key == "Up" ? -1 : key == "PgDown" ? 8 : -8;
    if (key == "Down" || key == "Up" || key == "PgDown" || key == "PgUp") {
        chosen_ = std::clamp(chosen_ + step, 0, std::max(count - 1, 0));
        grid_.say("");
        return true;
    }
    if ((key != "Enter" && key != "Tab") || chosen_ < 0 || chosen_ >= count) return false;
    return choose(static_cast<size_t>(chosen_)), true;
}

void GridEntry::openList() {
    if (!busy() || !codes()) return;
    listAll_ = true;
    listOpen_ = true;
    chosen_ = -1;
    const std::vector<std::string> all = candidates();
    for (size_t i = 0; i < all.size() && chosen_ < 0; ++i)
        if (!text_.empty() && foldText(all[i]).starts_with(foldText(trim(text_))))
            chosen_ = static_cast<int>(i);
    if (chosen_ < 0 && !all.empty()) chosen_ = 0;
    grid_.say("");
}

bool GridEntry::choose(size_t candidate) {
    const std::vector<std::string> all = candidates();
    if (!busy() || candidate >= all.size()) return false;
    setText(all[candidate]);
    return commit();
}

bool GridEntry::onEnter(bool forward) {
    if (grid_.cursor.enter(forward)) return true;
    if (grid_.currentRow() < 0) return false;
    const auto row = static_cast<size_t>(grid_.currentRow());
    const auto column = static_cast<size_t>(grid_.currentColumn());
    // The last cell that can be edited: the user stays there.
    if (!grid_.locked(row, column)) return true;
    return grid_.onCellDoubleClick && grid_.doubleClickCell(row, column);
}

bool GridEntry::pressReady(const std::string& key) {
    if (key == "Enter" || key == "Shift+Enter") return onEnter(key == "Enter");
    if (key == "Tab" || key == "Shift+Tab") return grid_.cursor.tab(key == "Tab");
    if (grid_.currentRow() < 0) return false;
    if (key == "F2") return edit();
    if (key == "Backspace") return begin(State::Enter, "");
    if (key == "Space") return type(" ");
    if (key != "F4" && key != "Alt+Down") return false;
    const auto row = static_cast<size_t>(grid_.currentRow());
    const auto column = static_cast<size_t>(grid_.currentColumn());
    if (grid_.cellType(row, column) == CellType::Date) return grid_.pick(row, column);
    if (grid_.cellType(row, column) != CellType::Combo || !edit()) return false;
    openList();
    return true;
}

bool GridEntry::pressBlock(const std::string& key) {
    FrontEnd& frontEnd = grid_.frontEnd();
    if (key == "Ctrl+C" || key == "Ctrl+Ins")
        return frontEnd.setClipboard(grid_.blocks.copy()), true;
    if (!grid_.takesEntries()) return false;
    if (key == "Ctrl+X" || key == "Shift+Del") {
        const std::string cut = grid_.blocks.copy();
        if (grid_.blocks.empty()) frontEnd.setClipboard(cut);
        return true;
    }
    if (key == "Ctrl+V" || key == "Shift+Ins")
        return grid_.blocks.paste(frontEnd.clipboard()), true;
    if (key == "Ctrl+D") return grid_.blocks.fillDown(), true;
    if (key == "Ctrl+R") return grid_.blocks.fillRight(), true;
    if (key == "Ctrl+Z") return grid_.history.undo(), true;
    if (key == "Ctrl+Y" || key == "Ctrl+Shift+Z") return grid_.history.redo(), true;
    if (key == "Del") return grid_.blocks.empty(), true;
    return false;
}

bool GridEntry::pressOther(const std::string& key) {
    if (key == "Ctrl+F") return grid_.find.open(), true;
    if (key == "F3" || key == "Shift+F3") {
        grid_.find.open();
        return grid_.find.next(key == "F3"), true;
    }
    if (key == "Ctrl++" || key == "Ctrl+=" || key == "Ctrl+-" || key == "Ctrl+0") {
        constexpr int kStep = 10;
        const int step = key == "Ctrl+-" ? -kStep : kStep;
        grid_.zoom = key == "Ctrl+0"
                         ? 100
                         : std::clamp(grid_.zoom + step, Grid::kLeastZoom, Grid::kMostZoom);
        return grid_.say(std::to_string(grid_.zoom) + " %"), true;
    }
    if (key != "Esc") return false;
    if (grid_.find.isOpen()) return grid_.find.close(), true;
    return grid_.cursor.collapse();
}

// --- typing ---

bool GridEntry::toggle() {
    const auto row = static_cast<size_t>(grid_.currentRow());
    const auto column = static_cast<size_t>(grid_.currentColumn());
    std::string reason;
    if (!grid_.check(row, column, !grid_.checked(row, column), reason)) grid_.say(reason, true);
    return true;
}

bool GridEntry::type(const std::string& text) {
    if (!grid_.takesInput() || text.empty()) return false;
    if (busy()) return setText(text_ + text), true;
    grid_.say("");
    const int column = grid_.currentColumn();
    if (grid_.currentRow() >= 0) {
        const auto row = static_cast<size_t>(grid_.currentRow());
        if (grid_.cellType(row, static_cast<size_t>(column)) == CellType::Check)
            return text == " " && toggle();
        if (!grid_.column(static_cast<size_t>(column)).locked ||
            !grid_.locked(row, static_cast<size_t>(column)))
            return begin(State::Enter, text);
    }
    return grid_.find.typeAhead(text);
}

}  // namespace owb
