// The functions that payroll formulas are written with, beside the language's own. Formulas know
// them as OWIF, OWRound and so on; clsExprEval puts these names in their place. A numeric text that
// is handed to one counts as its number.
#include <cmath>

#include "formula/ExprDates.h"
#include "formula/ExprFunctions.h"
#include "formula/ExprOperators.h"

namespace owb {

namespace {

using Arguments = ExprArguments;
using Op = ExprOperator;

ExprValue amount(const ExprValue& v) {
    double number = 0;
    return v.isText() && exprNumber(v.textValue(), number) ? ExprValue::number(number) : v;
}

// A comparison with Null is not true.
bool is(Op op, const ExprValue& a, const ExprValue& b) {
    const ExprValue result = applyOperator(op, a, b);
    return !result.isNull() && result.toBoolean();
}

ExprValue choose(const Arguments& a) {
    return !a[0].isNull() && a[0].toBoolean() ? a.take(1) : a.take(2);
}

ExprValue between(const Arguments& a) {
    const ExprValue value = amount(a[0]);
    const bool inside =
        is(Op::GreaterEqual, value, amount(a[1])) && is(Op::LessEqual, value, amount(a[2]));
    return ExprValue::integer(inside ? -1 : 0);
}

ExprValue subjectTo(const Arguments& a, Op beyond) {
    const ExprValue value = amount(a[0]), limit = amount(a[1]);
    return is(beyond, value, limit) ? limit : value;
}

ExprValue rounding(const ExprValue& v, double (*round)(double)) {
    return v.isWhole() && v.type() != ExprValue::Type::Currency
               ? v
               : ExprValue::number(round(v.toNumber()));
}

// What is left of a division towards zero; 0 for a divisor of 0.
ExprValue remainder(const ExprValue& number, const ExprValue& divisor) {
    if (!is(Op::NotEqual, divisor, ExprValue::integer(0))) return ExprValue::integer(0);
    const ExprValue times = rounding(applyOperator(Op::Divide, number, divisor), std::trunc);
    return applyOperator(Op::Subtract, number, applyOperator(Op::Multiply, times, divisor));
}

// The decimals of a number as they show with 8 places, always positive: .5 for -7.5.
ExprValue shownFraction(const ExprValue& value, const Arguments& a) {
    ExprValue arguments[] = {value, ExprValue::integer(8)};
    const ExprFunction* format = findExprFunction("FORMATNUMBER");
    const std::string text = format->call(a.with(arguments)).textValue();
    return ExprValue::number(ExprValue::text(text.substr(text.find('.'))).toNumber());
}

// Rounds to steps: "U" up, "L" down, "N" to the nearest, half-way up; as it is by any other letter.
ExprValue roundToSteps(const Arguments& a) {
    const ExprValue value = amount(a[0]), step = amount(a[1]), zero = ExprValue::integer(0);
    const std::string way = a[2].isNull() ? "" : a[2].toText();
    const auto down = [&] {
        const ExprValue steps = rounding(applyOperator(Op::Divide, value, step), std::floor);
        return applyOperator(Op::Multiply, steps, step);
    };
    const auto up = [&] { return applyOperator(Op::Add, down(), step); };
    if (way == "U" || way == "L") {
        if (is(Op::Equal, remainder(value, step), zero)) return value;
        return way == "U" ? up() : down();
    }
    if (way != "N") return value;
    const ExprValue test = applyOperator(Op::Add, remainder(rounding(value, std::floor), step),
                                         shownFraction(value, a));
    if (!is(Op::Greater, test, zero)) return value;
    const ExprValue half = applyOperator(Op::Divide, step, ExprValue::integer(2));
    return is(Op::Less, test, half) ? down() : up();
}

ExprValue boundaries(const Arguments& a, const char* interval) {
    const double count = exprDateDiff(interval, a[0].toDate(), a[1].toDate(), 1);
    return ExprValue::longInt(static_cast<int64_t>(count));
}

ExprValue monthKey(const Arguments& a) {
    const CivilDate date = exprCivil(exprMoment(a[0].toDate()).day);
    return ExprValue::longInt(int64_t{date.year} * 12 + date.month);
}

constexpr ExprFunction kLibrary[] = {
    {"IIF", 3, 3, choose},
    {"FNINTOWBETWEEN", 3, 3, between},
    {"FNDBLOWROUND", 3, 3, roundToSteps},
    {"FNDBLOWSUBJECTTOMAX", 2, 2, [](const Arguments& a) { return subjectTo(a, Op::Greater); }},
    {"FNDBLOWSUBJECTTOMIN", 2, 2, [](const Arguments& a) { return subjectTo(a, Op::Less); }},
    {"FNLNGOWDAYSDIFF", 2, 2, [](const Arguments& a) { return boundaries(a, "d"); }},
    {"FNLNGOWMONTHSDIFF", 2, 2, [](const Arguments& a) { return boundaries(a, "m"); }},
    {"FNLNGOWYEARSDIFF", 2, 2, [](const Arguments& a) { return boundaries(a, "yyyy"); }},
    {"FNDTEOWSYSTEMDATE", 0, 0,
     [](const Arguments& a) { return ExprValue::date(exprMoment(exprDays(a.now())).day); }},
    {"FNLNGOWMONTHYEAR", 1, 1, monthKey},
    {"REMAINDER", 2, 2, [](const Arguments& a) { return remainder(amount(a[0]), amount(a[1])); }},
};

}  // namespace

std::span<const ExprFunction> exprLibrary() {
    return kLibrary;
}

}  // namespace owb
