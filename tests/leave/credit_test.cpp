// Credits worked by hand: one leave for each case, all in one company over 2024 and half of 2025.
#include <gtest/gtest.h>

#include "leave/LeavePeriods.h"
#include "leave/ledger_company.h"

namespace owb {
namespace {

using test::LedgerCompany;
using test::Way;

constexpr int32_t kJan = 2024 * 12 + 1, kJul = kJan + 6, kLast = kJan + 17;

struct Case {
    const char* what;
    std::string settings;
    const char* number;
    int employee;
    const char* credits;  // "month:unrounded/rounded" where there is one; months from 1 to 18
};

// 1 works throughout, but for 15 days of unpaid leave in April 2024; 2 joined on 1 July 2024; 3
// left on 15 February 2024 after three days of paid leave in January; 4 changed to head 11 on 16
// August 2024; 5 joined on 15 July 2024 and took two days of paid leave in August.
const Case kCases[] = {
    {"a row's own days: 31, 29 and 31 of 30", "ALLOTTYPE = 0, ALLOTON = 0", "1.5", 3,
     "1:1.55/1.55 2:0.75/0.75"},
    {"no proportion", "ALLOTTYPE = 0, ALLOTON = 3", "1.5", 3, "1:1.50/1.50 2:1.50/1.50"},
    {"30 days at most", "ALLOTTYPE = 0, ALLOTON = 4", "1.5", 3, "1:1.50/1.50 2:0.75/0.75"},
    {"Pay Days of the slice, rounded up to half a day",
     "ALLOTTYPE = 0, ALLOTON = 1, ALLOTRNDTYPE = 2", "1", 3, "1:1.03/1.50 2:0.50/0.50"},
    {"odd months", "ALLOTTYPE = 1, ALLOTON = 3, ALLOTFOR = 1", "1", 2,
     "7:1.00/1.00 9:1.00/1.00 11:1.00/1.00 13:1.00/1.00 15:1.00/1.00 17:1.00/1.00"},
    {"even months, by the days of the slice", "ALLOTTYPE = 1, ALLOTON = 0, ALLOTFOR = 2", "2", 3,
     "2:1.03/1.03"},
    {"Pay Days of the month", "ALLOTTYPE = 1, ALLOTON = 1", "1.5", 1,
     "1:1.50/1.50 2:1.50/1.50 3:1.50/1.50 4:0.75/0.75 5:1.50/1.50 6:1.50/1.50 7:1.50/1.50 "
     "8:1.50/1.50 9:1.50/1.50 10:1.50/1.50 11:1.50/1.50 12:1.50/1.50 13:1.50/1.50 14:1.50/1.50 "
     "15:1.50/1.50 16:1.50/1.50 17:1.50/1.50 18:1.50/1.50"},
    {"fewer days than the minimum", "ALLOTTYPE = 1, ALLOTON = 2, MINLEVDAYS = 16, ALLOTFOR = 2",
     "1", 1,
     "2:1.00/1.00 6:1.00/1.00 8:1.00/1.00 10:1.00/1.00 12:1.00/1.00 14:1.00/1.00 16:1.00/1.00 "
     "18:1.00/1.00"},
    {"bases of the Period type earn nothing monthly", "ALLOTTYPE = 1, ALLOTON = 7", "1", 1, ""},
    {"the month before: none for the first, April counts in May",
     "ALLOTTYPE = 1, ALLOTON = 1, ALLOTASPER = 1, ALLOTFOR = 1", "2", 1,
     "3:2.00/2.00 5:1.00/1.00 7:2.00/2.00 9:2.00/2.00 11:2.00/2.00 13:2.00/2.00 15:2.00/2.00 "
     "17:2.00/2.00"},
    {"a head of its own gets the month's leave again", "ALLOTTYPE = 1, ALLOTON = 3", "1", 4,
     "1:1.00/1.00 2:1.00/1.00 3:1.00/1.00 4:1.00/1.00 5:1.00/1.00 6:1.00/1.00 7:1.00/1.00 "
     "8:1.00/1.00 8:1.00/1.00 9:1.00/1.00 10:1.00/1.00 11:1.00/1.00 12:1.00/1.00 13:1.00/1.00 "
     "14:1.00/1.00 15:1.00/1.00 16:1.00/1.00 17:1.00/1.00 18:1.00/1.00"},
    {"a joiner's calendar year: 184 of 366 days", "ALLOTTYPE = 2, ALLOTON = 1, ALLOTRNDTYPE = 1",
     "12", 2, "7:6.03/6.00 13:12.00/12.00"},
    {"the ledger begins in the financial year: 91 of 366", "ALLOTTYPE = 2, ALLOTON = 2", "12", 1,
     "1:2.98/2.98 4:12.00/12.00 16:12.00/12.00"},
    {"a change of head divides the year: 228 and 138 of 366", "ALLOTTYPE = 2, ALLOTON = 1", "12", 4,
     "1:7.48/7.48 8:4.52/4.52 13:12.00/12.00"},
    {"quarters", "ALLOTTYPE = 3", "3", 2, "7:3.00/3.00 10:3.00/3.00 13:3.00/3.00 16:3.00/3.00"},
    {"a leaver's quarter: 46 of 91 days", "ALLOTTYPE = 3", "3", 3, "1:1.52/1.52"},
    {"a leaver's quarter in full", "ALLOTTYPE = 3, EXCLDOLYN = 1", "3", 3, "1:3.00/3.00"},
    {"a joiner's quarter: 78 of 92 days", "ALLOTTYPE = 3", "3", 5,
     "7:2.54/2.54 10:3.00/3.00 13:3.00/3.00 16:3.00/3.00"},
    {"a joiner's month counts whole", "ALLOTTYPE = 3, EXCLDOJYN = 1", "3", 5,
     "7:3.00/3.00 10:3.00/3.00 13:3.00/3.00 16:3.00/3.00"},
    {"calendar half years", "ALLOTTYPE = 4, ALLOTON = 1", "6", 2, "7:6.00/6.00 13:6.00/6.00"},
    {"financial half years: 92 of 183 days", "ALLOTTYPE = 4, ALLOTON = 2", "6", 2,
     "7:3.02/3.02 10:6.00/6.00 16:6.00/6.00"},
    {"20 days present earn one: 351 days of the year before",
     "ALLOTTYPE = 2, ALLOTON = 1, ALLOTASPER = 1, ALLOTFOR = 2, MINLEVDAYS = 240, ALLOTRNDTYPE = 5",
     "18.3", 1, "1:18.30/18.50 13:17.55/17.50"},
    {"service in the year before: 184 of 366 days",
     "ALLOTTYPE = 2, ALLOTON = 1, ALLOTASPER = 1, ALLOTFOR = 0", "12", 2, "13:6.03/6.03"},
    {"the quarter before: Pay Days 76 of 91",
     "ALLOTTYPE = 3, ALLOTASPER = 1, ALLOTFOR = 1, MINLEVDAYS = 76", "3", 1,
     "4:3.00/3.00 7:2.51/2.51 10:3.00/3.00 13:3.00/3.00 16:3.00/3.00"},
    {"the half year before, whatever was worked",
     "ALLOTTYPE = 4, ALLOTON = 1, ALLOTASPER = 1, ALLOTFOR = 3", "5", 1,
     "1:5.00/5.00 7:5.00/5.00 13:5.00/5.00"},
    {"a period has no further basis", "ALLOTTYPE = 4, ALLOTON = 1, ALLOTASPER = 1, ALLOTFOR = 4",
     "5", 1, ""},
    {"Present Days of the quarter before: 76 of 92",
     "ALLOTTYPE = 3, ALLOTASPER = 1, ALLOTFOR = 2, MINLEVDAYS = 76", "3", 5,
     "10:2.48/2.48 13:3.00/3.00 16:3.00/3.00"},
    {"its Pay Days: 78", "ALLOTTYPE = 3, ALLOTASPER = 1, ALLOTFOR = 1, MINLEVDAYS = 78", "3", 5,
     "10:2.54/2.54 13:3.00/3.00 16:3.00/3.00"},
    // Employee 3 was present on 28 of 31 days in January, on 15 of 29 in February.
    {"Present Days of the slice", "ALLOTTYPE = 0, ALLOTON = 2", "3", 3, "1:2.80/2.80 2:1.50/1.50"},
    {"the last basis: without weekly holidays", "ALLOTTYPE = 0, ALLOTON = 9", "3", 3,
     "1:3.10/3.10 2:1.50/1.50"},
    {"there is no further one", "ALLOTTYPE = 0, ALLOTON = 10", "3", 3, ""},
    {"exactly the minimum of Present Days", "ALLOTTYPE = 1, ALLOTON = 2, MINLEVDAYS = 28", "31", 3,
     "1:28.00/28.00"},
    {"exactly the minimum in the month before",
     "ALLOTTYPE = 1, ALLOTON = 2, ALLOTASPER = 1, MINLEVDAYS = 28", "31", 3, "2:28.00/28.00"},
    {"below it", "ALLOTTYPE = 1, ALLOTON = 2, ALLOTASPER = 1, MINLEVDAYS = 28.5", "31", 3, ""},
    {"Pay Days of the month before", "ALLOTTYPE = 1, ALLOTON = 1, ALLOTASPER = 1, MINLEVDAYS = 31",
     "31", 3, "2:31.00/31.00"},
    {"the days of the month before", "ALLOTTYPE = 1, ALLOTON = 0, ALLOTASPER = 1", "2", 3,
     "2:2.00/2.00"},
    {"whatever the month before held", "ALLOTTYPE = 1, ALLOTON = 3, ALLOTASPER = 1", "2", 3,
     "2:2.00/2.00"},
    {"up to the last basis", "ALLOTTYPE = 1, ALLOTON = 9, ALLOTASPER = 1", "2", 3, "2:2.00/2.00"},
    {"and none further", "ALLOTTYPE = 1, ALLOTON = 10, ALLOTASPER = 1", "2", 3, ""},
};
constexpr int kFirstLeave = 10;

class Worked : public LedgerCompany {
  public:
    Worked() : LedgerCompany(kJan, kLast) {
        head({10, 2});
        head({11, 2});
        employee(1, "2020-01-01", 10);
        employee(2, "2024-07-01", 10);
        employee(3, "2020-01-01", 10, "2024-02-15");
        employee(4, "2020-01-01", 10);
        employee(5, "2024-07-15", 10);
        version(4, 2, "2024-08-16", 11);
        salary(1, 1, kJan, kLast);
        salary(2, 1, kJul, kLast);
        salary(3, 1, kJan, kJan + 1);
        salary(4, 1, kJan, kJan + 7);
        salary(4, 2, kJan + 7, kLast);
        salary(5, 1, kJul, kLast);
        leaveKind(5, "CL", false);
        for (const char* day : {"2024-01-02", "2024-01-03", "2024-01-04"})
            leave(3, 1, 5, day, "FS");
        for (const char* day : {"2024-08-01", "2024-08-02"}) leave(5, 1, 5, day, "FS");
        for (int day = 1; day <= 15; ++day)
            leave(1, 1, 1, "2024-04-" + std::string(day < 10 ? "0" : "") + text(day), "FS");
    }
    void add(int leave, const Case& c) {
        for (int head : {10, 11}) {
            rule(leave, head, kJan, "AUTOALLOTYN = 1, COYN = 1, " + c.settings);
            const bool yearly = c.settings.find("ALLOTTYPE = 2") != std::string::npos;
            figure(leave, head, yearly ? 2023 : kJan, c.number);
        }
    }
    std::string credits(int employee, int leave) {
        return column(
            "CAST([dbo].FnLngMonthYear(ALLOTFROM, ALLOTTO) - 24288 AS varchar(2)) + ':' + "
            "CAST(ACTALLOTLEV AS varchar(10)) + '/' + CAST(ALLOTLEV AS varchar(10))",
            employee, leave, " AND ACTALLOTLEV <> 0");
    }
};

TEST(Credit, EachTypeBasisAndPeriod) {
    Worked p;
    int leave = kFirstLeave;
    for (const Case& c : kCases) p.add(leave++, c);
    p.ledgerRows();
    for (const Way way : {Way::Bulk, Way::RowByRow}) {
        p.spoil();
        p.process(way);
        leave = kFirstLeave;
        for (const Case& c : kCases) EXPECT_EQ(p.credits(c.employee, leave++), c.credits) << c.what;
    }
    EXPECT_EQ(p.value("SELECT COUNT(*) FROM LEV_ALLOTMENT WHERE EDITMODEYN = 1"), "0");
    EXPECT_TRUE(p.boxes.shown.empty());
}

TEST(Credit, ASettingThatBeginsInMidYearDividesIt) {
    Worked p;
    p.rule(10, 10, kJan, "AUTOALLOTYN = 1, ALLOTTYPE = 2, ALLOTON = 1");
    p.figure(10, 10, 2024, "12");
    p.rule(10, 10, kJul, "AUTOALLOTYN = 1, ALLOTTYPE = 2, ALLOTON = 1, ALLOTRNDTYPE = 4");
    p.ledgerRows();
    p.process(Way::Bulk);
    EXPECT_EQ(p.credits(1, 10), "1:5.97/5.97 7:6.03/7.00 13:12.00/12.00")
        << "182 and 184 of 366 days";
}

// A version that changes the branch alone does not hide the setting that ends the service.
TEST(Credit, ALaterSettingEndsTheServiceOfEveryVersion) {
    Worked p;
    p.version(1, 2, "2024-06-16", 10, 2);
    p.run("UPDATE SLC_SALARYCALC_E SET EMPDETID = 2 WHERE EMPID = 1 AND MONTHYEAR > 24294");
    p.salary(1, 2, kJan + 5, kJan + 5);
    p.rule(10, 10, kJan, "AUTOALLOTYN = 1, ALLOTTYPE = 2, ALLOTON = 1");
    p.figure(10, 10, 2024, "12");
    p.rule(10, 10, kJan + 9, "AUTOALLOTYN = 1, ALLOTTYPE = 2, ALLOTON = 1");
    p.ledgerRows();
    p.process(Way::Bulk);
    EXPECT_EQ(p.credits(1, 10), "1:8.98/8.98 10:3.02/3.02 13:12.00/12.00")
        << "274 and 92 of 366 days";
}

TEST(Credit, FiguresChangeByMonthOrYear) {
    Worked p;
    p.rule(10, 10, kJan, "AUTOALLOTYN = 1, ALLOTTYPE = 3");
    p.figure(10, 10, kJan, "3");
    p.figure(10, 10, kJul, "2");
    p.rule(11, 10, kJan, "AUTOALLOTYN = 1, ALLOTTYPE = 2, ALLOTON = 1");
    p.figure(11, 10, 2025, "8");
    p.rule(12, 10, kJan, "AUTOALLOTYN = 1, ALLOTTYPE = 2, ALLOTON = 2");
    p.figure(12, 10, 2024, "8");
    p.ledgerRows();
    p.process(Way::Bulk);
    EXPECT_EQ(p.credits(1, 10),
              "1:3.00/3.00 4:3.00/3.00 7:2.00/2.00 10:2.00/2.00 13:2.00/2.00 16:2.00/2.00");
    EXPECT_EQ(p.credits(1, 11), "13:8.00/8.00") << "none in force in 2024";
    EXPECT_EQ(p.credits(1, 12), "4:8.00/8.00 16:8.00/8.00") << "January 2024 is of the year 2023";
}

TEST(Credit, OwnQueriesAndFormulasReplaceTheNumber) {
    Worked p;
    struct Query {
        const char *text, *credits;
    };
    int leave = 10;
    for (const Query& q :
         {Query{"SELECT $empid$ + 0.25", "1:1.25/1.25 2:1.25/1.25"},
          {"SELECT $LEVID$ - 10 + $EMPDETID$ FROM MAS_EMPLOYEE WHERE EMPID = 99", ""},
          {"", "1:4.00/4.00 2:4.00/4.00"}}) {
        p.rule(leave, 10, kJan, "AUTOALLOTYN = 1, ALLOTON = 3");
        p.figure(leave, 10, kJan, "4");
        p.run("INSERT INTO MAS_FORMULACUSTOM (FID, FQUERY, MODULEID) VALUES (" + p.text(leave) +
              ", '" + q.text + "', 2)");
        p.run("UPDATE LEV_ALLOTCONFIG SET QUERYYN = 1, FID = LEVID WHERE LEVID = " + p.text(leave));
        ++leave;
    }
    p.rule(13, 10, kJan, "AUTOALLOTYN = 1, ALLOTTYPE = 1, ALLOTON = 0");
    p.figure(13, 10, kJan, "4");
    p.run("INSERT INTO MAS_FORMULA (FORMULAID, FORMULA) VALUES (3, 'Days{PAY DAYS} / 10')");
    p.run("UPDATE LEV_ALLOTCONFIG SET QUERYYN = 2, FID = 3 WHERE LEVID = 13");
    p.run("DELETE FROM SLC_SALARYCALC_E WHERE EMPID <> 1 OR MONTHYEAR > 24290");
    p.ledgerRows();
    p.process(Way::Bulk);
    EXPECT_EQ(p.credits(1, 10), "1:1.25/1.25 2:1.25/1.25");
    EXPECT_EQ(p.credits(1, 11), "") << "no row is no leave";
    EXPECT_EQ(p.credits(1, 12), "1:4.00/4.00 2:4.00/4.00") << "without a query the number stands";
    EXPECT_EQ(p.credits(1, 13), "1:3.10/3.10 2:2.90/2.90") << "by a formula";
}

TEST(Credit, WhatCannotBeWorkedOutIsToldOnceAndStaysMarked) {
    for (const Way way : {Way::Bulk, Way::RowByRow}) {
        Worked p;
        p.rule(10, 10, kJan, "AUTOALLOTYN = 1");
        p.figure(10, 10, kJan, "1", "0");
        p.rule(11, 10, kJan, "AUTOALLOTYN = 1");
        p.figure(11, 10, kJan, "1", "31");
        p.ledgerRows();
        p.process(way);
        EXPECT_EQ(p.value("SELECT COUNT(*) FROM LEV_ALLOTMENT WHERE EDITMODEYN = 1 AND LEVID = 10"),
                  p.value("SELECT COUNT(*) FROM LEV_ALLOTMENT WHERE LEVID = 10"));
        EXPECT_EQ(p.value("SELECT COUNT(*) FROM LEV_ALLOTMENT WHERE EDITMODEYN = 1 AND LEVID = 11"),
                  "0");
        EXPECT_EQ(p.credits(3, 11), "1:1.00/1.00 2:0.48/0.48");
        for (const Box& box : p.boxes.shown) {
            EXPECT_EQ(box.text, "11: Division by zero\n\nEmployee 1, 2, 3, 4, 5");
            EXPECT_EQ(box.title, "");
        }
        EXPECT_EQ(p.boxes.shown.size(), way == Way::Bulk ? 2U : 1U) << "one for each pass";
    }
}

TEST(Credit, FollowsDaysSavedForOneMonth) {
    Worked p;
    p.setOptions(10, "AUTOALLOTYN = 1");
    p.rule(10, 10, kJan, "AUTOALLOTYN = 1, ALLOTTYPE = 1, ALLOTON = 1, COYN = 1");
    p.figure(10, 10, kJan, "3");
    p.reconcile();
    p.ledgerRows();
    p.process(Way::Bulk);
    EXPECT_EQ(p.column("ALLOTLEV", 1, 10, " AND MONTH(ALLOTFROM) = 4"), "1.50 3.00");
    p.run("DELETE FROM LEV_DETAILS WHERE DAY(LEAVEDATE) > 5");
    double nod = 0, ndp = 0;
    SaveMonthDays(p.session, nod, ndp, 1, 1, kJan + 3, parseDate("2024-04-01").value(),
                  parseDate("2024-04-30").value(), 10);
    EXPECT_EQ(nod, 25);
    EXPECT_EQ(p.column("ALLOTLEV", 1, 10, " AND MONTH(ALLOTFROM) = 4"), "2.50 3.00");
    EXPECT_EQ(p.value("SELECT COUNT(*) FROM LEV_ALLOTMENT WHERE EMPID = 1 AND EDITMODEYN = 1"),
              "0");
    EXPECT_EQ(p.column("COLEV", 1, 10, " AND ALLOTFROM = '2024-05-01'"), "11.50");
}

TEST(Periods, FollowTheYearTypeAndTheDayOnWhichMonthsBegin) {
    struct Bounds {
        const char* what;
        int type, yearType;  // ALLOTTYPE, ALLOTON
        int32_t month;
        const char *calendar, *midMonth, *before;  // months from the 1st, from the 26th; the last
    };
    const Bounds kBounds[] = {
        {"calendar year", 2, 1, kJul, "2024-01-01 2024-12-31", "2023-12-26 2024-12-25",
         "2023-01-01 2023-12-31"},
        {"financial year from January", 2, 2, kJan + 12, "2024-04-01 2025-03-31",
         "2024-03-26 2025-03-25", "2023-04-01 2024-03-31"},
        {"financial year from April", 2, 2, kJan + 15, "2025-04-01 2026-03-31",
         "2025-03-26 2026-03-25", "2024-03-26 2025-03-25"},
        {"quarter", 3, 0, kJan + 4, "2024-04-01 2024-06-30", "2024-03-26 2024-06-25",
         "2023-12-26 2024-03-25"},
        {"first quarter of all", 3, 0, kJan, "2024-01-01 2024-03-31", "2023-12-26 2024-03-25",
         "2020-01-01 1950-01-01"},
        {"calendar half year", 4, 1, kJan + 13, "2025-01-01 2025-06-30", "2024-12-26 2025-06-25",
         "2024-06-26 2024-12-25"},
        {"financial half year", 4, 2, kJan + 12, "2024-10-01 2025-03-31", "2024-09-26 2025-03-25",
         "2024-03-26 2024-09-25"},
    };
    for (const bool midMonth : {false, true}) {
        LedgerCompany p(kJan, kLast);
        p.employee(1, "2020-01-01");
        if (midMonth) {
            p.run("UPDATE MAS_OPTSETFEATURE SET CALCINMIDYN = 1");
            p.run(
                "UPDATE MAS_MONTHYEAR SET CALCENDDATE = CALCSTARTDATE + 24, CALCSTARTDATE = "
                "DATEADD(MONTH, -1, CALCSTARTDATE + 25)");
            p.session.gFeature.CALCINMIDYN = true;
        }
        LeavePeriods periods(p.session);
        auto text = [](const DateTime& from, const DateTime& to) {
            return isoText(from) + " " + isoText(to);
        };
        for (const Bounds& b : kBounds) {
            DateTime from, to;
            periods.GetBounds(b.type, b.yearType, b.month, from, to);
            EXPECT_EQ(text(from, to), midMonth ? b.midMonth : b.calendar) << b.what;
            if (!midMonth) continue;
            double days = 0, service = 0;
            periods.GetPrevBounds(1, b.type, b.yearType, b.month, from, to, days, service);
            EXPECT_EQ(text(from, to), b.before) << b.what;
        }
    }
}

}  // namespace
}  // namespace owb
