// The operators of the formula language. An operand's type decides the result's: whole numbers
// widen when they overflow (Byte, Integer, Long, Double), currency keeps four places, a date moved
// by a number is a date. Null makes the result Null.
#pragma once

#include "formula/ExprValue.h"

namespace owb {

enum class ExprOperator : uint8_t {
    Power,
    Negate,
    Plus,  // the sign
    Multiply,
    Divide,
    WholeDivide,
    Mod,
    Add,
    Subtract,
    Join,
    Equal,
    NotEqual,
    Less,
    LessEqual,
    Greater,
    GreaterEqual,
    Is,
    Not,
    And,
    Or,
    Xor,
    Eqv,
    Imp
};

ExprValue applyOperator(ExprOperator op, const ExprValue& operand);
ExprValue applyOperator(ExprOperator op, const ExprValue& a, const ExprValue& b);

// Negative, 0 or positive; neither may be Null. Two texts by their characters; a numeric text
// beside a number as its number, a date text beside a date as its date, any other text is greater.
int compareExpr(const ExprValue& a, const ExprValue& b);

}  // namespace owb
