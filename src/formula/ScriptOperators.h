// The operators of the formula language. An operand's type decides the result's: whole numbers
// widen when they overflow (Byte, Integer, Long, Double), currency keeps four places, a date moved
// by a number is a date. Null makes the result Null.
#pragma once

#include "formula/ScriptValue.h"

namespace owb {

enum class ScriptOperator : uint8_t {
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

ScriptValue applyOperator(ScriptOperator op, const ScriptValue& operand);
ScriptValue applyOperator(ScriptOperator op, const ScriptValue& a, const ScriptValue& b);

// Negative, 0 or positive; neither may be Null. Two texts by their characters; a numeric text
// beside a number as its number, a date text beside a date as its date, any other text is greater.
int compareScript(const ScriptValue& a, const ScriptValue& b);

}  // namespace owb
