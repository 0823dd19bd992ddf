// A look at statements before any of them runs: a name that does not exist is found out as long as
// nothing among them can bring it about.
#pragma once

#include "tsql/run/identity_values.h"
#include "tsql/run/plan_runner.h"

namespace owb::tsql {

class ForwardCheck {
  public:
    ForwardCheck(PlanRunner& plans, const IdentityValues& identity)
        : plans_(plans), identity_(identity) {}

    void check(Frame& frame, const std::vector<StatementPtr>& statements);
    // Whether one of them may make or change a table.
    static bool changesSchema(const std::vector<StatementPtr>& statements);

  private:
    void checkOne(Frame& frame, const Statement& s);
    void checkQuery(Frame& frame, const Statement& s, const Query& query);

    PlanRunner& plans_;
    const IdentityValues& identity_;
};

}  // namespace owb::tsql
