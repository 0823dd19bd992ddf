// The per-host objects in the database through which screens see employees: the filter table, the
// employee view with its marks, and the view of detail versions. Their names carry gHostPrefix, so
// that no two workstations share them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace owb {

struct Session;

// gHostPrefix, gLeaveSummaryView, gEmployeeView, gFilterTable and gEmployeeDetView.
void SetHostNames(Session& session);
// Filter table with all employees marked, and the employee view; at every start.
void CreateFilterObjects(Session& session);
// Every employee is in the filter again; each screen with a filter starts so.
void ClearEmployeeFilter(Session& session);
// The employees that a report or command is for: marks them alone (REPTYN1). Throws DbError.
void ChooseEmployees(Session& session, const std::vector<std::string>& empIds);
// Detail versions with their extended classification; `lngEmpId` 0 all employees. With a list of
// month keys ("24292,24293"; "" none) there is one row for each version and month. An error leaves
// the view absent, silently.
void CreateEmployeeDetailView(Session& session, int64_t lngEmpId, const std::string& monthList);

}  // namespace owb
