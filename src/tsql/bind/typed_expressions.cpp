#include "tsql/bind/typed_expressions.h"

#include "tsql/types/types.h"

namespace owb::tsql {

bool isWide(const SqlType& type) {
    return type.kind == SqlKind::Numeric && type.precision > kNarrowPrecision;
}

std::string powerText(int n) {
    return Decimal(powerOfTen(n), 0).toText();
}

BoundPtr TypedExpressions::op(std::string pattern, SqlType type, Args args) {
    auto e = std::make_unique<BoundExpr>();
    e->pattern = std::move(pattern);
    e->type = type;
    e->args = std::move(args);
    for (const BoundPtr& a : e->args) e->userFunction |= a->userFunction;
    return e;
}

BoundPtr TypedExpressions::verbatim(std::string sql, SqlType type) {
    auto e = std::make_unique<BoundExpr>();
    e->kind = BoundKind::Verbatim;
    e->pattern = std::move(sql);
    e->type = type;
    return e;
}

BoundPtr TypedExpressions::constant(Value value, SqlType type) {
    auto e = std::make_unique<BoundExpr>();
    e->kind = value.isNull() ? BoundKind::Null : BoundKind::Literal;
    e->type = e->sourceType = type;
    e->nullable = value.isNull();
    e->constant = std::move(value);
    return e;
}

BoundPtr TypedExpressions::null(SqlType type) {
    auto e = std::make_unique<BoundExpr>();
    e->kind = BoundKind::Null;
    e->type = type;
    return e;
}

BoundPtr TypedExpressions::predicate(std::string pattern, Args args) {
    BoundPtr p = op(std::move(pattern), SqlType::of(SqlKind::Bit), std::move(args));
    p->predicate = true;
    return p;
}

SqlType TypedExpressions::unify(const std::vector<BoundPtr*>& values) {
    SqlType type;
    for (BoundPtr* v : values) type = commonType(type, (*v)->type);
    if (type.kind == SqlKind::Null) type = SqlType::of(SqlKind::Int);
    for (BoundPtr* v : values) *v = convert(std::move(*v), type);
    return type;
}

BoundPtr TypedExpressions::compare(const std::string& o, BoundPtr a, BoundPtr b) {
    const SqlType type = unify({&a, &b});
    const std::string pattern = type.isText()  ? "($0 COLLATE TSQL " + o + " $1)"
                                : isWide(type) ? "(t_ncmp($0,$1) " + o + " 0)"
                                               : "($0 " + o + " $1)";
    return predicate(pattern, list(std::move(a), std::move(b)));
}

}  // namespace owb::tsql
