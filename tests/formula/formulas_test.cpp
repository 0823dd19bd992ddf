// Stored formulas over a small payroll: April 2021 (month key 24256), employee 1 in head 11.
#include <gtest/gtest.h>

#include "calendar/clsNODNDPCalc.h"
#include "formula/clsEvalFormula.h"
#include "session/modOWBSetting.h"
#include "support/payroll.h"

namespace owb {
namespace {

constexpr int32_t kApril = 2021 * 12 + 4;

std::string quoted(const std::string& text) {
    std::string result = "'";
    for (char c : text) result += c == '\'' ? "''" : std::string(1, c);
    return result + "'";
}

struct Formulas : test::Payroll {
    Formulas() : Payroll(kApril - 12, kApril + 2) {
        run("INSERT INTO MAS_BRANCH VALUES (1, 'Pune', 1) INSERT INTO MAS_SALSTRUCT VALUES (1, "
            "'Staff') INSERT INTO MAS_PTGRP VALUES (1, 'Maharashtra')");
        head({11, 2, 2, true});
        head({12, 2, 2, false});
        employee(1, "2020-01-15", 11);
        employee(2, "2020-01-15", 12);
        leaveKind(5, "CL", false);
        leaveKind(6, "SL", true);
        salary(1, 1, kApril, kApril);
        run("UPDATE SLC_SALARYCALC_E SET SALCALDAYS = 30, NOD = 27.5, NDP = 25, ETOTAL = 18000, "
            "BASIC = 9000.25, ECOMP01 = 4500, OT1 = 120");
        run("INSERT INTO SLC_SALARYCALC_D (SALID, EMPID, EMPDETID, MONTHYEAR, DCOMP01) VALUES (1, "
            "1, 1, 24256, 1080)");
        run("INSERT INTO MAS_SALARYHEAD VALUES (0, 0, 'Basic', 'E'), (1, 0, 'HRA', 'C'), (100, 0, "
            "'OT', 'E'), (12, 0, 'Spl', 'E'), (1, 1, 'PF', 'E')");
        run("INSERT INTO SLC_SALARYRATE_E (SALRATEID, EMPID, EMPDETID, MONTHYEAR, BASIC, ECOMP01, "
            "ECOMP12, TOTALENTERED) VALUES (1, 1, 1, 24250, 9000, 4000, -1.5, 13000), (2, 1, 1, "
            "24256, 10000, 5000, NULL, 15000), (3, 1, 1, 24257, 1, 1, 1, 3)");
        run("INSERT INTO SLC_SALARYRATE_D (SALRATEID, DCOMP01) VALUES (2, 1200)");
        InstallCaptions();
    }

