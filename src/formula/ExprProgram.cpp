#include "formula/ExprProgram.h"

#include "formula/ExprFunctions.h"

namespace owb {

namespace {

// Counts what texts an evaluation makes, so that none can fill the memory.
class TextBudget {
  public:
    void spend(const ExprValue& made) {
        if (!made.isText()) return;
        spent_ += made.textValue().size();
        if (spent_ > kExprTextTotal) throw ExprError{ExprError::OutOfMemory};
    }

  private:
    size_t spent_ = 0;
};

}  // namespace

ExprValue ExprProgram::run(std::span<const ExprValue> literals,
                           const std::function<DateTime()>& now,
                           std::vector<ExprValue>& stack) const {
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
                const ExprValue right = std::move(stack.back());
                stack.pop_back();
                stack.back() = applyOperator(code.op, stack.back(), right);
                break;
            }
            case Instruction::Call: {
                const ExprFunction& function = *functions[code.index];
                if (code.count < function.least || code.count > function.most)
                    throw ExprError{ExprError::WrongArguments, function.name};
                const std::span arguments(stack.data() + stack.size() - code.count, code.count);
                ExprValue result = function.call(ExprArguments(arguments, now));
                if (result.isMissing()) throw ExprError{ExprError::TypeMismatch};
                stack.resize(stack.size() - code.count);
                stack.push_back(std::move(result));
                break;
            }
            case Instruction::UnknownCall:
                throw ExprError{ExprError::InvalidFunction, names[code.index]};
            case Instruction::Unknown:
                throw ExprError{ExprError::Undeclared, names[code.index]};
            case Instruction::Fail:
                throw ExprError{static_cast<ExprError::Number>(code.index)};
        }
        budget.spend(stack.back());
    }
    return std::move(stack.back());
}

}  // namespace owb
