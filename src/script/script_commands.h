// The commands of a script that act on the controls of one screen; see script_front_end.h for the
// list of them. They do what a user does, by the same operations of the models.
#pragma once

#include <ostream>
#include <string>

namespace owb {

class Screen;

// A command that cannot be done, told to whoever wrote the script.
struct ScriptError {
    std::string reason;
};

// Runs the line if it is one of these commands; false when it is none. Throws ScriptError.
bool runControlCommand(Screen& screen, const std::string& line, std::ostream& out);

// Line breaks as \n.
std::string oneLine(const std::string& text);

}  // namespace owb
