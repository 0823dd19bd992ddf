// Plans of INSERT: the columns that get values, those that get their defaults, and the rows.
#pragma once

#include <string>
#include <vector>

#include "tsql/plan/plan_maker.h"

namespace owb::tsql {

class InsertPlanner : private PlanMaker {
  public:
    InsertPlanner(BindContext& context, const InsertStatement& s)
        : PlanMaker(context), statement_(s) {}

    std::unique_ptr<Plan> make(bool explicitIdentityAllowed);

  private:
    void findColumns();
    int findColumn(const std::string& name) const;
    void judgeIdentity(bool explicitIdentityAllowed);
    DbError widthError(size_t given) const;
    std::string omittedValues();
    std::string valueRows();
    std::string queryRows();
    std::string assigned(BoundPtr value, int column);

    const InsertStatement& statement_;
    Binder::InsertTarget target_;
    std::vector<int> columns_;  // of the table, that the statement gives values for
    std::vector<int> omitted_;  // the others
};

}  // namespace owb::tsql
