// Which screen a menu identifier opens.
#pragma once

#include "data/Session.h"
#include "screen/front_end.h"

namespace owb {

// Opens the screen of gMenuId modally and tells the shell about it. An identifier without a screen
// is refused in a box and ends the program.
void OpenMenuScreen(Session& session, FrontEnd& frontEnd);

}  // namespace owb
