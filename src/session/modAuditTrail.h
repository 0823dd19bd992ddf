// One line of the audit trail, written by the family's procedure. Callers ask FnBlnAuditTrailOn
// first. Details are ":Label = value" pieces; a change reads ":Label Changed from <old> to <new>".
#pragma once

#include <cstdint>
#include <string>

namespace owb {

struct Session;

constexpr int32_t kAuditModule = 3;  // this program, among the family's

// Errors are ignored: no save fails for the trail's sake. `lngEmpId` 0: no one employee.
void UpdateAuditTrail(Session& session, int32_t module, int64_t lngEmpId, const std::string& action,
                      const std::string& detail, const std::string& extra = "");

}  // namespace owb
