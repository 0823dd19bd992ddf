// What a command prints for programs (--json): the figures that it prints for people, with their
// types.
#pragma once

#include <iosfwd>
#include <nlohmann/json.hpp>

#include "base/result_set.h"

namespace owb::ctl {

using Json = nlohmann::ordered_json;

constexpr const char* kJsonHelp = "JSON instead of text";

// NULL as null, a date as in CSV, a number as a number; one with more digits than a reader's
// number keeps is a text.
Json jsonOf(const Value& value);
// An object for each row; bits are true or false. A column without a name is called by its place,
// and so is one whose name stands before it.
Json jsonOf(const ResultSet& set);

// An array one element a line, all else on one line.
void printJson(std::ostream& out, const Json& json);

}  // namespace owb::ctl
