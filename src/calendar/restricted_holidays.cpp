#include "calendar/restricted_holidays.h"

#include "db/sql_text.h"
#include "family/modCommon.h"
#include "session/queries.h"

namespace owb {

bool FnBlnIsRestrictedHoliday(Session& session, int64_t lngEmpId, const DateTime& date) {
    const std::string day = FnStrIsoLiteral(date);
    const std::string listed = "SELECT 1 FROM ATT_RESTRICTHOLIDAY WHERE HOLIDAYDATE=" + day;
    const auto ofEmployee = [&](const char* column) -> Sql {
        return Sql() << listed << " AND " << column << " = ( SELECT " << column
                     << " FROM MAS_EMPLOYEEDET WHERE EMPID=" << lngEmpId
                     << " AND EFFFROMDATE<=" << day << " AND (EFFTODATE>=" << day
                     << " OR EFFTODATE IS NULL))";
    };
    return FnBlnExistsOrThrow(session, Sql() << listed
                                             << " AND ATTHEADID IS NULL AND BRANCHID IS NULL "
                                             << " UNION ALL " << ofEmployee("ATTHEADID")
                                             << " UNION ALL " << ofEmployee("BRANCHID"));
}

}  // namespace owb
