// One command that writes leave: what is asked, in which words, what is written and marked.
#include <gtest/gtest.h>

#include "leave/EncashableBalance.h"
#include "leave/LeaveEntry.h"
#include "leave/LeavePriority.h"
#include "leave/ledger_company.h"
#include "support/rehearsal.h"

namespace owb {
namespace {

constexpr int32_t kJune = 2024 * 12 + 6;
constexpr BoxAnswer Y = BoxAnswer::Yes, N = BoxAnswer::No, C = BoxAnswer::Cancel;

DateTime june(int day) {
    return DateTime::fromCivil(2024, 6, day);
}

// CL 5, SL 6 and PL 7 in this order of priority, with opening balances; PL is open from the 10th.
class Entered : public test::LedgerCompany {
  public:
    Entered(const std::string& options, const std::string& cl = "0.5", const std::string& sl = "1")
        : LedgerCompany(kJune, kJune + 1) {
        head({10, 1, 2});
        run("UPDATE ATT_DEFINITION SET ALLOTMENTYN = 1 WHERE LEVID IN (2, 3)");
        const char* names[] = {"CL", "SL", "PL"};
        for (int id : {5, 6, 7}) leaveKind(id, names[id - 5], false);
        rule(2, 10, kJune, "COYN = 1, PRIORITY = 0");
        for (int id : {5, 6, 7}) rule(id, 10, kJune, "COYN = 1, PRIORITY = " + text(id));
        employee(1, "2020-01-01", 10);
        salary(1, 1, kJune, kJune + 1);
        run("INSERT INTO ATT_OPBAL (EMPID, LEVID, OPBAL) VALUES (1, 5, " + cl + "), (1, 6, " + sl +
            "), (1, 7, 9)");
        reconcile();
        ledgerRows();
        run("UPDATE LEV_AVAILFROM SET AVAILFROM = '2024-06-10', EDITEDYN = 1 WHERE LEVID = 7");
        process(test::Way::RowByRow);
        recalculate();
        setOptions(0, "COMMONYN = 0");
        setOptions(10, options);
    }

