// One value of the formula language, with the types, conversions and texts that the language has.
// Everything that fails throws ExprError with the language's own error number.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace owb {

struct ExprError {
    enum Number {
        InvalidCall = 5,  // an argument outside what the function takes
        Overflow = 6,
        OutOfMemory = 7,
        DivisionByZero = 11,
        TypeMismatch = 13,
        InvalidFunction = 15,  // a call of a name that is no function
        OutOfStack = 28,
        NoObject = 91,  // Nothing stands where a value is wanted
        InvalidNull = 94,
        ObjectRequired = 424,
        WrongArguments = 450,
        Undeclared = 500,
        Syntax = 1002,
        ClosingParenthesis = 1006,
        EndOfStatement = 1025,
        InvalidNumber = 1031,
        InvalidCharacter = 1032,
        UnterminatedString = 1033,
    };
    Number number;
    std::string name;  // the name that the error is about; "" none
};

class ExprValue {
  public:
    // Missing is an argument left out between commas.
    enum class Type : uint8_t {
        Empty,
        Null,
        Missing,
        Boolean,
        Byte,
        Integer,
        Long,
        Single,
        Double,
        Currency,
        Date,
        String
    };

    ExprValue() = default;
    static ExprValue null() { return ExprValue(Type::Null, int64_t{0}); }
    static ExprValue missing() { return ExprValue(Type::Missing, int64_t{0}); }
    static ExprValue boolean(bool v) { return ExprValue(Type::Boolean, int64_t{v ? -1 : 0}); }
    // Integer where it fits, else Long, else Double: the type of a literal.
    static ExprValue whole(int64_t v);
    // The given type where it fits, else the next wider one (Byte, Integer, Long, Double).
    static ExprValue wholeOf(Type atLeast, int64_t v);
    static ExprValue integer(int64_t v) { return ExprValue(Type::Integer, v); }
    static ExprValue longInt(int64_t v) { return ExprValue(Type::Long, v); }
    static ExprValue single(double v);  // Double where the value is too large
    static ExprValue number(double v);  // Overflow when it is not finite
    static ExprValue currency(int64_t tenThousandths) {
        return ExprValue(Type::Currency, tenThousandths);
    }
    // Days since 1899-12-30 with the time of day as fraction; a Double beyond the calendar.
    static ExprValue date(double days);
    static ExprValue text(std::string v) {
        ExprValue result;
        result.type_ = Type::String;
        result.text_ = std::move(v);
        return result;
    }

    Type type() const { return type_; }
    const char* typeName() const;
    bool isNull() const { return type_ == Type::Null; }
    bool isEmpty() const { return type_ == Type::Empty; }
    bool isMissing() const { return type_ == Type::Missing; }
    bool isText() const { return type_ == Type::String; }
    bool isDate() const { return type_ == Type::Date; }
    // Held as a whole number: Boolean (0, -1), Byte, Integer, Long, Currency (in 1/10000).
    bool isWhole() const {
        return (type_ >= Type::Boolean && type_ <= Type::Long) || type_ == Type::Currency;
    }
    int64_t wholeValue() const { return whole_; }
    double numberValue() const { return number_; }          // Single, Double, Date
    const std::string& textValue() const { return text_; }  // String
    std::string takeText() && { return std::move(text_); }

    // Null is InvalidNull in all of these, a text that is no number a TypeMismatch.
    double toNumber() const;
    // Rounded, halves to the even neighbour; Overflow outside the bounds.
    int64_t toWhole(int64_t low, int64_t high) const;
    int64_t toLong() const { return toWhole(INT32_MIN, INT32_MAX); }
    int64_t toCurrency() const;  // in 1/10000
    bool toBoolean() const;
    std::string toText() const;
    double toDate() const;  // days; texts are read as dates

    // The text as the host of the language shows a result: as toText, "" for Null.
    std::string display() const { return isNull() ? "" : toText(); }

  private:
    ExprValue(Type type, int64_t v) : type_(type), whole_(v) {}
    ExprValue(Type type, double v) : type_(type), number_(v) {}

    Type type_ = Type::Empty;
    union {
        int64_t whole_ = 0;
        double number_;
    };
    std::string text_;
};

constexpr int64_t kCurrencyUnit = 10000;
// The longest text of the language, and what one evaluation may make of texts in all, in bytes.
constexpr size_t kExprTextLimit = size_t{32} << 20;
constexpr size_t kExprTextTotal = size_t{128} << 20;

// Reads a number as the language reads texts: blanks around it, a sign before or behind, commas
// among the whole digits, a currency sign, parentheses for negative, an exponent, &H and &O.
bool exprNumber(std::string_view text, double& out);
// Byte offset of `key` in the text from an offset on, npos when it is not there; in linear time.
size_t findExprText(std::string_view text, std::string_view key, size_t from);
// Up to so many significant digits, with an exponent from 1E+15 on and below 0.0001.
std::string exprNumberText(double value, int digits = 15);
// The same 15 digits without an exponent.
std::string exprPlainText(double value);

}  // namespace owb
