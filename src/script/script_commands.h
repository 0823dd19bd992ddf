// The commands of a script that act on the controls of one screen. They do what a user does, by the
// same operations of the models, and tell what a user sees.
#pragma once

#include <optional>
#include <ostream>
#include <string>

#include "script/script_words.h"

namespace owb {

// Runs the line if it is one of these commands and gives the name of the control that it acted
// on, "" for none; nothing when it is no such command. Throws ScriptError.
std::optional<std::string> runControlCommand(Screen& screen, const std::string& line,
                                             std::ostream& out);

// Refuses a line that no command begins with, or with too few or too many words.
void checkUsage(const std::string& line);

// Every command of a script with its words and what it does, a line each.
std::string scriptHelp();

}  // namespace owb
