#include "script/telling.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

#include "base/csv.h"
#include "base/utf8.h"
#include "screen/cell_board.h"
#include "screen/grid.h"
#include "screen/screen.h"
#include "screen/text_box.h"
#include "script/board_telling.h"
#include "script/script_words.h"

namespace owb {

namespace {

template <class Kind>
const Kind* as(const Control& control) {
    return dynamic_cast<const Kind*>(&control);
}

const char* kindOf(const Control& control) {
    if (as<TextBox>(control)) return "text box";
    if (as<Combo>(control)) return "combo box";
    if (as<ListBox>(control)) return "list";
    if (as<CheckBox>(control)) return "check box";
    if (as<OptionButton>(control)) return "option";
    if (as<Command>(control)) return "command";
    if (as<Label>(control)) return "label";
    if (as<Grid>(control)) return "grid";
    if (as<Tabs>(control)) return "tabs";
    if (as<CellBoard>(control)) return "board";
    if (as<MenuItem>(control)) return "menu";
    if (as<ProgressBar>(control)) return "progress";
    return "control";
}

// Nothing where the caption is all that the user reads.
std::string valueOf(const Control& control) {
    const auto* item = as<MenuItem>(control);
    if (item) return item->checkable ? yesNo(item->checked) : "";
    if (as<Label>(control) || as<Command>(control)) return "";
    return control.text();
}

// A field that may be empty stays nothing, unlike an empty text in a table.
std::string field(const std::string& text) {
    return text.empty() ? "" : csvField(oneLine(text));
}

// --- grids ---

// As the family writes a colour, or the name of one of the desktop's.
std::string colorName(Color color) {
    if (color == kDefaultColor) return "default";
    if (color == kButtonFaceColor) return "buttonface";
    if (color == kToolTipColor) return "tooltip";
    std::ostringstream hex;
    hex << std::hex << std::uppercase << std::setw(6) << std::setfill('0') << color;
    return hex.str();
}

const char* typeName(CellType type) {
    static constexpr const char* names[] = {"Text", "Number", "Date", "Check", "Combo"};
    return names[static_cast<size_t>(type)];
}

size_t shownNumber(const Grid& grid, size_t row) {
    const std::vector<size_t> rows = shownRows(grid);
    return static_cast<size_t>(std::find(rows.begin(), rows.end(), row) - rows.begin()) + 1;
}

std::string placeName(const Grid& grid, size_t row, size_t column) {
    const std::string caption = oneLine(grid.column(column).caption);
    return std::to_string(shownNumber(grid, row)) + " " + (caption.empty() ? "-" : caption);
}

std::string tipOf(const Grid& grid, size_t row, size_t column) {
    if (row == Grid::kHeader && !grid.column(column).toolTip.empty())
        return grid.column(column).toolTip;
    return grid.cellToolTip ? grid.cellToolTip(row, column) : "";
}

void tellCell(const Grid& grid, CellPlace at, std::ostream& out) {
    std::string choices;
    for (const std::string& choice : grid.choices(at.row, at.column))
        choices += (choices.empty() ? "" : ";") + choice;
    out << grid.name() << ' ' << placeName(grid, at.row, at.column) << ": "
        << oneLine(grid.cell(at.row, at.column))
        << " | type=" << typeName(grid.cellType(at.row, at.column))
        << " | locked=" << yesNo(grid.locked(at.row, at.column))
        << " | back=" << colorName(grid.backColor(at.row, at.column))
        << " | fore=" << colorName(grid.foreColor(at.row, at.column))
        << " | tag=" << oneLine(grid.cellTag(at.row, at.column))
        << " | choices=" << oneLine(choices) << " | tip=" << oneLine(tipOf(grid, at.row, at.column))
        << std::endl;
}

// Where the user is in a grid, what he has chosen and what he types.
void tellHands(const Grid& grid, std::ostream& out) {
    if (grid.currentRow() >= 0)
        out << " | current="
            << placeName(grid, static_cast<size_t>(grid.currentRow()),
                         static_cast<size_t>(grid.currentColumn()));
    if (const auto block = grid.cursor.block(); block && block->several() && !grid.singleRows) {
        const auto corner = [&](size_t row, size_t column) {
            return placeName(grid, grid.sight.rows()[row], grid.sight.columns()[column]);
        };
        out << " | chosen=" << corner(block->top, block->left) << " to "
            << corner(block->bottom, block->right);
    }
    if (grid.entry.busy()) out << " | typing=" << oneLine(grid.entry.text());
    if (grid.entry.listOpen()) {
        std::string codes;
        for (const std::string& code : grid.entry.candidates()) {
            codes += (codes.empty() ? "" : ";") + code;
            if (grid.choiceNote)
                codes += " " + grid.choiceNote(grid.entry.row(), grid.entry.column(), code);
        }
        out << " | list=" << oneLine(codes);
    }
    if (!grid.entry.refusal().empty()) out << " | refusal=" << oneLine(grid.entry.refusal());
    for (const size_t c : grid.sight.columns())
        if (grid.column(c).total)
            out << " | total " << oneLine(grid.column(c).caption) << "=" << grid.totalText(c);
    if (const std::string status = grid.cursor.summary(); !status.empty())
        out << " | status=" << status;
}

void tellCells(const Grid& grid, const std::vector<size_t>& columns, std::ostream& out) {
    const auto line = [&](auto textOf) {
        std::string text;
        for (const size_t c : columns) {
            const std::string cell = textOf(c);
            if (c != columns.front()) text += ',';
            if (!cell.empty()) text += csvField(cell);
        }
        out << text << '\n';
    };
    line([&](size_t c) { return grid.column(c).caption; });
    for (const size_t r : shownRows(grid)) line([&](size_t c) { return grid.cell(r, c); });
}

// A line for each cell that does not look as its column does.
void tellColors(const Grid& grid, const std::vector<size_t>& columns, std::ostream& out) {
    for (const size_t r : shownRows(grid))
        for (const size_t c : columns) {
            const Color back = grid.backColor(r, c), fore = grid.foreColor(r, c);
            const bool locked = grid.locked(r, c);
            std::string what;
            if (back != kDefaultColor) what += " | back=" + colorName(back);
            if (fore != kDefaultColor) what += " | fore=" + colorName(fore);
            if (locked != grid.column(c).locked) what += std::string(" | locked=") + yesNo(locked);
            if (!what.empty())
                out << grid.name() << ' ' << placeName(grid, r, c) << ": " << what.substr(3)
                    << '\n';
        }
}

void tellGrid(const Grid& grid, std::string flags, std::ostream& out) {
    bool colors = false, hidden = false;
    while (!flags.empty()) {
        const std::string flag = takeWord(flags);
        if (flag != "--colors" && flag != "--hidden")
            throw ScriptError{"dump has no " + flag + ": there are --colors, --hidden"};
        (flag == "--colors" ? colors : hidden) = true;
    }
    std::vector<size_t> columns = shownColumns(grid);
    if (hidden) {
        columns.clear();
        for (size_t c = 0; c < grid.columnCount(); ++c) columns.push_back(c);
    }
    tellCells(grid, columns, out);
    if (colors) tellColors(grid, columns, out);
    out.flush();
}

// --- lists ---

void tellEntries(const std::vector<ListItem>& items, bool checkable, std::ostream& out) {
    for (const ListItem& item : items)
        out << csvField(item.text) << (checkable ? std::string(",") + yesNo(item.checked) : "")
            << '\n';
    out.flush();
}

}  // namespace

void tellState(const Screen& screen, const std::string& words, std::ostream& out) {
    std::string rest = words;
    const Control& control = controlNamed(screen, takeWord(rest));
    if (!rest.empty()) {
        const Grid& grid = gridNamed(screen, control.name());
        return tellCell(grid, placeAt(grid, rest, Among::All), out);
    }
    out << control.name() << ": " << oneLine(control.text()) << " | " << oneLine(control.caption)
        << " | " << yesNo(control.enabled) << " | " << yesNo(control.visible);
    if (!control.toolTip.empty()) out << " | tip=" << oneLine(control.toolTip);
    if (const auto* box = as<TextBox>(control); box && box->locked) out << " | locked=Yes";
    if (!control.refusal().empty()) out << " | refused=" << oneLine(control.refusal());
    if (screen.isChanged(control)) out << " | changed=Yes";
    if (const auto* item = as<MenuItem>(control); item && item->checkable)
        out << " | checked=" << yesNo(item->checked);
    if (const auto* grid = as<Grid>(control)) tellHands(*grid, out);
    out << std::endl;
}

void tellTip(const Screen& screen, const std::string& words, std::ostream& out) {
    std::string rest = words;
    const Control& control = controlNamed(screen, takeWord(rest));
    std::string tip = control.toolTip;
    if (!rest.empty()) {
        const Grid& grid = gridNamed(screen, control.name());
        std::string column = rest;
        if (takeWord(column) == "0") {
            tip = tipOf(grid, Grid::kHeader, columnAt(grid, column));
        } else {
            const CellPlace at = placeAt(grid, rest);
            tip = tipOf(grid, at.row, at.column);
        }
    }
    out << "tip: " << oneLine(tip) << std::endl;
}

void tellContent(const Screen& screen, const std::string& words, std::ostream& out) {
    std::string rest = words;
    const Control& control = controlNamed(screen, takeWord(rest));
    if (const auto* combo = as<Combo>(control); combo && rest.empty())
        return tellEntries(combo->items, false, out);
    if (const auto* list = as<ListBox>(control); list && rest.empty())
        return tellEntries(list->items, list->checkable, out);
    if (const auto* board = as<CellBoard>(control); board && rest.empty())
        return tellBoard(*board, out);
    tellGrid(gridNamed(screen, control.name()), rest, out);
}

void tellMenus(const Screen& screen, const std::string& name, std::ostream& out) {
    const Control& over = controlNamed(screen, name);
    bool any = false;
    for (const Control* control : screen.controls()) {
        const auto* item = as<MenuItem>(*control);
        if (!item || &item->over != &over || !item->visible || item->caption == "-") continue;
        if (item->parent && !item->parent->visible) continue;
        any = true;
        out << item->name() << ": " << oneLine(item->caption)
            << " | enabled=" << yesNo(item->enabled);
        if (item->checkable) out << " | checked=" << yesNo(item->checked);
        if (item->parent) out << " | below=" << item->parent->name();
        out << '\n';
    }
    if (!any) throw ScriptError{over.name() + " has no menu"};
    out.flush();
}

void tellControls(const Screen& screen, const std::string&, std::ostream& out) {
    out << "name,kind,caption,value,enabled,visible\n";
    for (const Control* control : screen.controls())
        out << field(control->name()) << ',' << kindOf(*control) << ',' << field(control->caption)
            << ',' << field(valueOf(*control)) << ',' << yesNo(control->enabled) << ','
            << yesNo(control->visible) << '\n';
    out.flush();
}

void tellCaption(const Screen& screen, const std::string&, std::ostream& out) {
    out << "caption: " << oneLine(screen.caption) << std::endl;
}

}  // namespace owb
