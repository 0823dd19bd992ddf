// Which screen a menu identifier opens.
#pragma once

#include <string>
#include <vector>

#include "screen/front_end.h"
#include "session/Session.h"

namespace owb {

struct MenuEntry {
    int32_t menuId;
    std::string screen, title;
    std::string section;  // "Holidays": what belongs together
    std::string what;     // what it is for, in a few words
    bool available;       // this version has the screen
};
// All identifiers, sections together.
std::vector<MenuEntry> MenuEntries();

// Opens the screen of gMenuId modally and tells the shell about it. An identifier without a screen
// is refused in a box and ends the program.
void OpenMenuScreen(Session& session, FrontEnd& frontEnd);

}  // namespace owb
