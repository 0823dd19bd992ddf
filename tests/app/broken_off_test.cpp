// A start with the full recalculation that ends before any of its batches, and a second start:
// together they must leave the tables that one undisturbed start leaves.
#include <gtest/gtest.h>

#include <cstdlib>

#include "app/modInitialize.h"
#include "schema/modSQLFunction.h"
#include "support/disturbed.h"
#include "support/disturbed_company.h"
#include "support/screens.h"

namespace owb {
namespace {

using test::TestFrontEnd;

class Company : public test::DisturbedCompany {
  public:
    Company() { session.gMenuId = 1600; }

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
