// Start-up, from the connection to the one screen of the launch.
#pragma once

#include <string>

#include "screen/front_end.h"
#include "session/Session.h"

namespace owb {

// Start-up from an open connection on, with gMenuId and gAttHeadId set. Returns when the screen of
// the menu identifier has closed; EndOfProgram leaves through it.
void StartOnConnection(Session& session, FrontEnd& frontEnd);

// Whether the user may only look.
bool FnBlnReadOnlyUser(Session& session);
// Of the settings store: the extended session, the users, the product's folder. The family's small
// programs read them as this one does.
void ReadLaunchSettings(Session& session);

}  // namespace owb
