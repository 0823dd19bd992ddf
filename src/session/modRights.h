// Rights of the family's users on commands, and class-wise security. Both are kept by the shell;
// here they are only honoured. ADMIN, in any letter case, is never restricted.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace owb {

struct Session;

// A command of a screen as far as rights go: its caption, and the tag that tells "NA" for denied.
struct CommandRight {
    std::string caption;
    std::string tag;
};

// Sets the tags of a screen's commands, only while gMultiLogin. Commands unknown to SEC_BUTDET
// keep their tag. Throws DbError when the rights cannot be asked.
void ApplyScreenRights(Session& session, int32_t formId, std::vector<CommandRight>& commands);
// Says "Permission denied." and gives true when the command's tag holds "NA". Screens ask it
// before any handler that writes (SessionScreen::mayWrite).
bool FnBlnCommandDenied(Session& session, const std::string& tag);

// Class-wise security: while it is on, a user sees some employees alone. FillClassSecurity puts
// them into [TMP<prefix>] by the family's procedure, which takes `mode` and `lngMonthYear` as they
// are; the filters limit a query to them, " AND ...", "" while it is off. Throws DbError.
void FillClassSecurity(Session& session, int32_t mode, int32_t lngMonthYear);
std::string FnStrClassSecurityFilter(const Session& session,
                                     const std::string& employeeColumn = "ME.EMPID");
// By employee and version, for registers: some versions of an employee may be hidden.
std::string FnStrClassSecurityVersionFilter(const Session& session,
                                            const std::string& employeeColumn,
                                            const std::string& versionColumn);

}  // namespace owb
