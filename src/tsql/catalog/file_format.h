// The catalog's own tables in a file. Each format adds a step to the one before it: a new file
// takes all steps, an older one those it lacks when it is opened, a newer one is refused.
#pragma once

#include "tsql/sqlite/sqlite.h"

namespace owb::tsql {

// All steps or none, and no step twice when two processes open the file at once. Throws DbError.
void bringToFormat(Sqlite& sqlite);

}  // namespace owb::tsql
