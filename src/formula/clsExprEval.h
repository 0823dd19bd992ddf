// Evaluates one expression of the formula language: keywords are replaced by their values as text,
// then the names of the payroll functions by those of the library, the whole is put into capitals
// and computed. Parsed formulas are kept, so that a text that differs from an earlier one in its
// numbers and quoted texts alone is not parsed again.
#pragma once

#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/date_time.h"
#include "formula/ExprProgram.h"
#include "formula/ExprValue.h"

namespace owb {

// What stands for what in a formula: `Leave{CL}` for "1.5". An empty keyword does nothing.
struct Keyword {
    std::string keyword;
    std::string value;
};
using KeywordTable = std::vector<Keyword>;

// The text after each step that an evaluation takes with it.
struct ExpressionSteps {
    std::string keywords1;
    std::string keywords2;
    std::string names;
    std::string capitals;
};

class clsExprEval {
  public:
    explicit clsExprEval(std::function<DateTime()> now) : now_(std::move(now)) {}

    // A number, boolean, date or text; after a failure a text that begins with "ERROR: ". A null
    // table is skipped. Throws nothing but what memory does.
    ExprValue EvaluateExpression(const std::string& strExpression,
                                 const KeywordTable* vKeywords1 = nullptr,
                                 const KeywordTable* vKeywords2 = nullptr);

    static ExpressionSteps Explain(const std::string& strExpression, const KeywordTable* vKeywords1,
                                   const KeywordTable* vKeywords2);

  private:
    ExprValue Evaluate(const std::string& text);

    std::function<DateTime()> now_;
    std::unordered_map<std::string, ExprProgram> programs_;  // by the shape of their text
    size_t programBytes_ = 0;
    ExprTokens tokens_;
    std::vector<ExprValue> stack_;
};

}  // namespace owb
