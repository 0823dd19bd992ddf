// One window for a screen and head of a company: the program that shows it listens on a local
// socket named after the three, and comes forward when "forward" arrives. Whoever would start it a
// second time finds it there.
#pragma once

#include <string>

#include "session/Session.h"

namespace owb {

// Of the screen of a menu identifier and head, in the company that the session is connected to.
std::string FnStrWindowSocket(const Session& session, int32_t menuId, int32_t attHeadId);
// Brings the window forward; false when there is none.
bool FnBlnBroughtForward(const std::string& socket);
// Where local sockets lie: a folder of the user's own, or the machine's for temporary files.
std::string FnStrSocketFolder();

}  // namespace owb
