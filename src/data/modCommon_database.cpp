#include "base/utf8.h"
#include "data/Session.h"
#include "data/modCommon.h"

namespace owb {

namespace {

// A known failure of snapshots under the server's transactions; it means nothing to the user.
constexpr const char* kStaleSnapshot = "Not a valid bookmark.";

}  // namespace

Value FnVarReadValue(Session& session, const std::string& sql, const Value& defaultValue) {
    Recordset rs(session.gConn, sql);
    if (rs.IsEOF() || rs.Fields(0).isNull()) return defaultValue;
    return rs.Fields(0).value();
}

Value FnVarGetValue(Session& session, const std::string& sql, const Value& defaultValue) {
    try {
        return FnVarReadValue(session, sql, defaultValue);
    } catch (const DbError& e) {
        if (std::string(e.what()) != kStaleSnapshot && e.number != 0)
            session.boxes.critical(std::string(e.what()) + " : " + std::to_string(e.number));
        return {};
    }
}

// The reference tables have their home in the company's own database here, not in a file of their
// own beside the program, so the one connection reads them.
Value FnVarGetJetValue(Session& session, const std::string& sql, const Value& defaultValue) {
    return FnVarGetValue(session, sql, defaultValue);
}

bool FnBlnReadRecordExists(Session& session, const std::string& sql) {
    return !Recordset(session.gConn, sql).IsEOF();
}

bool FnBlnRecordExists(Session& session, const std::string& sql) {
    try {
        return FnBlnReadRecordExists(session, sql);
    } catch (const DbError&) {
        return false;
    }
}

bool FnBlnExecute(Session& session, const std::string& sql) {
    try {
        session.gConn.Execute(sql);
        return true;
    } catch (const DbError&) {
        return false;
    }
}

bool FnBlnDuplicate(Session& session, const std::string& table, const std::string& keyColumn,
                    const std::string& idColumn, const std::string& value, int64_t ownId) {
    const std::string text = upperCase(session.gSpChar.FnStrSpSQL(trim(value)));
    return FnBlnReadRecordExists(session, "Select " + idColumn + " From " + table +
                                              " Where UPPER(" + keyColumn + ") ='" + text +
                                              "' And " + idColumn + " <> " + std::to_string(ownId));
}

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

std::string FnStrHostPrefix(Session& session) {
    const std::string host = FnVarGetValue(session, "SELECT HOST_NAME()", "").toText();
    return session.gExtendedYN ? host + session.gWinUserId : host;
}

}  // namespace owb
