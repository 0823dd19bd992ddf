// PRINT, RAISERROR and THROW.
#pragma once

#include "tsql/run/plan_runner.h"

namespace owb::tsql {

class MessageStatements {
  public:
    MessageStatements(Session& session, PlanRunner& plans) : session_(session), plans_(plans) {}

    void run(Frame& frame, const Statement& s);

  private:
    void print(Frame& frame, const ValueStatement& s);
    void raise(Frame& frame, const MessageStatement& s);
    void throwError(Frame& frame, const MessageStatement& s);
    int whole(Frame& frame, const Argument& a);

    Session& session_;
    PlanRunner& plans_;
};

}  // namespace owb::tsql
