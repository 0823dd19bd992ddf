// Names of objects: letters' case does not matter in them.
#pragma once

#include <string>
#include <string_view>

#include "tsql/parse/ast.h"

namespace owb::tsql {

std::string foldName(std::string_view name);  // the same for all that are the same name
bool sameName(std::string_view a, std::string_view b);
// The parts of a name that comes as a text: "dbo.[a b]"; none when it is no name.
Name nameInText(std::string_view text);

}  // namespace owb::tsql
