// The built-in functions of numbers.
#include "tsql/bind/function_call.h"

namespace owb::tsql {

namespace {

// Text and NULL count as float in the number functions, bit and the small kinds as int.
BoundPtr numberArgument(FunctionCall& c, size_t i) {
    const SqlType& t = c.args[i]->type;
    if (t.isDate() || t.isClock()) c.refuse(i);
    if (!t.isNumber()) return c.take(i, kFloat);
    if (t.kind == SqlKind::Bit || t.kind == SqlKind::TinyInt || t.kind == SqlKind::SmallInt)
        return c.take(i, kInt);
    return c.take(i);
}

std::string code(const SqlType& t) {
    return std::to_string(packType(t));
}

BoundPtr makeAbs(FunctionCall& c) {
    BoundPtr a = numberArgument(c, 0);
    const SqlType t = a->type;
    if (t.kind == SqlKind::Numeric && t.precision > kNarrowPrecision)
        return c.op("t_abs($0)", t, list(std::move(a)));
    if (t.isInteger())
        return c.op("t_int(abs($0)," + std::to_string(static_cast<int>(t.kind)) + ")", t,
                    list(std::move(a)));
    return c.op("abs($0)", t, list(std::move(a)));
}

BoundPtr makeFloor(FunctionCall& c) {
    BoundPtr a = numberArgument(c, 0);
    const SqlType t = a->type;
    const SqlType result = t.kind == SqlKind::Numeric ? SqlType::numeric(t.precision, 0) : t;
    if (t.isInteger()) return a;
    const std::string f = c.name == "FLOOR" ? "t_floor" : "t_ceiling";
    if (t.isMoney()) return c.op("(" + f + "($0," + code(t) + ") * 10000)", t, list(std::move(a)));
    return c.op(f + "($0," + code(t) + ")", result, list(std::move(a)));
}

BoundPtr makeRound(FunctionCall& c) {
    BoundPtr a = numberArgument(c, 0);
    const SqlType t = a->type;
    BoundPtr cut = c.args.size() > 2 ? c.take(2, kInt) : c.binder.constant(Value(0), kInt);
    return c.op("t_round($0,$1,$2," + code(t) + ")", t,
                list(std::move(a), c.take(1, kInt), std::move(cut)));
}

BoundPtr makeSign(FunctionCall& c) {
    BoundPtr a = numberArgument(c, 0);
    const SqlType t = a->type;
    if (t.isDecimal()) return c.op("t_sign($0," + code(t) + ")", t, list(std::move(a)));
    return c.op(t.isFloating() ? "CAST(sign($0) AS REAL)" : "sign($0)", t, list(std::move(a)));
}

BoundPtr makePower(FunctionCall& c) {
    BoundPtr a = numberArgument(c, 0);
    const SqlType t =
        a->type.kind == SqlKind::Numeric ? SqlType::numeric(38, a->type.scale) : a->type;
    a = c.binder.convert(std::move(a), kFloat);
    BoundPtr r = c.op("t_math('POWER',$0,$1)", kFloat, list(std::move(a), c.take(1, kFloat)));
    return c.binder.convert(std::move(r), t);
}

BoundPtr makeRand(FunctionCall& c) {
    if (c.args.empty()) return c.op("t_rand()", kFloat, {});
    return c.op("t_rand($0)", kFloat, list(c.take(0, kInt)));
}

BoundPtr makeMath(FunctionCall& c) {
    const std::string quoted = "t_math('" + c.name + "'";
    if (c.args.empty()) return c.op(quoted + ")", kFloat, {});
    if (c.args.size() == 2)
        return c.op(quoted + ",$0,$1)", kFloat, list(c.take(0, kFloat), c.take(1, kFloat)));
    return c.op(quoted + ",$0)", kFloat, list(c.take(0, kFloat)));
}

}  // namespace

void addNumberBuiltins(BuiltinFunctions& table) {
    table["ABS"] = {1, 1, makeAbs};
    table["FLOOR"] = {1, 1, makeFloor};
    table["CEILING"] = {1, 1, makeFloor};
    table["ROUND"] = {2, 3, makeRound};
    table["SIGN"] = {1, 1, makeSign};
    table["POWER"] = {2, 2, makePower};
    table["SQRT"] = {1, 1, makeMath};
    table["SQUARE"] = {1, 1, makeMath};
    table["EXP"] = {1, 1, makeMath};
    table["LOG"] = {1, 2, makeMath};
    table["LOG10"] = {1, 1, makeMath};
    table["SIN"] = {1, 1, makeMath};
    table["COS"] = {1, 1, makeMath};
    table["TAN"] = {1, 1, makeMath};
    table["ASIN"] = {1, 1, makeMath};
    table["ACOS"] = {1, 1, makeMath};
    table["ATAN"] = {1, 1, makeMath};
    table["ATN2"] = {2, 2, makeMath};
    table["PI"] = {0, 0, makeMath};
    table["RADIANS"] = {1, 1, makeMath};
    table["DEGREES"] = {1, 1, makeMath};
    table["RAND"] = {0, 1, makeRand};
    table["COT"] = {1, 1, makeMath};
}

}  // namespace owb::tsql
