#include "calendar/restricted_holidays.h"

#include "family/modCommon.h"
#include "session/queries.h"

namespace owb {

bool FnBlnIsRestrictedHoliday(Session& session, int64_t lngEmpId, const DateTime& date) {
    const std::string day = FnStrIsoLiteral(date);
    const std::string listed = "SELECT 1 FROM ATT_RESTRICTHOLIDAY WHERE HOLIDAYDATE=" + day;
    auto ofEmployee = [&](const std::string& column) {
        return listed + " AND " + column + " = ( SELECT " + column +
               " FROM MAS_EMPLOYEEDET WHERE EMPID=" + std::to_string(lngEmpId) +
               " AND EFFFROMDATE<=" + day + " AND (EFFTODATE>=" + day + " OR EFFTODATE IS NULL))";
    };
    return FnBlnExistsOrThrow(session, listed + " AND ATTHEADID IS NULL AND BRANCHID IS NULL " +
                                           " UNION ALL " + ofEmployee("ATTHEADID") + " UNION ALL " +
                                           ofEmployee("BRANCHID"));
}

}  // namespace owb
