// The functions of the formula language: its own, and the library that payroll formulas are
// written with.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string_view>

#include "base/date_time.h"
#include "formula/ExprValue.h"

namespace owb {

// The arguments of one call. An argument that was left out is the default of the function.
class ExprArguments {
  public:
    ExprArguments(std::span<ExprValue> values, const std::function<DateTime()>& now)
        : values_(values), now_(now) {}

    size_t count() const { return values_.size(); }
    const ExprValue& operator[](size_t i) const { return values_[i]; }
    bool has(size_t i) const { return i < values_.size() && !values_[i].isMissing(); }
    int64_t longOr(size_t i, int64_t otherwise) const {
        return has(i) ? values_[i].toLong() : otherwise;
    }
    ExprValue take(size_t i) const { return std::move(values_[i]); }
    DateTime now() const { return now_(); }
    // Other arguments for a call on behalf of this one.
    ExprArguments with(std::span<ExprValue> values) const { return {values, now_}; }

  private:
    std::span<ExprValue> values_;
    const std::function<DateTime()>& now_;
};

struct ExprFunction {
    const char* name;  // in capitals
    uint8_t least, most;
    ExprValue (*call)(const ExprArguments&);
};

// By its name in capitals; null when there is none.
const ExprFunction* findExprFunction(std::string_view name);
// The named numbers and texts, such as vbSunday.
const ExprValue* findExprConstant(std::string_view name);

// One table for each kind of functions, each in a file of its own.
std::span<const ExprFunction> exprNumberFunctions();
std::span<const ExprFunction> exprConversions();
std::span<const ExprFunction> exprTextFunctions();
std::span<const ExprFunction> exprDateFunctions();
std::span<const ExprFunction> exprLibrary();

}  // namespace owb
