// What every list with a quick search box shares.
#pragma once

#include <initializer_list>
#include <string>

#include "screen/grid.h"

namespace owb {

// Leaves in sight the rows that hold the text, in any letter case, in one of the columns (the
// employee's number, reference number and name), and hides the others; an empty text shows all.
// Gives the number of rows left.
size_t FnGridFirstMatch(Grid& grid, const std::string& text, std::initializer_list<size_t> columns);

}  // namespace owb
