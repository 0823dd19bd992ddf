#include "ctl/database.h"

#include "app/ThisApp.h"
#include "base/utf8.h"
#include "ctl/command.h"
#include "db/new_database.h"
#include "db/sql_text.h"

namespace owb::ctl {

std::string connectionString(const std::string& db) {
    if (!connectionEntry(db, "Provider").empty()) return db;
    return "Provider=OWBEmbedded;Data Source=" + db;
}

std::string databaseFile(const std::string& db) {
    const std::string whole = connectionString(db);
    if (!equalsIgnoreCaseAscii(connectionEntry(whole, "Provider"), "OWBEmbedded"))
        throw CommandError("this command needs a database file, not a server");
    return connectionEntry(whole, "Data Source");
}

void openDatabase(Connection& connection, const std::string& db) {
    connection.Open(connectionString(db));
}

void openCompany(Connection& connection, const std::string& db) {
    openDatabase(connection, db);
    RequireCompany(connection);
}

void makeDatabase(const std::string& db, const std::function<void(Connection&)>& fill) {
    makeDatabaseFile(databaseFile(db), fill);
}

bool tableExists(Connection& connection, const std::string& name) {
    const BatchResult found =
        connection.Run("SELECT name FROM SYS.TABLES WHERE NAME = " + sqlLiteral(name));
    return found.sets.front().rows > 0;
}

}  // namespace owb::ctl
