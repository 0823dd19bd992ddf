#include "session/modRights.h"

#include "base/utf8.h"
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
            FnVarValueOrThrow(
                session,
                "SELECT BUTID FROM SEC_BUTDET WHERE FORMID = " + std::to_string(formId) +
                    " AND UPPER(BUTNAME) LIKE '*" + session.gSpChar.FnStrSpLikeSQL(caption) + "*' ",
                0)
                .toInt();
        if (butId == 0) continue;
        const bool allowed =
            FnVarValueOrThrow(
                session,
                "SELECT BUTALLOWYN FROM SEC_BUTPER WHERE BUTID = " + std::to_string(butId) +
                    " AND GROUPID = (SELECT GROUPID from SEC_USERLIST WHERE "
                    "UPPER(USERNAME)= '" +
                    session.gSpChar.FnStrSpSQL(user) + "') ",
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

std::string FnStrClassSecurityFilter(Session& session, int32_t mode, int32_t lngMonthYear,
                                     const std::string& employeeColumn) {
    if (!session.gOptSet.CLASSSECURITYN) return "";
    const std::string arguments = std::to_string(mode) + "," + std::to_string(lngMonthYear) + ",0";
    session.gConn.Execute(session.gExtendedYN
                              ? "dbo.ClassSecurityCloud " + arguments + ",'" +
                                    session.gSpChar.FnStrSpSQL(session.gWinUserId) + "'"
                              : "dbo.ClassSecurity " + arguments);
    return " AND " + employeeColumn + "  IN (SELECT EMPID FROM [TMP" + session.gHostPrefix + "])";
}

}  // namespace owb
