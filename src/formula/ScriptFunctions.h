// The functions of the formula language: its own, and the library that payroll formulas are
// written with.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string_view>

#include "base/date_time.h"
#include "formula/ScriptValue.h"

namespace owb {

// The arguments of one call. An argument that was left out is the default of the function.
class ScriptArguments {
  public:
    ScriptArguments(std::span<ScriptValue> values, const std::function<DateTime()>& now)
        : values_(values), now_(now) {}

    size_t count() const { return values_.size(); }
    const ScriptValue& operator[](size_t i) const { return values_[i]; }
    bool has(size_t i) const { return i < values_.size() && !values_[i].isMissing(); }
    int64_t longOr(size_t i, int64_t otherwise) const {
        return has(i) ? values_[i].toLong() : otherwise;
    }
    ScriptValue take(size_t i) const { return std::move(values_[i]); }
    DateTime now() const { return now_(); }
    // Other arguments for a call on behalf of this one.
    ScriptArguments with(std::span<ScriptValue> values) const { return {values, now_}; }

  private:
    std::span<ScriptValue> values_;
    const std::function<DateTime()>& now_;
};

struct ScriptFunction {
    const char* name;  // in capitals
    uint8_t least, most;
    ScriptValue (*call)(const ScriptArguments&);
};

// By its name in capitals; null when there is none.
const ScriptFunction* findScriptFunction(std::string_view name);
// The named numbers and texts, such as vbSunday.
const ScriptValue* findScriptConstant(std::string_view name);

// One table for each kind of functions, each in a file of its own.
std::span<const ScriptFunction> scriptNumberFunctions();
std::span<const ScriptFunction> scriptConversions();
std::span<const ScriptFunction> scriptTextFunctions();
std::span<const ScriptFunction> scriptDateFunctions();
std::span<const ScriptFunction> scriptLibrary();

}  // namespace owb
