#include "tsql/plan/plan.h"

namespace owb::tsql {

std::string Plan::applySql(const std::string& rows) const {
    if (writes == StatementKind::Update) return updateSql(target->sqlName, "rowid", rows);
    return "DELETE FROM " + target->sqlName + " WHERE rowid IN (SELECT rid FROM " + rows + ")";
}

std::string Plan::updateSql(const std::string& table, const std::string& rowid,
                            const std::string& rows) const {
    return "UPDATE " + table + " AS u SET " + assignments + " FROM " + rows + " AS s WHERE u." +
           rowid + " = s.rid";
}

}  // namespace owb::tsql
