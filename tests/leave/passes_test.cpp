#include <gtest/gtest.h>

#include "leave/modLeaveFunctions.h"
#include "marks/marks.h"
#include "support/payroll.h"

namespace owb {
namespace {

using test::Payroll;

constexpr int32_t kMay = 2024 * 12 + 5, kJune = kMay + 1, kJuly = kMay + 2;

// Everything that the passes write, in one text.
std::string figures(Payroll& payroll) {
    std::string all;
    for (const char* sql : {"SELECT * FROM LEV_MONTHDET ORDER BY EMPID, EMPDETID, MONTHYEAR",
                            "SELECT * FROM ATT_DAYTODAY ORDER BY ATTTRANNO",
                            "SELECT * FROM ATT_OVERTIME ORDER BY ATTTRANNO",
                            "SELECT * FROM LEV_DETAILS ORDER BY EMPID, LEAVEDATE, LEVID",
                            "SELECT * FROM LEV_OTDETAILS ORDER BY EMPID, EMPDETID, OTDATE"})
        all += payroll.rows(sql) + "\n";
    return all;
}

std::string marks(Payroll& payroll) {
    return payroll.value("SELECT COUNT(*) FROM ATT_DAYTODAY WHERE EDITMODEYN = 1") + " " +
           payroll.value("SELECT COUNT(*) FROM LEV_MONTHDET WHERE EDITMODEYN = 1");
}

TEST(MonthRows, FollowTheSalaryRows) {
    Payroll p(kMay, kJuly);
    p.run("UPDATE MAS_OPTSETFEATURE SET LVSTARTMNYEAR = 24294");
    p.session.gFeature.LVSTARTMNYEAR = kJune;
    p.head({10, 2});
    p.head({11, 3});
    p.head({12, 4});
    p.setOptions(10, "LOADDEFYN = 1, DEFVAL = 0");
    p.setOptions(11, "LOADDEFYN = 1, DEFVAL = 1");
    for (int id : {1, 2, 3}) {
        p.employee(id, "2020-01-01", 9 + id);
        p.salary(id, 1, kMay, kJuly);
    }
    p.run("INSERT INTO ATT_OVERTIME (ATTTRANNO, OTDAY01) VALUES (7, 5)");
    p.reconcile();
    EXPECT_EQ(
        p.rows("SELECT EMPID, EMPDETID, MONTHYEAR FROM LEV_MONTHDET ORDER BY EMPID, MONTHYEAR"),
        "1,1,24294 1,1,24295 2,1,24294 2,1,24295 3,1,24294 3,1,24295")
        << "no row before the first leave month";
    EXPECT_EQ(p.rows("SELECT DISTINCT NODCALC + NOD + NDP + OT1 + OT2 + ADJHRS, EDITMODEYN FROM "
                     "LEV_MONTHDET"),
              "0.00,1");
    EXPECT_EQ(p.rows("SELECT ATTTRANNO, EMPID, ATTHEADID, MONTHYEAR, DAY01, DAY31, EDITMODEYN "
                     "FROM ATT_DAYTODAY ORDER BY ATTTRANNO"),
              "8,1,10,24294,P,P,1 9,2,11,24294,0,0,1 10,1,10,24295,P,P,1 11,2,11,24295,0,0,1")
        << "daily and hourly heads, with their defaults, behind every number in use";
    EXPECT_EQ(p.value("SELECT COUNT(*) FROM ATT_DAYTODAY AD, ATT_OVERTIME AO WHERE AD.ATTTRANNO "
                      "= AO.ATTTRANNO AND OTDAY01 IS NULL"),
              "4");

    const std::string before = figures(p);
    p.reconcile();
    EXPECT_EQ(figures(p), before);

    p.run("UPDATE LEV_MONTHDET SET EDITMODEYN = 0");
    p.run("UPDATE ATT_DAYTODAY SET EDITMODEYN = 0 WHERE ATTTRANNO <> 8");
    p.run("UPDATE MAS_MONTHYEAR SET TDSPORTYN = 1 WHERE MONTHYEAR = 24295");
    p.run("DELETE FROM SLC_SALARYCALC_E WHERE EMPID IN (2, 3)");
    p.reconcile();
    EXPECT_EQ(
        p.rows("SELECT EMPID, MONTHYEAR, EDITMODEYN FROM LEV_MONTHDET ORDER BY EMPID, MONTHYEAR"),
        "1,24294,1 1,24295,0 2,24295,0 3,24295,0")
        << "rows without salary go, but for the month whose tax is ported; a marked register row "
           "marks its month";
    EXPECT_EQ(p.rows("SELECT ATTTRANNO FROM ATT_OVERTIME ORDER BY ATTTRANNO"), "7 8 10");
}

// Employee 1 moves from a daily to an hourly head on the 16th of June.
class TwoHeads : public Payroll {
  public:
    TwoHeads() : Payroll(kJune, kJuly) {
        head({10, 2});
        head({11, 3});
        setHead(10, "OT1YN = 1");
        setHead(11, "OT1YN = 1, FULLDAYOTYN = 1");
        leaveKind(5, "CL", false);
        leaveKind(6, "UL", true);
        employee(1, "2020-01-01", 10);
        version(1, 2, "2024-06-16", 11);
        salary(1, 1, kJune, kJune);
        salary(1, 2, kJune, kJuly);
        reconcile();
        leave(1, 1, 5, "2024-06-03", "FS");
        leave(1, 1, 5, "2024-06-04", "F");
        leave(1, 1, 5, "2024-06-05", "F");
        leave(1, 1, 6, "2024-06-05", "S");
        leave(1, 1, 6, "2024-06-07", "S");
        leave(1, 2, 1, "2024-06-17", "S");
        hours(1, 1, kJune, 6, "2.50");
        hours(1, 1, kJune, 7, "2");
        hours(1, 1, kJune, 20, "3");
        hours(1, 2, kJune, 17, "4.30");
        hours(1, 2, kJune, 20, "9.30");
        run("UPDATE ATT_DAYTODAY SET DAY08 = 'H', DAY18 = 'H', DAY19 = 'H', DAY20 = 'x'");
    }
};

TEST(DayRegisters, ShowLeaveAndHours) {
    TwoHeads p;
    p.recalculate();
    struct Case {
        const char* what;
        const char* column;
        const char* daily;   // 1 to 15 June
        const char* hourly;  // from 16 June
    };
    for (const Case& c : {Case{"a whole day's leave", "DAY03", "CL", ""},
                          {"a first half", "DAY04", "½CL+½P", ""},
                          {"two leaves", "DAY05", "½CL+½UL", ""},
                          {"hours beside presence", "DAY06", "2.5 + P", ""},
                          {"hours beside half a leave", "DAY07", "2 + ½P+½UL", ""},
                          {"H gives way to a status and to the version's end", "DAY08", "P", ""},
                          {"nothing taken", "DAY15", "P", ""},
                          {"hours beside half a leave, hourly", "DAY17", "", "4.3 + ½LOP"},
                          {"H stays while nothing is entered", "DAY18", "", "H"},
                          {"hours alone", "DAY20", "", "9.3"},
                          {"nothing", "DAY21", "", ""},
                          {"beyond the month", "DAY31", "", ""}})
        EXPECT_EQ(p.rows(std::string("SELECT '[' + ") + c.column +
                         " + ']' FROM ATT_DAYTODAY WHERE MONTHYEAR = 24294 ORDER BY EMPDETID"),
                  std::string("[") + c.daily + "] [" + c.hourly + "]")
            << c.what;
    EXPECT_EQ(p.value("SELECT OTDAY20 FROM ATT_OVERTIME WHERE ATTTRANNO = 1"), "0.00")
        << "hours outside the version's days go";
}

TEST(Recalculation, ReachesRestInOneRun) {
    TwoHeads p;
    p.run("INSERT INTO RMB_MASTER (RMBID, EDITMODEYN) VALUES (1, 0)");
    p.recalculate();
    EXPECT_EQ(p.monthDet(1, 1, kJune), "30,14,12,4.5,0,0");
    EXPECT_EQ(p.monthDet(1, 2, kJune), "30,14.5,14.5,1.5,0,0");
    EXPECT_EQ(p.monthDet(1, 2, kJuly), "31,31,31,0,0,0");
    EXPECT_EQ(marks(p), "0 0");
    EXPECT_EQ(p.value("SELECT COUNT(*) FROM SLC_SALARYCALC_E WHERE EDITMODEYN = 1"), "3");
    EXPECT_EQ(p.value("SELECT EDITMODEYN FROM RMB_MASTER"), "1");

    const std::string after = figures(p);
    p.run("UPDATE SLC_SALARYCALC_E SET EDITMODEYN = 0");
    p.recalculate();
    EXPECT_EQ(figures(p), after);
    EXPECT_EQ(p.value("SELECT COUNT(*) FROM SLC_SALARYCALC_E WHERE EDITMODEYN = 1"), "0")
        << "nothing was marked, nothing is handed on";
    p.run("UPDATE ATT_DAYTODAY SET EDITMODEYN = 1");
    p.recalculate();
    EXPECT_EQ(figures(p), after) << "done again, the same";
}

// The month's sums hold overtime that changed since the register was last worked out: a weekly
// holiday that came later marks the month alone.
TEST(Recalculation, TakesTheOvertimeOfTheSameRun) {
    TwoHeads p;
    p.setHead(10, "OT2YN = 1");
    p.setOptions(10, "SPLOTYN = 1, WHOT2YN = 1");
    p.recalculate();
    p.weekly(10, 5, "FS FS FS FS FS");  // Thursdays: the 6th
    p.run("UPDATE LEV_MONTHDET SET EDITMODEYN = 1 WHERE EMPDETID = 1");
    NoProgress progress;
    UpdateMonthDays(p.session, progress);
    EXPECT_EQ(p.monthDet(1, 1, kJune), "30,14,10,2,25,0")
        << "the 6th's 2.5 hours are of the second kind, and stand on the nine days after it";
    EXPECT_EQ(marks(p), "0 0");
}

TEST(MonthDays, OfTheFilterAndOfRowsStillMarked) {
    Payroll p(kJune, kJune);
    p.head({10, 1});
    for (int id : {1, 2, 3}) {
        p.employee(id, "2020-01-01", 10);
        p.salary(id, 1, kJune, kJune);
    }
    p.reconcile();
    NoProgress progress;
    p.session.gEmpFilter = "2,3";
    p.run("UPDATE LEV_MONTHDET SET EDITMODEYN = 0 WHERE EMPID = 3");
    UpdateMonthDays(p.session, progress);
    EXPECT_EQ(p.rows("SELECT CAST(NOD AS INT), EDITMODEYN FROM LEV_MONTHDET ORDER BY EMPID"),
              "0,1 30,0 0,0");

    // A row that another session clears between the list and its turn is left alone.
    struct OtherSession final : Progress {
        explicit OtherSession(Payroll& p) : p(p) {}
        void status(const std::string&) override {
            p.run("UPDATE LEV_MONTHDET SET EDITMODEYN = 0");
        }
        void step(size_t, size_t) override {}
        bool cancelled() const override { return false; }
        Payroll& p;
    } other(p);
    p.session.gEmpFilter = "0";
    UpdateMonthDays(p.session, other);
    EXPECT_EQ(p.value("SELECT CAST(NOD AS INT) FROM LEV_MONTHDET WHERE EMPID = 1"), "0");

    double nod = 0, ndp = 0;
    RefreshMonthRow(p.session, nod, ndp, progress, 1, 1, kJune);
    EXPECT_EQ(nod, 30);
}

TEST(Defaults, FillDaysOnWhichNothingIsEntered) {
    Payroll p(kJune, kJune);
    p.head({10, 2});
    p.head({11, 3});
    p.head({12, 2});
    p.setOptions(10, "LOADDEFYN = 1, DEFVAL = 1");
    p.setOptions(11, "LOADDEFYN = 1, DEFVAL = 0");
    p.leaveKind(5, "CL", false);
    p.employee(1, "2024-06-29", 10);  // absent by default, two days of service
    p.employee(2, "2024-06-29", 11);
    p.employee(3, "2024-06-29", 12);
    for (int id : {1, 2, 3}) p.salary(id, 1, kJune, kJune);
    p.reconcile();
    p.leave(1, 1, 5, "2024-06-30", "F");
    p.run(
        "INSERT INTO LEV_ALLOTMENT (ALLOTID, EMPID, LEVID, ALLOTFROM, ALLOTTO, EDITMODEYN) "
        "VALUES (1, 1, 5, '2024-06-01', '2024-06-28', 0), (2, 1, 5, '2024-06-29', '2024-06-30', "
        "0)");
    p.recalculate();
    EXPECT_EQ(p.rows("SELECT DAY28, DAY29, DAY30 FROM ATT_DAYTODAY ORDER BY EMPID"),
              ",LOP,½CL+½P ,8,8 ,P,P")
        << "leave that is entered stays; a head without the option shows its status";
    EXPECT_EQ(
        p.rows("SELECT EMPID, LEVID, DAY(LEAVEDATE), FIRSTHALFYN, SECONDHALFYN FROM LEV_DETAILS "
               "ORDER BY LEAVEDATE"),
        "1,1,29,1,1 1,5,30,1,0");
    EXPECT_EQ(p.rows("SELECT ALLOTID, EDITMODEYN FROM LEV_ALLOTMENT ORDER BY ALLOTID"), "1,0 2,1");
    EXPECT_EQ(p.monthDet(1, 1, kJune), "30,1,0.5,0,0,0");
    const std::string after = figures(p);
    p.recalculate();
    EXPECT_EQ(figures(p), after);

    // A writer of hours blanks the cell; neither hours nor leave may get lost by it.
    p.run("UPDATE ATT_DAYTODAY SET DAY30 = '', EDITMODEYN = 1 WHERE EMPID = 1");
    p.run("UPDATE ATT_OVERTIME SET OTDAY30 = 2 WHERE ATTTRANNO = 1");
    p.recalculate();
    EXPECT_EQ(p.value("SELECT DAY30 FROM ATT_DAYTODAY WHERE EMPID = 1"), "2 + ½CL+½P");
}

TEST(Defaults, SpareDaysOnWhichAnyLeaveIsTaken) {
    Payroll p(kJune, kJune);
    p.head({10, 2});
    p.setOptions(10, "LOADDEFYN = 1, DEFVAL = 1");
    p.leaveKind(5, "CL", false);
    p.employee(1, "2024-06-26", 10);
    p.salary(1, 1, kJune, kJune);
    p.reconcile();
    p.leave(1, 1, 5, "2024-06-26", "F");
    p.leave(1, 1, 5, "2024-06-27", "S");
    p.leave(1, 1, 5, "2024-06-28", "2.5");
    p.leave(1, 1, 5, "2024-06-29", "0");
    p.leave(1, 1, 0, "2024-06-30", "FS");
    p.recalculate();
    EXPECT_EQ(p.rows("SELECT DAY(LEAVEDATE), LEVID FROM LEV_DETAILS ORDER BY LEAVEDATE"),
              "26,5 27,5 28,5 29,1 30,1")
        << "what says nothing gives way to the default";
}

TEST(Marks, ReachTheRowsThatTheyName) {
    Payroll p(kMay, kJuly);
    auto reset = [&] {
        p.run("DELETE FROM LEV_ALLOTMENT");
        p.run(
            "INSERT INTO LEV_ALLOTMENT (ALLOTID, EMPID, ATTHEADID, LEVID, ALLOTFROM, ALLOTTO, "
            "EDITMODEYN) VALUES (1, 1, 10, 2, '2024-05-01', '2024-05-31', 0), (2, 1, 10, 5, "
            "'2024-06-01', '2024-06-30', 0), (3, 1, 11, 2, '2024-06-01', '2024-06-30', 0), (4, "
            "2, 10, 5, '2024-07-01', '2024-07-31', 0)");
    };
    auto marked = [&] {
        const std::string ids =
            p.rows("SELECT ALLOTID FROM LEV_ALLOTMENT WHERE EDITMODEYN = 1 ORDER BY ALLOTID");
        reset();
        return ids;
    };
    const DateTime june = DateTime::fromCivil(2024, 6, 20);
    Session& s = p.session;
    reset();
    MarkAllotmentDirty(s, 0, 1);
    EXPECT_EQ(marked(), "1 2 3");
    MarkAllotmentDirty(s, 10, 1);
    EXPECT_EQ(marked(), "1 2");
    MarkAllotmentDirtyFrom(s, june, 0, "", "");
    EXPECT_EQ(marked(), "2 3 4") << "from the month of the date on";
    MarkAllotmentDirtyFrom(s, june, 10, "2,7", "");
    EXPECT_EQ(marked(), "4");
    MarkAllotmentDirtyFrom(s, june, 0, "1", "3,");
    EXPECT_EQ(marked(), "3") << "compensatory work brings in compensatory off";
    MarkAllotmentDirtyFrom(s, june, 0, "", "5,0");
    EXPECT_EQ(marked(), "2 4");

    p.run(
        "INSERT INTO SLC_SALARYCALC_E (SALID, EMPID, EMPDETID, MONTHYEAR, EDITMODEYN) VALUES (1, "
        "1, 1, 24293, 0), (2, 1, 1, 24294, 0), (3, 2, 1, 24295, 0)");
    MarkSalaryDirty(s, kJune, true, 0);
    EXPECT_EQ(p.rows("SELECT SALID FROM SLC_SALARYCALC_E WHERE EDITMODEYN = 1"), "2");
    MarkSalaryDirty(s, kMay, false, 2);
    EXPECT_EQ(p.rows("SELECT SALID FROM SLC_SALARYCALC_E WHERE EDITMODEYN = 1"), "2 3");
}

}  // namespace
}  // namespace owb
