#include "formula/ScriptProgram.h"

#include "formula/ScriptFunctions.h"

namespace owb {

namespace {

// Counts what texts an evaluation makes, so that none can fill the memory.
class TextBudget {
  public:
    void spend(const ScriptValue& made) {
        if (!made.isText()) return;
        spent_ += made.textValue().size();
        if (spent_ > kScriptTextTotal) throw ScriptError{ScriptError::OutOfMemory};
    }

  private:
    size_t spent_ = 0;
};

}  // namespace

ScriptValue ScriptProgram::run(std::span<const ScriptValue> literals,
                               const std::function<DateTime()>& now,
                               std::vector<ScriptValue>& stack) const {
    stack.clear();
    TextBudget budget;
    size_t literal = 0;
    for (const Instruction& code : instructions) {
        switch (code.kind) {
            case Instruction::Literal:
                stack.push_back(literals[literal++]);
                continue;
            case Instruction::Constant:
                stack.push_back(constants[code.index]);
                continue;
            case Instruction::Unary:
                stack.back() = applyOperator(code.op, stack.back());
                break;
            case Instruction::Binary: {
                const ScriptValue right = std::move(stack.back());
                stack.pop_back();
                stack.back() = applyOperator(code.op, stack.back(), right);
                break;
            }
            case Instruction::Call: {
                const ScriptFunction& function = *functions[code.index];
                if (code.count < function.least || code.count > function.most)
                    throw ScriptError{ScriptError::WrongArguments, function.name};
                const std::span arguments(stack.data() + stack.size() - code.count, code.count);
                ScriptValue result = function.call(ScriptArguments(arguments, now));
                stack.resize(stack.size() - code.count);
                stack.push_back(std::move(result));
                break;
            }
            case Instruction::UnknownCall:
                throw ScriptError{ScriptError::InvalidFunction, names[code.index]};
            case Instruction::Unknown:
                throw ScriptError{ScriptError::Undeclared, names[code.index]};
            case Instruction::Fail:
                throw ScriptError{static_cast<ScriptError::Number>(code.index)};
        }
        budget.spend(stack.back());
    }
    return std::move(stack.back());
}

}  // namespace owb
