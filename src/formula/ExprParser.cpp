// Formula to instructions, by precedence: ^, sign, * /, \, Mod, + -, &, comparison, Not, And, Or,
// Xor, Eqv, Imp, all from left to right.
#include <algorithm>

#include "formula/ExprFunctions.h"
#include "formula/ExprProgram.h"

namespace owb {

namespace {

using Op = ExprOperator;
using Token = ExprToken;
using Code = ExprProgram::Instruction;

constexpr int kDeepest = 2000;  // nested parentheses and signs
constexpr int kSignLevel = 13, kNotLevel = 6, kLowest = 1;

int levelOf(Op op) {
    switch (op) {
        case Op::Power:
            return 14;
        case Op::Multiply:
        case Op::Divide:
            return 12;
        case Op::WholeDivide:
            return 11;
        case Op::Mod:
            return 10;
        case Op::Add:
        case Op::Subtract:
            return 9;
        case Op::Join:
            return 8;
        case Op::And:
            return 5;
        case Op::Or:
            return 4;
        case Op::Xor:
            return 3;
        case Op::Eqv:
            return 2;
        case Op::Imp:
            return kLowest;
        case Op::Not:
            return 0;  // joins nothing
        default:
            return 7;
    }
}

// Words of the language that can be no name.
bool isReserved(std::string_view name) {
    static constexpr std::string_view kWords[] = {
        "BYREF",  "BYVAL",   "CALL",   "CASE",  "CLASS", "CONST",  "DIM",      "DO",
        "EACH",   "ELSE",    "ELSEIF", "END",   "EXIT",  "FOR",    "FUNCTION", "GET",
        "GOTO",   "IF",      "IN",     "LET",   "LOOP",  "NEW",    "NEXT",     "ON",
        "OPTION", "PRIVATE", "PUBLIC", "REDIM", "REM",   "RESUME", "SELECT",   "SET",
        "STOP",   "SUB",     "THEN",   "TO",    "UNTIL", "WEND",   "WHILE",    "WITH"};
    return std::binary_search(std::begin(kWords), std::end(kWords), name);
}

class Parser {
  public:
    explicit Parser(const ExprTokens& tokens) : tokens_(tokens.tokens) {}

    ExprProgram parse() {
        parseLevel(kLowest);
        if (here().kind != Token::End) fail(ExprError::EndOfStatement);
        return std::move(program_);
    }

  private:
    const Token& here() const { return tokens_[at_]; }
    void next() { ++at_; }
    [[noreturn]] void fail(ExprError::Number number) const {
        throw ExprError{here().kind == Token::Broken ? here().error : number};
    }
    void emit(Code::Kind kind, Op op, size_t index = 0, size_t count = 0) {
        program_.instructions.push_back(
            {kind, op, static_cast<uint32_t>(index), static_cast<uint32_t>(count)});
    }

    // An operand and all operators behind it that bind at least as tightly as the level.
    void parseLevel(int level) {
        if (++depth_ > kDeepest) throw ExprError{ExprError::OutOfStack};
        parseOperand();
        while (here().kind == Token::Operator) {
            const Op op = here().op;
            const int own = levelOf(op);
            if (own < level || own == 0) break;
            next();
            parseLevel(own + 1);
            emit(Code::Binary, op);
        }
        --depth_;
    }

    void parseOperand() {
        const Token token = here();
        switch (token.kind) {
            case Token::Literal:
                next();
                emit(Code::Literal, Op::Plus);
                return;
            case Token::Operator: {
                const bool isNot = token.op == Op::Not;
                if (!isNot && token.op != Op::Add && token.op != Op::Subtract)
                    fail(ExprError::Syntax);
                next();
                parseLevel(isNot ? kNotLevel : kSignLevel);
                emit(Code::Unary, isNot                      ? Op::Not
                                  : token.op == Op::Subtract ? Op::Negate
                                                             : Op::Plus);
                return;
            }
            case Token::Open:
                next();
                parseLevel(kLowest);
                if (here().kind != Token::Close) fail(ExprError::ClosingParenthesis);
                next();
                return;
            case Token::Name:
                if (!token.bracketed && isReserved(token.text)) fail(ExprError::Syntax);
                next();
                if (!token.bracketed && parseWord(token.text)) return;
                parseName(token);
                parseMembers();
                return;
            default:
                fail(ExprError::Syntax);
        }
    }

    void pushConstant(const ExprValue& value) {
        program_.constants.push_back(value);
        emit(Code::Constant, Op::Plus, program_.constants.size() - 1);
    }

    // A word that is a value of the language, which nothing can be asked of.
    bool parseWord(std::string_view word) {
        if (word == "TRUE" || word == "FALSE")
            pushConstant(ExprValue::boolean(word == "TRUE"));
        else if (word == "NULL" || word == "EMPTY")
            pushConstant(word == "NULL" ? ExprValue::null() : ExprValue());
        else if (word == "NOTHING")
            emit(Code::Fail, Op::Plus, ExprError::NoObject);
        else
            return false;
        return true;
    }

    void parseName(const Token& token) {
        if (const ExprValue* constant = findExprConstant(token.text))
            return pushConstant(*constant);
        const bool call = here().kind == Token::Open;
        const size_t count = call ? parseArguments() : 0;
        if (const ExprFunction* function = findExprFunction(token.text)) {
            program_.functions.push_back(function);
            return emit(Code::Call, Op::Plus, program_.functions.size() - 1, count);
        }
        program_.names.emplace_back(token.text);
        emit(call ? Code::UnknownCall : Code::Unknown, Op::Plus, program_.names.size() - 1, count);
    }

    // "(", values parted by commas, each of which may be left out, ")". Gives their number.
    size_t parseArguments() {
        next();
        if (here().kind == Token::Close) {
            next();
            return 0;
        }
        for (size_t count = 1;; ++count) {
            if (here().kind == Token::Comma || (here().kind == Token::Close && count > 1)) {
                pushConstant(ExprValue::missing());
            } else {
                parseLevel(kLowest);
            }
            const Token::Kind kind = here().kind;
            if (kind != Token::Comma && kind != Token::Close) fail(ExprError::ClosingParenthesis);
            next();
            if (kind == Token::Close) return count;
        }
    }

    // Nothing in the language has members or elements; to ask for one fails when it is run.
    void parseMembers() {
        while (here().kind == Token::Open || here().kind == Token::Dot) {
            const bool member = here().kind == Token::Dot;
            if (member) {
                next();
                if (here().kind != Token::Name) fail(ExprError::Syntax);
                next();
            } else {
                parseArguments();
            }
            emit(Code::Fail, Op::Plus,
                 member ? ExprError::ObjectRequired : ExprError::TypeMismatch);
        }
    }

    const std::vector<Token>& tokens_;
    size_t at_ = 0;
    int depth_ = 0;
    ExprProgram program_;
};

}  // namespace

ExprProgram parseExpr(const ExprTokens& tokens) {
    return Parser(tokens).parse();
}

}  // namespace owb
