// SELECT: rows for the client, for variables, or for a new table (SELECT ... INTO).
#pragma once

#include "tsql/run/plan_runner.h"

namespace owb::tsql {

class Queries {
  public:
    Queries(Session& session, const Transactions& transactions, CatalogWatch& watch,
            TableWriter& tables, PlanRunner& plans)
        : session_(session),
          transactions_(transactions),
          watch_(watch),
          tables_(tables),
          plans_(plans) {}

    // The query of that statement.
    void run(Frame& frame, const Statement& s, const Query& query);

  private:
    void assign(Frame& frame, Plan& plan);
    void answer(Frame& frame, Plan& plan);
    void makeTable(Frame& frame, Plan& plan);
    CatalogTable newTable(const Plan& plan) const;

    Session& session_;
    const Transactions& transactions_;
    CatalogWatch& watch_;
    TableWriter& tables_;
    PlanRunner& plans_;
};

}  // namespace owb::tsql
