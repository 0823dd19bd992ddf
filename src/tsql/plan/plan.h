// A statement made ready: SQLite's SQL, where its parameters come from, what it gives, and what has
// to happen around it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/result_set.h"
#include "tsql/bind/binder.h"
#include "tsql/lower/lowerer.h"

namespace owb::tsql {

struct Plan {
    std::string sql;
    std::vector<PlanParameter> parameters;
    ApplyPlans applies;
    Columns columns;             // what comes back
    std::vector<int> variables;  // assigned by the columns, when not empty

    // --- statements that write ---
    StatementKind writes = StatementKind::Query;  // Insert, Update or Delete
    CatalogTablePtr target;
    Name into;                          // SELECT ... INTO
    std::vector<std::string> triggers;  // fired afterwards
    // With triggers: the rows first ("rid", "c0"..), then the change from the table of rows.
    std::string collectSql;
    std::string assignments;                   // of an Update: "a" = s.c0, ...
    std::vector<std::string> assignedColumns;  // of an Update, folded
    bool stepwise = false;  // runs as with triggers: OUTPUT reads the rows, or a variable is set
    bool givesIdentity = false;
    bool explicitIdentity = false;
    std::string insertColumns, insertRows;  // of an Insert: the parts of `sql`

    // The change of the target's rows by those collected in `rows`, a table or a query.
    std::string applySql(const std::string& rows) const;
    // The same as an UPDATE of another table, whose column `rowid` names the row.
    std::string updateSql(const std::string& table, const std::string& rowid,
                          const std::string& rows) const;

    struct TableFill {
        std::string function;
        std::vector<PlanParameter> arguments;
        std::string sqlName;
    };
    std::vector<TableFill> fills;  // before the statement runs

    bool readsFile = false;  // some table of the file, so that a read of it begins
    std::vector<Dependency> dependencies;
    uint64_t checkedVersion = 0;
    std::vector<SqliteStatement> idle;  // prepared, not running
};

}  // namespace owb::tsql
