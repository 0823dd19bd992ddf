// Tokens of a formula. The text is in capitals already. Numbers, texts and dates are lifted out, so
// that formulas that differ in them alone have one shape and are parsed once.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formula/ExprOperators.h"

namespace owb {

struct ExprToken {
    enum Kind { Literal, Name, Operator, Open, Close, Comma, Dot, End, Broken } kind;
    std::string_view text;  // of a name
    ExprOperator op = ExprOperator::Plus;
    ExprError::Number error = ExprError::Syntax;  // of a broken one
    bool bracketed = false;                       // a name in brackets is never a word
};

struct ExprTokens {
    std::vector<ExprToken> tokens;    // ends with End or Broken; names lie in the text
    std::vector<ExprValue> literals;  // in the order of the literal tokens
    std::string shape;                // the same for two texts whose tokens are the same

    void read(std::string_view text);

  private:
    void add(ExprToken token);
    void addLiteral(ExprValue value);
    void broken(ExprError::Number error) { add({ExprToken::Broken, "", {}, error}); }
    size_t readNumber(std::string_view text, size_t at);
    size_t readText(std::string_view text, size_t at);
    size_t readDate(std::string_view text, size_t at);
    size_t readRadix(std::string_view text, size_t at, size_t digits, int base);
    size_t readOperator(std::string_view text, size_t at);
    bool afterOperand() const;
};

}  // namespace owb