    // Both halves of the days from a day on; each starts from the leave asked for.
    void enter(int leave, int day, int days = 1) {
        LeaveEntry entry(session, 10, 10);
        for (int d = day; d < day + days; ++d)
            for (int kind : {0, 1}) {
                int32_t levId = leave;
                entry.ApplyLeaveHalf(levId, {1, june(d), kind, 0.5, " it's "});
            }
        NoProgress progress;
        entry.Save({}, progress);
    }
    std::string taken() {
        return rows(
            "SELECT LEVID, DAY(LEAVEDATE), FIRSTHALFYN, SECONDHALFYN FROM LEV_DETAILS WHERE "
            "FIRSTHALFYN + SECONDHALFYN > 0 ORDER BY LEAVEDATE, FIRSTHALFYN DESC, LEVID");
    }
};

constexpr char kExcess[] =
    "Available 'CL' Leave Balance : 0\n\nDo you want to consider excess leave taken as 'Loss of "
    "Pay' ?";
constexpr char kPriority[] =
    "Available 'CL' Leave Balance : 0.00\n\n  I. Click 'Yes' to continue further for priority wise "
    "Leave selection.\n II. Click 'No' to apply selected Leave (Even when balance is zero).\nIII. "
    "Click 'Cancel' to exit without any changes.\n\nNote : In case of 'Leave Allotment' on Pay "
    "Days/Present Days, Leave balance might vary before and after availing Leave.";
constexpr char kList[] =
    "Available Leave Balance for 'CL' : 0.00\n\nAvailable other Leave Balance is as follows\n1. "
    "CO\t:\t0.00\n2. SL\t:\t1.00\n\nDo you want to set the excess Leave as per the Leave priority "
    "?\n\n I. Click 'Yes' to set the Leave Type as per the Leave priority and availability.\n II. "
    "Click 'No' to consider excess Leave as 'Loss of Pay'.\nIII. Click 'Cancel' to exit without "
    "any changes.";
constexpr char kAvail[] =
    "'Leave Date' is prior to 'Leave Avail From' date set for the Employee\n\nTherefore, Leave "
    "will be considered as 'Loss of Pay'. Do you want to continue ?";

TEST(LeaveEntry, AsksAndWrites) {
    const std::string excess = "EXCESSLEVYN = 1", order = excess +
                                                          ", LEVPRIORITYYN = 1, "
                                                          "AUTOALLOTYN = 1";
    struct Case {
        std::string options;
        int leave, day, days;
        std::deque<BoxAnswer> answers;
        std::vector<std::string> asked;
        std::string taken;
    };
    for (const Case& c : std::vector<Case>{
             {"EXCESSLEVYN = 0", 5, 3, 2, {}, {}, "5,3,1,1 5,4,1,1"},
             {excess, 5, 3, 2, {Y}, {kExcess}, "5,3,1,0 1,3,0,1 1,4,1,1"},
             {excess, 5, 3, 1, {N}, {kExcess}, "5,3,1,1"},
             {excess, 5, 3, 2, {C}, {kExcess}, "5,3,1,0"},
             {order, 5, 3, 2, {Y, Y}, {kPriority, kList}, "5,3,1,0 6,3,0,1 6,4,1,0 1,4,0,1"},
             {order, 5, 3, 1, {Y, N}, {kPriority, kList}, "5,3,1,0 1,3,0,1"},
             {order, 5, 3, 2, {Y, C}, {kPriority, kList}, "5,3,1,0"},
             {order, 5, 3, 1, {N}, {kPriority}, "5,3,1,1"},
             {excess, 7, 9, 2, {Y, Y}, {kAvail, kAvail}, "1,9,1,1 7,10,1,1"},
             {excess, 7, 9, 1, {}, {kAvail, kAvail}, ""},
             {excess, 1, 3, 1, {}, {}, "1,3,1,1"},
         }) {
        Entered company(c.options);
        company.boxes.answers = c.answers;
        company.enter(c.leave, c.day, c.days);
        std::vector<std::string> asked;
        for (const Box& box : company.boxes.shown) {
            asked.push_back(box.text);
            EXPECT_EQ(box.title,
                      box.text == kList ? "Insufficient Leave Balance" : "Orvane Wagebook");
            EXPECT_EQ(box.defaultAnswer, box.text == kList ? C : N);
        }
        EXPECT_EQ(asked, c.asked) << c.options;
        EXPECT_EQ(company.taken(), c.taken) << c.options;
    }
}

TEST(LeaveEntry, LeavesThatAreExemptAreNeitherTestedNorListed) {
    Entered company("EXCESSLEVYN = 1, LEVPRIORITYYN = 1");
    company.setOptions(0, "EXLEVPRIORITY = ',5,6'");
    company.enter(5, 3);
    EXPECT_EQ(company.taken(), "5,3,1,1");
    EXPECT_TRUE(company.boxes.shown.empty());
    EXPECT_EQ(FnIntNextPriorityLeave(company.session, 1, 10, 5, 0.5, june(3)), 1);
    EXPECT_EQ(FnIntNextPriorityLeave(company.session, 1, 10, 5, 0.5, june(10)), 7);
    EXPECT_EQ(FnLevIdOfName(company.session, "SL"), 6);
    EXPECT_EQ(FnLevIdOfName(company.session, "S'L%"), 0);
}

TEST(LeaveEntry, AFigureIsWrittenUnitByUnit) {
    Entered company("EXCESSLEVYN = 1", "1");
    company.leave(1, 1, 5, "2024-06-30", "3");
    company.boxes.answers = {Y};
    LeaveEntry entry(company.session, 10, 10);
    int32_t levId = 5;
    entry.ApplyLeaveHalf(levId, {1, june(2), 2, 1.5, ""});
    EXPECT_EQ(levId, 1);
    NoProgress progress;
    EXPECT_TRUE(entry.Save({}, progress));
    EXPECT_EQ(company.rows("SELECT LEVID, DAY(LEAVEDATE), LEVMONTHLY FROM LEV_DETAILS ORDER BY "
                           "LEVID"),
              "1,30,0.50 5,30,1.00");
}

TEST(LeaveEntry, MarksWhatItWritesAndWhatItTakesAway) {
    Entered company("EXCESSLEVYN = 0");
    company.run(
        "UPDATE LEV_SETTINGS SET AUTOALLOTYN = 1, ALLOTTYPE = 1, ALLOTON = 1 WHERE LEVID = "
        "7");
    company.leave(1, 1, 6, "2024-06-03", "FS");
    const auto marked = [&] {
        const std::string all = company.rows(
            "SELECT DISTINCT LEVID FROM LEV_ALLOTMENT WHERE EDITMODEYN = 1 ORDER BY LEVID");
        company.run("UPDATE LEV_ALLOTMENT SET EDITMODEYN = 0");
        return all;
    };
    company.enter(5, 3);
    EXPECT_EQ(company.taken(), "5,3,1,1");
    EXPECT_EQ(marked(), "5 6");
    EXPECT_EQ(company.value("SELECT COUNT(*) FROM LEV_MONTHDET WHERE EDITMODEYN = 1"), "1");
    EXPECT_EQ(company.value("SELECT REASON FROM LEV_DETAILS WHERE LEVID = 5"), "it's");
    company.enter(1, 3);
    EXPECT_EQ(marked(), "5 7") << "loss of pay changes the days paid";
    company.enter(0, 3);
    EXPECT_EQ(marked(), "7");
    EXPECT_EQ(company.value("SELECT COUNT(*) FROM LEV_DETAILS WHERE LEVID > 0 AND FIRSTHALFYN + "
                            "SECONDHALFYN > 0"),
              "0");
}

TEST(LeaveEntry, CompensatoryWorkCanBeTakenAtOnce) {
    Entered company("EXCESSLEVYN = 1");
    company.enter(3, 3);
    company.boxes.answers = {C};
    company.enter(2, 29, 2);
    EXPECT_EQ(company.taken(), "3,3,1,1 2,29,1,1");
    EXPECT_EQ(company.boxes.shown.size(), 1U);
    EXPECT_EQ(company.column("EDITMODEYN", 1, 2), "0 0");
}

TEST(LeaveEntry, EncashableIsWhatIsNotKeptBack) {
    Entered company("EXCESSLEVYN = 0", "8");
    company.run("UPDATE LEV_SETTINGS SET ENCASHMINBAL = 3 WHERE LEVID = 5");
    company.run("UPDATE LEV_ALLOTMENT SET LAPSE = 2 WHERE LEVID = 5 AND ALLOTFROM = '2024-06-01'");
    double available = 0, kept = 0;
    int32_t head = 0;
    for (const bool leaving : {false, true}) {
        GetEncashableBalance(company.session, 1, available, kept, head, june(3), 5, false, leaving);
        EXPECT_EQ(available, leaving ? 8 : 5) << "what lapsed counts again";
        EXPECT_EQ(kept, 3);
        EXPECT_EQ(head, 10);
    }
}

TEST(LeaveEntry, WhatIsDeletedFirstCountsAndARefusalWritesNothing) {
    for (const bool open : {false, true}) {
        Entered company("EXCESSLEVYN = 1");
        company.leave(1, 1, 5, "2024-06-20", "F");
        LeaveEntry entry(company.session, 10, 10);
        entry.Add(" DELETE FROM LEV_DETAILS WHERE EMPID = 1 AND LEAVEDATE = '2024-06-20'");
        int32_t levId = 5;
        entry.ApplyLeaveHalf(levId, {1, june(3), 0, 0.5, ""});
        EXPECT_TRUE(company.boxes.shown.empty()) << "the half of the 20th is free again";
        EXPECT_EQ(company.taken(), "5,20,1,0") << "nothing is written before Save";
        SaveBatch batch;
        batch.refuseUnless(open ? "1 = 1" : "1 = 0", "locked");
        NoProgress progress;
        if (open)
            EXPECT_TRUE(entry.Save(batch, progress));
        else
            EXPECT_THROW(entry.Save(batch, progress), SaveRefused);
        EXPECT_EQ(company.taken(), open ? "5,3,1,0" : "5,20,1,0");
    }
}

TEST(LeaveEntry, IsWrittenWholeOrNotAtAll) {
    Entered company("EXCESSLEVYN = 1, LEVPRIORITYYN = 1");
    test::Rehearsal rehearsal(
        company,
        [&] {
            company.boxes.answers = {Y, Y};
            company.enter(5, 3, 2);
            std::erase_if(company.boxes.shown,
                          [](const Box& box) { return box.icon == BoxIcon::Question; });
        },
        6);
    rehearsal.failsAnywhere();
    rehearsal.othersWorkAnywhere([](Session& other) {
        other.gConn.ExecuteAtomic(
            "INSERT INTO LEV_DETAILS (EMPID, EMPDETID, LEVID, LEAVEDATE, FIRSTHALFYN, "
            "SECONDHALFYN) VALUES (1, 1, 7, '2024-06-20', 1, 1) UPDATE LEV_ALLOTMENT SET "
            "EDITMODEYN = 1 WHERE LEVID = 7 UPDATE LEV_MONTHDET SET EDITMODEYN = 1");
    });
}

}  // namespace
}  // namespace owb
