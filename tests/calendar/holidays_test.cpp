#include <gtest/gtest.h>

#include "calendar/clsNODNDPCalc.h"
#include "session/modAttSetting.h"
#include "session/modOWBSetting.h"
#include "support/payroll.h"

namespace owb {
namespace {

using test::Payroll;

constexpr int32_t kJune = 2024 * 12 + 6;
constexpr const char* kEveryWeek = "FS FS FS FS FS";

DateTime june(int day) {
    return DateTime::fromCivil(2024, 6, day);
}

class Holidays : public Payroll {
  public:
    Holidays() : Payroll(kJune, kJune + 1) {
        head({10});
        head({11});
        employee(1, "2020-01-01", 10, "", 1);
        employee(2, "2020-01-01", 11, "", 2);
        LoadAttHead(session, 10);
    }
    void option(const std::string& assignment) {
        setOptions(10, assignment);
        LoadAttOptions(session, 10);
    }
    std::string list(int type, int employee = 1, int head = 10) {
        std::string days;
        DateTime from = june(1);
        FnNodNdp(session).ListHoliday(employee, head, from, june(30), type, days);
        return days;
    }
    // "0.5 S" of a day.
    std::string weeklyOn(int day, int employee = 1, int head = 10) {
        bool first = false, second = false;
        double value = -1;
        FnNodNdp(session).FnDblWeeklyHoliday(employee, head, june(day), first, second, value);
        return Value(value).toText() + (first || second ? " " : "") + (first ? "F" : "") +
               (second ? "S" : "");
    }
    bool general(int day, int employee = 1, int head = 10) {
        bool result = false;
        FnNodNdp(session).FnBlnGenHoliday(head, june(day), employee, result);
        return result;
    }
};

TEST(WeeklyHolidays, OfAHeadByWeekOfTheMonth) {
    Holidays h;
    EXPECT_EQ(h.list(1), "0") << "no row, no weekly holiday; the company's row does not serve";
    h.weekly(0, 1, kEveryWeek);
    EXPECT_EQ(h.list(1), "0");
    h.weekly(10, 7, "FS -S -- F- FS", kJune - 6);
    h.weekly(10, 1, kEveryWeek, kJune);
    EXPECT_EQ(h.list(1), "0,1,2,8,9,16,22,23,29,30");
    EXPECT_EQ(h.weeklyOn(1), "1 FS");
    EXPECT_EQ(h.weeklyOn(8), "0.5 S");
    EXPECT_EQ(h.weeklyOn(15), "0");
    EXPECT_EQ(h.weeklyOn(22), "0.5 F");
    EXPECT_EQ(h.weeklyOn(29), "1 FS") << "days 29 to 31 are week 5";

    h.weekly(10, 7, "-- -- -- -- --", kJune);
    EXPECT_EQ(h.weeklyOn(1), "0") << "the latest row not after the month";
    h.run("UPDATE LEV_WEEKLYHLD SET EFFFROM = 24295 WHERE WEEKID = 1");
    EXPECT_EQ(h.list(1), "0") << "a row of a later month";
}

TEST(WeeklyHolidays, RotateByTheFirstLevelThatKnowsTheMonth) {
    Holidays h;
    h.weekly(10, 1, kEveryWeek);
    h.weeklyOfBranch(1, 2, kEveryWeek);
    EXPECT_EQ(h.list(1), "0,2,9,16,23,30") << "without the option the head's weeks";
    h.option("ROTWHYN = 1");
    EXPECT_EQ(h.list(1), "0,3,10,17,24") << "then the branch's";
    EXPECT_EQ(h.weeklyOn(3), "1 FS");
    EXPECT_EQ(h.weeklyOn(2), "0") << "and only those";
    h.rotating(0, 0, "2024-06-04", "FS");
    EXPECT_EQ(h.list(1), "0,4") << "the company's dated rows";
    h.rotating(10, 0, "2024-06-05", "F");
    EXPECT_EQ(h.list(1), "0,5") << "the head's";
    EXPECT_EQ(h.weeklyOn(5), "0.5 F");
    EXPECT_EQ(h.weeklyOn(4), "0");
    h.rotating(0, 1, "2024-07-06", "FS");
    EXPECT_EQ(h.list(1), "0,5") << "rows of another month say nothing about this one";
    h.rotating(0, 1, "2024-06-06", "S");
    h.rotating(0, 1, "2024-06-07", "");
    EXPECT_EQ(h.list(1), "0,6") << "the employee's, where some half is off";
    EXPECT_EQ(h.weeklyOn(6), "0.5 S");
    EXPECT_EQ(h.weeklyOn(7), "0");
    EXPECT_EQ(h.list(1, 2, 11), "0,4") << "another head is left with the company's";
    EXPECT_EQ(h.weeklyOn(2, 0), "1 FS") << "asked for nobody, the head's weeks";
}

TEST(GeneralHolidays, ByHeadAndFromADateByBranch) {
    Holidays h;
    h.holiday(1, "2024-06-03");
    h.holiday(2, "2024-06-04", 11);
    h.holiday(3, "2024-06-05");
    h.exceptHead(3, 10);
    h.holiday(4, "2024-06-20", 0, 2);
    EXPECT_EQ(h.list(2), "0,3,20") << "the list does not ask for the branch";
    EXPECT_EQ(h.list(2, 1, 0), "0,3,20") << "head 0 stands for the employee's";
    EXPECT_TRUE(h.general(3));
    EXPECT_FALSE(h.general(4)) << "another head's";
    EXPECT_FALSE(h.general(5)) << "excepted for the head";
    EXPECT_TRUE(h.general(5, 2, 11));
    EXPECT_TRUE(h.general(4, 2, 0)) << "head 0 stands for the employee's";
    EXPECT_TRUE(h.general(20)) << "by head, the branch is not asked";

    h.run("UPDATE MAS_OPTSET SET BRGHEFROM = '2024-06-15'");
    h.session.gNodNdp.reset();
    EXPECT_FALSE(h.general(5)) << "before the date still by head";
    EXPECT_FALSE(h.general(20)) << "from then on another branch's holiday";
    EXPECT_TRUE(h.general(20, 2, 11));

    h.holiday(5, "2024-06-14", 0, 2);
    h.holiday(6, "2024-06-15", 0, 2);
    h.session.gNodNdp.reset();
    EXPECT_TRUE(h.general(14)) << "the day before: by head";
    EXPECT_FALSE(h.general(15)) << "the date itself: by branch";
    h.run("UPDATE ATT_HOLIDAY SET ATTHEADID = 0, BRANCHID = 0 WHERE HOLIDAYID = 6");
    h.session.gNodNdp.reset();
    EXPECT_TRUE(h.general(15)) << "0 is everybody's, as NULL";
}

TEST(DaysPayableHelpers, ReadServiceAndVersion) {
    Holidays h;
    h.employee(3, "2024-06-11", 10, "2024-06-25", 2);
    h.version(2, 2, "2024-06-16", 10, 5);
    clsNODNDPCalc& calc = FnNodNdp(h.session);
    auto head = [&](int employee, int day) {
        double result = -1;
        calc.FnIntAttHeadID(employee, june(day), result);
        return result;
    };
    auto branch = [&](int employee, int day) {
        double result = -1;
        calc.FnIntBranchID(employee, june(day), result);
        return result;
    };
    EXPECT_EQ(head(2, 15), 11);
    EXPECT_EQ(head(2, 16), 10);
    EXPECT_EQ(head(3, 10), 0) << "not yet there";
    EXPECT_EQ(head(3, 11), 10);
    EXPECT_EQ(branch(2, 16), 5);
    EXPECT_EQ(branch(3, 10), 1) << "falls back to the first version of all";

    DateTime from, to;
    calc.SetValidPeriod(kJune, 3, from, to);
    EXPECT_EQ(from, june(11));
    EXPECT_EQ(to, june(25));
    for (const auto& [joined, left, days] : {std::tuple{"2024-06-01", "2024-06-30", "1 30"},
                                             {"2024-06-30", "2024-06-30", "30 30"},
                                             {"2024-06-01", "2024-06-01", "1 1"},
                                             {"2024-05-31", "2024-07-01", "1 30"}}) {
        h.run(std::string("UPDATE MAS_EMPLOYEE SET DOJ = '") + joined + "', DOL = '" + left +
              "' WHERE EMPID = 1");
        calc.SetValidPeriod(kJune, 1, from, to);
        EXPECT_EQ(std::to_string(from.civil().day) + " " + std::to_string(to.civil().day), days);
    }
    bool exists = true;
    calc.FnBlnEmpExist(3, june(10), exists);
    EXPECT_FALSE(exists);
    calc.FnBlnEmpExist(3, june(11), exists);
    EXPECT_TRUE(exists);
    calc.FnBlnEmpExist(2, june(30), exists);
    EXPECT_TRUE(exists) << "nobody who stays ends";
    calc.FnBlnEmpExist(3, june(26), exists);
    EXPECT_FALSE(exists);
    calc.FnBlnEmpExist(3, june(25), exists);
    EXPECT_TRUE(exists);
}

TEST(DaysPayableHelpers, CompleteTheMonthTable) {
    Holidays h;
    h.run("INSERT INTO MAS_MONTHYEAR (MONTHYEAR) VALUES (24290)");
    h.run("INSERT INTO MAS_MONTHYEAR (MONTHYEAR, TDSPORTYN) VALUES (24289, 1)");
    FnNodNdp(h.session).Update_MonthYear();
    EXPECT_EQ(
        h.rows("SELECT CALCSTARTDATE, CALCENDDATE FROM MAS_MONTHYEAR WHERE MONTHYEAR = 24290"),
        "2024-02-01,2024-02-29");
    EXPECT_EQ(h.value("SELECT CAST(NOD AS INT) FROM SLC_ATTHEADNOD WHERE ATTHEADID = 10 AND "
                      "MONTHYEAR = 24290"),
              "29");
    EXPECT_EQ(h.value("SELECT COUNT(*) FROM SLC_ATTHEADNOD WHERE MONTHYEAR = 24289"), "0");
    h.run("UPDATE SLC_ATTHEADNOD SET NOD = 20");
    FnNodNdp(h.session).Update_MonthYear();
    EXPECT_EQ(h.value("SELECT CAST(MIN(NOD) AS INT) FROM SLC_ATTHEADNOD"), "20")
        << "edited days stay";
}

}  // namespace
}  // namespace owb
