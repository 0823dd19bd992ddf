// SET options.
//
//  1. NOCOUNT, ROWCOUNT, XACT_ABORT, LOCK_TIMEOUT and IDENTITY_INSERT do what they say.
//  2. Those that ask for what holds here anyway (ANSI_NULLS ON, DATEFORMAT mdy) are taken.
//  3. A few are taken whatever they ask for, and change nothing: QUOTED_IDENTIFIER, ARITHABORT,
//     NUMERIC_ROUNDABORT, STATISTICS and the isolation level.
//  4. Every other one is refused with error 15281.
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
