// What the family's executables share before a database is opened.
#pragma once

#include <string>

namespace owb {

// Answers --help and --version on standard output; true: there is nothing more to do.
bool FnBlnToldUsage(int argc, char** argv, const std::string& usage);
// Windows can be shown. Otherwise, and where OWB_SCRIPT is set, script commands on standard input
// drive the screens.
bool FnBlnHasDisplay();

}  // namespace owb
