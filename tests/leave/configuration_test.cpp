// What a start makes of changes in the masters: which rows it marks, changes in place, makes and
// takes out. Months from January to April 2024; employee 2 is the one whom nothing happens to.
#include <gtest/gtest.h>

#include "leave/ConfigurationPass.h"
#include "leave/ledger_company.h"

namespace owb {
namespace {

using test::LedgerCompany;

constexpr int32_t kJan = 2024 * 12 + 1, kMar = kJan + 2, kApr = kJan + 3;

// Two leaves: 5 is credited 12 a year, the credit of 6 is entered by hand.
class Started : public LedgerCompany {
  public:
    Started() : LedgerCompany(kJan, kApr) {
        run("UPDATE ATT_DEFINITION SET ALLOTMENTYN = 0 WHERE LEVID = 2");
        head({10, 2});
        head({11, 2});
        for (int id : {1, 2}) {
            employee(id, "2020-01-01", 10);
            salary(id, 1, kJan, kApr);
        }
        for (int head : {10, 11}) {
            rule(5, head, kJan, "AUTOALLOTYN = 1, ALLOTTYPE = 2, ALLOTON = 1, COYN = 1");
            figure(5, head, 2024, "12", "366");
            rule(6, head, kJan, "COYN = 1");
        }
        settle();
    }
    // A start without the passes; the texts that it shows.
    size_t start() {
        struct Texts final : Progress {
            void status(const std::string&) override { ++count; }
            void step(size_t, size_t) override {}
            bool cancelled() const override { return false; }
            size_t count = 0;
        } texts;
        EXPECT_TRUE(ConfigurationPass(session, texts).Run());
        return texts.count;
    }
    void settle() {
        start();
        NoProgress progress;
        recalculate();
        ProcessAllotments(session, progress);
        ProcessAllotmentsOld(session, progress, "");
    }
    // Marked months of an employee: of the month rows, the registers and the ledger.
    std::string marked(int employee) {
        const std::string of = " AND EMPID = " + text(employee) + " ORDER BY 1";
        return rows("SELECT DISTINCT MONTHYEAR - 24288 FROM LEV_MONTHDET WHERE EDITMODEYN = 1" +
                    of) +
               "; " +
               rows("SELECT DISTINCT MONTHYEAR - 24288 FROM ATT_DAYTODAY WHERE EDITMODEYN = 1" +
                    of) +
               "; " +
               rows("SELECT DISTINCT MONTH(ALLOTFROM) FROM LEV_ALLOTMENT WHERE EDITMODEYN = 1" +
                    of);
    }
    std::string slices(int leave = 6) {
        return column(
            "CAST(EMPDETID AS varchar(2)) + ' ' + CAST(ATTHEADID AS varchar(2)) + ' ' + "
            "CONVERT(varchar(5), ALLOTFROM, 1) + '-' + CONVERT(varchar(5), ALLOTTO, 1)",
            1, leave);
    }
    std::string number(const std::string& from, int leave = 6) {
        return column("ALLOTID", 1, leave, " AND ALLOTFROM = '" + from + "'");
    }
    std::string maxNumber() { return value("SELECT MAX(ALLOTID) FROM LEV_ALLOTMENT"); }
};

TEST(Start, MarksFromTheDayOnWhichAMasterDiffers) {
    struct Change {
        const char* what;
        const char* before;  // stands, and is worked out, when `sql` comes
        const char* sql;
        const char* marked;
    };
    for (const Change& c : {
             Change{"nothing", "", "", "; ; "},
             {"he leaves on the last day of a month", "",
              "UPDATE MAS_EMPLOYEE SET DOL = '2024-03-31' WHERE EMPID = 1", "3 4; 3 4; 1 2 3"},
             {"on the last day of all", "",
              "UPDATE MAS_EMPLOYEE SET DOL = '2024-04-30' WHERE EMPID = 1", "4; 4; 1 2 3 4"},
             {"on the first day of a month", "",
              "UPDATE MAS_EMPLOYEE SET DOL = '2024-04-01' WHERE EMPID = 1", "4; 4; 1 2 3 4"},
             {"he stays", "UPDATE MAS_EMPLOYEE SET DOL = '2024-04-30' WHERE EMPID = 1",
              "UPDATE MAS_EMPLOYEE SET DOL = NULL WHERE EMPID = 1", "4; 4; 1 2 3 4"},
             {"he leaves later", "UPDATE MAS_EMPLOYEE SET DOL = '2024-02-29' WHERE EMPID = 1",
              "UPDATE MAS_EMPLOYEE SET DOL = '2024-03-31' WHERE EMPID = 1", "2 3 4; 2 3 4; 1 2 3"},
             {"another branch", "", "UPDATE MAS_EMPLOYEEDET SET BRANCHID = 7 WHERE EMPID = 1",
              "1 2 3 4; 1 2 3 4; 1 2 3 4"},
             {"a branch where none was",
              "UPDATE MAS_EMPLOYEEDET SET BRANCHID = NULL WHERE EMPID = 1",
              "UPDATE MAS_EMPLOYEEDET SET BRANCHID = 1 WHERE EMPID = 1",
              "1 2 3 4; 1 2 3 4; 1 2 3 4"},
             {"another day of joining", "",
              "UPDATE MAS_EMPLOYEE SET DOJ = '2024-02-01' WHERE EMPID = 1",
              "1 2 3 4; 1 2 3 4; 1 2 3 4"},
             {"another first day of salary",
              "UPDATE MAS_EMPLOYEE SET SALCALCFROM = '2024-04-01' "
              "WHERE EMPID = 1",
              "UPDATE MAS_EMPLOYEE SET SALCALCFROM = '2024-03-01' WHERE EMPID = 1",
              "3 4; 3 4; 1 2 3 4"},
             {"a branch transfer from a 16th on", "",
              "UPDATE MAS_EMPLOYEEDET SET EFFTODATE = '2024-03-15' WHERE EMPID = 1 INSERT INTO "
              "MAS_EMPLOYEEDET (EMPID, EMPDETID, EFFFROMDATE, ATTHEADID, BRANCHID, STRUCTID) "
              "VALUES (1, 2, '2024-03-16', 10, 2, 1) UPDATE SLC_SALARYCALC_E SET EMPDETID = 2 "
              "WHERE EMPID = 1 AND MONTHYEAR >= 24291",
              "3 4; 3 4; 1 2 3 4"},
             {"but not in a month whose tax has been ported",
              "UPDATE MAS_MONTHYEAR SET TDSPORTYN = 1 WHERE MONTHYEAR = 24290",
              "UPDATE MAS_EMPLOYEEDET SET BRANCHID = 7 WHERE EMPID = 1", "1 3 4; 1 3 4; 1 2 3 4"},
         }) {
        Started p;
        if (*c.before) {
            p.run(c.before);
            p.settle();
        }
        if (*c.sql) p.run(c.sql);
        p.start();
        EXPECT_EQ(p.marked(1), c.marked) << c.what;
        EXPECT_EQ(p.marked(2), "; ; ") << c.what;
        p.settle();
        EXPECT_EQ(p.marked(1), "; ; ") << c.what;
        p.start();
        EXPECT_EQ(p.marked(1), "; ; ") << c.what << ", once";
    }
}

TEST(Start, ALeavingOnTheLastDayCutsTheYearsCredit) {
    Started p;
    EXPECT_EQ(p.column("ALLOTLEV", 1, 5), "12.00 0.00 0.00 0.00");
    p.run("UPDATE MAS_EMPLOYEE SET DOL = '2024-04-30' WHERE EMPID = 1");
    p.settle();
    EXPECT_EQ(p.column("ALLOTLEV", 1, 5), "3.97 0.00 0.00 0.00") << "121 of 366 days";
    p.run("UPDATE MAS_EMPLOYEE SET DOL = NULL WHERE EMPID = 1");
    p.settle();
    EXPECT_EQ(p.column("ALLOTLEV", 1, 5), "12.00 0.00 0.00 0.00");
}

// A change of head on 16 March that is entered in April.
class Transferred : public Started {
  public:
    void transfer() {
        version(1, 2, "2024-03-16", 11);
        run("UPDATE SLC_SALARYCALC_E SET EMPDETID = 2 WHERE EMPID = 1 AND MONTHYEAR = 24292");
        salary(1, 2, kMar, kMar);
    }
    void takeBack() {
        run("DELETE FROM MAS_EMPLOYEEDET WHERE EMPID = 1 AND EMPDETID = 2 UPDATE MAS_EMPLOYEEDET "
            "SET EFFTODATE = NULL WHERE EMPID = 1 DELETE FROM SLC_SALARYCALC_E WHERE EMPID = 1 AND "
            "EMPDETID = 2 AND MONTHYEAR = 24291 UPDATE SLC_SALARYCALC_E SET EMPDETID = 1 WHERE "
            "EMPID = 1");
    }
    void encash(int serial, const std::string& upTo) {
        run("INSERT INTO ATT_ENCASH (EMPID, ENCASHSLNO, ADDENTRYID, ALLOTID, UPTODATE, MONTHYEAR, "
            "NOOFDAYS) SELECT 1, " +
            text(serial) + ", 0, ALLOTID, '" + upTo +
            "', 24291, 1 FROM LEV_ALLOTMENT WHERE EMPID = 1 AND LEVID = 6 AND '" + upTo +
            "' BETWEEN ALLOTFROM AND ALLOTTO");
    }
    std::string encashed() {
        return rows(
            "SELECT AE.ENCASHSLNO, DAY(LA.ALLOTFROM) FROM ATT_ENCASH AE LEFT JOIN LEV_ALLOTMENT LA "
            "ON LA.ALLOTID = AE.ALLOTID AND LA.EMPID = AE.EMPID AND LA.LEVID = 6 ORDER BY 1");
    }
};

TEST(Start, MovesLeaveAndAdjustmentsToTheVersionOfTheirDay) {
    Transferred p;
    for (const char* day : {"2024-03-15", "2024-03-16"}) {
        p.leave(1, 1, 6, day, "FS");
        p.run(
            std::string("INSERT INTO LEV_ADJUSTMENT (EMPID, EMPDETID, ATTHEADID, LEVID, "
                        "MONTHYEAR, ALLOT, TAKEN, ASONDATE) VALUES (1, 1, 10, 6, 24291, 1, 0, '") +
            day + "')");
    }
    p.run(
        "INSERT INTO LEV_ADJUSTMENT (EMPID, EMPDETID, ATTHEADID, LEVID, MONTHYEAR, ALLOT, TAKEN) "
        "VALUES (1, 1, 10, 6, 24292, 1, 0)");
    p.transfer();
    p.start();
    EXPECT_EQ(p.rows("SELECT EMPDETID, DAY(LEAVEDATE) FROM LEV_DETAILS ORDER BY LEAVEDATE"),
              "1,15 2,16");
    EXPECT_EQ(p.rows("SELECT EMPDETID, ATTHEADID FROM LEV_ADJUSTMENT ORDER BY EMPDETID, MONTHYEAR"),
              "1,10 2,11 2,11");
    EXPECT_EQ(p.marked(1), "3 4; 3 4; 1 2 3 4");
    p.settle();
    EXPECT_EQ(p.rows("SELECT EMPDETID, MONTHYEAR, NODCALC, NOD, NDP FROM LEV_MONTHDET WHERE EMPID "
                     "= 1 AND MONTHYEAR > 24290 ORDER BY MONTHYEAR, EMPDETID"),
              "1,24291,31.00,15.00,14.00 2,24291,31.00,16.00,15.00 2,24292,30.00,30.00,30.00");
}

TEST(Start, DividesASliceAndMergesItAgain) {
    Transferred p;
    p.run(
        "UPDATE LEV_ALLOTMENT SET ALLOTLEV = 4 WHERE EMPID = 1 AND LEVID = 6 AND ALLOTFROM = "
        "'2024-03-01'");
    p.encash(1, "2024-03-15");
    p.encash(2, "2024-03-16");
    const std::string march = p.number("2024-03-01"), april = p.number("2024-04-01"),
                      last = p.maxNumber();
    p.transfer();
    p.settle();
    EXPECT_EQ(p.slices(),
              "1 10 01/01-01/31 1 10 02/01-02/29 1 10 03/01-03/15 2 11 03/16-03/31 "
              "2 11 04/01-04/30");
    EXPECT_EQ(p.number("2024-03-01"), march) << "the part with the first day is the row that was";
    EXPECT_EQ(p.number("2024-04-01"), april) << "another head, the same row";
    EXPECT_GT(std::stoi(p.number("2024-03-16")), std::stoi(last));
    EXPECT_EQ(p.column("ALLOTLEV", 1, 6), "0.00 0.00 4.00 0.00 0.00");
    EXPECT_EQ(p.column("COLEV", 1, 6), "0.00 0.00 0.00 3.00 2.00");
    EXPECT_EQ(p.encashed(), "1,1 2,16") << "each with the slice that holds its day";

    p.run(
        "UPDATE LEV_ALLOTMENT SET ALLOTLEV = 2 WHERE EMPID = 1 AND LEVID = 6 AND EMPDETID = 2 AND "
        "ALLOTFROM = '2024-03-16'");
    const std::string second = p.maxNumber();
    p.takeBack();
    p.settle();
    EXPECT_EQ(p.slices(), "1 10 01/01-01/31 1 10 02/01-02/29 1 10 03/01-03/31 1 10 04/01-04/30");
    EXPECT_EQ(p.number("2024-03-01"), march);
    EXPECT_EQ(p.column("ALLOTLEV", 1, 6), "0.00 0.00 6.00 0.00");
    EXPECT_EQ(p.column("COLEV", 1, 6), "0.00 0.00 0.00 4.00");
    EXPECT_EQ(p.encashed(), "1,1 2,1");

    p.transfer();
    p.settle();
    EXPECT_GT(std::stoi(p.number("2024-03-16")), std::stoi(second)) << "no number is given twice";
}

// A row from 20 March on whose month gets other slices: it stays with the one that holds or meets
// it, else with any of the month.
TEST(Start, KeepsARowWhoseDaysAreOthersNow) {
    struct Change {
        const char *what, *sql, *slice;
        bool divided;
    };
    for (const Change& c :
         {Change{"the second of two holds its first day", "", "03/16-03/31", true},
          {"one that begins later meets it",
           "UPDATE LEV_ALLOTFROM SET ALLOTFROM = '2024-03-25' WHERE EMPID = 1", "03/25-03/31",
           false},
          {"one that ends before is all there is",
           "UPDATE MAS_EMPLOYEE SET DOL = '2024-03-15' WHERE EMPID = 1", "03/01-03/15", false}}) {
        Transferred p;
        p.run("UPDATE LEV_ALLOTFROM SET ALLOTFROM = '2024-03-20', EDITEDYN = 1 WHERE EMPID = 1");
        p.settle();
        p.run(
            "UPDATE LEV_ALLOTMENT SET ALLOTLEV = 4 WHERE EMPID = 1 AND LEVID = 6 AND ALLOTFROM = "
            "'2024-03-20'");
        const std::string row = p.number("2024-03-20");
        p.run("UPDATE LEV_ALLOTFROM SET ALLOTFROM = '2024-03-01' WHERE EMPID = 1");
        if (*c.sql) p.run(c.sql);
        if (c.divided) p.transfer();
        p.start();
        EXPECT_EQ(p.column("CONVERT(varchar(5), ALLOTFROM, 1) + '-' + CONVERT(varchar(5), ALLOTTO, "
                           "1) + ' ' + CAST(ALLOTLEV AS varchar(5))",
                           1, 6, " AND ALLOTID = " + row),
                  std::string(c.slice) + " 4.00")
            << c.what;
    }
}

TEST(Start, GivesNoNumberAgainAfterADeletion) {
    Started p;
    const std::string last = p.maxNumber();
    p.run("DELETE FROM SLC_SALARYCALC_E WHERE MONTHYEAR = 24292");
    p.start();
    EXPECT_NE(p.maxNumber(), last);
    p.start();
    p.salary(1, 1, kApr, kApr);
    p.start();
    EXPECT_EQ(p.rows("SELECT ALLOTID - " + last +
                     " FROM LEV_ALLOTMENT WHERE MONTH(ALLOTFROM) = 4 ORDER BY 1"),
              "1 2");
}

// March is ported: what has no salary there any more stays, what gets one is not made.
TEST(Start, LeavesAPortedMonthAsItIs) {
    Transferred p;
    p.run("DELETE FROM SLC_SALARYCALC_E WHERE EMPID = 2 AND MONTHYEAR = 24291");
    p.settle();
    p.encash(1, "2024-03-31");
    p.run(
        "UPDATE MAS_MONTHYEAR SET TDSPORTYN = 1 WHERE MONTHYEAR = 24291 DELETE FROM "
        "SLC_SALARYCALC_E WHERE EMPID = 1 AND MONTHYEAR = 24291");
    p.salary(2, 1, kMar, kMar);
    p.settle();
    const char* standing =
        "SELECT EMPID FROM LEV_MONTHDET WHERE MONTHYEAR = 24291 UNION ALL SELECT EMPID FROM "
        "LEV_ALLOTMENT WHERE MONTH(ALLOTFROM) = 3";
    EXPECT_EQ(p.rows(standing), "1 1 1") << "a month row and two leaves";
    EXPECT_EQ(p.encashed(), "1,1");

    p.run("UPDATE MAS_MONTHYEAR SET TDSPORTYN = NULL WHERE MONTHYEAR = 24291");
    p.settle();
    EXPECT_EQ(p.rows(standing), "2 2 2");
    EXPECT_EQ(p.encashed(), "") << "no slice of its month is left";
}

TEST(Start, KeepsEveryPortedMonthAndNoOther) {
    Started p;
    for (const auto& [ported, left] :
         {std::pair{"24289, 24291, 24292", "1 3 4"}, {"24291, 24292", "3 4"}, {"24292", "4"}}) {
        p.run(std::string("UPDATE MAS_MONTHYEAR SET TDSPORTYN = CASE WHEN MONTHYEAR IN (") +
              ported + ") THEN 1 ELSE 0 END DELETE FROM SLC_SALARYCALC_E WHERE EMPID = 1");
        p.start();
        EXPECT_EQ(p.column("MONTH(ALLOTFROM)", 1, 6), left);
        EXPECT_EQ(p.rows("SELECT MONTHYEAR - 24288 FROM LEV_MONTHDET WHERE EMPID = 1 ORDER BY 1"),
                  left);
        EXPECT_EQ(p.column("MONTH(ALLOTFROM)", 2, 6), "1 2 3 4");
    }
}

TEST(Start, ClearsMarksThatNoPassTakesUp) {
    Started p;
    p.run(
        "UPDATE MAS_OPTSETFEATURE SET LVSTARTMNYEAR = 24290 UPDATE MAS_MONTHYEAR SET TDSPORTYN = 1 "
        "WHERE MONTHYEAR = 24291");
    p.settle();
    for (const char* table : {"LEV_MONTHDET", "ATT_DAYTODAY"})
        p.run(std::string("UPDATE ") + table +
              " SET EDITMODEYN = CASE WHEN MONTHYEAR = 24292 THEN "
              "NULL ELSE 1 END WHERE EMPID = 1");
    p.run("UPDATE LEV_ALLOTMENT SET EDITMODEYN = NULL WHERE EMPID = 1 AND MONTH(ALLOTFROM) = 4");
    p.start();
    EXPECT_EQ(p.marked(1), "2 4; 2 3 4; 4")
        << "a month that is ported, a register before the first month; NULL was never worked out";
}

TEST(Start, SalaryOfNoVersionGetsNoMonthRow) {
    Started p;
    p.run(
        "INSERT INTO SLC_SALARYCALC_E (SALID, EMPID, EMPDETID, MONTHYEAR, EDITMODEYN) VALUES (90, "
        "2, NULL, 24292, 0), (91, 2, 7, 24292, 0), (92, 9, 1, 24292, 0)");
    p.run("DELETE FROM LEV_MONTHDET WHERE EMPID = 1 AND MONTHYEAR = 24292");
    p.settle();
    EXPECT_EQ(p.rows("SELECT EMPID, EMPDETID FROM LEV_MONTHDET WHERE MONTHYEAR = 24292 ORDER BY 1"),
              "1,1 2,1")
        << "the others go on";
    EXPECT_EQ(p.marked(1) + p.marked(2), "; ; ; ; ");
    EXPECT_TRUE(p.boxes.shown.empty());
}

TEST(Filter, LeavesTheMarksOfOthers) {
    Started p;
    for (const char* filter : {" AND LA.EMPID = 1 ", " AND LA.EMPID = 1 AND LA.LEVID = 5 "}) {
        NoProgress progress;
        p.run("UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1");
        ProcessAllotmentsOld(p.session, progress, filter);
        const std::string done = p.rows(
            "SELECT DISTINCT EMPID, LEVID FROM LEV_ALLOTMENT WHERE EDITMODEYN = 0 ORDER BY LEVID");
        EXPECT_EQ(done, std::string(filter).find("LEVID") == std::string::npos ? "1,5 1,6" : "1,5");
    }
}

// Version 2 begins on 16 February, version 1 goes on: two rows end on 29 February.
TEST(OverlappingVersions, OfTwoRowsBeforeTheGreaterVersionCounts) {
    Started p;
    p.run(
        "INSERT INTO MAS_EMPLOYEEDET (EMPID, EMPDETID, EFFFROMDATE, ATTHEADID, BRANCHID, STRUCTID) "
        "VALUES (1, 2, '2024-02-16', 10, 1, 1) UPDATE SLC_SALARYCALC_E SET EMPDETID = 2 WHERE "
        "EMPID = 1 AND MONTHYEAR > 24290");
    p.salary(1, 2, kJan + 1, kJan + 1);
    p.start();
    p.run(
        "UPDATE LEV_ALLOTMENT SET ALLOTLEV = EMPDETID, EDITMODEYN = 1 WHERE EMPID = 1 AND LEVID = "
        "6 AND MONTH(ALLOTFROM) = 2");
    for (const char* way : {"", " "}) {
        NoProgress progress;
        p.run("UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1");
        if (!*way) ProcessAllotments(p.session, progress);
        ProcessAllotmentsOld(p.session, progress, way);
        EXPECT_EQ(p.column("CAST(EMPDETID AS varchar(2)) + ':' + CAST(COLEV AS varchar(9))", 1, 6),
                  "1:0.00 1:0.00 2:0.00 2:2.00 2:2.00");
        EXPECT_EQ(p.value("SELECT COUNT(*) FROM LEV_ALLOTMENT WHERE EDITMODEYN = 1"), "0");
    }
}

TEST(MonthSums, TakeOvertimeUpToTheDayOfLeaving) {
    Started p;
    p.setHead(10, "OT1YN = 1");
    p.hours(1, 1, kMar, 20, "2");
    p.hours(1, 1, kMar, 21, "16");
    p.recalculate();
    p.run("UPDATE MAS_EMPLOYEE SET DOL = '2024-03-20' WHERE EMPID = 1");
    p.run("UPDATE LEV_MONTHDET SET EDITMODEYN = 1 WHERE EMPID = 1");
    NoProgress progress;
    UpdateMonthDays(p.session, progress);
    EXPECT_EQ(p.monthDet(1, 1, kMar), "31,20,20,2,0,0");
    EXPECT_EQ(p.rows("SELECT DAY(OTDATE), OT1 FROM LEV_OTDETAILS WHERE OT1 <> 0 ORDER BY OTDATE"),
              "20,2.00 21,16.00")
        << "what lies behind stays in the table";
}

// A start looks at all that its rows rest on; when that is as it was left, it does nothing more.
TEST(Start, WorksOnlyWhenSomethingHasChanged) {
    Started p;
    p.start();
    EXPECT_EQ(p.start(), 1U);
    for (const char* sql :
         {"UPDATE MAS_MONTHYEAR SET CALCENDDATE = '2024-04-29' WHERE MONTHYEAR = 24292",
          "UPDATE MAS_EMPLOYEE SET CONFIRMATIONDATE = '2021-01-01' WHERE EMPID = 2",
          "UPDATE MAS_EMPLOYEE SET DOL = '2024-04-30' WHERE EMPID = 2",
          "UPDATE MAS_EMPLOYEEDET SET ATTHEADID = 11 WHERE EMPID = 2",
          "UPDATE LEV_SETTINGS SET MINDAYS = 3 WHERE LEVID = 6",
          "UPDATE LEV_ALLOTFROM SET CHANGEYN = 1 WHERE EMPID = 2",
          "UPDATE LEV_AVAILFROM SET CHANGEYN = 1 WHERE EMPID = 2",
          "UPDATE ATT_OPTSETTINGS SET LOADDEFYN = 1 WHERE ATTHEADID = 11",
          "DELETE FROM SLC_SALARYCALC_E WHERE EMPID = 2 AND MONTHYEAR = 24292",
          "DELETE FROM LEV_ALLOTMENT WHERE EMPID = 2 AND MONTH(ALLOTFROM) = 3",
          "DELETE FROM LEV_MONTHDET WHERE EMPID = 2 AND MONTHYEAR = 24290",
          "DELETE FROM ATT_OVERTIME WHERE ATTTRANNO = 1", "DELETE FROM ATT_OPBAL WHERE EMPID = 2",
          "INSERT INTO LEV_ADJUSTMENT (EMPID, EMPDETID, ATTHEADID, LEVID, MONTHYEAR) VALUES (1, 1, "
          "10, 6, 24290)",
          "UPDATE MAS_OPTSETFEATURE SET LVSTARTMNYEAR = 24290"}) {
        p.run(sql);
        EXPECT_GT(p.start(), 1U) << sql;
        p.start();
        EXPECT_EQ(p.start(), 1U) << sql;
    }
}

}  // namespace
}  // namespace owb
