// The argument DB of the commands: a database file or a connection string.
#pragma once

#include <functional>
#include <string>

#include "db/connection.h"

namespace owb::ctl {

std::string connectionString(const std::string& db);
// The file of an embedded database; throws CommandError when DB names a server.
std::string databaseFile(const std::string& db);
// Throws DbError.
void openDatabase(Connection& connection, const std::string& db);
// The same for commands that read a company; a database without one is a std::runtime_error.
void openCompany(Connection& connection, const std::string& db);
// Makes a new file and fills it; a filling that fails leaves no file behind.
void makeDatabase(const std::string& db, const std::function<void(Connection&)>& fill);
bool tableExists(Connection& connection, const std::string& name);

}  // namespace owb::ctl
