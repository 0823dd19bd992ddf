// Makes plans: binds a statement, decides how it is to run, and has it written down.
//
// Kept true:
//  1. A plan holds nothing of the texts and values that it was made with, but for literals that it
//     marks as fixed in the batch: it serves every text of that shape.
//  2. It names every object that it was made with, and the signature that the object had.
//  3. Its SQL changes a table only as if the statement had seen the table as it was before.
#pragma once

#include "tsql/plan/change_planner.h"
#include "tsql/plan/insert_planner.h"
#include "tsql/plan/query_planner.h"

namespace owb::tsql {

class Planner {
  public:
    explicit Planner(BindContext& context) : context_(context) {}

    std::unique_ptr<Plan> query(const Query& query) { return QueryPlanner(context_).query(query); }
    // The rows of a statement that writes, for its OUTPUT clause.
    std::unique_ptr<Plan> output(const Query& query) {
        return QueryPlanner(context_).output(query);
    }
    // A single value, of a type when one is wanted.
    std::unique_ptr<Plan> value(const Expr& e, const SqlType* target) {
        return QueryPlanner(context_).value(e, target);
    }
    // SET @x += value and its like: the new value.
    std::unique_ptr<Plan> sum(const SetStatement& s, const SqlType& type) {
        return QueryPlanner(context_).sum(s, type);
    }
    std::unique_ptr<Plan> condition(const Expr& e) { return QueryPlanner(context_).condition(e); }
    std::unique_ptr<Plan> insert(const InsertStatement& s, bool explicitIdentityAllowed) {
        return InsertPlanner(context_, s).make(explicitIdentityAllowed);
    }
    std::unique_ptr<Plan> update(const ChangeStatement& s) {
        return ChangePlanner(context_, s).update();
    }
    std::unique_ptr<Plan> remove(const ChangeStatement& s) {
        return ChangePlanner(context_, s).remove();
    }

  private:
    BindContext& context_;
};

}  // namespace owb::tsql
