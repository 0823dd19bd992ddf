// Plans of statements and expressions: found or made, kept with their batch, and run.
//
//  1. A plan is good as long as every object that it was made with has the signature that it had.
//     That is asked again only when the catalog's version has moved.
//  2. A plan's prepared statement that does not run waits in the plan; a plan that runs inside
//     itself (a recursive routine) prepares another.
//  3. Parameters are bound anew for each run, literals among them: so one plan serves all texts of
//     its shape.
#pragma once

#include "tsql/plan/planner.h"
#include "tsql/run/catalog_watch.h"
#include "tsql/run/table_functions.h"

namespace owb::tsql {

// A plan's statement while it runs: it goes back to its plan, rewound, however the run ends.
class BorrowedStatement {
  public:
    BorrowedStatement(Plan& plan, SqliteStatement statement)
        : plan_(plan), statement_(std::move(statement)) {}
    ~BorrowedStatement() {
        statement_.rewind();
        plan_.idle.push_back(std::move(statement_));
    }
    BorrowedStatement(const BorrowedStatement&) = delete;
    BorrowedStatement& operator=(const BorrowedStatement&) = delete;
    SqliteStatement& operator*() { return statement_; }
    SqliteStatement* operator->() { return &statement_; }

  private:
    Plan& plan_;
    SqliteStatement statement_;
};

class PlanRunner {
  public:
    PlanRunner(Session& session, CatalogWatch& watch, TableFunctions& tableFunctions)
        : session_(session), watch_(watch), tableFunctions_(tableFunctions) {}

    // The plan kept under the key, or one that `make(Planner&)` makes.
    template <typename Make>
    Plan& plan(Frame& frame, const void* key, Make make) {
        std::unique_ptr<Plan>& slot = frame.code->plans[key];
        if (!slot || slot->readsFile) watch_.lookOnce();
        // A trigger's tables are new each time it fires.
        if (!slot || frame.pseudoTables || !isGood(*slot)) {
            BindContext context = session_.bindContext(frame);
            Planner planner(context);
            std::unique_ptr<Plan> made = make(planner);
            made->checkedVersion = session_.catalog.version();
            slot = std::move(made);
        }
        return *slot;
    }

    // A statement of the plan, ready to step.
    BorrowedStatement start(Frame& frame, Plan& plan);
    // Runs SQL that has the plan's parameters, once. How many rows it wrote.
    int64_t runOnce(Frame& frame, Plan& plan, const std::string& sql);

    Value evaluate(Frame& frame, const Expr& e, const SqlType* target = nullptr);
    Value evaluate(Frame& frame, const Expr& e, const SqlType& target) {
        return evaluate(frame, e, &target);
    }
    // The value of a plan that Planner::value made.
    Value run(Frame& frame, Plan& plan);
    bool condition(Frame& frame, const Expr& e);

  private:
    bool isGood(Plan& plan) {
        return plan.checkedVersion == session_.catalog.version() || dependenciesHold(plan);
    }
    bool dependenciesHold(Plan& plan);

    Session& session_;
    CatalogWatch& watch_;
    TableFunctions& tableFunctions_;
};

}  // namespace owb::tsql
