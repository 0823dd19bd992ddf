// How a command that finds rows writes them: as a table for people, or for programs by --json or
// --csv.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "ctl/json_text.h"

namespace CLI {
class App;
}

namespace owb::ctl {

struct OutputForm {
    bool json = false, csv = false;  // at most one
    void declare(CLI::App& app);     // --json and --csv
};

// Objects as CSV with these of their members as columns: nothing where an object has no such
// member, a list as its elements with blanks between, true as 1.
void printCsv(std::ostream& out, const std::vector<std::string>& columns, const Json& rows);

}  // namespace owb::ctl
