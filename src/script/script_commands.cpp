#include "script/script_commands.h"

#include "base/utf8.h"
#include "screen/grid.h"
#include "screen/screen.h"
#include "screen/text_box.h"
#include "script/grid_commands.h"
#include "script/telling.h"

namespace owb {

namespace {

void refuseIf(bool refused, const Control& control, const std::string& what) {
    if (refused) throw ScriptError{control.name() + " takes no " + what + " now"};
}

void clickControl(Screen& screen, const std::string& name) {
    Control& control = controlNamed(screen, name);
    refuseIf(!control.click(), control, "click");
}

void pressKey(Screen& screen, const std::string& words) {
    std::string rest = words;
    Control& control = controlNamed(screen, takeWord(rest));
    if (control.key(rest)) return;
    refuseIf(!screen.press(rest, &control), control, "key " + rest);
}

// --- what the screen tells of itself ---

void tellTitle(const Screen& screen, const std::string&, std::ostream& out) {
    out << "title: " << oneLine(screen.title()) << std::endl;
}

void tellStatus(const Screen& screen, const std::string&, std::ostream& out) {
    out << "status: " << oneLine(screen.status) << std::endl;
}

void tellKeys(const Screen& screen, const std::string&, std::ostream& out) {
    for (const KeyHelp& line : screen.keyHelp()) out << line.keys << ": " << line.what << '\n';
    out.flush();
}

// --- grids ---

void editCell(Screen& screen, const std::string& words) {
    std::string rest = words;
    Grid& grid = gridNamed(screen, takeWord(rest));
    const size_t equals = rest.find('=');
    const bool edits = equals != std::string::npos;
    const std::string text = edits ? trim(std::string_view(rest).substr(equals + 1)) : "";
    if (edits) rest = trim(std::string_view(rest).substr(0, equals));
    const CellPlace at = placeAt(grid, rest);
    std::string reason;
    if (!edits)
        refuseIf(!grid.clickCell(at.row, at.column), grid, "click");
    else if (!grid.edit(at.row, at.column, text, reason))
        throw ScriptError{reason};
}

void clickTwice(Screen& screen, const std::string& words) {
    std::string rest = words;
    Control& control = controlNamed(screen, takeWord(rest));
    if (rest.empty()) return refuseIf(!control.doubleClick(), control, "click");
    Grid& grid = gridNamed(screen, control.name());
    const CellPlace at = placeAt(grid, rest);
    refuseIf(!grid.doubleClickCell(at.row, at.column), grid, "click");
}

void clickRight(Screen& screen, const std::string& words) {
    std::string rest = words;
    Control& control = controlNamed(screen, takeWord(rest));
    if (rest.empty()) return refuseIf(!control.click(), control, "click");
    Grid& grid = gridNamed(screen, control.name());
    const CellPlace at = placeAt(grid, rest);
    refuseIf(!grid.rightClickCell(at.row, at.column), grid, "click");
}

void tick(Screen& screen, const std::string& words) {
    std::string rest = words;
    Control& control = controlNamed(screen, takeWord(rest));
    const bool on = yesOrNo(takeLastWord(rest));
    if (auto* list = dynamic_cast<ListBox*>(&control))
        return refuseIf(!list->check(entryNamed(*list, list->items, rest), on), *list, "tick");
    Grid& grid = gridNamed(screen, control.name());
    const CellPlace at = placeAt(grid, rest);
    std::string reason;
    if (!grid.check(at.row, at.column, on, reason)) throw ScriptError{reason};
}

// --- values ---

void enterText(TextBox& box, const std::string& text) {
    if (box.filtered(text) != text)
        throw ScriptError{box.name() + " refuses a character of: " + text};
    refuseIf(!box.edit(text), box, "entry");
}

void enterChoice(Combo& combo, const std::string& text) {
    if (combo.edit(text)) return;
    if (combo.takesInput() && !combo.editable) entryNamed(combo, combo.items, text);
    refuseIf(true, combo, "entry");
}

void turnTo(Tabs& tabs, const std::string& page) {
    for (size_t i = 0; i < tabs.pages.size(); ++i)
        if (equalsIgnoreCaseAscii(plainCaption(tabs.pages[i]), plainCaption(page)))
            return refuseIf(!tabs.select(i), tabs, "click");
    throw ScriptError{tabs.name() + " has no page " + page + ": there are " + listed(tabs.pages)};
}

void setValue(Screen& screen, const std::string& words) {
    std::string rest = words;
    const std::string name = takeWord(rest);
    // "set optAllotType 2" means the button optAllotType(2).
    Control* item = screen.find(name) ? nullptr : screen.find(name + "(" + rest + ")");
    Control& control = item ? *item : controlNamed(screen, name);
    if (auto* text = dynamic_cast<TextBox*>(&control))
        enterText(*text, rest);
    else if (auto* combo = dynamic_cast<Combo*>(&control))
        enterChoice(*combo, rest);
    else if (auto* list = dynamic_cast<ListBox*>(&control))
        refuseIf(!list->choose(entryNamed(*list, list->items, rest)), control, "choice");
    else if (auto* box = dynamic_cast<CheckBox*>(&control))
        refuseIf(!box->set(yesOrNo(rest)), control, "tick");
    else if (auto* option = dynamic_cast<OptionButton*>(&control))
        refuseIf(!option->click(), control, "choice");
    else if (auto* tabs = dynamic_cast<Tabs*>(&control))
        turnTo(*tabs, rest);
    else
        throw ScriptError{name + " holds no value"};
    control.leave();
}

// --- the list of them ---

constexpr size_t kAny = static_cast<size_t>(-1);

struct ScriptCommand {
    const char* verb;
    size_t least, most;  // words behind it
    const char* words;
    const char* what;
    void (*act)(Screen&, const std::string& words) = nullptr;
    void (*tell)(const Screen&, const std::string& words, std::ostream&) = nullptr;
};

// Those that do neither are the front end's own.
constexpr ScriptCommand kCommands[] = {
    {"set", 1, kAny, "NAME [VALUE]", "text, entry, page; Yes or No; index of an option", setValue},
    {"click", 1, 1, "NAME", "a command, label, option or check box", clickControl},
    {"menu", 1, 1, "NAME", "a menu item, mnuAll(5) of an array", clickControl},
    {"key", 2, 2, "NAME KEY", "F2, F5, Ctrl+S, Esc ...; Up, End ... in a grid", pressKey},
    {"cell", 3, kAny, "GRID ROW COL [= TEXT]", "clicks a cell, or edits it", editCell},
    {"check", 3, kAny, "NAME ENTRY|ROW COL Yes|No", "a tick in a list or grid", tick},
    {"dblclick", 1, kAny, "NAME [ROW COL]", "a double click", clickTwice},
    {"rightclick", 1, kAny, "NAME [ROW COL]", "a click with the other button", clickRight},
    {"type", 2, kAny, "GRID TEXT", "types into the current cell of a grid", typeInto},
    {"select", 5, 5, "GRID ROW COL ROW COL", "chooses a block of cells", chooseCells},
    {"paste", 2, kAny, "GRID TEXT", "pastes a block: \\t between cells, \\n between rows",
     pasteCells},
    {"fill", 3, 3, "GRID ROW COL", "drags the chosen cells' handle to a cell", fillCells},
    {"header", 2, kAny, "GRID COL", "clicks the header of a column: sorts", clickHeader},
    {"filter", 1, kAny, "GRID [COL [= TEXT;...]]", "shows rows with a text; all again", filterRows},
    {"find", 2, kAny, "GRID TEXT", "goes to the first cell that holds a text", findText},
    {"legend", 2, kAny, "GRID CAPTION", "goes to the next cell of a colour", clickLegend},
    {"item", 2, kAny, "GRID CAPTION[/CAPTION]", "an item of a grid's own menu", chooseItem},
    {"hide", 3, kAny, "GRID COL Yes|No", "takes a column out of sight", hideColumn},
    {"move", 3, kAny, "GRID COL COL", "puts a column before another", moveColumn},
    {"freeze", 2, kAny, "GRID COL|0", "keeps the columns up to this one in sight", freezeColumns},
    {"answer", 1, 1, "WORD", "queues Yes, No, Cancel or OK for a question"},
    {"file", 0, kAny, "[PATH]", "queues the answer to a question for a file"},
    {"print", 2, kAny, "GRID FILE [A4|A3]", "writes a grid into a PDF file as it would be printed"},
    {"close", 0, 0, "", "closes the current screen as a user does"},
    {"show", 1, kAny, "NAME [ROW COL]", "tells the state of a control or cell", nullptr, tellState},
    {"tip", 1, kAny, "NAME [ROW COL]", "tells the tool tip; ROW 0: of a header", nullptr, tellTip},
    {"dump", 1, 3, "NAME [--colors] [--hidden]", "tells what a grid, list or board holds", nullptr,
     tellContent},
    {"menus", 1, 1, "NAME", "tells the menu over a control", nullptr, tellMenus},
    {"controls", 0, 0, "", "tells what stands on the screen", nullptr, tellControls},
    {"caption", 0, 0, "", "tells the screen's caption", nullptr, tellCaption},
    {"title", 0, 0, "", "tells what the window is named", nullptr, tellTitle},
    {"status", 0, 0, "", "tells the line at the window's foot", nullptr, tellStatus},
    {"keys", 0, 0, "", "tells what the keys do", nullptr, tellKeys},
    {"focus", 0, 0, "", "tells which control has the focus"},
};

const ScriptCommand* commandOf(const std::string& verb) {
    for (const ScriptCommand& command : kCommands)
        if (verb == command.verb) return &command;
    return nullptr;
}

}  // namespace

void checkUsage(const std::string& line) {
    std::string rest = line;
    const std::string verb = takeWord(rest);
    const ScriptCommand* command = commandOf(verb);
    if (!command) {
        std::string verbs;
        for (const ScriptCommand& known : kCommands)
            verbs += (verbs.empty() ? "" : ", ") + std::string(known.verb);
        throw ScriptError{"no such command: " + verb + ": there are " + verbs};
    }
    const size_t words = wordCount(rest);
    if (words < command->least || words > command->most)
        throw ScriptError{"usage: " + trim(verb + " " + command->words)};
}

std::optional<std::string> runControlCommand(Screen& screen, const std::string& line,
                                             std::ostream& out) {
    std::string rest = line;
    const ScriptCommand* command = commandOf(takeWord(rest));
    if (!command || (!command->act && !command->tell)) return std::nullopt;
    checkUsage(line);
    if (command->tell) {
        command->tell(screen, rest, out);
        return "";
    }
    const Control* acted = screen.find(rest.substr(0, rest.find(' ')));
    std::string name = acted ? acted->name() : "";  // the act may unmake it
    if (auto* grid = dynamic_cast<Grid*>(screen.find(name))) grid->say("");
    command->act(screen, rest);
    const auto* grid = dynamic_cast<const Grid*>(screen.find(name));
    if (grid && !grid->said().text.empty())
        out << "says: " << oneLine(grid->said().text) << std::endl;
    return name;
}

std::string scriptHelp() {
    constexpr size_t kWidth = 40;
    std::string help;
    for (const ScriptCommand& command : kCommands) {
        std::string line = "  " + trim(std::string(command.verb) + " " + command.words);
        line.resize(std::max(line.size() + 1, kWidth), ' ');
        help += line + command.what + "\n";
    }
    return help;
}

}  // namespace owb