    void InstallCaptions() {
        LoadOptSet(session);
        LoadCaptions(session);
    }
    double eval(const std::string& formula, int employeeId = 1, FormulaTrace* trace = nullptr,
                bool arrears = false, const std::string& gross = "") {
        run("DELETE FROM MAS_FORMULA WHERE FORMULAID = 99 INSERT INTO MAS_FORMULA (FORMULAID, "
            "FORMULA) VALUES (99, " +
            quoted(formula) + ")");
        return FnEvalFormula(session).FnDblEvalFormula(
            99, employeeId, 1, kApril, DateTime::fromCivil(2021, 4, 1),
            DateTime::fromCivil(2021, 4, 30), arrears, gross, trace);
    }
    void expect(std::initializer_list<std::pair<const char*, double>> cases, int employeeId = 1) {
        for (const auto& [formula, value] : cases) {
            EXPECT_DOUBLE_EQ(eval(formula, employeeId), value) << formula;
            EXPECT_TRUE(boxes.shown.empty()) << boxes.shown.back().text;
        }
    }
};

TEST(Formulas, salaryRatesAndCalculatedValues) {
    Formulas p;
    p.expect({
        {"Component{Basic} / 25", 400},
        {"component{BASIC} + COMPONENT{hra} - Component{PF}", 13800},
        {"(GrossSalary)", 15000},
        {"Component{Spl} + 1", 1},
        {"CV{Basic}", 9000.25},
        {"CV{OT} + CV{PF} * 2", 2280},
        {"(GrossSalary) + CV{HRA} * 0", 15000},
        {"CV{Nobody}", 0},
        {"(SalaryMonth) >= OWMonthYear(\"01/APR/2021\")", 0},
        {"OWIF((SalaryMonth) = OWMonthYear(\"01/APR/2021\"), 7, 8)", 7},
        {"(PTGroup) = \"x\"", 0},
        {"OWIF((PTGroup) = \"maharashtra\", 200, 0)", 200},
        {"Unknown{X}", 0},
        {"True", 0},
        {"\"12 days\"", 12},
        {"1 / 0", 0},
    });
    EXPECT_EQ(p.eval("(GrossSalary)", 1, nullptr, false, "C"), 18000);
    p.run(
        "UPDATE SLC_SALARYRATE_E SET ECOMP01 = CAST(0.1 AS float) + CAST(0.2 AS float), BASIC = "
        "CAST(1 AS float) / 3000000, TOTALENTERED = 1E16 WHERE MONTHYEAR = 24256");
    p.expect({{"OWIF(Component{HRA} = 0.3, 1, 2)", 1},
              {"OWIF(Component{Basic} = 0.000000333333333333333, 1, 2)", 1},
              {"(GrossSalary) / 1E16", 1}});
    p.run("DELETE FROM SLC_SALARYRATE_E");
    p.expect({{"Component{Basic} + 1", 0}, {"Component{Basic} * 0 + 1", 0}});
    p.run("DELETE FROM MAS_BRANCH");
    p.expect({{"OWIF((PTGroup) = \"\", 3, 4)", 3}});
    EXPECT_EQ(
        FnEvalFormula(p.session).FnDblEvalFormula(12345, 1, 1, kApril, DateTime{}, DateTime{}), 0);
}

TEST(Formulas, arrearsOfTheMonth) {
    Formulas p;
    p.run(
        "INSERT INTO MAS_ARREARS (ARREARID, ARRCALCTYPE) VALUES (1, 0), (2, 1) "
        "INSERT INTO SLC_ARREARS_E (ARREARTRANID, ARREARID, EMPID, EMPDETID, MONTHYEAR, PAIDFOR, "
        "NETAMOUNT, BASIC, ECOMP01) VALUES (1, 1, 1, 1, 24256, 24256, 300, 100, 50), (2, 2, 1, 1, "
        "24256, 24256, 1000, 1000, 0), (3, 1, 1, 1, 24257, 24256, 5, 10, 0) "
        "INSERT INTO SLC_ARREARS_D (ARREARTRANID, DCOMP01) VALUES (1, 12), (2, 500)");
    EXPECT_DOUBLE_EQ(p.eval("CV{Basic}", 1, nullptr, true), 9110.25);
    EXPECT_DOUBLE_EQ(p.eval("CV{HRA} + CV{PF}", 1, nullptr, true), 4550 + 1092);
    p.expect({{"CV{Basic}", 9000.25}, {"(ARREAREARNING) * 1", 1300}});
    p.run("DELETE FROM SLC_ARREARS_E");
    p.expect({{"OWIF((ARREAREARNING) = \"\", 1, 2)", 1}});
}

TEST(Formulas, leaveHolidaysAndDays) {
    Formulas p;
    p.leave(1, 1, 5, "2021-04-06", "FS");
    p.leave(1, 1, 5, "2021-04-07", "F");
    p.leave(1, 1, 6, "2021-04-08", "FS");
    p.leave(1, 1, 5, "2021-05-03", "FS");
    p.run(
        "INSERT INTO LEV_ADJUSTMENT (EMPID, LEVID, ATTHEADID, ASONDATE, TAKEN) VALUES (1, 5, 11, "
        "'2021-04-10', 2)");
    p.holiday(1, "2021-04-14");
    p.weekly(11, 1, "FS FS FS FS FS");
    p.run(
        "INSERT INTO LEV_MONTHDET (EMPID, EMPDETID, MONTHYEAR, ADJHRS) VALUES (1, 1, 24256, "
        "3.5)");
    p.expect({
        {"Leave{CL}", 3.5},
        {"leave{cl} + LEAVE{SL}", 4.5},
        {"Leave{LOP}", 0},
        {"Days{Salary Calendar Days}", 30},
        {"Days{Pay Days}", 29},
        {"Days{Total Pay Days} + Days{Total Present Days}", 52.5},
        {"(AdjHours)", 0},
        {"(AdjHours) + Leave{CL} * 0", 3.5},
        {"(GenHoliday) + Leave{CL}", 0},
    });
    // Present days: 30 less 4 Sundays, the holiday, 3.5 and 1 days of leave.
    p.expect({{"Days{Present Days}", 20.5}});
    p.run(
        "INSERT INTO MAS_FORMULA (FORMULAID, FORMULA) VALUES (1, '(GenHoliday) + (WeekHoliday) + "
        "(TotalWeekHoliday)') INSERT INTO SLC_SALSTRUCTDET (STRUCTID, SALHEADROWID, FORMULAID) "
        "VALUES (1, 0, 1)");
    p.expect({{"(GenHoliday) + Leave{SL} * 0", 1},
              {"(WeekHoliday) * 100 + Leave{SL}", 401},
              {"(TotalWeekHoliday) + Leave{SL} * 0", 4},
              {"(TotalGenHoliday) + Leave{SL} * 0", 0}});
    // Not tightly integrated: the stored counts, 0 without a salary row.
    p.expect({{"Days{Pay Days} + Days{Present Days}", 0}}, 2);
    p.salary(2, 1, kApril, kApril);
    p.run("UPDATE SLC_SALARYCALC_E SET SALCALDAYS = 31, NOD = 20, NDP = 19.5 WHERE EMPID = 2");
    p.expect({{"Days{Pay Days} + Days{Present Days}", 39.5}}, 2);

    KeywordTable table;
    FnEvalFormula(p.session).FillOtherData(table, 1, 11, 1, kApril, DateTime::fromCivil(2021, 4, 1),
                                           DateTime::fromCivil(2021, 4, 30), 1, 2, 3, true);
    for (const Keyword& entry : table)
        if (entry.keyword.rfind("Leave{", 0) == 0) {
            EXPECT_EQ(entry.value, "1") << entry.keyword;
        }
}

TEST(Formulas, leaveOfTheOlderTables) {
    Formulas p;
    p.session.gFeature.LVSTARTMNYEAR = kApril + 1;
    p.run(
        "INSERT INTO ATT_DETAIL (EMPID, LEVID, LEVDATE, FIRSTHALFYN, SECONDHALFYN) VALUES "
        "(1, 5, '2021-04-06', 1, 1), (1, 5, '2021-04-07', 0, 1), (1, 5, '2021-05-07', 1, 1)");
    p.expect({{"Leave{CL}", 1.5}});
    p.setHead(11, "ATTNTYPE = 4");
    p.run(
        "INSERT INTO ATT_MONTH (ATTSLNO, EMPID, EMPDETID, MONTHYEAR) VALUES (1, 1, 1, 24256) "
        "INSERT INTO ATT_MONTHLEV (ATTSLNO, LEVID, LEVVALUE) VALUES (1, 5, 2.5)");
    p.expect({{"Leave{CL}", 2.5}});
}

TEST(Formulas, reimbursements) {
    Formulas p;
    p.run(
        "INSERT INTO RMB_MASTER (RMBID, RMBNAME) VALUES (1, 'Fuel'), (2, 'Books') "
        "INSERT INTO RMB_ALLOT VALUES (1, 1, 1) INSERT INTO RMB_ALLOTDET VALUES (1, 24256, 500) "
        "INSERT INTO RMB_CLAIM (EMPID, RMBID, SALARYMONTH, CLAIMDATE, CLAIMAMT) VALUES (1, 1, "
        "24256, '2021-03-01', 300), (1, 1, 0, '2021-04-09', 100), (1, 1, 0, '2021-03-09', 7), (1, "
        "2, 24256, '2021-04-01', 60)");
    p.expect({
        {"ReimAllot{FUEL}", 500},
        {"ReimClaim{Fuel} + ReimAllot{Fuel} * 0", 400},
        {"ReimUnclaim{Fuel} + ReimAllot{Fuel} * 0", 100},
        {"ReimUnclaim{Books} + ReimAllot{Books} * 0", 0},
        {"ReimClaim{Fuel}", 0},
    });
}

TEST(Formulas, employeeAndClassifications) {
    Formulas p;
    p.run(
        "UPDATE MAS_EMPLOYEEDET SET DESIGNATION = 'Clerk', GRADE = '5\" pipe' WHERE EMPID = 1 "
        "UPDATE MAS_EMPLOYEE SET SEX = 'F', DOB = '1990-05-06' WHERE EMPID = 1 "
        "INSERT INTO MAS_EXTCAPTION VALUES (5, 'Band', 1, 0)");
    p.InstallCaptions();
    p.expect({
        {"OWIF(EmpDet{Designation} = \"clerk\", 1, 2)", 1},
        {"OWIF(EmpDet{Branch} & EmpDet{Attendance} & EmpDet{Sal Structure} = "
         "\"PUNEHEAD 11STAFF\", 1, 2)",
         1},
        {"OWIF(EmpDet{Grade} = \"\", 1, 2)", 0},
        {"OWIF(EmpDet{Band} = \"\", 1, 2)", 0},
        {"OWYearDiff(Emp{DOJ}, Emp{DOL})", 79},
        {"OWDayDiff(Emp{DOJ}, \"16/JAN/2020\")", 1},
        {"Month(Emp{DORes}) + Day(Emp{DOConf})", 43},
        {"Year(Emp{DOB})", 1990},
        {"OWIF(Emp{SEX} = \"f\", 5, 6)", 5},
        {"OWDayDiff(Emp{SALCALCFROM}, Emp{DOJ})", 0},
    });
    p.expect({{"OWIF(Emp{DOB} = \"\", 1, 2)", 1}}, 2);
    p.run("DELETE FROM MAS_EXTCAPTION");
    p.InstallCaptions();
    p.expect({{"OWIF(EmpDet{Grade} = \"5\"\" PIPE\", 1, 2)", 1}});

    p.run(
        "INSERT INTO MAS_EXTCAPTION VALUES (7, 'Zone', 0, 1) INSERT INTO MAS_EMPLOYEEEXTDET "
        "(EMPEXTID, EMPID, EFFFROMDATE, EXTCLASS07) VALUES (1, 1, '2020-01-01', 'North'), (2, 1, "
        "'2021-04-30', 'South'), (3, 1, '2021-05-01', 'West')");
    p.expect({{"OWIF(EmpDet{Zone} = \"SOUTH\", 1, 2)", 1}});
    p.run("UPDATE MAS_EMPLOYEEDET SET EFFTODATE = '2021-04-29' WHERE EMPID = 1");
    p.expect({{"OWIF(EmpDet{Zone} = \"NORTH\", 1, 2)", 1}});
    EXPECT_EQ(p.eval("OWIF(EmpDet{Zone} = \"NORTH\", 1, 2)", 2), 0);
    ASSERT_EQ(p.boxes.shown.size(), 1u);
    EXPECT_EQ(p.boxes.shown[0].icon, BoxIcon::None);
}

TEST(Formulas, customColumnsAndQueries) {
    Formulas p;
    p.run(
        "INSERT INTO MAS_EMPCUSCAPTION VALUES (3, 'Shift', 1), (4, 'Hidden', 0) INSERT INTO "
        "MAS_EMPLOYEECUSTOM (EMPID, FIELD3) VALUES (1, 'Night') INSERT INTO MAS_FORMULACUSTOM "
        "VALUES (1, 'Days', '', 'SELECT $MONTHYEAR$ - 24250 + 0.50 + $EMPDETID$ * 0', 1), (2, "
        "'None', '', 'SELECT 1 WHERE $EMPID$ = 77', 1), (3, 'Other', '', 'SELECT 5', 2)");
    p.expect({
        {"OWIF(EmpCustDet{Shift} = \"NIGHT\", 1, 2)", 1},
        {"OWIF(EmpCustDet{Hidden} = \"\", 1, 2)", 0},
        {"CustQry{Days} * 2", 13},
        {"CustQry{Days} + CustQry{None}", 6.50},
        {"CustQry{Other}", 0},
    });
    p.expect({{"OWIF(EmpCustDet{Shift} = \"\", 1, 2)", 1}}, 2);
    p.run("UPDATE MAS_FORMULACUSTOM SET FQUERY = 'SELECT * FROM NOWHERE' WHERE FID = 1");
    FormulaTrace trace;
    EXPECT_EQ(p.eval("CustQry{None}", 1, &trace), 0);
    ASSERT_EQ(p.boxes.shown.size(), 1u);
    EXPECT_EQ(p.boxes.shown[0].text, trace.failure);
}

TEST(Formulas, statutoryFlags) {
    struct Case {
        const char* rows;
        const char* flag;
        const char* value;
    };
    const Case cases[] = {
        {"", "(PFYN)", "N"},
        {"UPDATE MAS_EMPLOYEE SET PFYN = 1, ESIYN = 1", "(PFYN)", "Y"},
        {"", "(ESIYN)", "Y"},
        {"", "(RESPFYN)", "N"},
        // A changed value counts from its month on.
        {"INSERT INTO MAS_EMPLOYEEEXT (EMPID, PFYN, PFEFFFROM, ESIYN, ESIEFFFROM) VALUES (1, 0, "
         "'2021-05-01', 0, 24257)",
         "(PFYN)", "Y"},
        {"UPDATE MAS_EMPLOYEEEXT SET PFEFFFROM = '2021-04-30', ESIEFFFROM = 24256", "(PFYN)", "N"},
        {"", "(ESIYN)", "N"},
        // Rows with an effective month win.
        {"INSERT INTO MAS_PFEFFFROMEXT (EMPID, PFEFFFROM, PFYN) VALUES (1, 24257, 1)", "(PFYN)",
         "N"},
        {"INSERT INTO MAS_PFEFFFROMEXT (EMPID, PFEFFFROM, PFYN) VALUES (1, 24255, 1), (1, 24200, "
         "0)",
         "(PFYN)", "Y"},
        {"INSERT INTO MAS_PFRESTRICTEFFFROMEXT (EMPID, PFRESTRICTEFFFROM, PFRESTRICTYN) VALUES "
         "(1, 24256, 1)",
         "(RESPFYN)", "Y"},
        {"", "(ZEROPENSIONYN)", "N"},
        {"UPDATE MAS_EMPLOYEEEXT SET PFZEROYN = 1, PFZEROEFFFROM = 24256 UPDATE MAS_EMPLOYEE SET "
         "PFZEROYN = 0",
         "(ZEROPENSIONYN)", "Y"},
        {"", "(ZEROPTYN)", "N"},
        {"UPDATE MAS_EMPLOYEE SET PTZEROYN = 1", "(ZEROPTYN)", "Y"},
        {"UPDATE MAS_EMPLOYEEEXT SET PTZEROYN = 0, PTZEROEFFFROM = 24256", "(ZEROPTYN)", "N"},
        {"", "(RESEMPRPFYN)", "N"},
        {"INSERT INTO MAS_PFESIRATE VALUES (24200, 0), (24256, 1), (24257, 0)", "(RESEMPRPFYN)",
         "Y"},
        {"INSERT INTO MAS_PFRESTRICTCMPEFFFROM VALUES (1, 24256, 0)", "(RESEMPRPFYN)", "Y"},
        {"UPDATE MAS_OPTSET SET PFCMPRESTEMPYN = 1", "(RESEMPRPFYN)", "N"},
    };
    Formulas p;
    for (const Case& c : cases) {
        if (*c.rows) p.run(c.rows);
        p.InstallCaptions();
        EXPECT_EQ(p.eval(std::string("OWIF(") + c.flag + " = \"" + c.value + "\", 1, 2)"), 1)
            << c.flag << " after " << c.rows;
    }
}

TEST(Formulas, units) {
    Formulas p;
    p.run(
        "INSERT INTO SLC_COMPCALCDET (SLNO, EMPID, MONTHYEAR, STRUCTID, PAYTYPEYN, SALHEADROWID, "
        "UNIT) VALUES (1, 1, 24256, 1, 0, 1, 12.5)");
    p.expect({{"OT1UNIT + OT2UNIT + 1", 1}, {"UNIT{HRA}", 0}});
    p.run(
        "INSERT INTO MAS_FORMULA (FORMULAID, FORMULA) VALUES (1, 'UNIT{HRA} * 5') INSERT INTO "
        "SLC_SALSTRUCTDET (STRUCTID, SALHEADROWID, FORMULAID) VALUES (1, 1, 1)");
    p.expect({{"UNIT{HRA} * 2", 25}, {"UNIT{Basic} + 1", 0}});
    p.expect({{"UNIT{HRA} + 1", 1}}, 2);
}

TEST(Formulas, salaryFormulaOfTheMonth) {
    Formulas p;
    p.run("INSERT INTO MAS_FORMULA (FORMULAID, FORMULA) VALUES (1, 'CV{Basic} + Leave{CL}')");
    p.leave(1, 1, 5, "2021-04-30", "F");
    clsEvalFormula& eval = FnEvalFormula(p.session);
    EXPECT_DOUBLE_EQ(eval.FnDblEvalSalFormula(1, 1, kApril), 9000.75);
    EXPECT_EQ(eval.FnDblEvalSalFormula(1, 1, kApril + 1), 0);
    EXPECT_EQ(eval.FnStrMonthEndDate(2024 * 12 + 2), "29/Feb/2024");
    p.session.gFeature.CALCINMIDYN = true;
    p.run("UPDATE MAS_MONTHYEAR SET CALCENDDATE = '2021-04-25' WHERE MONTHYEAR = 24256");
    EXPECT_EQ(eval.FnStrMonthEndDate(kApril), "25/Apr/2021");
}

}  // namespace
}  // namespace owb
