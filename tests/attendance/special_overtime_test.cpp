#include <gtest/gtest.h>

#include "attendance/clsOTDetCalc.h"
#include "leave/modLeaveFunctions.h"
#include "support/payroll.h"

namespace owb {
namespace {

using test::Payroll;

constexpr int32_t kJune = 2024 * 12 + 6;

// Sundays are off, Saturday the 8th in its second half; the 17th is a general holiday, the 3rd a
// special overtime day.
class Overtime : public Payroll {
  public:
    explicit Overtime(int type) : Payroll(kJune, kJune) {
        head({10, type});
        setHead(10, "OT1YN = 1, OT2YN = 1, FULLDAYOTYN = 1");
        weekly(10, 1, "FS FS FS FS FS");
        weekly(10, 7, "-- -S -- -- --");
        holiday(1, "2024-06-17");
        run("INSERT INTO ATT_EXTRAOT (ATTHEADID, WEEKDATE) VALUES (10, '2024-06-03')");
        employee(1, "2020-01-01", 10);
        salary(1, 1, kJune, kJune);
        reconcile();
    }
    // "OT1,OT2,ADJHRS" of a day after the register has been worked out.
    std::string day(int day) {
        Recordset row(session.gConn, clsOTDetCalc::FnStrRegisterRow(1));
        std::string batch;
        FnOtDetCalc(session).UpdateOTDailyHourlyNew(row, batch, false);
        return rows(
            "SELECT CAST(OT1 AS FLOAT), CAST(OT2 AS FLOAT), CAST(ADJHRS AS FLOAT) FROM "
            "LEV_OTDETAILS WHERE OTDATE = '2024-06-" +
            std::string(day < 10 ? "0" : "") + std::to_string(day) + "'");
    }
};

TEST(SpecialOvertime, GoesWhereTheOptionsOfTheHeadSay) {
    struct Case {
        const char* what;
        int type;
        const char* options;
        int day;
        const char* hours;
        const char* figures;
    };
    const Case cases[] = {
        {"the option is off", 2, "SPLOTYN = 0, WHOT2YN = 1", 2, "3", "3,0,0"},
        {"an ordinary day", 2, "SPLOTYN = 1, WHOT2YN = 1", 4, "3", "3,0,0"},
        {"special day, what is overtime", 2, "SPLOTYN = 1", 3, "3", "3,3,0"},
        {"weekly holiday to the second kind", 2, "SPLOTYN = 1, WHOT2YN = 1", 2, "3", "0,3,0"},
        {"weekly holiday to the first kind", 2, "SPLOTYN = 1, WHOT2YN = 0", 2, "3", "3,0,0"},
        {"half a weekly holiday counts from the half day's cut-off", 2, "SPLOTYN = 1, WHOT2YN = 1",
         8, "5", "0,1,0"},
        {"general holiday to the second kind too", 2, "SPLOTYN = 1, GHOT2YN = 1", 17, "3", "3,3,0"},
        {"general holiday to the first kind", 2, "SPLOTYN = 1, GHOT2YN = 0", 17, "3", "3,0,0"},
        {"hourly special day, what is overtime, read as hours and minutes", 3,
         "SPLOTYN = 1, FULLDAYOT2 = 0", 3, "9.30", "1.5,1.83,0"},
        {"hourly special day, the whole day", 3, "SPLOTYN = 1, FULLDAYOT2 = 1", 3, "9.30",
         "1.5,9.5,0"},
        {"hourly weekly holiday", 3, "SPLOTYN = 1, WHOT2YN = 1", 2, "4.30", "0,4.5,0"},
    };
    for (const Case& c : cases) {
        Overtime overtime(c.type);
        overtime.setOptions(10, c.options);
        overtime.hours(1, 1, kJune, c.day, c.hours);
        EXPECT_EQ(overtime.day(c.day), c.figures) << c.what;
    }
}

TEST(SpecialOvertime, StandsOnTheDaysAfterUntilTheNextOvertime) {
    Overtime overtime(3);
    overtime.setOptions(10, "SPLOTYN = 1, FULLDAYOT2 = 1");
    overtime.hours(1, 1, kJune, 3, "9.30");
    overtime.hours(1, 1, kJune, 6, "8.00");
    EXPECT_EQ(overtime.day(2), "0,0,0");
    EXPECT_EQ(overtime.day(4), "0,9.5,0") << "no hours: the figures of the day before";
    EXPECT_EQ(overtime.day(6), "0,0,0");
}

TEST(SpecialOvertime, OlderFormGivesTheSameDays) {
    Overtime overtime(3);
    overtime.setOptions(10, "SPLOTYN = 1, WHOT2YN = 1");
    for (const int day : {2, 3, 8, 12}) overtime.hours(1, 1, kJune, day, "9.15");
    overtime.day(1);
    const std::string all =
        "SELECT * FROM LEV_OTDETAILS WHERE OT1 <> 0 OR OT2 <> 0 OR ADJHRS <> 0 ORDER BY OTDATE";
    const std::string expected = overtime.rows(all);
    overtime.run("DELETE FROM LEV_OTDETAILS");
    Recordset row(overtime.session.gConn, clsOTDetCalc::FnStrRegisterRow(1));
    FnOtDetCalc(overtime.session).UpdateOTDailyHourly(row, false);
    EXPECT_EQ(overtime.rows(all), expected);
    EXPECT_EQ(overtime.value("SELECT EDITMODEYN FROM LEV_MONTHDET"), "1");
}

TEST(OvertimePort, CarriesTheMonthIntoTheSalaryDetail) {
    Overtime overtime(2);
    overtime.run("UPDATE LEV_MONTHDET SET OT1 = 4.5, OT2 = 2");
    overtime.run(
        "INSERT INTO SLC_SALSTRUCTDET (STRUCTID, SALHEADROWID, PAYTYPEYN) VALUES (1, 100, 0)");
    overtime.run(
        "INSERT INTO SLC_SALARYRATE_E (EMPID, EMPDETID, MONTHYEAR, OT1) VALUES (1, 1, 24290, "
        "55)");
    const std::string rows =
        "SELECT SLNO, EMPID, MONTHYEAR, STRUCTID, PAYTYPEYN, SALHEADROWID, UNIT, RATE FROM "
        "SLC_COMPCALCDET";
    FnOtDetCalc(overtime.session).PortOTDetail(1, 1, kJune);
    EXPECT_EQ(overtime.rows(rows), "1,1,24294,1,0,100,4.5,55") << "only heads of the structure";
    overtime.run("UPDATE LEV_MONTHDET SET OT1 = 5");
    FnOtDetCalc(overtime.session).PortOTDetail(1, 1, kJune);
    EXPECT_EQ(overtime.rows(rows), "1,1,24294,1,0,100,5,55");
}

TEST(OvertimePort, TakesTheLastRateUpToTheMonthForEachKind) {
    Overtime overtime(2);
    overtime.run("UPDATE LEV_MONTHDET SET OT1 = NULL, OT2 = 2");
    overtime.run(
        "INSERT INTO SLC_SALSTRUCTDET (STRUCTID, SALHEADROWID, PAYTYPEYN) VALUES (1, 100, 0), (1, "
        "101, 1), (2, 102, 1)");
    overtime.run(
        "INSERT INTO SLC_SALARYRATE_E (EMPID, EMPDETID, MONTHYEAR, OT1, OT2) VALUES (1, 1, 24293, "
        "55, 5), (1, 1, 24294, 60, 6), (1, 1, 24295, 70, 7), (1, 2, 24294, 80, 8), (2, 1, 24294, "
        "90, 9)");
    FnOtDetCalc(overtime.session).PortOTDetail(1, 1, kJune + 1);
    FnOtDetCalc(overtime.session).PortOTDetail(1, 1, kJune);
    EXPECT_EQ(overtime.rows("SELECT SLNO, PAYTYPEYN, SALHEADROWID, UNIT, RATE FROM SLC_COMPCALCDET "
                            "ORDER BY SLNO"),
              "1,0,100,0,60 2,1,101,2,6")
        << "a month without a row ports nothing";
}

}  // namespace
}  // namespace owb
