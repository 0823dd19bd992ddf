// Queries within expressions: ANY and ALL, IN, and those that stand for a value.
#include "base/utf8.h"
#include "tsql/bind/binder.h"
#include "tsql/types/types.h"

namespace owb::tsql {

// x op ANY (q): some row of q fits. x op ALL (q): no row is without fitting.
BoundPtr Binder::bindQuantified(const Expr& e) {
    auto rows = std::make_unique<BoundQuery>();
    auto source = derivedSource(bindSubquery(*e.query), "", {}, e.line);
    if (source->columns.size() != 1) throw makeDbError(116, {}, e.line);
    auto column = std::make_unique<BoundExpr>();
    column->kind = BoundKind::Column;
    column->source = source.get();
    column->column = 0;
    column->type = source->columns[0].type;
    std::vector<BoundPtr> fits;
    fits.push_back(compare(e.compareOp, bindValue(*e.args[0]), std::move(column)));
    const SqlType truth = SqlType::of(SqlKind::Bit);
    rows->where = e.any ? std::move(fits[0]) : op("($0 IS NOT 1)", truth, std::move(fits));
    rows->from.push_back(std::make_unique<BoundFrom>());
    rows->from.back()->source = source.get();
    rows->sources.push_back(std::move(source));
    BoundItem one;
    one.expr = op("1", SqlType::of(SqlKind::Int), {});
    rows->items.push_back(std::move(one));
    return subqueryPredicate(BoundKind::ExistsQuery, std::move(rows), !e.any);
}

BoundPtr Binder::subqueryPredicate(BoundKind kind, std::unique_ptr<BoundQuery> query,
                                   bool negated) {
    auto p = std::make_unique<BoundExpr>();
    p->kind = kind;
    p->type = SqlType::of(SqlKind::Bit);
    p->predicate = true;
    p->negated = negated;
    p->query = std::move(query);
    return p;
}

BoundPtr Binder::bindInList(const Expr& e) {
    Args args;
    for (const ExprPtr& a : e.args) args.push_back(bindValue(*a));
    std::vector<BoundPtr*> all;
    for (BoundPtr& a : args) all.push_back(&a);
    const SqlType type = unify(all);
    std::string pattern = type.isText() ? "($0 COLLATE TSQL IN ($*))" : "($0 IN ($*))";
    if (e.negated) pattern = "(NOT " + pattern + ")";
    return predicate(pattern, std::move(args));
}

BoundPtr Binder::bindInQuery(const Expr& e) {
    BoundPtr a = bindValue(*e.args[0]);
    BoundPtr p = subqueryPredicate(BoundKind::InQuery, bindSubquery(*e.query), e.negated);
    if (p->query->columns.size() != 1) throw makeDbError(116, {}, e.line);
    const SqlType type = commonType(a->type, p->query->columns[0].type);
    convertOutputs(*p->query, {type});
    p->args.push_back(convert(std::move(a), type));
    return p;
}

BoundPtr Binder::scalarQuery(const Query& query, int line) {
    auto e = std::make_unique<BoundExpr>();
    e->kind = BoundKind::ScalarQuery;
    e->query = bindSubquery(query);
    if (e->query->columns.size() != 1) throw makeDbError(116, {}, line);
    e->type = e->query->columns[0].type;
    return e;
}

}  // namespace owb::tsql
