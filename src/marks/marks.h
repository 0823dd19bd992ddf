// What is marked when something changes, by its cause. A mark (EDITMODEYN = 1) says that a row's
// figures no longer follow from what they rest on; the recalculation works the row out and clears
// it. Whoever changes something joins the statements of its cause to the batch that changes it
// (SaveBatch), so that no change is without its marks. Each statement begins with a blank.
//
// Marked are ATT_DAYTODAY (register rows), LEV_MONTHDET (day counts of a month), LEV_ALLOTMENT (the
// leave ledger) and, as the hand-over to the salary program, SLC_SALARYCALC_E and SLC_SALARYRATE_E.
// Months are month keys, heads are ATTHEADIDs with 0 for all.
#pragma once

#include <cstdint>
#include <string>

#include "base/date_time.h"

namespace owb {

struct Session;

// --- a holiday (marks_calendar.cpp) ---

// For whom a holiday or exception holds: the whole company, one attendance head or one branch.
struct HolidayScope {
    const char* column = "ATTHEADID";  // or "BRANCHID"
    int64_t id = 0;                    // 0: the company
    std::string condition() const;     // "ATTHEADID = 10"
};
// A general holiday of the month comes, goes or changes. Registers and month rows are not limited
// to the scope; of the ledger only leaves that are allotted on days worked.
std::string MarkHolidaySql(int32_t lngMonthYear, const HolidayScope& scope);

// --- a weekly off (marks_calendar.cpp); throws DbError for a month that cannot be asked ---

// The rule of one head, or of several (" IN (...)"), from a month on.
std::string MarkWeeklyOffSql(Session& session, int32_t lngMonthYear, const std::string& heads);
// A company rule that was saved without a change: all rows from the month on.
std::string MarkWeeklyOffUnchangedSql(int32_t lngMonthYear);
// A deleted rule of a head, 0 the company's: salaries too.
std::string MarkWeeklyOffDeletedSql(Session& session, int32_t lngMonthYear, int32_t intAttHeadId);

// --- an attendance head (marks_configuration.cpp) ---

// What the days of a head's employees rest on.
std::string MarkHeadSql(int32_t intAttHeadId);
// The hours of a head's day.
std::string MarkHeadHoursSql(int32_t intAttHeadId);

// --- a kind of leave (marks_configuration.cpp) ---

// Whether a kind of leave is paid: the months in which it was taken.
std::string MarkLeaveKindSql(int32_t intLevId);

// --- an entry of leave, an encashment, a recalculation that is asked for (marks.cpp) ---

// Ledger rows of a head, of an employee, or of both; 0 stands for any.
std::string MarkAllotmentDirtySql(int32_t intAttHeadId, int64_t lngEmpId);
// Ledger rows from the month of a date on. Lists are numbers separated by commas, "" all; leaves 2
// and 3 are one for this: either brings in the other.
std::string MarkAllotmentDirtyFromSql(DateTime dteFrom, int32_t intAttHeadId,
                                      const std::string& strEmpIds, const std::string& strLevIds);
// Ledger rows of a head and employee from the month of a date on, since a leave was written or
// deleted there: the rows of the leave, and for loss of pay (1), which changes the days paid, those
// of the leaves that are allotted on such days.
std::string MarkLeaveTakenSql(DateTime dteFrom, int32_t intAttHeadId, int64_t lngEmpId,
                              int32_t intLevId);
// The same for every leave of the rows LD of LEV_DETAILS that fit a condition, as they stand when
// it runs: before they go.
std::string MarkLeavesHeldSql(DateTime dteFrom, int32_t intAttHeadId, int64_t lngEmpId,
                              const std::string& held);
// Ledger rows that the user has chosen: `rows` is the FROM and WHERE of them, with a blank first.
std::string MarkChosenAllotmentSql(const std::string& rows);
// Salary rows of a month, or from the month on, for one employee (0 all), and the reimbursements.
std::string MarkSalaryDirtySql(int32_t lngMonthYear, bool blnOnlyThisMonth, int64_t lngEmpId);
// The same, run at once.
void MarkAllotmentDirty(Session& session, int32_t intAttHeadId, int64_t lngEmpId);
void MarkAllotmentDirtyFrom(Session& session, DateTime dteFrom, int32_t intAttHeadId,
                            const std::string& strEmpIds, const std::string& strLevIds);
void MarkSalaryDirty(Session& session, int32_t lngMonthYear, bool blnOnlyThisMonth,
                     int64_t lngEmpId);

}  // namespace owb
