// What is brought forward and what lapses, worked by hand: one leave for each case, from November
// 2023 to April 2024, so that a calendar year, a financial year, two quarters and half years end.
#include <gtest/gtest.h>

#include "leave/ledger_company.h"

namespace owb {
namespace {

using test::LedgerCompany;
using test::Way;

constexpr int32_t kNov = 2023 * 12 + 11, kJan = kNov + 2, kApr = kNov + 5;

// Every row is credited 1 by hand; the balances are COLEV/LAPSE of each row.
struct Case {
    const char* what;
    const char* settings;
    const char* opening;
    const char* credit;
    const char* undivided;  // employee 1
    const char* divided;    // employee 2 changes head on 16 January: two rows in that month
};
const Case kCases[] = {
    {"carried over", "COYN = 1", "5", "1", "5/0 6/0 7/0 8/0 9/0 10/0",
     "5/0 6/0 7/0 8/0 9/0 10/0 11/0"},
    {"all lapses after December", "COYN = 1, LAPSEMONTH = 12", "5", "1", "5/0 6/7 0/0 1/0 2/0 3/0",
     "5/0 6/7 0/0 1/0 2/0 3/0 4/0"},
    {"what exceeds 4 lapses", "COYN = 1, LAPSEMONTH = 12, LAPSELIMIT = 4", "5", "1",
     "5/0 6/3 4/0 5/0 6/0 7/0", "5/0 6/3 4/0 5/0 6/0 7/0 8/0"},
    {"nothing exceeds 7", "COYN = 1, LAPSEMONTH = 12, LAPSELIMIT = 7", "5", "1",
     "5/0 6/0 7/0 8/0 9/0 10/0", "5/0 6/0 7/0 8/0 9/0 10/0 11/0"},
    {"a negative balance is carried", "COYN = 1, LAPSEMONTH = 12", "-3", "0",
     "-3/0 -3/0 -3/0 -3/0 -3/0 -3/0", "-3/0 -3/0 -3/0 -3/0 -3/0 -3/0 -3/0"},
    {"a negative balance lapses", "COYN = 1, LAPSEMONTH = 12, LAPSENEGATIVE = 1", "-3", "0",
     "-3/0 -3/-3 0/0 0/0 0/0 0/0", "-3/0 -3/-3 0/0 0/0 0/0 0/0 0/0"},
    {"at most 6, of the limit itself nothing lapses", "COYN = 1, UPPERLIMITYN = 1, COLIMIT = 6",
     "5", "1", "5/0 6/1 6/1 6/1 6/1 6/0", "5/0 6/1 6/1 6/1 6/1 6/1 6/0"},
    {"below 0 all lapses", "COYN = 1, LOWERLIMITYN = 1, COLOWERLIMIT = 0", "-2", "0",
     "-2/-2 0/0 0/0 0/0 0/0 0/0", "-2/-2 0/0 0/0 0/0 0/0 0/0 0/0"},
    {"exactly the lower limit is carried", "COYN = 1, LOWERLIMITYN = 1, COLOWERLIMIT = 5", "5", "0",
     "5/0 5/0 5/0 5/0 5/0 5/0", "5/0 5/0 5/0 5/0 5/0 5/0 5/0"},
    {"limits of a month that is no lapse month",
     "COYN = 1, LAPSEMONTH = 12, LAPSELIMIT = 20, UPPERLIMITYN = 1, COLIMIT = 5", "5", "1",
     "5/1 5/0 6/2 5/1 5/1 5/0", "5/1 5/0 6/2 5/1 5/1 5/1 5/0"},
    {"not carried, monthly", "ALLOTTYPE = 1", "5", "1", "5/6 0/1 0/1 0/1 0/1 0/0",
     "5/6 0/1 0/0 1/2 0/1 0/1 0/0"},
    {"not carried, calendar year", "ALLOTTYPE = 2, ALLOTON = 1", "5", "1",
     "5/0 6/7 0/0 1/0 2/0 3/0", "5/0 6/7 0/0 1/0 2/0 3/0 4/0"},
    {"not carried, financial year", "ALLOTTYPE = 2, ALLOTON = 2", "5", "1",
     "5/0 6/0 7/0 8/0 9/10 0/0", "5/0 6/0 7/0 8/0 9/0 10/11 0/0"},
    {"not carried, quarter", "ALLOTTYPE = 3", "5", "1", "5/0 6/7 0/0 1/0 2/3 0/0",
     "5/0 6/7 0/0 1/0 2/0 3/4 0/0"},
    {"not carried, calendar half year", "ALLOTTYPE = 4, ALLOTON = 1", "5", "1",
     "5/0 6/7 0/0 1/0 2/0 3/0", "5/0 6/7 0/0 1/0 2/0 3/0 4/0"},
    {"not carried, financial half year", "ALLOTTYPE = 4, ALLOTON = 2", "5", "1",
     "5/0 6/0 7/0 8/0 9/10 0/0", "5/0 6/0 7/0 8/0 9/0 10/11 0/0"},
    {"a year without a type never ends", "ALLOTTYPE = 2, ALLOTON = 3", "5", "1",
     "5/0 6/0 7/0 8/0 9/0 10/0", "5/0 6/0 7/0 8/0 9/0 10/0 11/0"},
    {"the closing is rounded down to half a day", "COYN = 1, RNDTYPE = 1", "5.3", "1",
     "5.3/0 6/0 7/0 8/0 9/0 10/0", "5.3/0 6/0 7/0 8/0 9/0 10/0 11/0"},
};
constexpr int kFirstLeave = 10;

class Carried : public LedgerCompany {
  public:
    Carried() : LedgerCompany(kNov, kApr) {
        head({10, 2});
        head({11, 2});
        for (int id : {1, 2}) employee(id, "2020-01-01", 10);
        version(2, 2, "2024-01-16", 11);
        salary(1, 1, kNov, kApr);
        salary(2, 1, kNov, kJan);
        salary(2, 2, kJan, kApr);
    }
    void add(int leave, const std::string& settings) {
        for (int head : {10, 11}) rule(leave, head, kNov, settings);
    }
    void open(int leave, const std::string& balance, const std::string& credit) {
        run("UPDATE ATT_OPBAL SET OPBAL = " + balance + " WHERE LEVID = " + text(leave));
        run("UPDATE LEV_ALLOTMENT SET ALLOTLEV = " + credit + " WHERE LEVID = " + text(leave));
    }
    std::string balances(int employee, int leave) {
        return column(
            "CAST(CAST(COLEV AS float) AS varchar(9)) + '/' + CAST(CAST(LAPSE AS float) "
            "AS varchar(9))",
            employee, leave);
    }
};

TEST(CarryOver, EachRuleBothWays) {
    Carried p;
    int leave = kFirstLeave;
    for (const Case& c : kCases) p.add(leave++, c.settings);
    p.ledgerRows();
    leave = kFirstLeave;
    for (const Case& c : kCases) p.open(leave++, c.opening, c.credit);
    for (const Way way : {Way::Bulk, Way::RowByRow}) {
        p.spoil();
        p.process(way);
        leave = kFirstLeave;
        for (const Case& c : kCases) {
            EXPECT_EQ(p.balances(1, leave), c.undivided) << c.what;
            EXPECT_EQ(p.balances(2, leave++), c.divided) << c.what << ", divided month";
        }
    }
}

// Leave of 1.5 days in December, a credit of 2 in January in two adjustments, 0.5 taken off in
// February, 3 encashed at the end of March.
class Used : public Carried {
  public:
    Used() {
        add(10, "COYN = 1");
        ledgerRows();
        open(10, "5", "1");
        leave(1, 1, 10, "2023-12-05", "FS");
        leave(1, 1, 10, "2023-12-06", "S");
        for (const char* adjustment : {"24289, 1.5, 0, '2024-01-31'", "24289, 0.5, 0, '2024-01-31'",
                                       "24290, 0, 0.5, '2024-02-29'"})
            run(std::string("INSERT INTO LEV_ADJUSTMENT (EMPID, EMPDETID, ATTHEADID, LEVID, "
                            "MONTHYEAR, ALLOT, TAKEN, ASONDATE) VALUES (1, 1, 10, 10, ") +
                adjustment + ")");
        run("INSERT INTO ATT_ENCASH (EMPID, ENCASHSLNO, ADDENTRYID, ALLOTID, UPTODATE, MONTHYEAR, "
            "NOOFDAYS) SELECT 1, 1, 1, ALLOTID, '2024-03-31', 24291, 3 FROM LEV_ALLOTMENT WHERE "
            "EMPID = 1 AND ALLOTFROM = '2024-03-01'");
    }
    double balance(int leave, const std::string& on, const std::string& without = "1950-12-30",
                   int head = 0) {
        return GetClosingBalance(session, 1, leave, parseDate(on).value(),
                                 parseDate(without).value(), head);
    }
};

TEST(CarryOver, CountsLeaveAdjustmentsAndEncashments) {
    for (const Way way : {Way::Bulk, Way::RowByRow}) {
        Used p;
        p.process(way);
        EXPECT_EQ(p.balances(1, 10), "5/0 6/0 5.5/0 8.5/0 9/0 7/0");
    }
}

TEST(CarryOver, TheFirstRowOpensLessWhatWasTakenBefore) {
    for (const Way way : {Way::Bulk, Way::RowByRow}) {
        Used p;
        p.run("UPDATE LEV_ALLOTFROM SET ALLOTFROM = '2024-03-10', EDITEDYN = 1 WHERE EMPID = 1");
        p.ledgerRows();
        p.open(10, "9", "1");
        p.process(way);
        EXPECT_EQ(p.column("ALLOTFROM", 1, 10), "2024-03-10 2024-04-01");
        EXPECT_EQ(p.balances(1, 10), "7/0 5/0")
            << "9 less 1.5 and 0.5; the encashment stays with the row of its month";
        EXPECT_EQ(p.value("SELECT COUNT(*) FROM ATT_ENCASH"), "1");
    }
}

TEST(CarryOver, WithoutAFirstLeaveMonthAllThatWasEverTakenCounts) {
    for (const Way way : {Way::Bulk, Way::RowByRow}) {
        Used p;
        p.run("UPDATE MAS_OPTSETFEATURE SET LVSTARTMNYEAR = 0");
        p.session.gFeature.LVSTARTMNYEAR = 0;
        p.leave(1, 1, 10, "2021-02-01", "FS");
        p.process(way);
        EXPECT_EQ(p.balances(1, 10), "4/0 5/0 4.5/0 7.5/0 8/0 6/0");
    }
}

TEST(CarryOver, CompensatoryOffIsWhatWasWorked) {
    for (const Way way : {Way::Bulk, Way::RowByRow}) {
        Carried p;
        p.add(2, "COYN = 1");
        p.ledgerRows();
        p.leave(2, 1, 3, "2023-12-10", "FS");
        p.leave(2, 1, 3, "2024-01-14", "F");
        p.leave(2, 2, 3, "2024-01-21", "2.5");
        p.leave(2, 2, 2, "2024-02-05", "FS");
        p.process(way);
        EXPECT_EQ(p.column("ALLOTLEV", 2, 2), "0.00 1.00 0.50 2.50 0.00 0.00 0.00");
        EXPECT_EQ(p.balances(2, 2), "0/0 0/0 1/0 1.5/0 4/0 3/0 3/0");
    }
}

TEST(ClosingBalance, IsThatOfTheSliceThatHoldsTheDate) {
    Used p;
    p.add(11, "COYN = 1, RNDTYPE = 3");
    p.ledgerRows();
    p.open(11, "1.7", "0");
    p.process(Way::Bulk);
    EXPECT_EQ(p.balance(10, "2023-12-01"), 5.5) << "leave later in the month counts already";
    EXPECT_EQ(p.balance(10, "2023-12-05", "2023-12-05"), 6.5) << "the day entered again does not";
    EXPECT_EQ(p.balance(10, "2024-03-02"), 7) << "encashed up to the end of the month";
    EXPECT_EQ(p.balance(11, "2024-03-02"), 1) << "rounded down";
    EXPECT_EQ(p.balance(0, "2024-03-02"), 8) << "all leaves";
    EXPECT_EQ(p.balance(10, "2024-03-02", "1950-12-30", 10), 7);
    EXPECT_EQ(p.balance(10, "2024-03-02", "1950-12-30", 11), 5) << "no slice: the opening balance";
    EXPECT_EQ(p.balance(10, "2031-01-01"), 5);
    p.run("UPDATE LEV_ALLOTFROM SET ALLOTFROM = '2024-03-03' WHERE LEVID = 10");
    EXPECT_EQ(p.balance(10, "2024-03-02"), 0) << "not yet open";

    EXPECT_EQ(GetClosingBalance(p.session, 2, 11, parseDate("2024-01-03").value(), {}, 0), 1)
        << "of a divided month the slice of the date's version";
    p.run("UPDATE LEV_ALLOTMENT SET ALLOTLEV = 4 WHERE EMPID = 2 AND LEVID = 11 AND EMPDETID = 2");
    EXPECT_EQ(GetClosingBalance(p.session, 2, 11, parseDate("2024-01-03").value(), {}, 0), 1);
    EXPECT_EQ(GetClosingBalance(p.session, 2, 11, parseDate("2024-01-20").value(), {}, 0), 5);
}

TEST(ClosingBalance, CompensatoryOffIsNotFedByTheDayEnteredAgain) {
    Carried p;
    p.add(2, "COYN = 1");
    p.ledgerRows();
    p.leave(1, 1, 3, "2023-12-10", "FS");
    p.process(Way::Bulk);
    const DateTime day = parseDate("2023-12-10").value();
    EXPECT_EQ(GetClosingBalance(p.session, 1, 2, day, {}, 10), 1);
    EXPECT_EQ(GetClosingBalance(p.session, 1, 2, day, day, 10), 0);
    p.session.gAtt.ATTNTYPE = 4;
    EXPECT_EQ(GetClosingBalance(p.session, 1, 2, day, day, 10), 1) << "a monthly head";
}

}  // namespace
}  // namespace owb
