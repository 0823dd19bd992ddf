// The argument DB of the commands: a database file or a connection string.
#pragma once

#include <string>

#include "db/connection.h"

namespace owb::ctl {

std::string connectionString(const std::string& db);
// The file of an embedded database; throws CommandError when DB names a server.
std::string databaseFile(const std::string& db);
// Throws DbError.
void openDatabase(Connection& connection, const std::string& db);
bool tableExists(Connection& connection, const std::string& name);

}  // namespace owb::ctl
