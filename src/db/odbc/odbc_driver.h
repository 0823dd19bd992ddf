// The way to a Microsoft SQL Server. This is the only folder that may know ODBC.
#pragma once

#include <memory>
#include <string>

#include "db/driver/driver.h"

namespace owb {

// Opens a connection string with one of SQL Server's providers. This build carries no SQL Server
// driver, so it always throws a DbError that says so.
std::unique_ptr<Driver> openOdbc(const std::string& connectionString, int connectionTimeout);

}  // namespace owb
