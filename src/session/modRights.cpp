#include "session/modRights.h"

#include "base/utf8.h"
#include "db/sql_text.h"
#include "session/Session.h"
#include "session/queries.h"

namespace owb {

void ApplyScreenRights(Session& session, int32_t formId, std::vector<CommandRight>& commands) {
    const std::string user = upperCase(session.settings.GetSetting("Settings", "User", "ADMIN"));
    if (!session.gMultiLogin || user == "ADMIN") return;
    for (CommandRight& command : commands) {
        std::string caption = command.caption;
        std::erase(caption, '&');
        // The stars stand in the stored names too; LIKE takes them as they are.
        const int64_t butId =
            FnVarValueOrThrow(session,
                              Sql() << "SELECT BUTID FROM SEC_BUTDET WHERE FORMID = " << formId
                                    << " AND UPPER(BUTNAME) LIKE '*"
                                    << session.gSpChar.FnStrSpLikeSQL(caption) << "*' ",
                              0)
                .toInt();
        if (butId == 0) continue;
        const bool allowed =
            FnVarValueOrThrow(
                session,
                Sql() << "SELECT BUTALLOWYN FROM SEC_BUTPER WHERE BUTID = " << butId
                      << " AND GROUPID = (SELECT GROUPID from SEC_USERLIST WHERE UPPER(USERNAME)= "
                      << literal(user) << ") ",
                0)
                .toBool();
        command.tag = allowed ? "" : "NA";
    }
}

bool FnBlnCommandDenied(Session& session, const std::string& tag) {
    if (!session.gMultiLogin || tag.find("NA") == std::string::npos) return false;
    session.boxes.warning("Permission denied.");
    return true;
}

void FillClassSecurity(Session& session, int32_t mode, int32_t lngMonthYear) {
    if (!session.gOptSet.CLASSSECURITYN) return;
    Sql sql;
    sql << (session.gExtendedYN ? "dbo.ClassSecurityCloud " : "dbo.ClassSecurity ") << mode << ","
        << lngMonthYear << ",0";
    if (session.gExtendedYN) sql << "," << literal(session.gWinUserId);
    session.gConn.Execute(sql);
}

std::string FnStrClassSecurityFilter(const Session& session, const std::string& employeeColumn) {
    if (!session.gOptSet.CLASSSECURITYN) return "";
    return " AND " + employeeColumn + "  IN (SELECT EMPID FROM [TMP" + session.gHostPrefix + "])";
}

std::string FnStrClassSecurityVersionFilter(const Session& session,
                                            const std::string& employeeColumn,
                                            const std::string& versionColumn) {
    if (!session.gOptSet.CLASSSECURITYN) return "";
    const auto pair = [](const std::string& employee, const std::string& version) {
        return "CAST(" + employee + " AS VARCHAR(10)) + '-' + CAST(" + version + " AS VARCHAR(10))";
    };
    return " AND " + pair(employeeColumn, versionColumn) + " IN (SELECT " +
           pair("EMPID", "EMPDETID") + " FROM [TMP" + session.gHostPrefix + "])";
}

}  // namespace owb
