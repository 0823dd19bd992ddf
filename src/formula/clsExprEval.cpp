#include "formula/clsExprEval.h"

#include "base/utf8.h"

namespace owb {

namespace {

// What the kept formulas may take of memory, counted by their shapes.
constexpr size_t kKeptShapes = size_t{4} << 20;
// The longest formula, its keywords replaced.
constexpr size_t kFormulaLimit = size_t{4} << 20;

constexpr std::pair<const char*, const char*> kNames[] = {
    {"OWIF", "IIF"},
    {"OWBetween", "FnIntOWBetween"},
    {"OWRound", "FnDblOWRound"},
    {"OWSubjectToMax", "FnDblOWSubjectToMax"},
    {"OWSubjectToMin", "FnDblOWSubjectToMin"},
    {"OWDayDiff", "FnLngOWDaysDiff"},
    {"OWMonthDiff", "FnLngOWMonthsDiff"},
    {"OWYearDiff", "FnLngOWYearsDiff"},
    {"OWSystemDate", "FnDteOWSystemDate"},
    {"OWMonthYear", "FnLngOWMonthYear"},
};

const KeywordTable& libraryNames() {
    static const auto table = [] {
        KeywordTable names;
        for (const auto& [name, with] : kNames) names.push_back({upperCase(name), upperCase(with)});
        return names;
    }();
    return table;
}

// Replaces every occurrence. `searched` is the text in capitals, or the text itself.
void replaceAll(std::string& text, const std::string& searched, const std::string& key,
                const std::string& value) {
    size_t found = key.empty() ? std::string::npos : findExprText(searched, key, 0);
    if (found == std::string::npos) return;
    std::string result;
    size_t at = 0;
    for (; found != std::string::npos; found = findExprText(searched, key, at)) {
        result.append(text, at, found - at).append(value);
        if (result.size() > kFormulaLimit) throw ExprError{ExprError::OutOfMemory};
        at = found + key.size();
    }
    text = result.append(text, at);
}

// Text, keywords and values in capitals.
void replaceKeywords(std::string& text, const KeywordTable* table) {
    if (!table) return;
    for (const Keyword& entry : *table)
        replaceAll(text, text, upperCase(entry.keyword), upperCase(entry.value));
}

void replaceNames(std::string& text) {
    if (text.find("OW") == std::string::npos) return;  // all names begin with it
    for (const Keyword& name : libraryNames()) replaceAll(text, text, name.keyword, name.value);
}

std::string failureText(const ExprError& error) {
    switch (error.number) {
        case ExprError::Undeclared:
            return "ERROR: Variable not defined '" + error.name + "'";
        case ExprError::DivisionByZero:
            return "ERROR: Divide By Zero Error";
        case ExprError::InvalidFunction:
            return "ERROR: Invalid function '" + error.name + "'";
        case ExprError::WrongArguments:
            return "ERROR: Invalid argument";
        case ExprError::ClosingParenthesis:
            return "ERROR: Missing closing braces )";
        case ExprError::EndOfStatement:
            return "ERROR: Either bad syntax or ( missing";
        default:
            return "ERROR: Invalid expression";
    }
}

}  // namespace

ExprValue clsExprEval::EvaluateExpression(const std::string& strExpression,
                                          const KeywordTable* vKeywords1,
                                          const KeywordTable* vKeywords2) {
    try {
        // Capitals first: no step before them tells one case from the other.
        std::string text = upperCase(strExpression);
        replaceKeywords(text, vKeywords1);
        replaceKeywords(text, vKeywords2);
        replaceNames(text);
        return Evaluate(text);
    } catch (const ExprError& error) {
        return ExprValue::text(failureText(error));
    }
}

ExprValue clsExprEval::Evaluate(const std::string& text) {
    if (text.size() > kFormulaLimit) throw ExprError{ExprError::OutOfMemory};
    tokens_.read(text);
    auto program = programs_.find(tokens_.shape);
    if (program == programs_.end()) {
        ExprProgram parsed = parseExpr(tokens_);
        programBytes_ += tokens_.shape.size();
        if (programBytes_ > kKeptShapes) {
            programs_.clear();
            programBytes_ = tokens_.shape.size();
        }
        program = programs_.emplace(tokens_.shape, std::move(parsed)).first;
    }
    return program->second.run(tokens_.literals, now_, stack_);
}

ExpressionSteps clsExprEval::Explain(const std::string& strExpression,
                                     const KeywordTable* vKeywords1,
                                     const KeywordTable* vKeywords2) {
    std::string text = strExpression;
    const auto replace = [&text](const std::string& key, const std::string& value) {
        const std::string capitals = upperCase(text);
        // A letter whose capital has another length would shift the places.
        if (capitals.size() != text.size()) text = capitals;
        replaceAll(text, capitals, upperCase(key), value);
    };
    const auto step = [&](const KeywordTable* table) {
        if (table)
            for (const Keyword& entry : *table) replace(entry.keyword, entry.value);
        return text;
    };
    ExpressionSteps steps;
    steps.keywords1 = step(vKeywords1);
    steps.keywords2 = step(vKeywords2);
    for (const auto& [name, with] : kNames) replace(name, with);
    steps.names = text;
    steps.capitals = upperCase(text);
    return steps;
}

}  // namespace owb
