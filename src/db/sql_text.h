// How values and names stand in T-SQL text.
#pragma once

#include <string>
#include <string_view>

#include "base/value.h"

namespace owb {

// A value as a T-SQL literal: NULL, number, 'text' with quotes doubled (N'text' where a character
// is beyond ASCII), 'yyyy-MM-dd' with ' hh:mm:ss.mmm' behind when there is a time.
std::string sqlLiteral(const Value& v);
// A name in brackets.
std::string sqlName(std::string_view name);

}  // namespace owb
