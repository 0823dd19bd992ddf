// Runs batches: the parts of a session put together, from the file up to the statements, and what
// happens around a batch.
//
// The parts stand in the order in which they need each other. Two go against it, through
// StatementRunner: functions, triggers and calls make statements run again.
#pragma once

#include "tsql/run/file_care.h"
#include "tsql/run/session_functions.h"
#include "tsql/run/statements.h"

namespace owb::tsql {

class Executor final : private StatementRunner {
  public:
    Executor(std::unique_ptr<Sqlite> sqlite, const std::string& hostName);

    BatchResult run(std::string_view batch);
    void begin();  // throws when a transaction is open
    void commit() { transactions_.commit(); }
    void rollback() { transactions_.rollback(); }
    void setCommandTimeout(int seconds) { options_.setCommandTimeout(seconds); }
    void cancel() { sqlite_->cancel(); }
    void backup(const std::string& path) { care_.backup(path); }
    std::vector<std::string> checkIntegrity() { return care_.problems(); }

  private:
    void runBatch(std::string_view batch);
    bool runAlone(Frame& frame, const Statement& s);
    void runScope(Frame& callee) override;
    void runFunction(Frame& callee) override;

    std::unique_ptr<Sqlite> sqlite_;
    Catalog catalog_{*sqlite_};
    Session session_{*sqlite_, catalog_};
    AppLocks appLocks_{*sqlite_};
    CodeCache codes_{catalog_};
    TableWriter tableWriter_{session_};
    Transactions transactions_{session_, appLocks_, tableWriter_};
    CatalogWatch watch_{session_, transactions_};
    TableFunctions tableFunctions_{session_, codes_, tableWriter_, *this};
    PlanRunner plans_{session_, watch_, tableFunctions_};
    Queries queries_{session_, transactions_, watch_, tableWriter_, plans_};
    IdentityValues identity_{session_};
    Triggers triggers_{session_, transactions_, codes_, *this};
    Writes writes_{session_, transactions_, watch_, plans_, identity_, triggers_};
    TableDefinitions tables_{session_, transactions_, watch_, tableWriter_, plans_};
    ForwardCheck forwardCheck_{plans_, identity_};
    ModuleDefinitions modules_{session_, watch_, codes_, forwardCheck_};
    LockProcedures locks_{session_, transactions_, plans_, appLocks_};
    SystemHelp help_{session_, plans_};
    Calls calls_{session_, transactions_, codes_, plans_, modules_, locks_, help_, *this};
    Cursors cursors_{session_, plans_, queries_};
    Options options_{session_, plans_, identity_};
    MessageStatements messages_{session_, plans_};
    ScalarFunctions scalarFunctions_{session_, codes_, *this};
    Statements statements_{session_, transactions_, watch_,    plans_,
                           queries_, writes_,       tables_,   calls_,
                           cursors_, options_,      messages_, scalarFunctions_};
    SessionFunctions sessionFunctions_;
    FileCare care_{session_, help_};
};

}  // namespace owb::tsql
