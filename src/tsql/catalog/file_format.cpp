#include "tsql/catalog/file_format.h"

#include <iterator>

namespace owb::tsql {

namespace {

// The format of a file is how many of these it has taken, and stands in it as user_version. Steps
// are never changed, only added to.
constexpr const char* kSteps[] = {
    // 1: modules, constraints, identities
    "CREATE TABLE tsql_meta(name TEXT PRIMARY KEY, value INTEGER) WITHOUT ROWID;"
    "INSERT INTO tsql_meta VALUES('modules', 1);"
    "CREATE TABLE tsql_module(name TEXT PRIMARY KEY, kind INTEGER NOT NULL, source TEXT NOT NULL,"
    " stars TEXT, tbl TEXT, events INTEGER) WITHOUT ROWID;"
    "CREATE TABLE tsql_constraint(tbl TEXT NOT NULL, name TEXT NOT NULL, kind TEXT NOT NULL,"
    " columns TEXT NOT NULL, source TEXT, PRIMARY KEY(tbl, name)) WITHOUT ROWID;"
    "CREATE TABLE tsql_identity(tbl TEXT PRIMARY KEY, seed INTEGER, increment INTEGER,"
    " last INTEGER) WITHOUT ROWID",
    // 2: when tables and modules were made, as a day number; unknown for those from before
    "CREATE TABLE tsql_created(name TEXT PRIMARY KEY, moment REAL NOT NULL) WITHOUT ROWID",
};
constexpr int64_t kFormat = std::size(kSteps);

int64_t formatOf(Sqlite& sqlite) {
    const int64_t format = sqlite.number("PRAGMA user_version").value_or(0);
    if (format > kFormat)
        throw makeDbError(
            -3, {"The database " + sqlite.path() +
                 " was made by a newer version of the program (format " + std::to_string(format) +
                 ", this program reads up to " + std::to_string(kFormat) + ")."});
    return format;
}

}  // namespace

void bringToFormat(Sqlite& sqlite) {
    if (formatOf(sqlite) == kFormat) return;
    sqlite.run("BEGIN IMMEDIATE");
    try {
        // Another process may have been first.
        for (int64_t format = formatOf(sqlite); format < kFormat; ++format)
            sqlite.run(kSteps[format]);
        sqlite.run("PRAGMA user_version = " + std::to_string(kFormat) + "; COMMIT");
    } catch (const DbError&) {
        if (sqlite.inTransaction()) sqlite.run("ROLLBACK");
        throw;
    }
}

}  // namespace owb::tsql
