// A table of texts in aligned columns, for people.
#pragma once

#include <string>
#include <vector>

namespace owb::ctl {

// The first row is the head. Columns of numbers stand on the right.
std::string textTable(const std::vector<std::vector<std::string>>& rows);

}  // namespace owb::ctl
