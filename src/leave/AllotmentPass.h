// One run over the marked rows of the leave ledger: in bulk, a month at a time over work tables, or
// row by row; both end in the same ledger. Rows that a run marks are taken by it, too, as far as
// its filter goes.
//
// Order of statements for a row, which makes a broken run good by the next:
//  1. its credit (CO: the compensatory work; automatic allotment: CalcLeaveAllotment), from columns
//     that the run does not write; a company's own query may read others;
//  2. the closing of the row before, from that row's credit and opening and what was adjusted,
//     encashed and taken in it, before any lapse: the row before is done (it comes earlier in date
//     order) or still marked, and then marks this one;
//  3. in one transaction: marks on all later rows of the employee and leave, which open from this
//     one; the lapse on the row before, the opening, the row's own lapse back to 0 (its successor,
//     marked just now, writes it);
//  4. the cleared mark, with step 3 or after it, together with finding all that the row rests on
//     unchanged (BlockStamp.h). What others save in an earlier month marks a row there, which in
//     its turn marks this one; so a block looks at the leave of its own months alone.
// The work tables hold nothing that is not made anew by the next run.
#pragma once

#include <string>
#include <vector>

#include "leave/BlockStamp.h"
#include "leave/LeaveChain.h"
#include "leave/RowFailures.h"
#include "leave/modLeaveCalc.h"
#include "leave/work_table.h"
#include "screen/progress.h"

namespace owb {

class AllotmentPass {
  public:
    AllotmentPass(Session& session, Progress& frm);

    // Each of the next three throws DbError and gives false when rows are left marked since
    // somebody changes all the time what they rest on. All marked months in order, each in bulk;
    // who has two rows of one leave in a month is taken row by row in that month.
    bool ProcessAllotments();
    bool ProcessAllotmentMonth(int32_t lngMonthYear);
    // Marked rows one by one in order of date; strFilter is a condition on LA (" AND LA.EMPID =
    // 1").
    bool RowByRow(const std::string& strFilter);
    // Whether so few rows are marked that taking them one by one is sooner done. Throws DbError.
    bool FewMarked();
    // Names the employees whose rows failed; true when there are none.
    bool TellFailures() { return failures_.Tell(); }

  private:
    // --- the bulk pass (AllotmentPass_month.cpp) ---
    std::string DividedEmployees(const std::string& strInMonth);
    int32_t NextMonth(int32_t lngAfter);
    void BuildWorkTable(int32_t lngMonthYear, const std::string& strInMonth);
    void CompensatoryOff();
    void AutoAllotments();
    void Openings();
    void Closings(int32_t lngMonthYear);
    void CarryOver(int32_t lngMonthYear);
    void WithinPeriod(int32_t lngMonthYear);
    std::string WriteBackSql() const;

    // --- row by row (AllotmentPass_rows.cpp) ---
    // Works out the rows of a block, given by their numbers, and clears their marks.
    bool ProcessBlock(const std::vector<int64_t>& ids);
    void ProcessRow(const AllotRow& row);
    void WriteCredit(const AllotRow& row);
    void ForgetRules();
    void showPercent();

    Session& session_;
    Progress& frm_;
    LeaveCalc calc_;
    LeaveChain chain_;
    WorkTable tmp_, prev_;
    std::string strDuplicates_ = "0";  // employees that the bulk leaves out in the month at hand
    size_t done_ = 0, total_ = 0;
    size_t worked_ = 0;  // rows taken one by one
    std::string percent_;
    BlockStamp stamp_;
    RowFailures failures_;
};

}  // namespace owb
