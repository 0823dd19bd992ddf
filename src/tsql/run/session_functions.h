// What the functions in SQL (tsql/functions) ask of the session that runs them.
#pragma once

#include "tsql/run/cursors.h"
#include "tsql/run/identity_values.h"
#include "tsql/run/lock_procedures.h"
#include "tsql/run/scalar_functions.h"
#include "tsql/run/system_help.h"
#include "tsql/run/triggers.h"

namespace owb::tsql {

class SessionFunctions final : public FunctionHost {
  public:
    SessionFunctions(Session& session, const Transactions& transactions, ScalarFunctions& functions,
                     TableFunctions& tables, IdentityValues& identity, const Triggers& triggers,
                     const Cursors& cursors, LockProcedures& locks, const SystemHelp& help,
                     const std::string& hostName);

    Value callFunction(int id, SqliteArguments arguments) override {
        return functions_.call(id, arguments);
    }
    void applyRows(ApplyPlan& plan, SqliteArguments arguments, AppliedRows& rows) override {
        tables_.apply(plan, arguments, rows);
    }
    Value liveVariable(int index) override { return session_.frame->variables[index]; }
    void setVariable(int index, Value value) override {
        session_.frame->variables[index] = std::move(value);
    }
    DateTime statementTime() override { return session_.statementTime(); }
    int64_t nextIdentity() override { return identity_.next(); }
    Value identityOf(const std::string& table) override { return identity_.current(table); }
    Value applicationLock(const std::string& principal, const std::string& resource,
                          const std::optional<std::string>& mode,
                          const std::string& owner) override {
        return locks_.ask(principal, resource, mode, owner);
    }
    Value systemValue(const std::string& name) override;
    Value objectId(const std::string& name, const std::string& kind) override;
    Value columnLength(const std::string& table, const std::string& column) override;

  private:
    Session& session_;
    const Transactions& transactions_;
    ScalarFunctions& functions_;
    TableFunctions& tables_;
    IdentityValues& identity_;
    const Triggers& triggers_;
    const Cursors& cursors_;
    LockProcedures& locks_;
    const SystemHelp& help_;
    std::string hostName_;
};

}  // namespace owb::tsql
