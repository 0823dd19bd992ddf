// Shared by the bodies of clsEvalFormula: one evaluation, and how values stand in an expression.
#pragma once

#include "base/utf8.h"
#include "db/recordset.h"
#include "family/modCommon.h"
#include "formula/clsEvalFormula.h"
#include "session/Session.h"

namespace owb {

struct clsEvalFormula::Task {
    std::string strFormula;
    std::string strCapitals;  // of the formula
    int64_t lngEmpId;
    int32_t lngEmpDetId;
    int32_t lngMonthYear;
    DateTime dteFrom, dteTo;
    bool blnArrears;
    std::string strGrossSource;

    // Does the formula hold the word, in any case?
    bool uses(std::string_view word) const {
        return strCapitals.find(upperCase(word)) != std::string::npos;
    }
    std::string employee() const { return std::to_string(lngEmpId); }
    std::string version() const { return std::to_string(lngEmpDetId); }
    std::string month() const { return std::to_string(lngMonthYear); }
};

// A text constant; a quote inside is doubled, so that no stored text becomes part of a formula.
inline std::string quotedText(const std::string& text) {
    std::string result = "\"";
    for (char c : text) result += c == '"' ? std::string(2, c) : std::string(1, c);
    return result + "\"";
}

// A number goes in as plain decimals, with the 15 digits that the language shows (exprPlainText):
// 0.1 + 0.2 of a float column is 0.3 in a formula.
inline std::string fieldText(const Value& v) {
    if (v.isDate()) return FnStrSqlDate(v.toDate());
    return v.isNumber() ? exprPlainText(v.toDouble()) : v.toText();
}

inline std::string dateCall(const std::string& date) {
    return "CDATE(\"" + date + "\")";
}

}  // namespace owb
