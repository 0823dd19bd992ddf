// How values and names are written in SQLite's SQL.
#pragma once

#include <string>
#include <string_view>

#include "base/value.h"

namespace owb::tsql {

std::string sqliteLiteral(const Value& value);          // as it lies in the file
std::string sqliteText(std::string_view text);          // 'text'
std::string sqliteName(std::string_view name);          // "name"
std::string schemaOf(const std::string& sqlName);       // "temp." of a table's temp."name"
std::string withoutSchema(const std::string& sqlName);  // "name" of it

}  // namespace owb::tsql
