// The sample company: repeatable, whole, and with a case of everything.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "family/modCommon.h"
#include "run_owbctl.h"
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

TEST(SampleSpan, BeginsInAnAprilAtLeastTwoYearsBefore) {
    const struct {
        int32_t last, first, months;
    } cases[] = {{2026 * 12 + 3, 2024 * 12 + 4, 24},
                 {2026 * 12 + 4, 2024 * 12 + 4, 25},
                 {2026 * 12 + 11, 2024 * 12 + 4, 32},
                 {2027 * 12 + 2, 2024 * 12 + 4, 35},
                 {2026 * 12 + 12, 2024 * 12 + 4, 33}};
    for (const auto& c : cases) {
        const sample::SampleOptions options = sample::optionsUpTo(c.last);
        EXPECT_EQ(options.fromMonth, c.first);
        EXPECT_EQ(options.months, c.months);
        EXPECT_EQ(options.lastMonth(), c.last);
    }
}

TEST_F(Sample, YearsBeyondTheListsHaveTheirFixedDays) {
    test::Company company;
    sample::SampleOptions options = sample::optionsUpTo(2031 * 12 + 2);
    options.employees = 3;
    NoProgress progress;
    sample::makeSample(company.session.gConn, options, progress);
    EXPECT_EQ(
        company.rows("SELECT YEAR(HOLIDAYDATE), COUNT(*) FROM ATT_HOLIDAY WHERE HOLIDAYTYPE = "
                     "1 AND YEAR(HOLIDAYDATE) > 2026 GROUP BY YEAR(HOLIDAYDATE) ORDER BY 1"),
        "2028,3 2029,3 2030,3 2031,3");
    EXPECT_EQ(count(company, "ATT_RESTRICTHOLIDAY WHERE YEAR(HOLIDAYDATE) = 2030"), "2");
    EXPECT_EQ(company.rows("SELECT MIN(ASSYEAR), MAX(ASSYEAR), COUNT(*) FROM ITSETTING"),
              "2029,2032,4");
    EXPECT_EQ(company.rows("SELECT MONTHYEAR FROM MAS_MONTHYEAR WHERE LOCKEDYN = 0 AND ATTLOCKYN = "
                           "0 ORDER BY MONTHYEAR"),
              "24373 24374");
}

// What a newcomer tries first: a holiday for all, for a head, for a branch, in the open months, and
// the list of the next year.
TEST(SampleWork, NothingKeepsFromEnteringHolidays) {
    test::TempDir dir;
    const struct {
        const char *to, *open, *month;
    } cases[] = {{"Mar/2026", "02/2026", "Mar/2026"}, {"Oct/2027", "09/2027", "Oct/2027"}};
    for (const auto& c : cases) {
        const std::string db = dir.file(std::string(c.open).substr(0, 2) + ".owb");
        ASSERT_EQ(ctl::owbctl({"sample", db, "--to", c.to}).err, "");
        EXPECT_EQ(ctl::owbctl({"register", db, "--month", c.month}).status, 0);
        const std::string date = std::string("/") + c.open + "\nset txtHDesc Shut\nclick cmdSave\n";
        const std::string next = "/11/" + std::to_string(std::atoi(c.open + 3) + 1) +
                                 "\nset txtHDesc Next\nclick cmdSave\n";
        const ctl::Outcome o = ctl::owbctl(
            {"screen", db, "1512", "0"},
            "click cmdNew\nset txtHDate 10" + date + "click cmdNew\nset txtHDate 10" + next +
                "set cmbAttHead Workshop\nclick cmdNew\nset txtHDate 11" + date +
                "set chkBranchWise Yes\nset cmbAttHead Pune\nclick cmdNew\nset txtHDate 12" + date);
        std::string boxes;
        std::istringstream lines(o.out);
        for (std::string line; std::getline(lines, line);)
            if (line.starts_with("box: ")) boxes += line + "\n";
        const std::string saved = "box: information|Saving Information|Updated|OK|OK\n";
        EXPECT_EQ(boxes, saved + saved + saved + saved) << c.to << o.err;
    }
}

TEST(SampleWork, TheSpanIsToldByTwoOfFromToAndMonths) {
    test::TempDir dir;
    const int32_t now = FnLngMonthYearOfDate(wallClock());
    const auto text = [](int32_t month) { return FnStrMonthYearText(month); };
    const struct {
        std::vector<std::string> options;
        std::string span;  // "" refused
    } cases[] = {
        {{"--to", "Mar/2026"}, "Apr/2024 Mar/2026"},
        {{"--to", "Mar/2026", "--months", "3"}, "Jan/2026 Mar/2026"},
        {{"--from", "Apr/2024", "--months", "3"}, "Apr/2024 Jun/2024"},
        {{"--from", "Apr/2024", "--to", "May/2024"}, "Apr/2024 May/2024"},
        {{"--months", "2"}, text(now - 1) + " " + text(now)},
        {{"--from", text(now)}, text(now) + " " + text(now)},
        {{}, text(sample::optionsUpTo(now).fromMonth) + " " + text(now)},
        {{"--from", "Jun/2024", "--to", "May/2024"}, ""},
        {{"--from", "Apr/2024", "--to", "May/2024", "--months", "2"}, ""},
        {{"--to", "Foo/2024"}, ""},
        {{"--from", "Apr/1990", "--to", "May/2024"}, ""},
    };
    int n = 0;
    for (const auto& c : cases) {
        const std::string db = dir.file(std::to_string(++n) + ".owb");
        std::vector<std::string> arguments = {"sample", db, "--employees", "1"};
        arguments.insert(arguments.end(), c.options.begin(), c.options.end());
        const ctl::Outcome o = ctl::owbctl(arguments);
        EXPECT_EQ(o.status, c.span.empty() ? 1 : 0) << testing::PrintToString(c.options) << o.err;
        EXPECT_EQ(std::filesystem::exists(db), !c.span.empty());
        if (c.span.empty()) continue;
        const std::string span =
            ctl::owbctl({"sql", db, "-c",
                         "SELECT dbo.FnStrMonthName(MIN(MONTHYEAR)) + ' ' + "
                         "dbo.FnStrMonthName(MAX(MONTHYEAR)) AS s FROM MAS_MONTHYEAR"})
                .out;
        EXPECT_EQ(span, "s\n" + c.span + "\n");
    }
}

TEST_F(Sample, BranchHolidaysInEveryYearAreAnOption) {
    for (const bool every : {false, true}) {
        test::Company company;
        sample::SampleOptions options;
        options.employees = 3;
        options.branchHolidays = every;
        NoProgress progress;
        sample::makeSample(company.session.gConn, options, progress);
        EXPECT_EQ(company.rows("SELECT MIN(HOLIDAYDATE), MAX(HOLIDAYDATE) FROM ATT_HOLIDAY WHERE "
                               "BRANCHID > 0"),
                  every ? "2024-05-01,2028-11-01" : "2028-05-01,2028-11-01");
        EXPECT_EQ(
            company.rows("SELECT HOLIDAYDATE FROM ATT_HOLIDAY WHERE ATTHEADID = 3 ORDER BY 1"),
            "2024-09-17 2025-09-17")
            << "before the open months alone";
    }
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
