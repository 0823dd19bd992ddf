// Marks, and the passes that clear them. Whoever changes what a figure rests on marks the rows with
// EDITMODEYN = 1; nothing is computed at entry. A recalculation then runs the passes in a fixed
// order: day registers (UpdateDayDetails), month days (UpdateMonthDays), the leave ledger.
//
// What every pass keeps true, so that one broken off or failing anywhere is made good by the next,
// and nobody's change is lost:
//  1. A row's mark is cleared by the last statement that its processing needs, never before.
//  2. A pass that changes what a later pass rests on marks that pass's rows before it clears its
//     own mark.
//  3. What is written follows from other tables alone (or, for a cell, from a value that the rule
//     leaves as it is), so that writing it twice gives what writing it once gives.
//  4. Statements that belong together run as one transaction (Connection::ExecuteAtomic).
//  5. Marks are cleared for a block of rows at once, in one transaction with finding everything
//     that the block rests on as it was before the block was read (BlockStamp.h).
//  6. One session of a host recalculates at a time (RecalculationLock.h): the work tables are the
//     host's.
//  7. A row that fails keeps its mark, and its employee is named at the end (RowFailures.h).
// A pass gives true when every row that it was to work out is done.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "base/date_time.h"
#include "screen/progress.h"

namespace owb {

struct Session;
class clsOTDetCalc;

// Limits the passes to one employee while it lives (gEmpFilter).
class EmployeeFilter {
  public:
    EmployeeFilter(Session& session, int64_t lngEmpId);
    ~EmployeeFilter();
    EmployeeFilter(const EmployeeFilter&) = delete;

  private:
    Session& session_;
    std::string before_;
};
// gEmpFilter as a condition on a column: " AND LM.EMPID IN (1,2)", "" while it names nobody.
std::string FnStrOfEmpFilter(const Session& session, const std::string& column);

// The session's shared overtime calculator, made on first use.
clsOTDetCalc& FnOtDetCalc(Session& session);

// --- month days (modLeaveFunctions.cpp) ---

// Recomputes the marked LEV_MONTHDET rows: overtime of the register row, NODCALC, NOD, NDP, OT1,
// OT2, ADJHRS. Limited to the employees of gEmpFilter. Marks the salary rows.
bool UpdateMonthDays(Session& session, Progress& frm);
// One span at once, written to its LEV_MONTHDET row without touching the row's mark; while the head
// allots automatically, the employee's ledger is worked out anew.
void SaveMonthDays(Session& session, double& dblNOD, double& dblNDP, int64_t lngEmpId,
                   int64_t lngEmpDetId, int32_t lngMonthYear, DateTime dteFrom, DateTime dteTo,
                   int32_t intAttHeadId);
// Marks one row, runs UpdateMonthDays and reads the row's NOD and NDP back.
void RefreshMonthRow(Session& session, double& dblNOD, double& dblNDP, Progress& frm,
                     int64_t lngEmpId, int64_t lngEmpDetId, int32_t lngMonthYear);

// --- the leave ledger (modLeaveFunctions_balance.cpp, AllotmentPass.h) ---

// Balance of a leave in the slice of a month that holds the date, with all that is entered in the
// slice; 0 before the allot-from date, the opening balance where there is no slice. intLevId 0: sum
// of all leaves. intAttHeadId 0: under any head. Leave of dteExclude (a date after 30/12/1950) does
// not count against itself.
double GetClosingBalance(Session& session, int64_t lngEmpId, int32_t intLevId, DateTime dteAsOn,
                         DateTime dteExclude, int32_t intAttHeadId);
// Marked ledger rows in bulk, month by month. Throws DbError.
bool ProcessAllotments(Session& session, Progress& frm);
// Marked ledger rows: in bulk, then row by row what is left; the marker file "\OldLevAllotment.dat"
// or a filter (" AND LA.EMPID = 1") has the rows taken one by one alone. An error is shown; what is
// not done keeps its mark.
bool ProcessAllotmentsOld(Session& session, Progress& frm, const std::string& strEmpFilter);

// --- day registers (modLeaveFunctions_days.cpp) ---

// Fills empty days of the marked rows with the default, rewrites the day cells of marked register
// rows from leave and hours, recomputes their overtime and marks their months. Limited to
// gEmpFilter, and to employee lngFilter unless blnAll.
bool UpdateDayDetails(Session& session, Progress& frm, bool blnAll, int64_t lngFilter);
// Fills days on which nothing is entered with the head's default, where the head loads one:
// present (hourly: the full day's hours) or absent (loss of pay). Marks the rows. strRegisters is a
// further condition on the register row AD: " AND AD.EMPID = 1", " AND AD.ATTHEADID = 3".
void LoadDefaultAttendance(Session& session, const std::string& strRegisters = "");

// --- rows that the months need (modLeaveFunctions_rows.cpp) ---

// Register rows (ATT_DAYTODAY with ATT_OVERTIME) of daily and hourly heads in step with the salary
// rows from LVSTARTMNYEAR on. New rows are marked, and so are the months of marked rows.
void ReconcileMonthlyRows(Session& session);
// LEV_MONTHDET in step with the salary rows from LVSTARTMNYEAR on, but for months whose tax has
// been ported, which stay as they are. A salary row without a version has none. New rows are zero
// and marked, and so are the other rows of an employee's month in which one comes or goes.
void ReconcileMonthDetails(Session& session);

// --- rows that the ledger needs (modLeaveFunctions_ledger.cpp, LedgerSlices.cpp) ---

// Rows of leaves that are not allotted (ALLOTMENTYN 0), or not defined any more, go: opening
// balances, ledger rows, from-dates, figures; adjustments keep what was taken alone.
void DeleteUnallottedLeaves(Session& session);
// A zero for every employee and allotted leave without an opening balance.
void InsertOpeningBalances(Session& session);
// LEV_ALLOTFROM and LEV_AVAILFROM: missing rows, and new dates where CHANGEYN asks for them and
// none was set by hand; these mark the ledger rows of the employee and leave. A base date that is
// not known (MAS_EMPLOYEE) makes it 31/Dec/2099.
void InsertAllotFromDate(Session& session);
void UpdateAllotFromDate(Session& session);
void InsertAvailFromDate(Session& session);
void UpdateAvailFromDate(Session& session);
// LEV_ALLOTMENT in step with salary rows and allot-from dates from LVSTARTMNYEAR on, in place where
// a month goes on (LedgerSlices.cpp): new rows are zero and marked; what comes, goes or changes
// marks the rows whose period it changes. status is told what is done.
void ReconcileLedgerRows(Session& session, const std::function<void(const char*)>& status);
// Remembers the greatest number that a ledger row bears: it is not given again when the row goes.
void KeepLastAllotId(Session& session);
// Encashments whose ledger row is gone go, too, with their payments; marks their salary rows.
void DeleteOrphanedEncashments(Session& session);

}  // namespace owb
