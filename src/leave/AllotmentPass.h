// One run over the marked rows of the leave ledger: in bulk, a month at a time over work tables, or
// row by row; both end in the same ledger. A run ends at rest: rows that it marks are taken, too.
//
// Order of statements for a row, which makes a broken run good by the next:
//  1. its credit (CO: the compensatory work; automatic allotment: CalcLeaveAllotment), from tables
//     that the run does not write;
//  2. the closing of the row before, from that row's own credit and opening, before any lapse: the
//     row before is done (it comes earlier in date order) or still marked, and then marks this one;
//  3. marks on all later rows of the employee and leave, which open from this one;
//  4. behind them or in one batch with them: the lapse on the row before, the opening, the row's
//  own
//     lapse back to 0 (its successor, marked by 3, writes it) and the cleared mark.
// The work tables hold nothing that is not made anew by the next run.
#pragma once

#include <set>
#include <string>

#include "leave/LeaveChain.h"
#include "leave/modLeaveCalc.h"
#include "leave/work_table.h"
#include "screen/progress.h"

namespace owb {

class AllotmentPass {
  public:
    AllotmentPass(Session& session, Progress& frm);

    // All marked months in order, each in bulk; who has two rows of one leave in a month is taken
    // row by row in that month.
    void ProcessAllotments();
    void ProcessAllotmentMonth(int32_t lngMonthYear);
    // Marked rows one by one in order of date; strFilter is a condition on LA (" AND LA.EMPID =
    // 1").
    void RowByRow(const std::string& strFilter);
    bool FewMarked();

  private:
    // --- the bulk pass (AllotmentPass_month.cpp) ---
    std::string DividedEmployees(const std::string& strInMonth);
    int32_t NextMonth(int32_t lngAfter);
    void BuildWorkTable(int32_t lngMonthYear, const std::string& strInMonth);
    void CompensatoryOff();
    bool AutoAllotments();
    void Openings();
    void Closings(int32_t lngMonthYear);
    void CarryOver(int32_t lngMonthYear);
    void WithinPeriod(int32_t lngMonthYear);
    void WriteBack();

    // --- row by row (AllotmentPass_rows.cpp) ---
    void ProcessRow(const AllotRow& row);
    // Writes the row's credit; false when it cannot be worked out: the row keeps its mark.
    bool WriteCredit(const AllotRow& row);
    void showPercent();

    Session& session_;
    Progress& frm_;
    LeaveCalc calc_;
    LeaveChain chain_;
    WorkTable tmp_, prev_;
    std::string strDuplicates_ = "0";  // employees that the bulk leaves out in the month at hand
    size_t done_ = 0, total_ = 0;
    std::string percent_;
    std::set<int64_t> failed_;    // rows that could not be worked out in this run
    std::set<std::string> told_;  // each failure is told once
};

}  // namespace owb
