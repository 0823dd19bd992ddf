// Writes a bound tree down as SQLite's SQL with numbered parameters.
//
//  1. Literals and variables are parameters, given anew for each run. Of the batch's own text only
//     names come into the SQL, quoted, and numbers that binding has fixed (a style, a position).
//  2. Parameters are numbered in the order in which they are written down; the list of them says
//     where each gets its value.
//  3. Texts compare with the collation TSQL. A column brings it along from its table; an expression
//     has none, so COLLATE TSQL is written wherever texts are ordered, grouped or compared.
//  4. Long chains (a + b + c, a AND b AND c) are written without parentheses in them, for SQLite's
//     parser bears only some hundred that are open.
#pragma once

#include <string>
#include <vector>

#include "tsql/bind/bound.h"

namespace owb::tsql {

struct ApplyPlan;

// Where the value of parameter ?n comes from when the plan runs.
struct PlanParameter {
    // Outer: a column of the left side of an APPLY. Apply: the pointer to its right side's plan.
    enum Kind : uint8_t { Literal, Variable, Constant, Outer, Apply } kind = Constant;
    int index = 0;  // literal slot or variable
    Value constant;
    SqlType from, to;
    bool negated = false;
    ApplyPlan* apply = nullptr;
};

Value negated(const Value& v);  // of a number

// The right side of an APPLY: a query whose Outer parameters are columns of the left side, or a
// table function.
struct ApplyPlan {
    std::string sql;
    std::vector<PlanParameter> parameters;
    std::string function;
    std::vector<SqliteStatement> idle;
};
using ApplyPlans = std::vector<std::unique_ptr<ApplyPlan>>;

class Lowerer {
  public:
    explicit Lowerer(std::vector<PlanParameter>& parameters, ApplyPlans* applies = nullptr)
        : parameters_(parameters), applies_(applies) {}

    std::string expression(const BoundExpr& e);
    // A condition of which only the rows that fit count: unknown is as good as false.
    std::string filter(const BoundExpr& e);
    // `named`: the output columns are called c0, c1 ...
    std::string query(const BoundQuery& q, bool named);
    std::string fromClause(const BoundQuery& q);
    std::string fromItem(const BoundFrom& f);
    std::string sourceText(const BoundSource& s);

  private:
    // `extra`: further columns, beginning with a comma.
    std::string select(const BoundQuery& q, bool named, const std::string& extra);
    std::string ranked(const BoundQuery& q);
    std::string setOperand(const BoundQuery& q, bool named, bool right);
    std::string orderBy(const BoundQuery& q);
    std::string parameter(PlanParameter p);
    std::string column(const BoundExpr& e);
    std::string filledPattern(const BoundExpr& e);

    std::string applied(const BoundSource& s);

    std::vector<PlanParameter>& parameters_;
    ApplyPlans* applies_;
    const std::vector<const BoundSource*>* outer_ = nullptr;  // while an applied query is written
    std::vector<const BoundExpr*> outerColumns_;              // used of them
};

}  // namespace owb::tsql
