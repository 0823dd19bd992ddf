// A new database file and what it holds at first.
#pragma once

#include <functional>
#include <string>

#include "db/connection.h"

namespace owb {

// Makes the file and fills it; a filling that fails leaves no file behind. An existing file is
// refused. Throws DbError, and what `fill` throws.
void makeDatabaseFile(const std::string& file, const std::function<void(Connection&)>& fill);

}  // namespace owb
