// A start with the full recalculation that ends before any of its batches, and a second start:
// together they must leave the tables that one undisturbed start leaves.
#include <gtest/gtest.h>

#include <cstdlib>

#include "app/modInitialize.h"
#include "schema/modSQLFunction.h"
#include "support/broken_off.h"
#include "support/payroll.h"
#include "support/screens.h"

namespace owb {
namespace {

using test::Payroll;
using test::TestFrontEnd;

constexpr int32_t kJune = 2024 * 12 + 6, kJuly = kJune + 1;

// Heads of every type; versions that change in mid-month; defaults to fill; rows to repair, to make
// and to take away.
class Company : public Payroll {
  public:
    Company() : Payroll(kJune, kJuly) {
        for (int type : {1, 2, 3, 4}) head({10 + type, type, type + 2});
        setHead(12, "OT1YN = 1");
        setHead(13, "OT1YN = 1, OT2YN = 1, FULLDAYOTYN = 1, FULLATTSALAFFYN = 1");
        setOptions(12, "LOADDEFYN = 1, DEFVAL = 1");
        setOptions(13, "LOADDEFYN = 1, DEFVAL = 0, SPLOTYN = 1, WHOT2YN = 1");
        weekly(12, 1, "FS FS FS FS FS");
        weekly(13, 7, "FS -S FS F- --");
        holiday(1, "2024-06-17");
        leaveKind(5, "CL", false);
        for (int h : {11, 12, 13, 14})
            run("INSERT INTO LEV_SETTINGS (LEVID, ATTHEADID, MONTHYEAR, AUTOALLOTYN, ALLOTTYPE, "
                "ALLOTON, COYN, LAPSEMONTH, MINDAYS) VALUES (5, " +
                std::to_string(h) +
                ", 24294, 1, 1, 1, 1, 6, 3) INSERT INTO LEV_ALLOTCONFIG "
                "(EFFFROM, LEVID, ATTHEADID, ALLOTTYPE, PERIOD, NOL) VALUES (24294, 5, " +
                std::to_string(h) + ", 1, 30, 2)");
        employee(1, "2020-01-01", 12);
        version(1, 2, "2024-06-16", 13);
        employee(2, "2024-06-25", 13, "2024-07-05");
        employee(3, "2020-01-01", 14);
        employee(4, "2020-01-01", 11);
        salary(1, 1, kJune, kJune);
        salary(1, 2, kJune, kJuly);
        salary(2, 1, kJune, kJuly);
        salary(3, 1, kJune, kJune);
        salary(4, 1, kJuly, kJuly);
        reconcile();
        hours(1, 1, kJune, 4, "2.5");
        hours(1, 2, kJune, 20, "9.30");
        leave(1, 0, 5, "2024-06-05", "F");
        leave(3, 1, 1, "2024-06-30", "1.5");
        run("DELETE FROM SLC_SALARYCALC_E WHERE EMPID = 4");
        salary(4, 1, kJune, kJune);
        run("UPDATE ATT_DAYTODAY SET DAY18 = 'H'");
        run("INSERT INTO RMB_MASTER (RMBID, EDITMODEYN) VALUES (1, 0)");
        session.gMenuId = 1600;
    }

    void start() {
        TestFrontEnd frontEnd(boxes);
        StartOnConnection(session, frontEnd);
        FreeLeaveTables(session);
    }
    // As a process that went and one that comes: only the file is the same.
    void reconnect() {
        const std::string text = session.gConn.ConnectionString();
        session.gConn.Close();
        session.gNodNdp.reset();
        session.gOtDetCalc.reset();
        session.gConn.Open(text);
    }
    std::string tables() {
        std::string all;
        for (const char* sql :
             {"SELECT * FROM LEV_MONTHDET ORDER BY EMPID, EMPDETID, MONTHYEAR",
              "SELECT * FROM ATT_DAYTODAY ORDER BY ATTTRANNO",
              "SELECT * FROM ATT_OVERTIME ORDER BY ATTTRANNO",
              "SELECT * FROM LEV_DETAILS ORDER BY EMPID, LEAVEDATE, LEVID",
              "SELECT * FROM LEV_OTDETAILS ORDER BY EMPID, EMPDETID, OTDATE",
              "SELECT * FROM LEV_ALLOTMENT ORDER BY EMPID, LEVID, ALLOTFROM",
              "SELECT * FROM LEV_ALLOTFROM ORDER BY EMPID, LEVID",
              "SELECT * FROM LEV_AVAILFROM ORDER BY EMPID, LEVID",
              "SELECT * FROM ATT_OPBAL ORDER BY EMPID, LEVID",
              "SELECT EMPID, EMPDETID, MONTHYEAR, EDITMODEYN FROM SLC_SALARYCALC_E ORDER BY "
              "EMPID, EMPDETID, MONTHYEAR",
              "SELECT * FROM SLC_ATTHEADNOD ORDER BY ATTHEADID, MONTHYEAR",
              "SELECT * FROM ATT_OPTSETTINGS ORDER BY ATTHEADID", "SELECT * FROM RMB_MASTER"})
            all += rows(sql) + "\n";
        return all;
    }
};

TEST(BrokenOffStart, IsMadeGoodByTheNext) {
    Company undisturbed;
    size_t batches = 0;
    test::breakOff(undisturbed.session.gConn, 0, batches);
    undisturbed.start();
    const size_t all = batches;
    const std::string expected = undisturbed.tables();
    ASSERT_TRUE(undisturbed.boxes.shown.size() == 1) << undisturbed.boxes.shown[0].text;
    EXPECT_EQ(undisturbed.value("SELECT COUNT(*) FROM LEV_MONTHDET WHERE EDITMODEYN = 1"), "0");
    EXPECT_EQ(undisturbed.value("SELECT COUNT(*) FROM LEV_ALLOTMENT WHERE EDITMODEYN = 1"), "0");
    EXPECT_NE(undisturbed.value("SELECT SUM(ALLOTLEV) FROM LEV_ALLOTMENT"), "");
    undisturbed.reconnect();
    undisturbed.start();
    EXPECT_EQ(undisturbed.tables(), expected) << "a second start finds nothing to do";

    // Places spread over the whole start; OWB_BREAK_STEP=1 tries every one of them.
    const char* set = std::getenv("OWB_BREAK_STEP");
    const size_t step = set ? std::strtoul(set, nullptr, 10) : all / 20 + 1;
    for (size_t at = 1; at <= all; at += step) {
        Company company;
        test::breakOff(company.session.gConn, at, batches);
        EXPECT_THROW(company.start(), test::Killed) << at;
        company.reconnect();
        company.start();
        ASSERT_EQ(company.tables(), expected) << "broken off before batch " << at << " of " << all;
    }
}

// Two half-done starts, one after the other, are no worse than one.
TEST(BrokenOffStart, MayHappenTwice) {
    Company undisturbed;
    undisturbed.start();
    const std::string expected = undisturbed.tables();
    size_t batches = 0;
    for (const auto& [first, second] : {std::pair{150, 300}, {400, 180}}) {
        Company company;
        for (const int at : {first, second}) {
            test::breakOff(company.session.gConn, static_cast<size_t>(at), batches);
            EXPECT_THROW(company.start(), test::Killed);
            company.reconnect();
        }
        company.start();
        EXPECT_EQ(company.tables(), expected) << first << ", " << second;
    }
}

}  // namespace
}  // namespace owb
