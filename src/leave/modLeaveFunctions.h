// Marks, and the passes that clear them. Whoever changes what a figure rests on marks the rows with
// EDITMODEYN = 1; nothing is computed at entry. A recalculation then runs the passes in a fixed
// order: day registers (UpdateDayDetails), month days (UpdateMonthDays), the leave ledger.
//
// What every pass keeps true, so that one broken off anywhere is made good by the next:
//  1. A row's mark is cleared by the last statement that its processing needs, never before.
//  2. A pass that changes what a later pass rests on marks that pass's rows before it clears its
//     own mark.
//  3. What is written follows from other tables alone (or, for a cell, from a value that the rule
//     leaves as it is), so that writing it twice gives what writing it once gives.
//  4. Statements that belong together stand in one batch.
#pragma once

#include <cstdint>
#include <string>

#include "base/date_time.h"
#include "screen/progress.h"

namespace owb {

struct Session;
class clsOTDetCalc;

// The session's shared overtime calculator, made on first use.
clsOTDetCalc& FnOtDetCalc(Session& session);

// --- marks (modLeaveFunctions.cpp) ---

// Ledger rows of a head, of an employee, or of both; 0 stands for any.
void MarkAllotmentDirty(Session& session, int32_t intAttHeadId, int64_t lngEmpId);
// Ledger rows from the month of a date on. Lists are numbers separated by commas, "" all; leaves 2
// and 3 are one for this: either brings in the other.
void MarkAllotmentDirtyFrom(Session& session, DateTime dteFrom, int32_t intAttHeadId,
                            const std::string& strEmpIds, const std::string& strLevIds);
// Salary rows of a month, or from the month on, for one employee (0 all), and the reimbursements:
// the hand-over to the salary program, which clears these marks.
void MarkSalaryDirty(Session& session, int32_t lngMonthYear, bool blnOnlyThisMonth,
                     int64_t lngEmpId);

// --- month days (modLeaveFunctions.cpp) ---

// Recomputes the marked LEV_MONTHDET rows: overtime of the register row, NODCALC, NOD, NDP, OT1,
// OT2, ADJHRS. Limited to the employees of gEmpFilter. Marks the salary rows.
void UpdateMonthDays(Session& session, Progress& frm);
// One span at once, written to its LEV_MONTHDET row without touching the row's mark; the ledger
// rows of the employee are marked while the head allots automatically.
void SaveMonthDays(Session& session, double& dblNOD, double& dblNDP, int64_t lngEmpId,
                   int64_t lngEmpDetId, int32_t lngMonthYear, DateTime dteFrom, DateTime dteTo,
                   int32_t intAttHeadId);
// Marks one row, runs UpdateMonthDays and reads the row's NOD and NDP back.
void RefreshMonthRow(Session& session, double& dblNOD, double& dblNDP, Progress& frm,
                     int64_t lngEmpId, int64_t lngEmpDetId, int32_t lngMonthYear);

// --- day registers (modLeaveFunctions_days.cpp) ---

// Rewrites the day cells of marked register rows from leave and hours, recomputes their overtime
// and marks their months. Limited to gEmpFilter, and to employee lngFilter unless blnAll.
void UpdateDayDetails(Session& session, Progress& frm, bool blnAll, int64_t lngFilter);
// Fills days on which nothing is entered with the head's default, where the head loads one:
// present (hourly: the full day's hours) or absent (loss of pay). Marks the rows.
void LoadDefaultAttendance(Session& session);

// --- rows that the months need (modLeaveFunctions_rows.cpp) ---

// Register rows (ATT_DAYTODAY with ATT_OVERTIME) of daily and hourly heads in step with the salary
// rows from LVSTARTMNYEAR on. New rows are marked, and so are the months of marked rows.
void ReconcileMonthlyRows(Session& session);
// LEV_MONTHDET in step with the salary rows from LVSTARTMNYEAR on, but for months whose tax has
// been ported, which stay as they are. New rows are zero and marked.
void ReconcileMonthDetails(Session& session);

}  // namespace owb
