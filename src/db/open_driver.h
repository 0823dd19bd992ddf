// Chooses the database: the one place that knows all drivers.
#pragma once

#include <memory>
#include <string>

#include "db/driver/driver.h"

namespace owb {

// Opens the driver that the connection string names: "Provider=OWBEmbedded;Data Source=<file>"
// or one of the providers of SQL Server. Throws DbError.
std::unique_ptr<Driver> openDriver(const std::string& connectionString, int connectionTimeout);

}  // namespace owb
