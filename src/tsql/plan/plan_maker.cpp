#include "tsql/plan/plan_maker.h"

#include <functional>

#include "tsql/parse/query_parser.h"

namespace owb::tsql {

std::unique_ptr<Plan> PlanMaker::finished() {
    Plan& plan = *plan_;
    plan.dependencies = binder_.dependencies();
    for (const Dependency& d : plan.dependencies)
        plan.readsFile |= !d.module && d.name[0] != '#' && d.name[0] != '@';
    for (TableCall& call : binder_.tableCalls) {
        Plan::TableFill fill;
        fill.function = call.function;
        fill.sqlName = call.sqlName;
        Lowerer lowerer(fill.arguments);
        for (const BoundPtr& a : call.arguments) {
            if (a->kind == BoundKind::Null)
                fill.arguments.push_back({});
            else
                lowerer.expression(*a);
        }
        plan.fills.push_back(std::move(fill));
    }
    return std::move(plan_);
}

BoundPtr PlanMaker::columnDefault(const CatalogColumn& column) {
    if (column.defaultSource.empty()) return binder_.null(column.type);
    const std::vector<Token> tokens = tokenize(column.defaultSource);
    QueryParser parser(column.defaultSource, tokens);
    std::vector<LiteralSlot> literals;
    ExprPtr e = parser.parseSingleExpression(literals);
    // The literals of the default are constants here.
    BindContext context = context_;
    context.literals = &literals;
    context.variables = nullptr;
    Binder inner(context);
    BoundPtr value = inner.bindValue(*e);
    std::function<void(BoundExpr&)> freeze = [&](BoundExpr& x) {
        if (x.kind == BoundKind::Literal && x.index >= 0) {
            x.constant = literals[x.index].value;
            x.index = -1;
        }
        for (BoundPtr& a : x.args) freeze(*a);
    };
    freeze(*value);
    return value;
}

}  // namespace owb::tsql
