// A table of texts in aligned columns, for people.
#pragma once

#include <string>
#include <vector>

namespace owb::ctl {

// The first row is the head. Columns of numbers stand on the right: those of `numbers`, or those
// that look so when it is empty.
std::string textTable(const std::vector<std::vector<std::string>>& rows,
                      std::vector<bool> numbers = {});

}  // namespace owb::ctl
