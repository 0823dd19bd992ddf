#include <gtest/gtest.h>

#include "calendar/clsNODNDP.h"
#include "support/payroll.h"

namespace owb {
namespace {

using test::Payroll;

constexpr int32_t kJune = 2024 * 12 + 6;

// Sundays are off (2, 9, 16, 23, 30 June 2024), and the 17th. A paid day is taken on the 4th, an
// unpaid one on Sunday the 9th.
TEST(LegacyDaysPayable, OfTheTablesBeforeTheLedger) {
    Payroll p(kJune, kJune);
    p.leaveKind(5, "CL", false);
    p.leaveKind(6, "UL", true);
    p.holiday(1, "2024-06-17");
    p.employee(1, "2020-01-01", 10);
    p.run(
        "INSERT INTO ATT_WEEKLY (ATTHEADID, WEEKDAYNAME, FIRSTHALF, SECONDHALF) VALUES (10, "
        "'Sunday', 1, 1)");
    p.run(
        "INSERT INTO ATT_DETAIL (EMPID, LEVID, LEVDATE, FIRSTHALFYN, SECONDHALFYN) VALUES (1, 5, "
        "'2024-06-04', 1, 1), (1, 6, '2024-06-09', 1, 1)");
    p.run("INSERT INTO ATT_MONTH (ATTSLNO, EMPID, EMPDETID, MONTHYEAR) VALUES (7, 1, 1, 24294)");
    p.run("INSERT INTO ATT_MONTHLEV (ATTSLNO, LEVID, LEVVALUE) VALUES (7, 6, 2.5)");
    p.run("INSERT INTO SLC_ATTHEADNOD (ATTHEADID, MONTHYEAR, NOD) VALUES (10, 24294, 26)");
    p.head({10});
    struct Case {
        const char* what;
        const char* head;
        const char* days;  // NWD, pay, present
        bool workingDaysOnly = false, prorate = true;
        int from = 1, to = 30;
        bool tight = true;
    };
    for (const Case& c :
         {Case{"fixed days", "ATTNTYPE = 2, NODFORCALC = 1", "30 29 23"},
          {"calendar days: leave on the Sunday went off once", "ATTNTYPE = 2, NODFORCALC = 2",
           "30 29 23"},
          {"edited days", "ATTNTYPE = 2, NODFORCALC = 3", "26 25 19"},
          {"working days", "ATTNTYPE = 2, NODFORCALC = 4", "24 23 22"},
          {"working days and weekly holidays", "ATTNTYPE = 2, NODFORCALC = 5", "29 28 23"},
          {"working days and holidays", "ATTNTYPE = 2, NODFORCALC = 6", "25 24 22"},
          {"a month's figure", "ATTNTYPE = 4, NODFORCALC = 2", "30 27.5 22.5"},
          {"the 11th to the 20th of fixed days", "ATTNTYPE = 2, NODFORCALC = 1", "30 10 8", false,
           true, 11, 20},
          {"not prorated", "ATTNTYPE = 2, NODFORCALC = 3", "26 26 24", false, false, 11, 20},
          {"no leave is looked at", "ATTNTYPE = 2, NODFORCALC = 2", "30 30 25", true},
          {"not prorated, leave still counts", "ATTNTYPE = 2, NODFORCALC = 2", "30 29 23", false,
           false},
          {"an independent head knows loss of pay only", "ATTNTYPE = 2, NODFORCALC = 2", "30 30 25",
           false, false, 1, 30, false},
          {"prorated it is like any other", "ATTNTYPE = 2, NODFORCALC = 2", "30 29 23", false, true,
           1, 30, false}}) {
        p.setHead(10, std::string(c.tight ? "ATTNTIGHTYN = 1, " : "ATTNTIGHTYN = 0, ") + c.head);
        double nwd = -1, pay = -1, present = -1;
        bool workingDaysOnly = c.workingDaysOnly, prorate = c.prorate;
        clsNODNDP legacy(p.session);
        EXPECT_TRUE(legacy.SetNODNDP(nwd, pay, present, 1, 1, kJune, 10,
                                     DateTime::fromCivil(2024, 6, c.from),
                                     DateTime::fromCivil(2024, 6, c.to), workingDaysOnly, prorate));
        EXPECT_EQ(Value(nwd).toText() + " " + Value(pay).toText() + " " + Value(present).toText(),
                  c.days)
            << c.what;
        EXPECT_EQ(legacy.FnStrGetMonthEndDate(kJune), "30/Jun/2024");
    }

    auto holidays = [&](int from, int to, int mode) {
        double off = -1;
        clsNODNDP(p.session).FnDblGetHoliday(10, DateTime::fromCivil(2024, 6, from),
                                             DateTime::fromCivil(2024, 6, to), 0, mode, off);
        return off;
    };
    EXPECT_EQ(holidays(16, 17, 1), 2) << "both ends";
    EXPECT_EQ(holidays(16, 17, 2), 1) << "weekly";
    EXPECT_EQ(holidays(16, 17, 3), 1) << "general";
    p.rotating(10, 0, "2024-06-16", "");
    p.rotating(10, 0, "2024-06-18", "F");
    EXPECT_EQ(holidays(16, 18, 2), 0.5) << "a dated row stands before the week's";
    p.exceptHead(1, 10);
    EXPECT_EQ(holidays(16, 18, 3), 0);

    p.run("DROP TABLE ATT_DETAIL");
    double nwd = -1, pay = -1, present = -1;
    bool workingDaysOnly = false, prorate = true;
    EXPECT_FALSE(clsNODNDP(p.session).SetNODNDP(
        nwd, pay, present, 1, 1, kJune, 10, DateTime::fromCivil(2024, 6, 1),
        DateTime::fromCivil(2024, 6, 30), workingDaysOnly, prorate));
    EXPECT_EQ(pay, -1) << "an error leaves the outputs";
}

}  // namespace
}  // namespace owb
