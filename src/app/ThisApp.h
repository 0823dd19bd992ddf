// The two ends of the program's life: the launch contract with the shell that starts it, and the
// word to the shell that it has ended. Failures of a launch that have no message of their own leave
// as exceptions; the program then stops and has written nothing.
#pragma once

#include <string>

#include "session/Session.h"

namespace owb {

// Ends the process from wherever it is thrown; no handler traps it.
struct EndOfProgram {
    int status;
};

// Splits "<menu id>#<flag>#<option>#<attendance head>[#<connection file>]" into the session and
// opens the database. With four fields, or in an executable of another name than OWBLeaveMgmt, the
// database comes from the settings store and the head is the last field; otherwise it comes from
// the connection file and the head is the next to last. Blank connection data is told in a box and
// ends the program.
void InitCommandLine(Session& session, const std::string& commandLine);
// Opens the database that the settings store names, as a launch without a connection file does.
void OpenSettingsDatabase(Session& session);
// Opens gConn (closing it first when it is open) with the time-outs of the settings store. A
// database without a company throws std::runtime_error with a sentence that the user can be shown.
void OpenDatabase(Session& session, const std::string& connectionString);
// Throws std::runtime_error when the open database holds none of a company's tables.
void RequireCompany(Connection& connection);
// gHelpFile, when the file that the shell names exists.
void SetHelpFile(Session& session);
// Tells the shell that the program has gone; unless `stayAlive` the process ends here.
void ExitToShell(Session& session, bool stayAlive);

}  // namespace owb
