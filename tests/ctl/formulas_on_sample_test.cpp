// Stored formulas over the employees of a sample company, against sums of the tables themselves.
#include <gtest/gtest.h>

#include "db/recordset.h"
#include "formula/clsEvalFormula.h"
#include "leave/screens/frmConfiguring.h"
#include "leave/screens/modLeaveProcess.h"
#include "sample/sample.h"
#include "support/company.h"
#include "support/screens.h"

namespace owb::test {
namespace {

constexpr int32_t kMonth = 2026 * 12 + 2;

struct Case {
    const char* formula;
    const char* expected;  // of employee E with version D, rate R and month row M
};

constexpr Case kCases[] = {
    {"Component{Basic} + Component{HRA} * 2 - (GrossSalary)",
     "R.BASIC + R.ECOMP01 * 2 - R.TOTALENTERED"},
    {"Days{Pay Days} * 100 + Days{Present Days}", "M.NOD * 100 + M.NDP"},
    {"OWRound(Component{Basic} * Days{Pay Days} / Days{Salary Calendar Days}, 10, \"u\")",
     "CEILING(ROUND(R.BASIC * M.NOD / M.NODCALC, 6) / 10) * 10"},
    {"OWDayDiff(Emp{DOJ}, CDATE(\"28/FEB/2026\")) + OWYearDiff(Emp{DOJ}, Emp{DOL}) * 100000",
     "DATEDIFF(DAY, E.DOJ, '2026-02-28') + DATEDIFF(YEAR, E.DOJ, ISNULL(E.DOL, '2099-12-31')) * "
     "100000"},
    {"OWIF(Emp{SEX} = \"female\", 1, 2) + ((SalaryMonth) - OWMonthYear(\"01/FEB/2026\")) * 7",
     "CASE E.SEX WHEN 'Female' THEN 1 ELSE 2 END"},
    {"Leave{CL} + Leave{SL} * 100 + Leave{LOP} * 10000",
     "ISNULL((SELECT SUM((L.FIRSTHALFYN + L.SECONDHALFYN) / 2.0 * CASE A.LEVSHORT WHEN 'CL' THEN 1 "
     "WHEN 'SL' THEN 100 WHEN 'LOP' THEN 10000 ELSE 0 END) FROM LEV_DETAILS L, ATT_DEFINITION A "
     "WHERE A.LEVID = L.LEVID AND L.EMPID = E.EMPID AND ISNULL(L.LEVMONTHLY, 0) = 0 AND "
     "L.LEAVEDATE "
     "BETWEEN '2026-02-01' AND '2026-02-28'), 0)"},
};

TEST(FormulasOnSample, GiveWhatTheTablesHold) {
    Company company;
    Session& session = company.session;
    NoProgress quiet;
    sample::makeSample(session.gConn, {}, quiet);
    TestFrontEnd frontEnd(company.boxes);
    frmConfiguring(session, frontEnd).showModal();
    modLeaveProcess(session, frontEnd).showModal();
    size_t compared = 0;
    for (int32_t id = 900; const Case& c : kCases) {
        company.run("INSERT INTO MAS_FORMULA (FORMULAID, FORMULA) VALUES (" + std::to_string(++id) +
                    ", '" + session.gSpChar.FnStrSpSQL(c.formula) + "')");
        // Who has one version in the month; monthly figures of leave are dated elsewhere.
        Recordset rs(session.gConn,
                     "SELECT E.EMPID, CAST(" + std::string(c.expected) +
                         " AS FLOAT) FROM MAS_EMPLOYEE E, LEV_MONTHDET M, SLC_SALARYRATE_E R, "
                         "MAS_EMPLOYEEDET D, MAS_ATTHEAD H WHERE M.EMPID = E.EMPID AND M.MONTHYEAR "
                         "= " +
                         std::to_string(kMonth) +
                         " AND D.EMPID = E.EMPID AND D.EMPDETID = M.EMPDETID AND H.ATTHEADID = "
                         "D.ATTHEADID AND H.ATTNTIGHTYN = 1 AND H.ATTNTYPE <> 4 AND R.EMPID = "
                         "E.EMPID AND R.EMPDETID = M.EMPDETID AND R.MONTHYEAR = (SELECT "
                         "MAX(MONTHYEAR) FROM SLC_SALARYRATE_E WHERE EMPID = R.EMPID AND EMPDETID "
                         "= R.EMPDETID AND MONTHYEAR <= M.MONTHYEAR) AND 1 = (SELECT COUNT(*) FROM "
                         "LEV_MONTHDET WHERE EMPID = E.EMPID AND MONTHYEAR = M.MONTHYEAR)");
        for (; !rs.IsEOF(); rs.MoveNext()) {
            ++compared;
            EXPECT_NEAR(
                FnEvalFormula(session).FnDblEvalSalFormula(id, rs.Fields(0).toInt(), kMonth),
                rs.Fields(1).toDouble(), 1e-6)
                << c.formula << " of employee " << rs.Fields(0).toText();
        }
    }
    EXPECT_GT(compared, 100U);
}

}  // namespace
}  // namespace owb::test
