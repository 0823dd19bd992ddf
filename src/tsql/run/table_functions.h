// Table functions of several statements: each leaves its rows in a temporary table. One whose
// arguments are constants runs before the statement that reads it, one on the right side of an
// APPLY for each row on the left.
#pragma once

#include "tsql/functions/functions.h"
#include "tsql/plan/plan.h"
#include "tsql/run/code_cache.h"
#include "tsql/run/table_writer.h"

namespace owb::tsql {

class TableFunctions {
  public:
    TableFunctions(Session& session, CodeCache& codes, TableWriter& tables, StatementRunner& runner)
        : session_(session), codes_(codes), tables_(tables), runner_(runner) {}

    // Runs those that the plan reads.
    void fill(Frame& frame, const Plan& plan);
    // The rows of an APPLY for one row on its left.
    void apply(ApplyPlan& plan, SqliteArguments arguments, AppliedRows& rows);

  private:
    void makeEmpty(const CatalogTable& table, bool inStatement);
    void run(CatalogModule& module, std::vector<Value> arguments, const std::string& sqlName,
             bool inStatement);
    void read(SqliteStatement& statement, AppliedRows& rows);

    Session& session_;
    CodeCache& codes_;
    TableWriter& tables_;
    StatementRunner& runner_;
};

}  // namespace owb::tsql
