// Company-wide options: loads MAS_COMPANY, MAS_OPTSET, MAS_OPTSETFEATURE and the captions into the
// session's records. Each loader overwrites its record; a NULL column takes the record's default.
// Later changes of the tables show only after another load.
#pragma once

#include <cstdint>
#include <string>

namespace owb {

struct Session;

void LoadOptSetDefaults(Session& session);
// MAS_OPTSET, the overtime flags, then LoadOptSetFeature.
void LoadOptSet(Session& session);
void LoadOptSetFeature(Session& session);
void LoadCompany(Session& session);
// Captions of optional components, of the classifications and of their extensions.
void LoadCaptions(Session& session);
void LoadExtCaptionFlags(Session& session);

// One employee as the screens' card shows it; empty texts when there is no such version.
struct EmployeeDisplay {
    std::string DESIGNATION, OCCUPATION, DEPARTMENT, DIVISION, GRADE, BRANCHNAME, ATTHEADNAME,
        STRUCTDESC;
};
EmployeeDisplay LoadEmployeeDisplay(Session& session, int64_t lngEmpId, int32_t lngEmpDetId);

// Dates as "DD/MMM/YYYY"; "" when not set.
struct EmployeeDates {
    std::string DOJ, DOL, DOB, SALCALCFROM, RETIREMENTDATE, RESIGNATIONDATE, CONFIRMATIONDATE;
};
EmployeeDates LoadEmployeeDates(Session& session, int64_t lngEmpId);

}  // namespace owb
