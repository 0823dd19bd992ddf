#include "family/modCommon.h"

#include "base/db_error.h"
#include "base/utf8.h"

namespace owb {

Value FnVarNz(const Value& value, const Value& defaultValue, bool zeroIsNull) {
    if (value.isNull()) return defaultValue;
    if (zeroIsNull && value.isNumber() && value.toDouble() == 0) return defaultValue;
    return value;
}

std::string FnStrSqlDate(const DateTime& date) {
    return dateText(date, "dd/MMM/yyyy");
}

std::string FnStrSqlDate(const std::string& text) {
    const auto date = parseTypedDate(text);
    if (!date) throw DbError(13, 16, 1, 0, "'" + text + "' is no date.");
    return FnStrSqlDate(*date);
}

std::string FnStrIsoDate(const DateTime& date) {
    return dateText(date, "yyyy-MM-dd");
}

std::string FnStrIsoLiteral(const DateTime& date) {
    return "'" + FnStrIsoDate(date) + "'";
}

std::string FnStrInStrSql(const std::string& field, const std::string& text, bool ignoreCase) {
    if (ignoreCase) return "CHARINDEX('" + upperCase(text) + "',UPPER(" + field + ")) ";
    return "CHARINDEX('" + text + "'," + field + ") ";
}

}  // namespace owb
