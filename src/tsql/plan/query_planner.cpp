#include "tsql/plan/query_planner.h"

#include <algorithm>

#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

bool containsLive(const BoundExpr& e) {
    if (e.kind == BoundKind::LiveVariable) return true;
    return std::any_of(e.args.begin(), e.args.end(),
                       [](const BoundPtr& a) { return containsLive(*a); });
}

// Cuts the largest parts without live variables out of an expression: they become columns of the
// inner query, and what is left is computed row by row over it.
void extractSteady(BoundPtr& e, std::vector<BoundPtr>& inner) {
    if (e->isConstant()) return;
    if (!containsLive(*e)) {
        auto ref = std::make_unique<BoundExpr>();
        ref->pattern = "s.c" + std::to_string(inner.size());
        ref->type = e->type;
        ref->nullable = e->nullable;
        inner.push_back(std::move(e));
        e = std::move(ref);
        return;
    }
    for (BoundPtr& a : e->args) extractSteady(a, inner);
}

}  // namespace

// --- values ---

std::unique_ptr<Plan> QueryPlanner::ofValue(BoundPtr v, const SqlType& type) {
    plan_->columns.push_back({"", type, true});
    plan_->sql = "SELECT " + lowerer_.expression(*v);
    return finished();
}

std::unique_ptr<Plan> QueryPlanner::value(const Expr& e, const SqlType* target) {
    BoundPtr v = binder_.bindValue(e);
    if (target) v = binder_.convert(std::move(v), *target);
    const SqlType type = v->type;
    return ofValue(std::move(v), type);
}

std::unique_ptr<Plan> QueryPlanner::sum(const SetStatement& s, const SqlType& type) {
    Expr own(ExprKind::Variable, s.line);
    own.name.parts.push_back(s.variable);
    BoundPtr before = binder_.bindValue(own);
    BoundPtr v =
        binder_.arithmetic(s.op[0], std::move(before), binder_.bindValue(*s.value), s.line);
    return ofValue(binder_.convert(std::move(v), type), type);
}

std::unique_ptr<Plan> QueryPlanner::condition(const Expr& e) {
    return ofValue(binder_.bindCondition(e), SqlType::of(SqlKind::Int));
}

// --- queries ---

void QueryPlanner::addColumns(const BoundQuery& q) {
    for (const BoundColumn& c : q.columns) {
        const bool untyped = c.type.kind == SqlKind::Null;
        plan_->columns.push_back(
            {c.name, untyped ? SqlType::of(SqlKind::Int) : c.type, c.nullable});
    }
}

// SELECT ... INTO needs names for the columns of its table.
void QueryPlanner::requireColumnNames(const QueryBody& body, const BoundQuery& q) const {
    for (const BoundColumn& c : q.columns)
        if (c.name.empty())
            throw DbError(1038, 15, 5, body.line,
                          "An object or column name is missing or empty. For SELECT INTO "
                          "statements, verify each column has a name.");
}

std::unique_ptr<Plan> QueryPlanner::query(const Query& query) {
    for (const QueryBody* body = query.body.get(); body->left; body = body->left.get())
        for (const QueryBody* part : {body->left.get(), body->right.get()})
            for (const SelectItem& item : part->items)
                if (!item.variable.empty()) throw makeDbError(10734, {}, item.line);
    binder_.statement = true;
    auto q = binder_.bindQuery(query);
    addColumns(*q);
    bool live = false;
    for (const BoundItem& item : q->items) {
        if (item.variable >= 0) plan_->variables.push_back(item.variable);
        live |= containsLive(*item.expr);
    }
    const QueryBody* first = query.body.get();
    while (first->left) first = first->left.get();
    if (!first->into.empty()) {
        plan_->into = first->into;
        requireColumnNames(*first, *q);
        // The new columns take their width from the literals: the plan serves only these.
        if (context_.literals)
            for (LiteralSlot& slot : *context_.literals)
                if (slot.type.isText()) slot.fixed = true;
    }
    if (live && plan_->into.empty())
        assign(*q);
    else
        plan_->sql = lowerer_.query(*q, false);
    return finished();
}

// SELECT @x = @x + column ...: every row must see what the row before assigned, in the order of
// ORDER BY. The steady parts are computed and ordered first, then walked row by row.
void QueryPlanner::assign(BoundQuery& q) {
    std::vector<BoundPtr> steady;
    const std::vector<BoundItem> outer = assigningItems(q, steady);
    q.items.clear();
    q.columns.clear();
    if (steady.empty()) steady.push_back(binder_.op("1", SqlType::of(SqlKind::Int), {}));
    for (size_t i = 0; i < steady.size(); ++i) {
        q.columns.push_back({"", steady[i]->type, true, "c" + std::to_string(i)});
        q.items.push_back({std::move(steady[i]), "", -1});
    }
    plan_->sql = "WITH s AS MATERIALIZED (" + lowerer_.query(q, true) + ") SELECT ";
    for (size_t i = 0; i < outer.size(); ++i)
        plan_->sql += (i ? ", " : "") + lowerer_.expression(*outer[i].expr);
    plan_->sql += " FROM s";
}

// The items over the rows of steady parts; those behind an assignment read what it assigned.
std::vector<BoundItem> QueryPlanner::assigningItems(BoundQuery& q, std::vector<BoundPtr>& steady) {
    std::vector<BoundItem> outer;
    for (BoundItem& item : q.items) {
        extractSteady(item.expr, steady);
        if (q.items.size() > 1 && item.variable >= 0) {
            const SqlType type = item.expr->type;
            const std::string packed = std::to_string(packType(type));
            std::vector<BoundPtr> args;
            args.push_back(std::move(item.expr));
            item.expr = binder_.op(
                "t_setvar(" + std::to_string(item.variable) + "," + packed + "," + packed + ",$0)",
                type, std::move(args));
        }
        outer.push_back(std::move(item));
    }
    return outer;
}

// The rows of a statement that writes, as its OUTPUT clause wants them.
std::unique_ptr<Plan> QueryPlanner::output(const Query& query) {
    auto q = binder_.bindQuery(query);
    addColumns(*q);
    const std::string row = q->sources[0]->alias + ".rowid";
    if (q->sources.size() == 2)
        q->where = binder_.op("(" + row + " = " + q->sources[1]->alias + ".rowid)",
                              SqlType::of(SqlKind::Bit), {});
    plan_->sql = lowerer_.query(*q, false) + " ORDER BY " + row;
    return finished();
}

}  // namespace owb::tsql
