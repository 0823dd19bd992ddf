// SELECT and set operators.
#include <algorithm>
#include <utility>

#include "base/utf8.h"
#include "tsql/bind/binder.h"
#include "tsql/bind/binder_scope.h"
#include "tsql/types/types.h"

namespace owb::tsql {

struct ScopeGuard {
    explicit ScopeGuard(std::vector<std::unique_ptr<Binder::Scope>>& scopes) : scopes_(scopes) {
        scopes_.push_back(std::make_unique<Binder::Scope>());
    }
    ~ScopeGuard() { scopes_.pop_back(); }

  private:
    std::vector<std::unique_ptr<Binder::Scope>>& scopes_;
};

namespace {

bool isOrdinal(const Expr& e) {
    return e.kind == ExprKind::Literal;
}

}  // namespace

void Binder::pushWith(const std::vector<CommonTable>& with) {
    for (const CommonTable& t : with) with_.push_back(&t);
}

std::unique_ptr<BoundQuery> Binder::bindQuery(const Query& query) {
    const size_t before = with_.size();
    pushWith(query.with);
    if (query.maxRecursion >= 0) maxRecursion_ = query.maxRecursion;
    auto q = bindBody(*query.body, &query.orderBy, &query);
    with_.resize(before);
    return q;
}

std::unique_ptr<BoundQuery> Binder::bindSubquery(const Query& query) {
    if (!query.orderBy.empty() && !query.body->top && !query.offset)
        throw makeDbError(1033, {}, query.orderBy[0].expr->line);
    return bindQuery(query);
}

std::unique_ptr<BoundQuery> Binder::bindBody(const QueryBody& body,
                                             const std::vector<OrderItem>* orderBy,
                                             const Query* query) {
    if (body.kind == QueryBody::Select) return bindSelect(body, orderBy, query);
    if (body.kind == QueryBody::Values) return bindValues(body);
    auto q = bindSetOperation(body);
    if (orderBy && !orderBy->empty()) {
        for (const OrderItem& item : *orderBy) {
            BoundOrder order;
            order.descending = item.descending;
            if (isOrdinal(*item.expr)) {
                order.ordinal = static_cast<int>(fixedLiteral(*item.expr)->toInt()) - 1;
                if (order.ordinal < 0 || order.ordinal >= static_cast<int>(q->columns.size()))
                    throw makeDbError(108, {std::to_string(order.ordinal + 1)}, item.expr->line);
            } else if (item.expr->kind == ExprKind::Column) {
                for (size_t i = 0; i < q->columns.size(); ++i)
                    if (sameName(q->columns[i].name, item.expr->name.last()))
                        order.ordinal = static_cast<int>(i);
            }
            if (order.ordinal < 0) throw makeDbError(104, {}, item.expr->line);
            q->order.push_back(std::move(order));
        }
        bindLimit(body, query, *q);
    }
    return q;
}

std::unique_ptr<BoundQuery> Binder::bindValues(const QueryBody& body) {
    auto q = std::make_unique<BoundQuery>();
    q->kind = QueryBody::Values;
    for (const auto& row : body.rows) {
        if (row.size() != body.rows[0].size())
            throw DbError(10709, 16, 1, body.line,
                          "The number of columns for each row in a table value constructor must "
                          "be the same.");
        std::vector<BoundPtr> values;
        for (const ExprPtr& e : row) values.push_back(bindValue(*e));
        q->rows.push_back(std::move(values));
    }
    for (size_t c = 0; c < body.rows[0].size(); ++c) {
        std::vector<BoundPtr*> column;
        for (auto& row : q->rows) column.push_back(&row[c]);
        BoundColumn out;
        out.type = unify(column);
        out.sqlName = "column" + std::to_string(c + 1);
        q->columns.push_back(std::move(out));
    }
    return q;
}

std::unique_ptr<BoundQuery> Binder::bindSetOperation(const QueryBody& body) {
    auto q = std::make_unique<BoundQuery>();
    q->kind = body.kind;
    q->left = bindBody(*body.left, nullptr, nullptr);
    statement = false;
    q->right = bindBody(*body.right, nullptr, nullptr);
    if (q->left->columns.size() != q->right->columns.size()) throw makeDbError(205, {}, body.line);
    std::vector<SqlType> types;
    for (size_t i = 0; i < q->left->columns.size(); ++i) {
        SqlType t = commonType(q->left->columns[i].type, q->right->columns[i].type);
        if (t.kind == SqlKind::Null) t = SqlType::of(SqlKind::Int);
        types.push_back(t);
    }
    convertOutputs(*q->left, types);
    convertOutputs(*q->right, types);
    q->columns = q->left->columns;
    for (size_t i = 0; i < q->columns.size(); ++i)
        q->columns[i].nullable |= q->right->columns[i].nullable;
    return q;
}

void Binder::convertOutputs(BoundQuery& q, const std::vector<SqlType>& types) {
    if (q.left) {
        convertOutputs(*q.left, types);
        convertOutputs(*q.right, types);
    }
    for (size_t i = 0; i < types.size(); ++i) {
        if (q.kind == QueryBody::Select)
            q.items[i].expr = convert(std::move(q.items[i].expr), types[i]);
        for (auto& row : q.rows) row[i] = convert(std::move(row[i]), types[i]);
        q.columns[i].type = types[i];
    }
}

std::unique_ptr<BoundQuery> Binder::bindSelect(const QueryBody& body,
                                               const std::vector<OrderItem>* orderBy,
                                               const Query* query) {
    spend(200);
    struct Depth {
        int& depth;
        explicit Depth(int& d) : depth(d) {
            if (++depth > 100) {
                --depth;
                throw makeDbError(8623);
            }
        }
        ~Depth() { --depth; }
    } depth(queryDepth_);
    auto q = std::make_unique<BoundQuery>();
    if (!std::exchange(statement, false)) requirePlain(body);
    ScopeGuard guard(scopes_);
    const bool outerWindows = windowsAllowed_;
    windowsAllowed_ = false;
    q->distinct = body.distinct;
    for (const TableRefPtr& ref : body.from) q->from.push_back(bindFrom(*ref, *q));
    if (body.where) {
        q->where = bindCondition(*body.where);
        if (containsAggregate(*q->where)) throw makeDbError(147, {}, body.where->line);
    }
    for (const ExprPtr& e : body.groupBy) {
        BoundPtr g = bindValue(*e);
        if (containsAggregate(*g)) throw makeDbError(144, {}, e->line);
        q->groupBy.push_back(std::move(g));
    }
    windowsAllowed_ = true;
    bindItems(body, *q);
    windowsAllowed_ = false;
    if (body.having) q->having = bindCondition(*body.having);
    bool aggregates = q->having != nullptr;
    for (const BoundItem& item : q->items) aggregates |= containsAggregate(*item.expr);
    q->grouped = aggregates || !q->groupBy.empty();
    setColumns(*q);
    windowsAllowed_ = true;
    if (orderBy) bindOrder(*orderBy, body, *q);
    windowsAllowed_ = outerWindows;
    if (q->grouped) {
        for (const BoundItem& item : q->items) checkGrouped(*item.expr, *q, 8120);
        if (q->having) checkGrouped(*q->having, *q, 8121);
        for (const BoundOrder& o : q->order)
            if (o.expr) checkGrouped(*o.expr, *q, 8127);
    }
    bindLimit(body, query, *q);
    q->singleRow = (q->grouped && q->groupBy.empty()) || q->from.empty();
    return q;
}

void Binder::bindLimit(const QueryBody& body, const Query* query, BoundQuery& q) {
    if (body.top) {
        const Value* n = fixedLiteral(*body.top);
        if (n && n->isInt() && n->toInt() == 1 && !body.withTies && !body.topPercent)
            q.singleRow = true;
        q.limit = rowLimit(*body.top, body.topPercent ? 1031 : 127);
        q.withTies = body.withTies;
        q.percent = body.topPercent;
        if (body.withTies && q.order.empty())
            throw DbError(1062, 15, 1, body.line,
                          "The TOP N WITH TIES clause is not allowed without a corresponding ORDER "
                          "BY clause.");
    }
    if (query && query->offset) {
        if (body.top)
            throw DbError(10741, 15, 2, body.line,
                          "A TOP can not be used in the same query or sub-query as a OFFSET.");
        q.offset = rowLimit(*query->offset, 10742);
        q.limit = query->fetch ? rowLimit(*query->fetch, 10744)
                               : constant(Value(int64_t(-1)), SqlType::of(SqlKind::BigInt));
    }
}

BoundPtr Binder::rowLimit(const Expr& e, int error) {
    BoundPtr v = bindValue(e);
    const bool percent = error == 1031;
    if (!percent && !v->type.isInteger() && v->type.kind != SqlKind::Null)
        throw makeDbError(1060, {}, e.line);
    const SqlType type = SqlType::of(percent ? SqlKind::Float : SqlKind::BigInt);
    const bool sure = v->kind == BoundKind::Literal && !v->negated && error == 127;
    v = convert(std::move(v), type);
    if (sure) return v;
    std::vector<BoundPtr> args;
    args.push_back(std::move(v));
    return op("t_limit($0," + std::to_string(error) + ")", type, std::move(args));
}

// A query inside another statement gives rows and does nothing else.
void Binder::requirePlain(const QueryBody& body) const {
    if (!body.into.empty()) throw makeDbError(156, {"INTO"}, body.line);
    for (const SelectItem& item : body.items)
        if (!item.variable.empty()) throw makeDbError(102, {"="}, item.line);
}

void Binder::bindItems(const QueryBody& body, BoundQuery& q) {
    const std::vector<int> outer = assignedVariables_;
    for (const SelectItem& item : body.items) {
        if (item.variable.empty()) continue;
        for (size_t i = 0; i < (context_.variables ? context_.variables->size() : 0); ++i)
            if (sameName((*context_.variables)[i].name, item.variable))
                assignedVariables_.push_back(static_cast<int>(i));
    }
    bool assigns = false, returns = false;
    for (const SelectItem& item : body.items) {
        if (item.star) {
            expandStar(item, q);
            returns = true;
            continue;
        }
        BoundItem bound;
        bound.expr = bindValue(*item.expr);
        if (!item.variable.empty()) {
            assigns = true;
            Expr v(ExprKind::Variable, item.line);
            v.name.parts.push_back(item.variable);
            BoundPtr target = bindVariable(v);
            bound.variable = target->index;
            bound.expr = convert(std::move(bound.expr), target->type);
        } else {
            returns = true;
        }
        bound.name = !item.alias.empty() ? item.alias : bound.expr->name;
        if (item.expr->kind == ExprKind::Column && item.alias.empty())
            bound.name = bound.expr->name.empty() ? item.expr->name.last() : bound.expr->name;
        q.items.push_back(std::move(bound));
    }
    assignedVariables_ = outer;
    if (assigns && returns) throw makeDbError(141, {}, body.line);
}

void Binder::expandStar(const SelectItem& item, BoundQuery& q) {
    Name column = item.starOf;  // "*" for its name
    column.parts.emplace_back("*");
    const std::vector<std::string>* fixed = nullptr;
    if (fixedStars_ && nextStar_ < fixedStars_->size()) fixed = &(*fixedStars_)[nextStar_];
    ++nextStar_;
    std::vector<std::string> names;
    bool any = false;
    for (BoundSource* source : scopes_.back()->sources) {
        if (!item.starOf.empty() && !isNamed(*source, column)) continue;
        any = true;
        spend(static_cast<int>(source->columns.size()));
        for (size_t i = 0; i < source->columns.size(); ++i) {
            const BoundColumn& c = source->columns[i];
            if (fixed && std::find(fixed->begin(), fixed->end(), c.name) == fixed->end()) continue;
            BoundItem bound;
            bound.expr = std::make_unique<BoundExpr>();
            bound.expr->kind = BoundKind::Column;
            bound.expr->source = source;
            bound.expr->column = static_cast<int>(i);
            bound.expr->type = c.type;
            bound.expr->nullable = c.nullable || scopes_.back()->outerJoined;
            bound.expr->name = c.name;
            bound.name = c.name;
            names.push_back(c.name);
            q.items.push_back(std::move(bound));
        }
    }
    if (!any) {
        if (!item.starOf.empty()) throw makeDbError(4104, {item.starOf.text() + ".*"}, item.line);
        throw DbError(263, 15, 1, item.line, "Must specify table to select from.");
    }
    if (recordStars) recordStars->push_back(std::move(names));
}

void Binder::setColumns(BoundQuery& q) {
    for (size_t i = 0; i < q.items.size(); ++i) {
        BoundColumn c;
        c.name = q.items[i].name;
        c.type = q.items[i].expr->type;
        c.nullable = q.items[i].expr->nullable;
        c.sqlName = "c" + std::to_string(i);
        q.columns.push_back(std::move(c));
    }
}

// A column may be given once only.
void Binder::pushOrder(BoundOrder order, const OrderItem& item, BoundQuery& q) const {
    const auto column = [&](const BoundOrder& o) {
        const BoundExpr* e = o.expr ? o.expr.get() : q.items[o.ordinal].expr.get();
        return e->kind == BoundKind::Column ? e : nullptr;
    };
    const BoundExpr* own = column(order);
    for (const BoundOrder& before : q.order) {
        const BoundExpr* other = column(before);
        const bool same = own && other ? sameBound(*own, *other, *context_.literals)
                                       : order.ordinal >= 0 && order.ordinal == before.ordinal;
        if (same) throw makeDbError(169, {}, item.expr->line);
    }
    q.order.push_back(std::move(order));
}

void Binder::bindOrder(const std::vector<OrderItem>& orderBy, const QueryBody& body,
                       BoundQuery& q) {
    for (const OrderItem& item : orderBy) {
        BoundOrder order;
        order.descending = item.descending;
        if (isOrdinal(*item.expr)) {
            const Value* n = fixedLiteral(*item.expr);
            order.ordinal = static_cast<int>(n->toInt()) - 1;
            if (order.ordinal < 0 || order.ordinal >= static_cast<int>(q.items.size()))
                throw makeDbError(108, {n->toText()}, item.expr->line);
            pushOrder(std::move(order), item, q);
            continue;
        }
        // A bare name is an output column first.
        if (item.expr->kind == ExprKind::Column && item.expr->name.parts.size() == 1) {
            for (size_t i = 0; i < q.items.size(); ++i) {
                if (foldName(q.items[i].name) != foldName(item.expr->name.last())) continue;
                if (order.ordinal >= 0 &&
                    !sameBound(*q.items[i].expr, *q.items[order.ordinal].expr, *context_.literals))
                    throw makeDbError(209, {item.expr->name.last()}, item.expr->line);
                if (order.ordinal < 0) order.ordinal = static_cast<int>(i);
            }
        }
        if (order.ordinal < 0) {
            order.expr = bindValue(*item.expr);
            for (size_t i = 0; i < q.items.size() && order.ordinal < 0; ++i)
                if (sameBound(*order.expr, *q.items[i].expr, *context_.literals))
                    order.ordinal = static_cast<int>(i);
            if (order.ordinal >= 0)
                order.expr.reset();
            else if (q.distinct)
                throw makeDbError(145, {}, body.line);
        }
        pushOrder(std::move(order), item, q);
    }
}

void Binder::checkGrouped(const BoundExpr& e, const BoundQuery& q, int errorNumber) const {
    if (e.aggregate) return;
    for (const BoundPtr& g : q.groupBy)
        if (sameBound(e, *g, *context_.literals)) {
            // The plan relies on the literals being equal: it serves only these.
            std::function<void(const BoundExpr&)> fix = [&](const BoundExpr& x) {
                if (x.kind == BoundKind::Literal && x.index >= 0)
                    (*context_.literals)[x.index].fixed = true;
                for (const BoundPtr& a : x.args) fix(*a);
            };
            fix(e);
            fix(*g);
            return;
        }
    if (e.kind == BoundKind::Column) {
        for (const auto& source : q.sources)
            if (source.get() == e.source) {
                const std::string name =
                    (source->exposedName.empty() ? "" : source->exposedName + ".") +
                    source->columns[e.column].name;
                throw makeDbError(errorNumber, {name});
            }
    }
    for (const BoundPtr& a : e.args) checkGrouped(*a, q, errorNumber);
}

}  // namespace owb::tsql
