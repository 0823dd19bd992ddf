#include "session/locks.h"

#include "db/sql_text.h"
#include "family/modCommon.h"
#include "session/Session.h"
#include "session/queries.h"

namespace owb {

namespace {

// True when the employee is held in the first month or in another month of the payroll's. The
// family's function is asked month by month.
std::string employeeHeld(int32_t lngFrom, int32_t lngTo, int64_t lngEmpId) {
    const std::string employee = Sql() << "[dbo].udf_getEmpLock(" << lngEmpId << ",";
    const std::string first = Sql() << employee << lngFrom << ",DEFAULT) = 1";
    if (lngFrom == lngTo) return first;
    return Sql() << "(" << first
                 << " OR EXISTS (SELECT * FROM MAS_MONTHYEAR WHERE MONTHYEAR BETWEEN " << lngFrom
                 << " AND " << lngTo << " AND " << employee << "MONTHYEAR,DEFAULT) = 1))";
}

}  // namespace

bool Lock::holds(Session& session) const {
    return FnVarValueOrThrow(session, "SELECT CASE WHEN " + held + " THEN 1 ELSE 0 END", 0)
        .toBool();
}

Lock MonthsLock(int32_t lngFrom, int32_t lngTo, bool testEmployee, int64_t lngEmpId,
                const std::string& text) {
    Sql held;
    held << "EXISTS (SELECT * From MAS_MONTHYEAR Where MONTHYEAR Between " << lngFrom << " And "
         << lngTo << " And LOCKEDYN = 1)";
    if (testEmployee) held << " OR " << employeeHeld(lngFrom, lngTo, lngEmpId);
    return {held, text};
}

Lock ConfigurationLock(int32_t lngFrom, int32_t intAttHeadId, bool testEmployees,
                       const std::string& text) {
    Sql held;
    held << "EXISTS (SELECT * FROM MAS_MONTHYEAR WHERE MONTHYEAR >= " << lngFrom
         << " AND (LOCKEDYN = 1 OR ATTLOCKYN = 1))";
    if (testEmployees) {
        held << " OR EXISTS (SELECT * FROM MAS_EMPLOYEEDET ED, MAS_MONTHYEAR MM WHERE MM.MONTHYEAR "
                ">= "
             << lngFrom;
        if (intAttHeadId != 0) held << " AND ED.ATTHEADID = " << intAttHeadId;
        held << " AND [dbo].udf_getEmpLock(ED.EMPID, MM.MONTHYEAR, DEFAULT) = 1)";
    }
    return {held, text};
}

std::string FnStrRecordsLocked(const Session& session) {
    return "One or more " + session.gEmployeeCaption +
           " Record(s)/Month(s) has been locked.\nStill if you want to make changes, unlock it and "
           "try again.";
}

std::string FnStrLockedFrom(const Session& session, int32_t lngMonthYear) {
    return "One or more " + session.gEmployeeCaption +
           " (s) record/Month(s) has been locked with effective from " +
           FnStrMonthYearText(lngMonthYear) + ".";
}

std::string FnStrHoursLocked(const Session& session, bool employees) {
    if (!employees) return FnStrSettingLocked("attendance");
    return "One or more " + session.gEmployeeCaption +
           " (s) record/Month(s) locked, unlock to change attendance setting.";
}

std::string FnStrSettingLocked(const std::string& setting) {
    return "Months locked, unlock locked months to change " + setting + " setting.";
}

bool FnBlnMonthLocked(Session& session, int32_t lngMonthYear) {
    return FnVarValueOrThrow(
               session,
               Sql() << "Select LOCKEDYN From MAS_MONTHYEAR Where MONTHYEAR = " << lngMonthYear, 0)
        .toBool();
}

bool FnBlnMonthRangeLocked(Session& session, int32_t lngFrom, int32_t lngTo, bool testEmployee,
                           int64_t lngEmpId) {
    return MonthsLock(lngFrom, lngTo, testEmployee, lngEmpId, "").holds(session);
}

}  // namespace owb
