// The table-valued function that APPLY is lowered to.
#pragma once

#include "tsql/functions/functions.h"

namespace owb::tsql {

constexpr int kMostApplied = 64;  // columns, and arguments

void registerApply(Sqlite& sqlite, FunctionHost& host);

}  // namespace owb::tsql
