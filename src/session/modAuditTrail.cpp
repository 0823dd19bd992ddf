#include "session/modAuditTrail.h"

#include "db/sql_text.h"
#include "session/Session.h"
#include "session/lenient_queries.h"
#include "session/queries.h"

namespace owb {

bool FnBlnAuditTrailOn(Session& session) {
    try {
        if (session.gAuditTrailOn < 0)
            session.gAuditTrailOn = FnBlnExistsOrThrow(
                session, "SELECT * FROM MAS_OPTSETFEATURE WHERE AUDITTRAILYN = 1");
    } catch (const DbError&) {
        return false;
    }
    return session.gAuditTrailOn == 1;
}

void UpdateAuditTrail(Session& session, int32_t module, int64_t lngEmpId, const std::string& action,
                      const std::string& detail, const std::string& extra) {
    const auto cleared = [&](const std::string& text) {
        return literal(session.gSpChar.FnStrClearAllSp(text));
    };
    std::string windowsUser = session.windowsUser;
    std::erase(windowsUser, ' ');
    FnBlnExecute(session,
                 Sql() << "UpdateAuditTrail "
                       << cleared(session.settings.GetSetting("Settings", "User", session.gUser))
                       << ", " << module << ", " << lngEmpId << ", " << cleared(action) << ", "
                       << cleared(detail) << ", " << cleared(extra) << " , "
                       << cleared(windowsUser));
}

AuditText& AuditText::add(const std::string& text) {
    text_ += text;
    return *this;
}

AuditText& AuditText::mark(const std::string& mark) {
    mark_ = mark;
    return *this;
}

AuditText& AuditText::value(const std::string& label, const std::string& value) {
    return add(mark_ + label + " = " + value);
}

AuditText& AuditText::change(const std::string& label, const std::string& before,
                             const std::string& now) {
    return before == now ? *this : add(mark_ + label + " Changed from " + before + " to " + now);
}

std::string FnStrYesNo(bool value) {
    return value ? "Yes" : "No";
}

}  // namespace owb
