// Makes plans: binds a statement, decides how it is to run, and has it written down.
#pragma once

#include <memory>

#include "tsql/plan/plan.h"

namespace owb::tsql {

// Makes plans. One planner serves one statement.
class Planner {
  public:
    explicit Planner(BindContext& context) : context_(context) {}

    std::unique_ptr<Plan> query(const Query& query);
    std::unique_ptr<Plan> value(const Expr& e, const SqlType* target);
    // SET @x += value and its like: the new value.
    std::unique_ptr<Plan> sum(const SetStatement& s, const SqlType& type);
    std::unique_ptr<Plan> condition(const Expr& e);
    std::unique_ptr<Plan> insert(const InsertStatement& s, bool explicitIdentityAllowed);
    std::unique_ptr<Plan> update(const ChangeStatement& s);
    std::unique_ptr<Plan> remove(const ChangeStatement& s);
    std::unique_ptr<Plan> output(const Query& query);

  private:
    BoundPtr setVariable(Binder& binder, const std::string& name, BoundPtr value, int line);
    BoundPtr setVariable(Binder& binder, const Assignment& a);
    BoundPtr columnDefault(Binder& binder, const CatalogColumn& column);
    bool readsTables(const BoundExpr& e) const;
    void assigningQuery(BoundQuery& q, Plan& plan);
    std::unique_ptr<Plan> ofValue(Binder& binder, BoundPtr value);
    void finish(Binder& binder, Plan& plan);

    BindContext& context_;
};

}  // namespace owb::tsql
