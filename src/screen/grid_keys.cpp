// The sheet of keys of a grid.
#include "screen/grid.h"

namespace owb {

std::vector<KeyHelp> Grid::keyHelp() const {
    std::vector<KeyHelp> lines{
        {"Arrows, PgUp, PgDn", "move in the list; with Shift they choose cells"},
        {"Ctrl+Arrows, Ctrl+Home, Ctrl+End", "go to the edge of a block, to the corners"},
        {"Ctrl+Space, Shift+Space, Ctrl+A", "choose the column, the row, all"},
        {"Ctrl+Tab, F6", "leave the list; with Shift backwards"},
        {"Ctrl+C", "copies what is chosen"},
        {"Ctrl+F, F3, Shift+F3", "find a text, the next one, the one before"},
        {"Ctrl+P", "prints what is in sight, or saves it as a PDF"},
        {"Ctrl+Shift+F", "shows only rows with chosen texts of the column"},
        {"Ctrl+Shift+L", "opens the menu of the column"},
        {"Ctrl++, Ctrl+-, Ctrl+0", "zoom the list; so does the wheel with Ctrl"}};
    if (!takesEntries()) {
        lines.push_back({"Letters", "find the row whose text begins with them"});
        lines.push_back({"Enter", "opens the row"});
        return lines;
    }
    for (const KeyHelp& line :
         {KeyHelp{"Typing", "replaces what stands in the cell; arrows, Enter and Tab enter it"},
          {"F2", "edits what stands in the cell"},
          {"Enter, Tab", "go on to the next cell that can be edited; with Shift back"},
          {"Esc", "leaves the cell as it was"},
          {"F4, Alt+Down", "open the list of codes, or the picker of a date"},
          {"Del, Backspace", "empty what is chosen; empty the cell and edit it"},
          {"Ctrl+X, Ctrl+V", "cut what is chosen; paste"},
          {"Ctrl+Enter", "enters what is typed into all chosen cells"},
          {"Ctrl+D, Ctrl+R", "fill down and to the right"},
          {"Ctrl+Z, Ctrl+Y", "take the last entry back; enter it again"},
          {"Space", "turns a tick"}})
        lines.push_back(line);
    return lines;
}

}  // namespace owb
