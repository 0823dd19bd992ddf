// Start-up, from the command line to the one screen of the launch.
#pragma once

#include <string>

#include "screen/front_end.h"
#include "session/Session.h"

namespace owb {

// All of start-up. Returns when the screen of the menu identifier has closed; EndOfProgram leaves
// through it.
void StartApplication(Session& session, FrontEnd& frontEnd, const std::string& commandLine);
// The same from an open connection on, with gMenuId and gAttHeadId set by the caller.
void StartOnConnection(Session& session, FrontEnd& frontEnd);

// Of the settings store: the extended session, the users, the product's folder. The family's small
// programs read them as this one does.
void ReadLaunchSettings(Session& session);

}  // namespace owb
