// Operators on numbers, dates and texts: each kind of type has its own form in SQLite's words.
#include <algorithm>

#include "tsql/bind/typed_expressions.h"
#include "tsql/types/types.h"

namespace owb::tsql {

BoundPtr TypedExpressions::arithmetic(char o, BoundPtr a, BoundPtr b, int line) {
    if (o == '&' || o == '|' || o == '^') return bitwise(o, std::move(a), std::move(b), line);
    const auto mayBeText = [](const BoundExpr& e) {
        return e.type.isText() || e.type.kind == SqlKind::Null;
    };
    if (o == '+' && mayBeText(*a) && mayBeText(*b) && (a->type.isText() || b->type.isText()))
        return joined(std::move(a), std::move(b));
    const SqlType type = arithmeticType(o, a->type, b->type);
    if (type.isDate()) return onDates(o, std::move(a), std::move(b), type);
    if (type.isFloating()) return onFloats(o, std::move(a), std::move(b), type);
    if (type.isMoney()) return onMoney(o, std::move(a), std::move(b), type);
    if (type.kind != SqlKind::Numeric) return onWhole(o, std::move(a), std::move(b), type);
    return onNumeric(o, std::move(a), std::move(b));
}

BoundPtr TypedExpressions::joined(BoundPtr a, BoundPtr b) {
    SqlType type = commonType(a->type, b->type);
    const auto length = [](const BoundExpr& e) {
        return e.type.kind == SqlKind::Null ? 1 : e.type.length;
    };
    const int limit = type.isUnicode() ? 4000 : 8000;
    if (length(*a) == SqlType::kMax || length(*b) == SqlType::kMax)
        type.length = SqlType::kMax;
    else
        type.length = std::min(limit, length(*a) + length(*b));
    type.kind = type.isUnicode() ? SqlKind::NVarChar : SqlKind::VarChar;
    return op("($0 || $1)", type, list(std::move(a), std::move(b)));
}

BoundPtr TypedExpressions::bitwise(char o, BoundPtr a, BoundPtr b, int line) {
    for (BoundPtr* x : {&a, &b}) {
        if ((*x)->type.isInteger()) continue;
        if ((*x)->type.kind != SqlKind::Null)
            throw makeDbError(402, {a->type.name(), b->type.name(), std::string("'") + o + "'"},
                              line);
        *x = convert(std::move(*x), SqlType::of(SqlKind::Int));
    }
    const SqlType type = commonType(a->type, b->type);
    if (o == '^') return op("(($0 | $1) - ($0 & $1))", type, list(std::move(a), std::move(b)));
    return op(std::string("($0 ") + o + " $1)", type, list(std::move(a), std::move(b)));
}

// A text beside a date is a date; a number is a count of days.
BoundPtr TypedExpressions::onDates(char o, BoundPtr a, BoundPtr b, const SqlType& type) {
    for (BoundPtr* x : {&a, &b})
        if (!(*x)->type.isNumber())
            *x = convert(std::move(*x), type);
        else if ((*x)->type.isDecimal())
            *x = convert(std::move(*x), SqlType::of(SqlKind::Float));
    BoundPtr sum = op(std::string("t_date($0 ") + o + " $1)", SqlType::of(SqlKind::DateTime),
                      list(std::move(a), std::move(b)));
    return convert(std::move(sum), type);
}

BoundPtr TypedExpressions::onFloats(char o, BoundPtr a, BoundPtr b, const SqlType& type) {
    a = convert(std::move(a), type);
    b = convert(std::move(b), type);
    BoundPtr r = op(o == '/' ? "t_fdiv($0,$1)" : std::string("t_float($0 ") + o + " $1)",
                    SqlType::of(SqlKind::Float), list(std::move(a), std::move(b)));
    return convert(std::move(r), type);
}

BoundPtr TypedExpressions::onMoney(char o, BoundPtr a, BoundPtr b, const SqlType& type) {
    a = convert(std::move(a), type);
    b = convert(std::move(b), type);
    return op(std::string("t_money('") + o + "',$0,$1," +
                  std::to_string(static_cast<int>(type.kind)) + ")",
              type, list(std::move(a), std::move(b)));
}

BoundPtr TypedExpressions::onWhole(char o, BoundPtr a, BoundPtr b, const SqlType& type) {
    a = convert(std::move(a), type);
    b = convert(std::move(b), type);
    if (o == '/') return op("t_idiv($0,$1)", type, list(std::move(a), std::move(b)));
    if (o == '%') return op("t_imod($0,$1)", type, list(std::move(a), std::move(b)));
    if (type.kind == SqlKind::BigInt)
        return op(std::string("t_big('") + o + "',$0,$1)", type, list(std::move(a), std::move(b)));
    const std::string check = "t_int($0," + std::to_string(static_cast<int>(type.kind)) + ")";
    // In a chain the last sum is checked: the ones before it cannot leave 64 bits unseen.
    if (a->kind == BoundKind::Op && a->pattern == check && a->args[0]->pattern[4] != '*' &&
        o != '*')
        a = std::move(a->args[0]);
    BoundPtr sum = op(std::string("($0 ") + o + " $1)", SqlType::of(SqlKind::BigInt),
                      list(std::move(a), std::move(b)));
    return op(check, type, list(std::move(sum)));
}

// A whole-number literal counts with its own digits, not with those of int.
SqlType TypedExpressions::operandNumeric(const BoundExpr& e) const {
    if (e.kind != BoundKind::Literal || e.type.kind != SqlKind::Int || !(e.type == e.sourceType))
        return asNumeric(e.type);
    if (e.index >= 0) (*context_.literals)[e.index].typeFixed = true;
    const Value& v = e.index < 0 ? e.constant : (*context_.literals)[e.index].value;
    return SqlType::numeric(v.isInt() ? Decimal::fromInt(v.asInt()).digits() : 10, 0);
}

// As SQLite's own arithmetic where the scaled numbers stay within 64 bits, otherwise by a function.
BoundPtr TypedExpressions::onNumeric(char o, BoundPtr a, BoundPtr b) {
    // Text and NULL take the other side's type first.
    for (BoundPtr* x : {&a, &b})
        if (!(*x)->type.isNumber())
            *x = convert(std::move(*x), asNumeric(x == &a ? b->type : a->type));
    const SqlType ta = operandNumeric(*a), tb = operandNumeric(*b);
    const SqlType type = arithmeticType(o, ta, tb);
    a = convert(std::move(a), ta);
    b = convert(std::move(b), tb);
    const bool sum = o == '+' || o == '-';
    const bool narrow = ta.precision <= kNarrowPrecision && tb.precision <= kNarrowPrecision;
    if (sum && narrow && ta.precision + type.scale - ta.scale <= kNarrowPrecision &&
        tb.precision + type.scale - tb.scale <= kNarrowPrecision && type.scale >= ta.scale &&
        type.scale >= tb.scale) {
        const auto scaled = [&](BoundPtr x, const SqlType& t) {
            if (t.scale == type.scale) return x;
            return op("($0 * " + powerText(type.scale - t.scale) + ")", type, list(std::move(x)));
        };
        BoundPtr x = scaled(std::move(a), ta), y = scaled(std::move(b), tb);
        return op(std::string("($0 ") + o + " $1)", type, list(std::move(x), std::move(y)));
    }
    if (o == '*' && ta.precision + tb.precision <= kNarrowPrecision &&
        type.scale == ta.scale + tb.scale)
        return op("($0 * $1)", type, list(std::move(a), std::move(b)));
    if (sum) return total(o, std::move(a), std::move(b), type);
    return op(std::string("t_num('") + o + "',$0," + std::to_string(ta.scale) + ",$1," +
                  std::to_string(tb.scale) + "," + std::to_string(type.scale) + ")",
              type, list(std::move(a), std::move(b)));
}

// A chain of sums is one call: nested ones would be too deep for SQLite's parser.
BoundPtr TypedExpressions::total(char o, BoundPtr a, BoundPtr b, const SqlType& type) {
    const std::string term = std::to_string(b->type.scale) + "," + (o == '+' ? "1)" : "-1)");
    const std::string head = "t_total(" + std::to_string(type.scale);
    if (a->kind != BoundKind::Op || !a->pattern.starts_with("t_total(") || a->args.size() >= 40) {
        const std::string pattern = head + ",$0," + std::to_string(a->type.scale) + ",1,$1," + term;
        return op(pattern, type, list(std::move(a), std::move(b)));
    }
    const size_t comma = a->pattern.find(',');
    a->pattern = head + a->pattern.substr(comma, a->pattern.size() - comma - 1) + ",$" +
                 std::to_string(a->args.size()) + ";," + term;
    a->userFunction |= b->userFunction;
    a->args.push_back(std::move(b));
    a->type = type;
    return a;
}

}  // namespace owb::tsql
