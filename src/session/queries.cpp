#include "session/queries.h"

#include "base/utf8.h"
#include "db/recordset.h"
#include "db/sql_text.h"
#include "session/Session.h"

namespace owb {

Value FnVarValueOrThrow(Session& session, const std::string& sql, const Value& defaultValue) {
    Recordset rs(session.gConn, sql);
    if (rs.IsEOF() || rs.Fields(0).isNull()) return defaultValue;
    return rs.Fields(0).value();
}

bool FnBlnExistsOrThrow(Session& session, const std::string& sql) {
    return !Recordset(session.gConn, sql).IsEOF();
}

bool FnBlnDuplicate(Session& session, const std::string& table, const std::string& keyColumn,
                    const std::string& idColumn, const std::string& value, int64_t ownId) {
    return FnBlnExistsOrThrow(session, Sql() << "Select " << idColumn << " From " << table
                                             << " Where UPPER(" << keyColumn
                                             << ") =" << literal(upperCase(trim(value))) << " And "
                                             << idColumn << " <> " << ownId);
}

std::string FnStrHostPrefix(Session& session) {
    const std::string host = FnVarValueOrThrow(session, "SELECT HOST_NAME()", "").toText();
    return session.gExtendedYN ? host + session.gWinUserId : host;
}

}  // namespace owb
