#include "tsql/run/plan_runner.h"

#include "tsql/run/parameters.h"
#include "tsql/types/types.h"

namespace owb::tsql {

bool PlanRunner::dependenciesHold(Plan& plan) {
    Catalog& catalog = session_.catalog;
    for (const Dependency& d : plan.dependencies) {
        if (d.module) {
            const CatalogModulePtr m = catalog.findModule(d.name);
            if (!m || m->signature != d.signature) return false;
        } else {
            const CatalogTablePtr t = catalog.findTable(d.name);
            if (!t || t->signature != d.signature) return false;
        }
    }
    plan.checkedVersion = catalog.version();
    return true;
}

BorrowedStatement PlanRunner::start(Frame& frame, Plan& plan) {
    if (!plan.fills.empty()) tableFunctions_.fill(frame, plan);
    SqliteStatement statement;
    if (!plan.idle.empty()) {
        statement = std::move(plan.idle.back());
        plan.idle.pop_back();
    } else {
        if (plan.parameters.size() > 32000) throw makeDbError(8623);
        statement = session_.sqlite.prepare(plan.sql);
    }
    bindParameters(statement, frame, plan.parameters);
    return BorrowedStatement(plan, std::move(statement));
}

int64_t PlanRunner::runOnce(Frame& frame, Plan& plan, const std::string& sql) {
    if (!plan.fills.empty()) tableFunctions_.fill(frame, plan);
    SqliteStatement statement = session_.sqlite.prepare(sql);
    bindParameters(statement, frame, plan.parameters);
    session_.sqlite.step(statement);
    return session_.sqlite.changes();
}

Value PlanRunner::evaluate(Frame& frame, const Expr& e, const SqlType* target) {
    if (e.kind == ExprKind::Literal) {
        const LiteralSlot& slot = frame.code->parsed->ast.literals[e.literal];
        if (target) requireConversion(slot.type, *target, false);
        return target ? convertValue(slot.value, slot.type, *target) : slot.value;
    }
    if (e.kind == ExprKind::Null) return {};
    if (e.kind == ExprKind::Variable) {
        const size_t at = frame.variable(e.name.last(), e.line);
        const Value& v = frame.variables[at];
        if (target) requireConversion(frame.typeOf(at), *target, false);
        return target ? convertValue(v, frame.typeOf(at), *target) : v;
    }
    return run(frame, plan(frame, &e, [&](Planner& p) { return p.value(e, target); }));
}

Value PlanRunner::run(Frame& frame, Plan& plan) {
    BorrowedStatement statement = start(frame, plan);
    session_.sqlite.step(*statement);
    return statement->value(0, plan.columns[0].type);
}

bool PlanRunner::condition(Frame& frame, const Expr& e) {
    Plan& p = plan(frame, &e, [&](Planner& planner) { return planner.condition(e); });
    BorrowedStatement statement = start(frame, p);
    session_.sqlite.step(*statement);
    return statement->integer(0) != 0;
}

}  // namespace owb::tsql
