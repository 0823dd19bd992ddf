// Plans of UPDATE and DELETE: in one statement of SQLite's where that sees the table as it was, or
// from the rows collected first.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tsql/plan/plan_maker.h"

namespace owb::tsql {

class ChangePlanner : private PlanMaker {
  public:
    ChangePlanner(BindContext& context, const ChangeStatement& s)
        : PlanMaker(context), statement_(s) {}

    std::unique_ptr<Plan> update();
    std::unique_ptr<Plan> remove();

  private:
    void bindTarget();
    void addTriggers(bool CatalogModule::*event);
    void addAssignment(const Assignment& a);
    int findColumn(const Assignment& a) const;
    BoundPtr newValue(const Assignment& a, int column);
    BoundPtr oldValue(const Assignment& a, int column) const;
    BoundPtr variableValue(const Assignment& a);
    BoundPtr setVariable(const std::string& name, BoundPtr value, int line);
    void updateAtOnce();
    void updateCollecting();
    void collect(const std::string& columns);

    const ChangeStatement& statement_;
    Binder::Target target_;
    // The column's name in SQL, "" for a variable alone, and its new value.
    std::vector<std::pair<std::string, BoundPtr>> sets_;
    // The new values read what is changed, or keys may collide on the way: rows are collected
    // first.
    bool snapshot_ = false;
};

}  // namespace owb::tsql
