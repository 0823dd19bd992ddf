// What the server says where SQLite says that a constraint is broken.
#pragma once

#include <functional>
#include <string>

#include "tsql/run/session.h"

namespace owb::tsql {

// The rows that were on their way into the table: a WITH clause that names them "src", and whoever
// binds its parameters. Without them the error cannot name the value that is there twice.
struct RowsOnTheirWay {
    std::string with;
    std::function<void(SqliteStatement&)> bind;
};

// `verb` is the statement's: "INSERT", "UPDATE", "ALTER TABLE".
DbError constraintError(Session& session, const BrokenConstraint& broken, const CatalogTable& table,
                        const char* verb, const RowsOnTheirWay& rows = {});

}  // namespace owb::tsql
