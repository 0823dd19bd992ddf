// Application locks in T-SQL: sp_getapplock, sp_releaseapplock and the functions that ask after
// them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tsql/run/app_locks.h"
#include "tsql/run/plan_runner.h"

namespace owb::tsql {

class LockProcedures {
  public:
    LockProcedures(Session& session, const Transactions& transactions, PlanRunner& plans,
                   AppLocks& locks)
        : session_(session), transactions_(transactions), plans_(plans), locks_(locks) {}

    void call(Frame& frame, const ExecuteStatement& s, const std::string& procedure);
    // APPLOCK_MODE and, with a mode, APPLOCK_TEST.
    Value ask(const std::string& principal, const std::string& resource,
              const std::optional<std::string>& mode, const std::string& owner);

  private:
    using Texts = std::vector<std::optional<Value>>;
    Texts namedArguments(Frame& frame, const ExecuteStatement& s, const std::string& procedure,
                         const std::vector<std::string>& names);
    int await(const std::string& name, AppLocks::Mode mode, AppLocks::Owner owner, int64_t timeout);

    Session& session_;
    const Transactions& transactions_;
    PlanRunner& plans_;
    AppLocks& locks_;
};

}  // namespace owb::tsql
