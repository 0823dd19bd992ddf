// The sample company: repeatable, whole, and with a case of everything.
#include <gtest/gtest.h>

#include "sample/sample.h"
#include "schema/modSQLFunction.h"
#include "session/locks.h"
#include "support/company.h"

namespace owb {
namespace {

struct Sample : ::testing::Test {
    void make(test::Company& company, int employees, int months, uint64_t seed = 1) {
        sample::SampleOptions options;
        options.employees = employees;
        options.months = months;
        options.seed = seed;
        NoProgress progress;
        sample::makeSample(company.session.gConn, options, progress);
    }
    std::string count(test::Company& company, const std::string& from) {
        return company.value("SELECT COUNT(*) FROM " + from);
    }
};

TEST_F(Sample, SameOptionsGiveSameRows) {
    test::Company small, large, other;
    make(small, 12, 3);
    make(large, 20, 3);
    make(other, 12, 3, 2);
    const std::string firstTwelve =
        "SELECT EMPID, EMPDETID, LEVID, LEAVEDATE, FIRSTHALFYN, SECONDHALFYN, LEVMONTHLY FROM "
        "LEV_DETAILS WHERE EMPID <= 12 ORDER BY EMPID, LEAVEDATE, LEVID";
    EXPECT_FALSE(small.rows(firstTwelve).empty());
    EXPECT_EQ(small.rows(firstTwelve), large.rows(firstTwelve));
    EXPECT_NE(small.rows(firstTwelve), other.rows(firstTwelve));
    const std::string people = "SELECT EMPNAME, DOJ, DOL FROM MAS_EMPLOYEE WHERE EMPID <= 12";
    EXPECT_EQ(small.rows(people), large.rows(people));
}

TEST_F(Sample, FortyEmployeesShowEveryCase) {
    test::Company company;
    make(company, 40, 24);
    EXPECT_EQ(company.rows("SELECT DISTINCT NODFORCALC FROM MAS_ATTHEAD ORDER BY NODFORCALC"),
              "1 2 3 4 5 6");
    EXPECT_EQ(company.rows("SELECT DISTINCT ATTNTYPE FROM MAS_ATTHEAD ORDER BY ATTNTYPE"),
              "1 2 3 4");
    EXPECT_EQ(company.rows("SELECT DISTINCT LEVID FROM LEV_DETAILS ORDER BY LEVID"),
              "1 2 3 5 6 7 8");
    EXPECT_EQ(company.rows("SELECT DISTINCT ATTHEADID FROM MAS_EMPLOYEEDET ORDER BY ATTHEADID"),
              "1 2 3 4 5 6");
    const std::string some[] = {
        "MAS_EMPLOYEE WHERE DAY(DOJ) > 1 AND DOJ > '2024-04-01'",
        "MAS_EMPLOYEE WHERE DOL IS NOT NULL",
        "MAS_EMPLOYEE WHERE LOCKYN = 1",
        "MAS_EMPLOYEEDET A, MAS_EMPLOYEEDET B WHERE A.EMPID = B.EMPID AND B.EMPDETID = A.EMPDETID "
        "+ 1 "
        "AND A.ATTHEADID <> B.ATTHEADID AND DAY(B.EFFFROMDATE) > 1",
        "MAS_EMPLOYEEDET A, MAS_EMPLOYEEDET B WHERE A.EMPID = B.EMPID AND B.EMPDETID = A.EMPDETID "
        "+ 1 "
        "AND A.BRANCHID <> B.BRANCHID",
        "LEV_DETAILS WHERE FIRSTHALFYN + SECONDHALFYN = 1",
        "LEV_DETAILS WHERE LEVMONTHLY > 0",
        "ATT_OVERTIME WHERE OTDAY15 > 0",
        "ATT_WKLYROT WHERE EMPID > 0 AND FIRSTHALFYN + SECONDHALFYN = 1",
        "ATT_WKLYROT WHERE EMPID = 0 AND ATTHEADID = 6",
        "ATT_HOLIDAY WHERE BRANCHID IS NOT NULL",
        "ATT_HOLEX WHERE ATTHEADID IS NOT NULL",
        "LEV_WEEKLYHLD WHERE WEEKID = 7 AND FH1YN = 0 AND SH1YN = 1",
        "SEC_BUTPER WHERE GROUPID = 2 AND BUTALLOWYN = 0",
        "SEC_USERLIST WHERE READONLYYN = 1",
        "LEV_ADJUSTMENT",
    };
    for (const std::string& rows : some) EXPECT_NE(count(company, rows), "0") << rows;
    EXPECT_EQ(
        company.rows("SELECT MONTHYEAR FROM MAS_MONTHYEAR WHERE ISNULL(LOCKEDYN, 0) = 0 ORDER "
                     "BY MONTHYEAR"),
        "24314 24315");  // Feb and Mar/2026
    EXPECT_FALSE(FnBlnMonthRangeLocked(company.session, 24314, 99999, true, 0))
        << "a company's holiday can be added";
}

TEST_F(Sample, RowsFitTogether) {
    test::Company company;
    make(company, 60, 14);
    const std::string none[] = {
        // Leave outside its version or the employment, or twice.
        "LEV_DETAILS L WHERE EMPDETID <> dbo.FnIntMaxEmpDetID(EMPID, LEAVEDATE, LEAVEDATE)",
        "LEV_DETAILS L, MAS_EMPLOYEE E WHERE L.EMPID = E.EMPID AND (LEAVEDATE < DOJ OR LEAVEDATE > "
        "DOL)",
        "(SELECT EMPID, LEVID, LEAVEDATE FROM LEV_DETAILS GROUP BY EMPID, LEVID, LEAVEDATE HAVING "
        "COUNT(*) > 1) T",
        // Salary rows for just the versions in force in the month.
        "SLC_SALARYCALC_E S WHERE dbo.FnDteFromDate(EMPID, EMPDETID, MONTHYEAR) > "
        "dbo.FnDteToDate(EMPID, EMPDETID, MONTHYEAR)",
        "MAS_EMPLOYEEDET D, MAS_MONTHYEAR M WHERE dbo.FnDteFromDate(EMPID, EMPDETID, MONTHYEAR) <= "
        "dbo.FnDteToDate(EMPID, EMPDETID, MONTHYEAR) AND NOT EXISTS (SELECT * FROM "
        "SLC_SALARYCALC_E "
        "WHERE EMPID = D.EMPID AND EMPDETID = D.EMPDETID AND MONTHYEAR = M.MONTHYEAR)",
        // Registers for the daily and hourly heads, each with its twin.
        "ATT_DAYTODAY A, MAS_ATTHEAD H WHERE A.ATTHEADID = H.ATTHEADID AND ATTNTYPE NOT IN (2, 3)",
        "ATT_DAYTODAY WHERE ATTTRANNO NOT IN (SELECT ATTTRANNO FROM ATT_OVERTIME)",
        // What the registers show is what was taken.
        "ATT_DAYTODAY A, ATT_OVERTIME O, MAS_ATTHEAD H WHERE A.ATTTRANNO = O.ATTTRANNO AND "
        "A.ATTHEADID = H.ATTHEADID AND ATTNTYPE = 2 AND OTDAY15 = 0 AND DAY15 <> '' AND DAY15 <> "
        "REPLACE(dbo.FnStrLeaveStatus(EMPID, dbo.FnDteGetFirstDate(MONTHYEAR) + 14, 'P'), '(1/2)', "
        "'½')",
    };
    for (const std::string& rows : none) EXPECT_EQ(count(company, rows), "0") << rows;

    // The sweep finds nothing to repair.
    const std::string tables[] = {"LEV_DETAILS", "ATT_DAYTODAY", "ATT_OVERTIME", "LEV_SETTINGS",
                                  "SLC_SALARYCALC_E"};
    std::vector<std::string> before;
    for (const std::string& table : tables) before.push_back(count(company, table));
    FreeLeaveTables(company.session);
    for (size_t i = 0; i < std::size(tables); ++i)
        EXPECT_EQ(count(company, tables[i]), before[i]) << tables[i];
}

TEST_F(Sample, OnlyIntoACompanyWithoutEmployees) {
    test::Company company;
    company.run("INSERT INTO MAS_EMPLOYEE (EMPID) VALUES (1)");
    EXPECT_THROW(make(company, 5, 2), DbError);
    EXPECT_EQ(count(company, "MAS_BRANCH"), "0");

    // A cancelled one leaves nothing behind.
    class Cancel final : public Progress {
      public:
        void status(const std::string&) override {}
        void step(size_t done, size_t) override { done_ = done; }
        bool cancelled() const override { return done_ >= 3; }

      private:
        size_t done_ = 0;
    } cancel;
    test::Company fresh;
    sample::makeSample(fresh.session.gConn, {}, cancel);
    EXPECT_EQ(count(fresh, "MAS_EMPLOYEE"), "0");
    EXPECT_EQ(count(fresh, "MAS_ATTHEAD"), "1");
}

}  // namespace
}  // namespace owb
