// The arguments of a call.
#pragma once

#include <string>
#include <vector>

#include "tsql/parse/ast_statements.h"

namespace owb::tsql {

// Which of the parameters of these names each argument is for. Throws DbError.
std::vector<size_t> argumentPlaces(const ExecuteStatement& s, const std::string& procedure,
                                   const std::vector<std::string>& names);

}  // namespace owb::tsql
