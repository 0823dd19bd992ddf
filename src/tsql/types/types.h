// The type rules of T-SQL: precedence, results of operators, and how values convert.
//
// How a value of each type lies in SQLite: whole numbers and bit as INTEGER; numeric(p,s) as the
// INTEGER value * 10^s, or as a 16-byte BLOB where that needs more than 64 bits, money as such a
// number with four places; float and real as REAL; text as TEXT; date, smalldatetime and datetime
// as the day number since 1900-01-01, INTEGER without a time of day and REAL with one; datetime2
// and time as an INTEGER count of 100 nanoseconds since 0001-01-01 or midnight.
#pragma once

#include <string>

#include "base/db_error.h"
#include "base/sql_type.h"
#include "base/value.h"

namespace owb::tsql {

// Largest precision whose scaled value always fits 64 bits.
constexpr int kNarrowPrecision = 18;

// One whole number that carries a type through SQL text and back.
int64_t packType(const SqlType& type);
SqlType unpackType(int64_t packed);

// Decimal digits that a whole-number type can need: int 10.
int digitsOf(const SqlType& type);
// The numeric type that a whole-number type counts as beside a numeric.
SqlType asNumeric(const SqlType& type);

// The type that two operands of a comparison, of CASE or of UNION meet at.
// Throws DbError 206 when there is none.
SqlType commonType(const SqlType& a, const SqlType& b);

// The result type of + - * / % on numbers and dates. Throws DbError 206 / 402 / 8117.
SqlType arithmeticType(char op, const SqlType& a, const SqlType& b);

// Whether a value of one type may become one of the other, silently or by CAST.
// Throws DbError 206 / 257 / 529.
void requireConversion(const SqlType& from, const SqlType& to, bool byCast);

// Converts a value, the way an implicit conversion (style -1), a CAST or a CONVERT with a style
// does. Text is cut to the length of the target. Throws DbError 241, 242, 245, 8114, 8115, 220.
Value convertValue(const Value& value, const SqlType& from, const SqlType& to, int style = -1);

// The value as a client gets it: times and datetime2 as texts, a real with its own few digits.
Value clientValue(const Value& value, const SqlType& type);

// Date text by a CONVERT style; -1 is the type's own. Throws DbError 281 for unknown styles.
std::string dateByStyle(const DateTime& value, const SqlType& type, int style);

// 8115 with the state that it has for these types; "expression" names no type.
DbError overflowError(std::string_view from, std::string_view to);

}  // namespace owb::tsql
