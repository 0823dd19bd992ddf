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
    };
    for (const Case& c :
         {Case{"fixed days", "ATTNTYPE = 2, NODFORCALC = 1", "30 29 23"},
          {"calendar days: leave on the Sunday went off once", "ATTNTYPE = 2, NODFORCALC = 2",
           "30 29 23"},
          {"edited days", "ATTNTYPE = 2, NODFORCALC = 3", "26 25 19"},
          {"working days", "ATTNTYPE = 2, NODFORCALC = 4", "24 23 22"},
          {"working days and weekly holidays", "ATTNTYPE = 2, NODFORCALC = 5", "29 28 23"},
          {"working days and holidays", "ATTNTYPE = 2, NODFORCALC = 6", "25 24 22"},
          {"a month's figure", "ATTNTYPE = 4, NODFORCALC = 2", "30 27.5 22.5"}}) {
        p.setHead(10, c.head);
        double nwd = -1, pay = -1, present = -1;
        bool workingDaysOnly = false, prorate = true;
        clsNODNDP legacy(p.session);
        EXPECT_TRUE(legacy.SetNODNDP(nwd, pay, present, 1, 1, kJune, 10,
                                     DateTime::fromCivil(2024, 6, 1),
                                     DateTime::fromCivil(2024, 6, 30), workingDaysOnly, prorate));
        EXPECT_EQ(Value(nwd).toText() + " " + Value(pay).toText() + " " + Value(present).toText(),
                  c.days)
            << c.what;
        EXPECT_EQ(legacy.FnStrGetMonthEndDate(kJune), "30/Jun/2024");
    }
}

}  // namespace
}  // namespace owb
