#include "formula/ExprOperators.h"

#include <algorithm>
#include <cmath>

#include "formula/ExprDates.h"

namespace owb {

namespace {

using Type = ExprValue::Type;
using Op = ExprOperator;

bool isWholeType(Type type) {
    return type <= Type::Long;
}

// What a value counts as in arithmetic: Empty and Boolean are Integer, a text is its number.
Type arithmeticType(const ExprValue& v) {
    switch (v.type()) {
        case Type::Empty:
        case Type::Boolean:
            return Type::Integer;
        case Type::String:
            return Type::Double;
        case Type::Missing:
            throw ExprError{ExprError::TypeMismatch};
        default:
            return v.type();
    }
}

int64_t wholeOf(const ExprValue& v) {
    return v.isEmpty() ? 0 : v.wholeValue();
}

// A Single beside a Long has too few digits for it.
Type widerFloat(Type a, Type b) {
    if (a == Type::Double || b == Type::Double) return Type::Double;
    return a == Type::Long || b == Type::Long ? Type::Double : Type::Single;
}

ExprValue currencyResult(__int128 tenThousandths) {
    if (tenThousandths > INT64_MAX || tenThousandths < INT64_MIN)
        throw ExprError{ExprError::Overflow};
    return ExprValue::currency(static_cast<int64_t>(tenThousandths));
}

ExprValue join(const ExprValue& a, const ExprValue& b) {
    std::string text = a.isNull() ? "" : a.toText();
    const std::string behind = b.isNull() ? "" : b.toText();
    if (text.size() + behind.size() > kExprTextLimit) throw ExprError{ExprError::OutOfMemory};
    return ExprValue::text(text += behind);
}

// Sum of a and b, or the difference when `sign` is -1.
ExprValue sum(const ExprValue& a, const ExprValue& b, int sign) {
    const Type left = arithmeticType(a), right = arithmeticType(b);
    if (isWholeType(left) && isWholeType(right))
        return ExprValue::wholeOf(std::max(left, right), wholeOf(a) + sign * wholeOf(b));
    if (left == Type::Date || right == Type::Date) {
        const double days = a.toNumber() + sign * b.toNumber();
        return left == right && sign < 0 ? ExprValue::number(days) : ExprValue::date(days);
    }
    if (left == Type::Currency || right == Type::Currency)
        return currencyResult(__int128{a.toCurrency()} + __int128{sign} * b.toCurrency());
    const double result = a.toNumber() + sign * b.toNumber();
    return widerFloat(left, right) == Type::Single ? ExprValue::single(result)
                                                   : ExprValue::number(result);
}

ExprValue product(const ExprValue& a, const ExprValue& b) {
    const Type left = arithmeticType(a), right = arithmeticType(b);
    if (isWholeType(left) && isWholeType(right))
        return ExprValue::wholeOf(std::max(left, right), wholeOf(a) * wholeOf(b));
    const auto isReal = [](Type type) { return type == Type::Double || type == Type::Date; };
    if (isReal(left) || isReal(right)) return ExprValue::number(a.toNumber() * b.toNumber());
    if (left == Type::Currency || right == Type::Currency) {
        const __int128 exact = __int128{a.toCurrency()} * b.toCurrency();
        __int128 rounded = exact / kCurrencyUnit;
        const __int128 twice = exact % kCurrencyUnit * 2;
        const int away = exact < 0 ? -1 : 1;
        if (twice * away > kCurrencyUnit || (twice * away == kCurrencyUnit && rounded % 2 != 0))
            rounded += away;
        return currencyResult(rounded);
    }
    const double result = a.toNumber() * b.toNumber();
    return widerFloat(left, right) == Type::Single ? ExprValue::single(result)
                                                   : ExprValue::number(result);
}

ExprValue quotient(const ExprValue& a, const ExprValue& b) {
    const Type left = arithmeticType(a), right = arithmeticType(b);
    const double dividend = a.toNumber(), divisor = b.toNumber();
    if (divisor == 0) throw ExprError{ExprError::DivisionByZero};
    const auto narrow = [](Type type) { return type <= Type::Integer || type == Type::Single; };
    if ((left == Type::Single || right == Type::Single) && narrow(left) && narrow(right))
        return ExprValue::single(dividend / divisor);
    return ExprValue::number(dividend / divisor);
}

// The wider of two types of whole numbers; whatever has a fraction is rounded to a Long.
Type wholeType(const ExprValue& a, const ExprValue& b) {
    const Type left = arithmeticType(a), right = arithmeticType(b);
    return isWholeType(left) && isWholeType(right) ? std::max(left, right) : Type::Long;
}

ExprValue wholeQuotient(const ExprValue& a, const ExprValue& b, bool remainder) {
    const Type type = wholeType(a, b);
    const int64_t dividend = a.toLong(), divisor = b.toLong();
    if (divisor == 0) throw ExprError{ExprError::DivisionByZero};
    const int64_t result = remainder ? dividend % divisor : dividend / divisor;
    if (result > INT32_MAX) throw ExprError{ExprError::Overflow};
    return ExprValue::wholeOf(type, result);
}

ExprValue power(const ExprValue& a, const ExprValue& b) {
    const double base = a.toNumber(), exponent = b.toNumber();
    if ((base < 0 && exponent != std::trunc(exponent)) || (base == 0 && exponent < 0))
        throw ExprError{ExprError::InvalidCall};
    return ExprValue::number(std::pow(base, exponent));
}

ExprValue negated(const ExprValue& v) {
    switch (arithmeticType(v)) {
        case Type::Byte:
        case Type::Integer:
            return ExprValue::wholeOf(Type::Integer, -wholeOf(v));
        case Type::Long:
            return ExprValue::wholeOf(Type::Long, -v.wholeValue());
        case Type::Currency:
            return currencyResult(-__int128{v.wholeValue()});
        case Type::Single:
            return ExprValue::single(-v.numberValue());
        case Type::Date:
            return ExprValue::date(-v.numberValue());
        default:
            return ExprValue::number(-v.toNumber());
    }
}

// --- logic, bit by bit ---

// Boolean, Byte, Integer or Long as an operand of logic; texts are numbers or True and False.
ExprValue logicOperand(const ExprValue& v) {
    switch (v.type()) {
        case Type::Boolean:
        case Type::Byte:
        case Type::Integer:
        case Type::Long:
        case Type::Null:
            return v;
        case Type::Empty:
            return ExprValue::integer(0);
        case Type::String: {
            double number = 0;
            if (!exprNumber(v.textValue(), number)) return ExprValue::boolean(v.toBoolean());
            break;
        }
        default:
            break;
    }
    return ExprValue::longInt(v.toLong());
}

ExprValue bits(Type a, Type b, int64_t result) {
    if (a == Type::Boolean && b == Type::Boolean) return ExprValue::boolean(result != 0);
    if (a == Type::Byte && b == Type::Byte)
        return ExprValue::wholeOf(Type::Byte, result & UINT8_MAX);
    return ExprValue::wholeOf(std::max({a, b, Type::Integer}), result);
}

ExprValue inverted(const ExprValue& v) {
    if (v.isNull()) return v;
    return bits(v.type(), v.type(), ~v.wholeValue());
}

ExprValue logic(Op op, const ExprValue& left, const ExprValue& right) {
    const ExprValue a = op == Op::Imp ? inverted(logicOperand(left)) : logicOperand(left);
    const ExprValue b = logicOperand(right);
    const bool either = op == Op::Or || op == Op::Imp;  // not a or b
    if (a.isNull() || b.isNull()) {
        const ExprValue& known = a.isNull() ? b : a;
        if (known.isNull()) return known;
        const bool decides =
            op == Op::And ? known.wholeValue() == 0 : either && known.wholeValue() != 0;
        return decides ? known : ExprValue::null();
    }
    const int64_t x = a.wholeValue(), y = b.wholeValue();
    const int64_t result = op == Op::And   ? x & y
                           : either        ? x | y
                           : op == Op::Xor ? x ^ y
                                           : ~(x ^ y);
    return bits(a.type(), b.type(), result);
}

bool holds(Op op, int order) {
    switch (op) {
        case Op::Equal:
            return order == 0;
        case Op::NotEqual:
            return order != 0;
        case Op::Less:
            return order < 0;
        case Op::LessEqual:
            return order <= 0;
        case Op::Greater:
            return order > 0;
        default:
            return order >= 0;
    }
}

// What a text counts as beside another value that is no text; false when only as text.
bool numberBeside(const std::string& text, const ExprValue& other, double& out) {
    return exprNumber(text, out) || (other.isDate() && readExprDate(text, out));
}

int order(double a, double b) {
    return a < b ? -1 : a > b;
}

}  // namespace

int compareExpr(const ExprValue& a, const ExprValue& b) {
    if (a.isMissing() || b.isMissing()) throw ExprError{ExprError::TypeMismatch};
    if (a.isText() && (b.isText() || b.isEmpty()))
        return a.textValue().compare(b.isText() ? b.textValue() : "");
    if (b.isText() && a.isEmpty()) return b.textValue().empty() ? 0 : -1;
    double number = 0;
    if (a.isText()) return numberBeside(a.textValue(), b, number) ? order(number, b.toNumber()) : 1;
    if (b.isText())
        return numberBeside(b.textValue(), a, number) ? order(a.toNumber(), number) : -1;
    if (a.type() == Type::Currency && b.type() == Type::Currency)
        return a.wholeValue() < b.wholeValue() ? -1 : a.wholeValue() > b.wholeValue();
    return order(a.toNumber(), b.toNumber());
}

ExprValue applyOperator(ExprOperator op, const ExprValue& operand) {
    if (op == Op::Not) return inverted(logicOperand(operand));
    if (operand.isNull()) return operand;
    return op == Op::Negate ? negated(operand) : operand;
}

ExprValue applyOperator(ExprOperator op, const ExprValue& a, const ExprValue& b) {
    if (op >= Op::Not) return logic(op, a, b);
    if (op == Op::Is) throw ExprError{ExprError::ObjectRequired};
    if (op == Op::Join && !(a.isNull() && b.isNull())) return join(a, b);
    if (a.isNull() || b.isNull()) return ExprValue::null();
    switch (op) {
        case Op::Power:
            return power(a, b);
        case Op::Multiply:
            return product(a, b);
        case Op::Divide:
            return quotient(a, b);
        case Op::WholeDivide:
            return wholeQuotient(a, b, false);
        case Op::Mod:
            return wholeQuotient(a, b, true);
        case Op::Add:
            if ((a.isText() && (b.isText() || b.isEmpty())) || (b.isText() && a.isEmpty()))
                return join(a, b);
            return sum(a, b, 1);
        case Op::Subtract:
            return sum(a, b, -1);
        default:
            return ExprValue::boolean(holds(op, compareExpr(a, b)));
    }
}

}  // namespace owb
