// Bound expressions copied, compared and searched.
#include "tsql/bind/bound.h"

#include <algorithm>

namespace owb::tsql {

BoundPtr cloneBound(const BoundExpr& e) {
    auto c = std::make_unique<BoundExpr>();
    c->kind = e.kind;
    c->type = e.type;
    c->nullable = e.nullable;
    c->userFunction = e.userFunction;
    c->negated = e.negated;
    c->index = e.index;
    c->sourceType = e.sourceType;
    c->constant = e.constant;
    c->source = e.source;
    c->column = e.column;
    c->name = e.name;
    c->pattern = e.pattern;
    if (e.query) throw makeDbError(15281, {"A subquery as an argument of a table function"});
    for (const BoundPtr& a : e.args) c->args.push_back(cloneBound(*a));
    return c;
}

bool sameBound(const BoundExpr& a, const BoundExpr& b, const std::vector<LiteralSlot>& literals) {
    if (a.kind != b.kind || !(a.type == b.type)) return false;
    switch (a.kind) {
        case BoundKind::Literal: {
            const auto value = [&](const BoundExpr& e) -> const Value& {
                return e.index < 0 ? e.constant : literals[e.index].value;
            };
            return a.negated == b.negated && value(a) == value(b);
        }
        case BoundKind::Variable:
        case BoundKind::LiveVariable:
            return a.index == b.index;
        case BoundKind::Null:
            return true;
        case BoundKind::Column:
            return a.source == b.source && a.column == b.column;
        case BoundKind::Op:
        case BoundKind::Verbatim:
            break;
        default:
            return false;
    }
    if (a.pattern != b.pattern || a.args.size() != b.args.size()) return false;
    for (size_t i = 0; i < a.args.size(); ++i)
        if (!sameBound(*a.args[i], *b.args[i], literals)) return false;
    return true;
}

bool containsAggregate(const BoundExpr& e) {
    if (e.aggregate) return true;
    return std::any_of(e.args.begin(), e.args.end(),
                       [](const BoundPtr& a) { return containsAggregate(*a); });
}

}  // namespace owb::tsql
