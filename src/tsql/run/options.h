// SET options. Those that change nothing here are taken; one that would change answers and is not
// known is refused.
#pragma once

#include "tsql/run/identity_values.h"
#include "tsql/run/plan_runner.h"

namespace owb::tsql {

class Options {
  public:
    Options(Session& session, PlanRunner& plans, IdentityValues& identity)
        : session_(session), plans_(plans), identity_(identity) {}

    void set(Frame& frame, const OptionStatement& s);
    void setCommandTimeout(int seconds);
    int commandTimeout() const { return commandTimeout_; }

  private:
    void setLockTimeout(int64_t milliseconds);
    bool changesNothing(const OptionStatement& s) const;

    Session& session_;
    PlanRunner& plans_;
    IdentityValues& identity_;
    int commandTimeout_ = 600;  // seconds
};

}  // namespace owb::tsql
