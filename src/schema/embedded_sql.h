// The T-SQL files of schema/objects and schema/family, built into the program.
#pragma once

#include <string>
#include <vector>

namespace owb {

struct EmbeddedSql {
    std::string name;  // "objects/FnDblRndOff"
    std::string text;
};

// All files, sorted by name.
const std::vector<EmbeddedSql>& embeddedSql();

}  // namespace owb
