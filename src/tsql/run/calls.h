// EXEC: procedures, texts, sp_executesql and the system procedures.
#pragma once

#include "tsql/run/lock_procedures.h"
#include "tsql/run/module_definitions.h"
#include "tsql/run/system_help.h"

namespace owb::tsql {

class Calls {
  public:
    Calls(Session& session, const Transactions& transactions, CodeCache& codes, PlanRunner& plans,
          ModuleDefinitions& modules, LockProcedures& locks, SystemHelp& help,
          StatementRunner& runner)
        : session_(session),
          transactions_(transactions),
          codes_(codes),
          plans_(plans),
          modules_(modules),
          locks_(locks),
          help_(help),
          runner_(runner) {}

    // Throws 266 when the call leaves another number of transactions open than it found.
    // Execute or ExecuteText.
    void execute(Frame& frame, const Statement& s);

  private:
    // Which parameters go back to which variables of the caller.
    using Outputs = std::vector<std::pair<size_t, std::string>>;

    void call(Frame& frame, const Statement& s);
    void callProcedure(Frame& frame, const ExecuteStatement& s, CatalogModule& module);
    Outputs passArguments(Frame& frame, const ExecuteStatement& s, const std::string& procedure,
                          Frame& callee);
    void passOne(Frame& frame, const Argument& a, const Parameter& p, Value& value, int line);
    bool callSystemProcedure(Frame& frame, const ExecuteStatement& s);
    bool isSystemPlace(const Name& name) const;
    void executeText(const std::string& text);
    void executeSql(Frame& frame, const ExecuteStatement& s);

    Session& session_;
    const Transactions& transactions_;
    CodeCache& codes_;
    PlanRunner& plans_;
    ModuleDefinitions& modules_;
    LockProcedures& locks_;
    SystemHelp& help_;
    StatementRunner& runner_;
};

}  // namespace owb::tsql
