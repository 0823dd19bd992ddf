#include "session/modAuditTrail.h"

#include "session/Session.h"
#include "session/lenient_queries.h"

namespace owb {

void UpdateAuditTrail(Session& session, int32_t module, int64_t lngEmpId, const std::string& action,
                      const std::string& detail, const std::string& extra) {
    auto quoted = [&](const std::string& text) {
        return "'" + session.gSpChar.FnStrClearAllSp(text) + "'";
    };
    std::string windowsUser = session.windowsUser;
    std::erase(windowsUser, ' ');
    FnBlnExecute(session,
                 "UpdateAuditTrail " +
                     quoted(session.settings.GetSetting("Settings", "User", session.gUser)) + ", " +
                     std::to_string(module) + ", " + std::to_string(lngEmpId) + ", " +
                     quoted(action) + ", " + quoted(detail) + ", " + quoted(extra) + " , " +
                     quoted(windowsUser));
}

}  // namespace owb
