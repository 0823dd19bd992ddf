// What keys do on a screen, wherever the focus is, and the sheet that tells them.
#include <algorithm>

#include "screen/grid.h"
#include "screen/key_sheet.h"
#include "screen/screen.h"

namespace owb {

namespace {

// 1 for the next page, -1 for the one before; 0 for other keys.
int pageStep(const std::string& key) {
    return key == "Ctrl+PgDown" ? 1 : key == "Ctrl+PgUp" ? -1 : 0;
}

// A menu's item takes input where the control does that the menu is over.
bool takesShortcut(const Control& control) {
    const auto* item = dynamic_cast<const MenuItem*>(&control);
    return control.takesInput() && (item == nullptr || item->over.takesInput());
}

void addOnce(std::vector<KeyHelp>& lines, const KeyHelp& line) {
    if (std::none_of(lines.begin(), lines.end(), [&](const KeyHelp& held) {
            return held.keys == line.keys && held.what == line.what;
        }))
        lines.push_back(line);
}

}  // namespace

Control* Screen::commandOf(const std::string& key) const {
    for (Control* control : controls_)
        if (control->shortcut == key && takesShortcut(*control)) return control;
    return nullptr;
}

Tabs* Screen::pages() const {
    for (Control* control : controls_)
        if (auto* tabs = dynamic_cast<Tabs*>(control); tabs && tabs->takesInput()) return tabs;
    return nullptr;
}

Grid* Screen::firstGrid() const {
    for (Control* control : controls_)
        if (auto* grid = dynamic_cast<Grid*>(control); grid && grid->visible) return grid;
    return nullptr;
}

bool Screen::uses(const std::string& key) const {
    if (key.empty()) return false;  // most controls have no shortcut
    if (key == "Esc") return true;
    if (key == "F1") return !popup;
    if (key == "Ctrl+P" && firstGrid() != nullptr) return true;
    return pageStep(key) != 0 ? pages() != nullptr : commandOf(key) != nullptr;
}

bool Screen::press(const std::string& key, Control* focused) {
    if (!uses(key)) return false;
    if (key == "Esc") {
        closeByUser();
    } else if (key == "F1") {
        KeySheet(frontEnd_, title(), keyHelp()).showModal();
    } else {
        if (focused != nullptr) focused->leave();
        if (focused != nullptr && focus_ == focused) return true;
        if (const int step = pageStep(key); step != 0) {
            Tabs* tabs = pages();
            tabs->select(tabs->page + static_cast<size_t>(step));  // beyond the ends: nothing
        } else if (Control* command = commandOf(key)) {
            command->click();
        } else if (Grid* grid = firstGrid()) {
            grid->print();
        }
    }
    return true;
}

std::vector<KeyHelp> Screen::keyHelp() const {
    std::vector<KeyHelp> lines;
    for (const Control* control : controls_) {
        const bool pressed = dynamic_cast<const MenuItem*>(control) == nullptr;
        const char letter = pressed ? mnemonicOf(control->caption) : 0;
        std::string keys = control->shortcut;
        if (letter != 0) keys += (keys.empty() ? "Alt+" : ", Alt+") + std::string(1, letter);
        if (control->visible && !keys.empty())
            addOnce(lines, {keys, plainCaption(control->caption)});
    }
    for (const Control* control : controls_)
        if (control->visible)
            for (const KeyHelp& line : control->keyHelp()) addOnce(lines, line);
    for (const KeyHelp& line :
         {KeyHelp{"Tab, Shift+Tab", "go to the next and the previous field"},
          {"Enter, Shift+Enter", "go on to the next field or back; Enter presses a button"},
          {"Shift+F10", "opens the menu of the field or list"},
          {"Esc", "ends what has begun; where nothing has, closes the screen"},
          {"F1", "shows these keys"}})
        addOnce(lines, line);
    return lines;
}

}  // namespace owb
