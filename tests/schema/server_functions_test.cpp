// The installed functions, asked through a fresh company database.
#include <gtest/gtest.h>

#include "support/company.h"

namespace owb {
namespace {

struct SqlCase {
    std::string expression, expected;
};

void expectValues(test::Company& company, const std::vector<SqlCase>& cases) {
    for (const auto& c : cases)
        EXPECT_EQ(company.value("SELECT " + c.expression), c.expected) << c.expression;
}

TEST(ServerFunctions, Rounding) {
    test::Company company;
    expectValues(
        company,
        {
            {"dbo.FnDblLowerHalfDay(2.7)", "2.50"},     {"dbo.FnDblLowerHalfDay(2.3)", "2.00"},
            {"dbo.FnDblLowerHalfDay(-2.3)", "-2.00"},   {"dbo.FnDblHigherHalfDay(-2.3)", "-2.50"},
            {"dbo.FnDblHigherHalfDay(3)", "3.00"},      {"dbo.FnDblNearestHalfDay(0.75)", "1.00"},
            {"dbo.FnDblNearestHalfDay(9.99)", "10.00"}, {"dbo.FnDblRndOff(2.50, 1)", "2.50"},
            {"dbo.FnDblRndOff(2.51, 1)", "2.50"},       {"dbo.FnDblRndOff(2.51, 2)", "3.00"},
            {"dbo.FnDblRndOff(-2.51, 1)", "-3.00"},     {"dbo.FnDblRndOff(-2.3, 1)", "-2.50"},
            {"dbo.FnDblRndOff(-2.3, 2)", "-2.00"},      {"dbo.FnDblRndOff(2.24, 5)", "2.00"},
            {"dbo.FnDblRndOff(2.25, 5)", "2.50"},       {"dbo.FnDblRndOff(2.75, 5)", "3.00"},
            {"dbo.FnDblRndOff(-2.25, 5)", "-2.50"},     {"dbo.FnDblRndOff(-2.1, 3)", "-3.00"},
            {"dbo.FnDblRndOff(-2.9, 4)", "-2.00"},      {"dbo.FnDblRndOff(2.5, 6)", "3.00"},
            {"dbo.FnDblRndOff(-2.5, 6)", "-3.00"},      {"dbo.FnDblRndOff(2.37, 7)", "2.37"},
            {"dbo.FnDblRndOff(2.37, 8)", "2.37"},       {"dbo.FnDblRndOff(2.5, 7)", "2.50"},
            {"dbo.FnDblRndOff(2.37, 0)", "2.37"},
        });
}

TEST(ServerFunctions, MonthsAndDates) {
    test::Company company;
    company.addMonths(24289, 24291);  // Jan to Mar/2024
    expectValues(company, {
                              {"dbo.FnStrMonthName(24168)", "Dec/2013"},
                              {"dbo.FnStrMonthName(24169)", "Jan/2014"},
                              {"dbo.FnStrMonthName(0)", ""},
                              {"ISNULL(dbo.FnStrMonthName(12), 'none')", "none"},
                              {"dbo.FnStrWeekName(1)", "Sunday"},
                              {"dbo.FnStrWeekName(8)", "Not a valid week"},
                              {"dbo.FnDteGetFirstDate(24290)", "2024-02-01"},
                              {"dbo.FnDteGetLastDate(24290)", "2024-02-29"},
                              {"dbo.FnDteGetLastDate(24300)", "2024-12-31"},
                              {"dbo.FnDteGetLastDate(0)", ""},
                              {"dbo.FnDteGetFirstDate(21036)", ""},
                              {"dbo.FnDteGetFirstDate(21037)", "1753-01-01"},
                              {"dbo.FnLngMonthYear('2024-02-10', '2024-02-12')", "24290"},
                              {"dbo.FnLngMonthYear('10/Dec/2013', '10/Dec/2013')", "24168"},
                          });

    // Months from the 26th to the 25th.
    company.run("UPDATE MAS_OPTSETFEATURE SET CALCINMIDYN = 1");
    company.run(
        "UPDATE MAS_MONTHYEAR SET CALCSTARTDATE = DATEADD(DAY, 25, DATEADD(MONTH, -1, "
        "CALCSTARTDATE)), CALCENDDATE = DATEADD(DAY, 24, CALCSTARTDATE)");
    expectValues(
        company,
        {
            {"dbo.FnDteGetFirstDate(24290)", "2024-01-26"},
            {"dbo.FnDteGetLastDate(24290)", "2024-02-25"},
            {"dbo.FnLngMonthYear('2024-01-26', '2024-01-26')", "24290"},
            // A span over the border belongs to no month: the calendar month of its first day.
            {"dbo.FnLngMonthYear('2024-01-20', '2024-01-28')", "24289"},
        });
}

TEST(ServerFunctions, VersionsOfAnEmployee) {
    test::Company company;
    company.addMonths(24289, 24291);
    company.run(
        "INSERT INTO MAS_EMPLOYEE (EMPID, EMPNAME, DOJ, DOL) VALUES (7, 'Asha Rao', "
        "'2020-01-01', '2024-03-20')");
    company.run(
        "INSERT INTO MAS_EMPLOYEEDET (EMPID, EMPDETID, EFFFROMDATE, EFFTODATE, ATTHEADID) "
        "VALUES (7, 1, '2020-01-01', '2024-02-14', 3), (7, 2, '2024-02-15', NULL, 5)");
    expectValues(company,
                 {
                     {"dbo.FnIntMaxEmpDetID(7, '2024-02-01', '2024-02-14')", "1"},
                     {"dbo.FnIntMaxEmpDetID(7, '2024-02-01', '2024-02-29')", "2"},
                     {"dbo.FnIntMaxEmpDetID(7, '2019-02-01', '2019-02-28')", "0"},
                     {"dbo.FnIntMaxEmpDetID(8, '2024-02-01', '2024-02-28')", "0"},
                     {"dbo.FnIntAttHeadID(7, '2024-02-14')", "3"},
                     {"dbo.FnIntAttHeadID(7, '2024-02-15')", "5"},
                     {"dbo.UDF_OWB_FNINTATTHEADID(7, 2)", "5"},
                     {"dbo.FnDteFromDate(7, 1, 24290)", "2024-02-01"},
                     {"dbo.FnDteToDate(7, 1, 24290)", "2024-02-14"},
                     {"dbo.FnDteFromDate(7, 2, 24290)", "2024-02-15"},
                     {"dbo.FnDteToDate(7, 2, 24290)", "2024-02-29"},
                     {"dbo.FnDteToDate(7, 2, 24291)", "2024-03-20"},  // the date of leaving
                     {"dbo.FnDteEmpLastDate(7, 24290)", "2024-02-29"},
                     {"dbo.FnDteEmpLastDate(7, 24291)", "2024-03-20"},
                     {"dbo.udf_getEmpLock(7, 24289, DEFAULT)", "0"},
                 });
    company.run("UPDATE MAS_EMPLOYEE SET LOCKYN = 1");
    expectValues(company, {
                              {"dbo.udf_getEmpLock(7, 24289, 24291)", "1"},
                              {"dbo.udf_getEmpLock(8, 24289, DEFAULT)", "0"},
                              {"dbo.udf_getEmpLock(0, 24289, 24291)", "1"},  // anyone
                              // Until the month of leaving, and no longer.
                              {"dbo.udf_getEmpLock(7, 24291, DEFAULT)", "1"},
                              {"dbo.udf_getEmpLock(7, 24292, DEFAULT)", "0"},
                              {"dbo.udf_getEmpLock(0, 24292, 24300)", "0"},
                              {"dbo.udf_getEmpLock(7, 24000, 24100)", "0"},
                          });
    // The payroll month that holds the date of leaving.
    company.run(
        "UPDATE MAS_MONTHYEAR SET CALCENDDATE = '2024-03-15' WHERE MONTHYEAR = 24291 INSERT INTO "
        "MAS_MONTHYEAR (MONTHYEAR, CALCSTARTDATE, CALCENDDATE) VALUES (24292, '2024-03-16', "
        "'2024-04-15')");
    expectValues(company, {{"dbo.udf_getEmpLock(7, 24292, DEFAULT)", "1"}});
}

TEST(ServerFunctions, StatusOfADay) {
    test::Company company;
    company.run(
        "INSERT INTO ATT_DEFINITION (LEVID, LEVNAME, LEVSHORT, LEAVEYN) VALUES (5, 'Casual', "
        "'CL', 1), (6, 'Sick', 'SL', 1)");
    company.run(
        "INSERT INTO MAS_EMPLOYEEDET (EMPID, EMPDETID, EFFFROMDATE) VALUES (7, 1, "
        "'2020-01-01')");
    company.run(
        "INSERT INTO LEV_DETAILS (EMPID, EMPDETID, LEVID, LEAVEDATE, FIRSTHALFYN, SECONDHALFYN) "
        "VALUES (7, 1, 5, '2024-02-01', 1, 1), (7, 1, 5, '2024-02-02', 1, 0), "
        "(7, 1, 6, '2024-02-02', 0, 1), (7, 1, 5, '2024-02-05', 0, 1), "
        "(7, 9, 6, '2024-02-06', 1, 1)");
    expectValues(company,
                 {
                     {"dbo.FnStrLeaveStatus(7, '2024-02-01', 'P')", "CL"},
                     {"dbo.FnStrLeaveStatus(7, '2024-02-02', 'P')", "(1/2)CL+(1/2)SL"},
                     {"dbo.FnStrLeaveStatus(7, '2024-02-05', 'P')", "(1/2)P+(1/2)CL"},
                     {"dbo.FnStrLeaveStatus(7, '2024-02-05', '')", "(1/2)CL"},
                     {"dbo.FnStrLeaveStatus(7, '2024-02-05', ' ')", "(1/2)CL"},
                     {"dbo.FnStrLeaveStatus(7, '2024-02-06', 'P')", "P"},  // another version's row
                     {"dbo.FnStrLeaveStatus(7, '2024-02-07', '')", ""},
                 });
}

TEST(ServerFunctions, SettingsInForce) {
    test::Company company;
    company.run(
        "INSERT INTO LEV_SETTINGS (LEVID, ATTHEADID, MONTHYEAR, COLIMIT) VALUES (5, 0, 24280, "
        "1), (5, 0, 24290, 2), (5, 1, 24285, 3), (6, 1, 24300, 4)");
    const SqlCase months[] = {{"24279", ""},
                              {"24284", "5,0,1.00"},
                              {"24285", "5,0,1.00 5,1,3.00"},
                              {"24290", "5,0,2.00 5,1,3.00"},
                              {"24300", "5,0,2.00 5,1,3.00 6,1,4.00"}};
    for (const auto& m : months)
        EXPECT_EQ(company.rows("SELECT LEVID, ATTHEADID, COLIMIT FROM UDF_LSET(" + m.expression +
                               ") LS ORDER BY LEVID, ATTHEADID"),
                  m.expected)
            << m.expression;
}

}  // namespace
}  // namespace owb
