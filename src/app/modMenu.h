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
};
// The identifiers that open a screen of this version, in their order.
std::vector<MenuEntry> MenuEntries();

// Opens the screen of gMenuId modally and tells the shell about it. An identifier without a screen
// is refused in a box and ends the program.
void OpenMenuScreen(Session& session, FrontEnd& frontEnd);

}  // namespace owb
