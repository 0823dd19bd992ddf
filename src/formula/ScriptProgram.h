// A formula made ready to run: instructions on a stack of values. Literals are not part of it; they
// are handed in with each run.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "base/date_time.h"
#include "formula/ScriptLexer.h"

namespace owb {

struct ScriptFunction;

class ScriptProgram {
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
        ScriptOperator op = ScriptOperator::Plus;
        uint32_t index = 0;
        uint32_t count = 0;
    };

    std::vector<Instruction> instructions;
    std::vector<ScriptValue> constants;
    std::vector<const ScriptFunction*> functions;
    std::vector<std::string> names;

    // Throws ScriptError. The stack is the caller's, so that it is made once.
    ScriptValue run(std::span<const ScriptValue> literals, const std::function<DateTime()>& now,
                    std::vector<ScriptValue>& stack) const;
};

// Throws ScriptError at the first token that cannot stand where it stands.
ScriptProgram parseScript(const ScriptTokens& tokens);

}  // namespace owb
