#include "session/locks.h"

#include "session/queries.h"

namespace owb {

bool FnBlnMonthLocked(Session& session, int32_t lngMonthYear) {
    return FnVarValueOrThrow(session,
                             "Select LOCKEDYN From MAS_MONTHYEAR Where MONTHYEAR = " +
                                 std::to_string(lngMonthYear),
                             0)
        .toBool();
}

namespace {

std::string lockedMonths(int32_t lngFrom, int32_t lngTo) {
    return " From MAS_MONTHYEAR Where MONTHYEAR Between " + std::to_string(lngFrom) + " And " +
           std::to_string(lngTo) + " And LOCKEDYN = 1";
}

// True when the employee is held in the first month or in another month of the payroll's. The
// family's function is asked month by month.
std::string employeeHeld(int32_t lngFrom, int32_t lngTo, int64_t lngEmpId) {
    const std::string employee = "[dbo].udf_getEmpLock(" + std::to_string(lngEmpId) + ",";
    const std::string first = employee + std::to_string(lngFrom) + ",DEFAULT) = 1";
    if (lngFrom == lngTo) return first;
    return "(" + first + " OR EXISTS (SELECT * FROM MAS_MONTHYEAR WHERE MONTHYEAR BETWEEN " +
           std::to_string(lngFrom) + " AND " + std::to_string(lngTo) + " AND " + employee +
           "MONTHYEAR,DEFAULT) = 1))";
}

}  // namespace

bool FnBlnMonthRangeLocked(Session& session, int32_t lngFrom, int32_t lngTo, bool testEmployee,
                           int64_t lngEmpId) {
    if (FnVarValueOrThrow(session, "Select COUNT(*)" + lockedMonths(lngFrom, lngTo), 0).toBool())
        return true;
    if (!testEmployee) return false;
    return FnVarValueOrThrow(
               session,
               "SELECT CASE WHEN " + employeeHeld(lngFrom, lngTo, lngEmpId) + " THEN 1 ELSE 0 END",
               0)
        .toBool();
}

std::string FnStrMonthRangeOpenSql(int32_t lngFrom, int32_t lngTo, bool testEmployee,
                                   int64_t lngEmpId) {
    const std::string open = "NOT EXISTS (SELECT *" + lockedMonths(lngFrom, lngTo) + ")";
    return testEmployee ? open + " AND NOT " + employeeHeld(lngFrom, lngTo, lngEmpId) : open;
}

}  // namespace owb
