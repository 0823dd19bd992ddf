// The embedded database as a driver: one engine on one file for the life of the connection.
#pragma once

#include <memory>
#include <string>

#include "db/driver/driver.h"

namespace owb {

// Opens an existing database file; `busySeconds` is how long another process's lock is waited for
// until a command time-out is set. Throws DbError: no file named, none there, or no database.
std::unique_ptr<Driver> openEmbedded(const std::string& path, int busySeconds);

// Makes a new, empty database file. An existing file is refused.
void createEmbedded(const std::string& path);

// Copies a database, which may be in use, to a new file. An existing file is refused.
void backupEmbedded(const std::string& path, const std::string& copy);

}  // namespace owb
