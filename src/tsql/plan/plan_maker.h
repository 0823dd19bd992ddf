// What the making of every plan needs: a binder, the plan, and a lowerer that writes into it.
#pragma once

#include <memory>

#include "tsql/plan/plan.h"

namespace owb::tsql {

class PlanMaker {
  protected:
    explicit PlanMaker(BindContext& context)
        : context_(context),
          plan_(std::make_unique<Plan>()),
          binder_(context),
          lowerer_(plan_->parameters, &plan_->applies) {}

    // The plan, with what binding found that it depends on.
    std::unique_ptr<Plan> finished();
    // The value of a column that gets none. NULL without a default.
    BoundPtr columnDefault(const CatalogColumn& column);

    BindContext& context_;
    std::unique_ptr<Plan> plan_;
    Binder binder_;
    Lowerer lowerer_;
};

}  // namespace owb::tsql
