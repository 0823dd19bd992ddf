#include <gtest/gtest.h>

#include "leave/screens/frmLeaveRecalc.h"
#include "session/modEmployeeViews.h"
#include "support/payroll.h"
#include "support/scripted.h"

namespace owb {
namespace {

using test::drive;
using test::Payroll;
using test::Scripted;

constexpr int32_t kMay = 2024 * 12 + 5, kJuly = kMay + 2;

// Ledger rows of employees 1 and 2 on head 10 and 3 on head 11, one for each month, none marked.
struct Ledger : Payroll {
    Ledger() : Payroll(kMay, kJuly) {
        head({10, 2});
        head({11, 2});
        leaveKind(5, "CL", false);
        leaveKind(6, "SL", false);
        for (int id : {1, 2, 3, 4}) employee(id, "2020-01-01", id < 3 ? 10 : 11);
        row(1, 5, 10, "2024-05-01");
        row(1, 5, 10, "2024-06-01");
        row(2, 5, 10, "2024-06-01");
        row(2, 6, 10, "2024-07-01");
        row(3, 5, 11, "2024-06-01");
        row(3, 4, 11, "2024-06-01");
        session.gFirstLeaveMonth = kMay;
        SetHostNames(session);
        CreateFilterObjects(session);
        run("UPDATE " + session.gFilterTable + " SET FILTERYN1 = 0");
    }
    void row(int id, int levId, int headId, const std::string& from) {
        run("INSERT INTO LEV_ALLOTMENT (ALLOTID, EMPID, EMPDETID, ATTHEADID, LEVID, ALLOTFROM, "
            "ALLOTTO, EDITMODEYN) SELECT COUNT(*) + 1, " +
            std::to_string(id) + ", 1, " + std::to_string(headId) + ", " + std::to_string(levId) +
            ", '" + from + "', '2024-12-31', 0 FROM LEV_ALLOTMENT");
    }
    std::string marked() {
        return rows(
            "SELECT EMPID, LEVID, MONTH(ALLOTFROM) FROM LEV_ALLOTMENT WHERE EDITMODEYN = 1 ORDER "
            "BY ALLOTID");
    }
};

const std::string kJune = "set cmbFromMonth Jun/2024\nset cmbToMonth Jun/2024\n";

TEST(LeaveRecalc, OffersWhatHasLedgerRowsInTheMonths) {
    Ledger l;
    const Scripted run = drive<frmLeaveRecalc>(
        l, kJune +
               "dump fpgEmployee\nset chkAllLeaves Yes\nset chkAllEmployees Yes\n"
               "show lblLeaveCount\nshow lblEmployeeCount\ncell fpgEmployee 1 1 = No\n"
               "show lblEmployeeCount\nset cmbAttHead Head 10\ndump fpgEmployee\n");
    EXPECT_EQ(run.errors, "");
    const std::string header = "Select,Emp ID,Employee Name\n";
    const std::string count = "Selected : 3 | Selected : 3 | Yes | Yes\n";
    EXPECT_EQ(run.shown, header + "0,1,Employee 1\n0,2,Employee 2\n0,3,Employee 3\n" +
                             "lblLeaveCount: Selected : 1 | Selected : 1 | Yes | Yes\n" +
                             "lblEmployeeCount: " + count +
                             "lblEmployeeCount: Selected : 2 | Selected : 2 | Yes | Yes\n" +
                             header + "0,1,Employee 1\n0,2,Employee 2\n");
}

TEST(LeaveRecalc, ChecksMarksAndRecalculates) {
    struct Case {
        std::string script, boxes, marked;
    };
    const std::string all = "set chkAllLeaves Yes\nset chkAllEmployees Yes\n";
    const std::string done = "Recalculated Successfully\n";
    for (const Case& c :
         {Case{"set cmbToMonth May/2024\n", "From Month is greater than To month\n", ""},
          {kJune, "Select atleast one Leave Type\n", ""},
          {kJune + "set chkAllLeaves Yes\n", "Select atleast one Employee\n", ""},
          {kJune + all, done, "1,5,6 2,5,6 3,5,6"},
          {kJune + "set cmbAttHead Head 11\n" + all, done, "3,5,6"},
          {kJune + "set cmbFromMonth May/2024\n" + all, done, "1,5,5 1,5,6 2,5,6 3,5,6"},
          {"set cmbFromMonth May/2024\ncheck lstLeave SL - SL Yes\ncheck fpgEmployee 2 1 Yes\n",
           done, "2,6,7"},
          {"set cmbFromMonth May/2024\ncheck lstLeave SL - SL Yes\ncheck fpgEmployee 1 1 Yes\n",
           "No leaves to recalculate\n", ""}}) {
        Ledger l;
        const Scripted run = drive<frmLeaveRecalc>(l, c.script + "click cmdRecalculate\n");
        EXPECT_EQ(run.boxes + run.errors, c.boxes) << c.script;
        EXPECT_EQ(l.marked(), c.marked) << c.script;
    }
    Ledger l;
    l.session.gReadOnly = true;
    EXPECT_EQ(drive<frmLeaveRecalc>(l, "click cmdRecalculate\n").errors,
              "error: line 1: cmdRecalculate takes no click now\n");
}

TEST(LeaveRecalc, RunsThePassesOverWhatIsMarked) {
    Ledger l;
    l.salary(1, 1, kMay, kMay);
    l.reconcile();
    EXPECT_EQ(l.value("SELECT EDITMODEYN FROM LEV_MONTHDET"), "1");
    drive<frmLeaveRecalc>(l, kJune +
                                 "set chkAllLeaves Yes\ncheck fpgEmployee 2 1 Yes\n"
                                 "click cmdRecalculate\n");
    EXPECT_EQ(l.value("SELECT EDITMODEYN FROM LEV_MONTHDET"), "0");
}

}  // namespace
}  // namespace owb
