#include "script/script_commands.h"

#include <charconv>

#include "base/csv.h"
#include "base/utf8.h"
#include "screen/grid.h"
#include "screen/lists.h"
#include "screen/screen.h"
#include "screen/text_box.h"

namespace owb {

namespace {

// Cuts the first word off.
std::string takeWord(std::string& rest) {
    const size_t end = std::min(rest.find(' '), rest.size());
    std::string word = rest.substr(0, end);
    rest = trim(std::string_view(rest).substr(end));
    return word;
}

std::string takeLastWord(std::string& rest) {
    const size_t at = rest.find_last_of(' ');
    const size_t from = at == std::string::npos ? 0 : at + 1;
    std::string word = rest.substr(from);
    rest = trim(std::string_view(rest).substr(0, from));
    return word;
}

bool yesOrNo(const std::string& word) {
    if (equalsIgnoreCaseAscii(word, "Yes")) return true;
    if (equalsIgnoreCaseAscii(word, "No")) return false;
    throw ScriptError{"not Yes or No: " + word};
}

bool readNumber(const std::string& word, size_t& number) {
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    return error == std::errc() && end == word.data() + word.size();
}

Control& controlNamed(Screen& screen, const std::string& name) {
    if (Control* control = screen.find(name)) return *control;
    throw ScriptError{"no control " + name + " on " + screen.name()};
}

Grid& gridNamed(Screen& screen, const std::string& name) {
    if (auto* grid = dynamic_cast<Grid*>(&controlNamed(screen, name))) return *grid;
    throw ScriptError{name + " is no grid"};
}

void refuseIf(bool refused, const Control& control, const std::string& what) {
    if (refused) throw ScriptError{control.name() + " takes no " + what + " now"};
}

// --- cells: rows and columns are those that the user sees, counted from 1 ---

struct CellPlace {
    size_t row, column;
};

size_t rowAt(const Grid& grid, const std::string& word) {
    size_t wanted = 0;
    if (!readNumber(word, wanted) || wanted == 0) throw ScriptError{"no row number: " + word};
    for (size_t r = 0; r < grid.rowCount(); ++r)
        if (!grid.rowHidden(r) && --wanted == 0) return r;
    throw ScriptError{grid.name() + " has no row " + word};
}

size_t columnAt(const Grid& grid, const std::string& word) {
    size_t wanted = 0;
    const bool counted = readNumber(word, wanted) && wanted > 0;
    for (size_t c = 0; c < grid.columnCount(); ++c) {
        if (grid.column(c).hidden) continue;
        if (counted ? --wanted == 0 : equalsIgnoreCaseAscii(grid.column(c).caption, word)) return c;
    }
    throw ScriptError{grid.name() + " has no column " + word};
}

CellPlace takePlace(const Grid& grid, std::string& rest, const std::string& column) {
    return {rowAt(grid, takeWord(rest)), columnAt(grid, column.empty() ? rest : column)};
}

void cellCommand(Screen& screen, std::string rest) {
    Grid& grid = gridNamed(screen, takeWord(rest));
    const size_t equals = rest.find('=');
    const bool edits = equals != std::string::npos;
    const std::string text = edits ? trim(std::string_view(rest).substr(equals + 1)) : "";
    if (edits) rest = trim(std::string_view(rest).substr(0, equals));
    const CellPlace at = takePlace(grid, rest, "");
    std::string reason;
    if (!edits)
        refuseIf(!grid.clickCell(at.row, at.column), grid, "click");
    else if (!grid.edit(at.row, at.column, text, reason))
        throw ScriptError{reason};
}

void clickCommand(Screen& screen, std::string rest, bool twice) {
    Control& control = controlNamed(screen, takeWord(rest));
    auto* grid = dynamic_cast<Grid*>(&control);
    if (!grid || rest.empty()) {
        refuseIf(twice ? !control.doubleClick() : !control.click(), control, "click");
        return;
    }
    const CellPlace at = takePlace(*grid, rest, "");
    refuseIf(twice ? !grid->doubleClickCell(at.row, at.column)
                   : !grid->rightClickCell(at.row, at.column),
             *grid, "click");
}

void checkCommand(Screen& screen, std::string rest) {
    Control& control = controlNamed(screen, takeWord(rest));
    const bool on = yesOrNo(takeLastWord(rest));
    if (auto* list = dynamic_cast<ListBox*>(&control)) {
        for (size_t i = 0; i < list->items.size(); ++i) {
            if (compareText(list->items[i].text, rest) != 0) continue;
            refuseIf(!list->check(i, on), *list, "tick");
            return;
        }
        throw ScriptError{list->name() + " has no entry " + rest};
    }
    Grid& grid = gridNamed(screen, control.name());
    const CellPlace at = takePlace(grid, rest, "");
    std::string reason;
    if (!grid.check(at.row, at.column, on, reason)) throw ScriptError{reason};
}

void dumpCommand(Screen& screen, const std::string& name, std::ostream& out) {
    const Grid& grid = gridNamed(screen, name);
    const auto line = [&](auto textOf) {
        std::string text;
        bool first = true;
        for (size_t c = 0; c < grid.columnCount(); ++c) {
            if (grid.column(c).hidden) continue;
            if (!first) text += ',';
            first = false;
            const std::string cell = textOf(c);
            if (!cell.empty()) text += csvField(cell);
        }
        out << text << '\n';
    };
    line([&](size_t c) { return grid.column(c).caption; });
    for (size_t r = 0; r < grid.rowCount(); ++r)
        if (!grid.rowHidden(r)) line([&](size_t c) { return grid.cell(r, c); });
    out.flush();
}

// --- values ---

// "set optAllotType 2" means the button optAllotType(2).
Control* arrayItem(Screen& screen, const std::string& name, const std::string& index) {
    return screen.find(name + "(" + index + ")");
}

void setTabs(Tabs& tabs, const std::string& value) {
    for (size_t i = 0; i < tabs.pages.size(); ++i) {
        if (!equalsIgnoreCaseAscii(tabs.pages[i], value)) continue;
        refuseIf(!tabs.select(i), tabs, "click");
        return;
    }
    throw ScriptError{tabs.name() + " has no page " + value};
}

void setCommand(Screen& screen, std::string rest) {
    const std::string name = takeWord(rest);
    Control* found = screen.find(name);
    if (!found) found = arrayItem(screen, name, rest);
    if (!found) controlNamed(screen, name);
    Control& control = *found;
    if (auto* box = dynamic_cast<TextBox*>(&control)) {
        const std::string typed = box->filtered(rest);
        if (typed != rest) throw ScriptError{name + " refuses a character of: " + rest};
        refuseIf(!box->edit(rest), control, "entry");
    } else if (auto* combo = dynamic_cast<Combo*>(&control)) {
        if (!combo->edit(rest))
            throw ScriptError{combo->takesInput() ? name + " has no entry " + rest
                                                  : name + " takes no entry now"};
    } else if (auto* list = dynamic_cast<ListBox*>(&control)) {
        for (size_t i = 0; i < list->items.size(); ++i)
            if (compareText(list->items[i].text, rest) == 0) {
                refuseIf(!list->choose(i), control, "choice");
                return;
            }
        throw ScriptError{name + " has no entry " + rest};
    } else if (auto* box = dynamic_cast<CheckBox*>(&control)) {
        refuseIf(!box->set(yesOrNo(rest)), control, "tick");
    } else if (auto* option = dynamic_cast<OptionButton*>(&control)) {
        refuseIf(!option->click(), control, "choice");
    } else if (auto* tabs = dynamic_cast<Tabs*>(&control)) {
        setTabs(*tabs, rest);
    } else {
        throw ScriptError{name + " holds no value"};
    }
    control.leave();
}

void showCommand(Screen& screen, const std::string& name, std::ostream& out) {
    const Control& control = controlNamed(screen, name);
    const auto yesNo = [](bool value) { return value ? "Yes" : "No"; };
    out << control.name() << ": " << oneLine(control.text()) << " | " << oneLine(control.caption)
        << " | " << yesNo(control.enabled) << " | " << yesNo(control.visible) << std::endl;
}

}  // namespace

std::string oneLine(const std::string& text) {
    std::string out;
    for (const char c : text) {
        if (c == '\n')
            out += "\\n";
        else if (c != '\r')
            out += c;
    }
    return out;
}

bool runControlCommand(Screen& screen, const std::string& line, std::ostream& out) {
    std::string rest = line;
    const std::string verb = takeWord(rest);
    if (verb == "set") {
        setCommand(screen, rest);
    } else if (verb == "click" || verb == "menu") {
        Control& control = controlNamed(screen, rest);
        refuseIf(!control.click(), control, "click");
    } else if (verb == "key") {
        Control& control = controlNamed(screen, takeWord(rest));
        refuseIf(!control.key(rest), control, "key " + rest);
    } else if (verb == "cell") {
        cellCommand(screen, rest);
    } else if (verb == "dblclick" || verb == "rightclick") {
        clickCommand(screen, rest, verb == "dblclick");
    } else if (verb == "check") {
        checkCommand(screen, rest);
    } else if (verb == "show") {
        showCommand(screen, rest, out);
    } else if (verb == "dump") {
        dumpCommand(screen, rest, out);
    } else {
        return false;
    }
    return true;
}

}  // namespace owb
