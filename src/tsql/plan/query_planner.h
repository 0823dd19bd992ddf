// Plans that read: queries, single values and conditions.
#pragma once

#include "tsql/plan/plan_maker.h"

namespace owb::tsql {

class QueryPlanner : private PlanMaker {
  public:
    explicit QueryPlanner(BindContext& context) : PlanMaker(context) {}

    std::unique_ptr<Plan> query(const Query& query);
    std::unique_ptr<Plan> output(const Query& query);
    std::unique_ptr<Plan> value(const Expr& e, const SqlType* target);
    std::unique_ptr<Plan> sum(const SetStatement& s, const SqlType& type);
    std::unique_ptr<Plan> condition(const Expr& e);

  private:
    std::unique_ptr<Plan> ofValue(BoundPtr value, const SqlType& type);
    void addColumns(const BoundQuery& q);
    void requireColumnNames(const QueryBody& body, const BoundQuery& q) const;
    void assign(BoundQuery& q);
    std::vector<BoundItem> assigningItems(BoundQuery& q, std::vector<BoundPtr>& steady);
};

}  // namespace owb::tsql
