// Result sets as CSV (RFC 4180, lines end in LF): NULL is nothing, an empty text is "", dates are
// YYYY-MM-DD with a time behind where there is one, numbers stand in full.
#pragma once

#include <string>
#include <string_view>

#include "base/result_set.h"

namespace owb {

// A text as one field: in quotes where a comma, quote or line break, or its emptiness, asks for it.
std::string csvField(std::string_view text);
std::string csvCell(const Value& value);
// A header line and one line per row.
std::string csvText(const ResultSet& set);

}  // namespace owb
