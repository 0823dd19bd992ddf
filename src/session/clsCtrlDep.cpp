#include "session/clsCtrlDep.h"

#include "base/utf8.h"
#include "db/sql_text.h"
#include "session/Session.h"
#include "session/queries.h"

namespace owb {

bool clsCtrlDep::FnBlnMatchedWithList(const std::string& table, const std::string& field,
                                      const std::string& value,
                                      const std::string& condition) const {
    Sql sql;
    sql << "Select " << field << " From  " << table << " Where str(" << field
        << ") = " << literal(value);
    if (!condition.empty()) sql << " And " << condition;
    return FnBlnExistsOrThrow(session_, sql);
}

int64_t clsCtrlDep::FnLngGetNextNumber(const std::string& table, const std::string& field,
                                       const std::string& condition) const {
    Sql sql;
    sql << "Select MAX(" << field << ") + 1 as NextNumber FROM " << table;
    if (!condition.empty()) sql << " Where " << condition;
    return FnVarValueOrThrow(session_, sql, 1).toInt();
}

bool clsCtrlDep::FnBlnGetYesNo(const Value& cell) const {
    if (!cell.isText()) return cell.toBool();
    const std::string text = upperCase(trim(cell.asText()));
    return text == "YES" || text == "TRUE" || cell.toBool();
}

}  // namespace owb
