// Tokens of a formula. The text is in capitals already. Numbers, texts and dates are lifted out, so
// that formulas that differ in them alone have one shape and are parsed once.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formula/ScriptOperators.h"

namespace owb {

struct ScriptToken {
    enum Kind { Literal, Name, Operator, Open, Close, Comma, Dot, End, Broken } kind;
    std::string_view text;  // of a name
    ScriptOperator op = ScriptOperator::Plus;
    ScriptError::Number error = ScriptError::Syntax;  // of a broken one
    bool bracketed = false;                           // a name in brackets is never a word
};

struct ScriptTokens {
    std::vector<ScriptToken> tokens;    // ends with End or Broken; names lie in the text
    std::vector<ScriptValue> literals;  // in the order of the literal tokens
    std::string shape;                  // the same for two texts whose tokens are the same

    void read(std::string_view text);

  private:
    void add(ScriptToken token);
    void addLiteral(ScriptValue value);
    void broken(ScriptError::Number error) { add({ScriptToken::Broken, "", {}, error}); }
    size_t readNumber(std::string_view text, size_t at);
    size_t readText(std::string_view text, size_t at);
    size_t readDate(std::string_view text, size_t at);
    size_t readRadix(std::string_view text, size_t at, size_t digits, int base);
    size_t readOperator(std::string_view text, size_t at);
    bool afterOperand() const;
};

}  // namespace owb
