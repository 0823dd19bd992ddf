// A formula made ready to run: instructions on a stack of values. Literals are not part of it; they
// are handed in with each run.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "base/date_time.h"
#include "formula/ExprLexer.h"

namespace owb {

struct ExprFunction;

class ExprProgram {
  public:
    struct Instruction {
        enum Kind : uint8_t {
            Literal,      // pushes the next of the literals
            Constant,     // pushes constants[index]
            Unary,        // op
            Binary,       // op
            Call,         // functions[index] with `count` values
            UnknownCall,  // of names[index]
            Unknown,      // names[index], not declared
            Fail          // with the error number `index`
        } kind;
        ExprOperator op = ExprOperator::Plus;
        uint32_t index = 0;
        uint32_t count = 0;
    };

    std::vector<Instruction> instructions;
    std::vector<ExprValue> constants;
    std::vector<const ExprFunction*> functions;
    std::vector<std::string> names;

    // Throws ExprError. The stack is the caller's, so that it is made once.
    ExprValue run(std::span<const ExprValue> literals, const std::function<DateTime()>& now,
                  std::vector<ExprValue>& stack) const;
};

// Throws ExprError at the first token that cannot stand where it stands.
ExprProgram parseExpr(const ExprTokens& tokens);

}  // namespace owb
