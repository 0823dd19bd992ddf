#include <gtest/gtest.h>

#include "base/utf8.h"
#include "leave/modLeaveFunctions.h"
#include "leave/screens/frmConfiguring.h"
#include "leave/screens/modLeaveProcess.h"
#include "support/payroll.h"
#include "support/screens.h"

namespace owb {
namespace {

using test::Payroll;
using test::TestFrontEnd;

constexpr int32_t kJune = 2024 * 12 + 6;

struct Marked : Payroll {
    Marked() : Payroll(kJune, kJune) {
        head({10, 2});
        for (int id : {1, 2, 3}) {
            employee(id, "2020-01-01", 10);
            salary(id, 1, kJune, kJune);
        }
        reconcile();
    }
    std::string marked() {
        return rows("SELECT EMPID FROM LEV_MONTHDET WHERE EDITMODEYN = 1 ORDER BY EMPID");
    }
    TestFrontEnd frontEnd{boxes};
};

TEST(ProcessLeave, WorksThroughAndWaitsForTheUser) {
    Marked m;
    m.session.gOpenedFromMenu = true;
    modLeaveProcess screen(m.session, m.frontEnd);
    std::vector<std::string> texts;
    m.frontEnd.atRefresh = [&](Screen&) {
        if (texts.empty() || texts.back() != screen.lblProgress.caption)
            texts.push_back(screen.lblProgress.caption);
        EXPECT_FALSE(screen.cmdClose.enabled);
    };
    bool asked = false;
    m.frontEnd.atInput = [&](Screen&) {
        asked = true;
        EXPECT_EQ(screen.lblStatus.caption, "Process Completed");
        EXPECT_FALSE(screen.cmdCancel.click());
        EXPECT_TRUE(screen.cmdClose.click());
    };
    screen.showModal();
    EXPECT_TRUE(asked);
    EXPECT_EQ(screen.caption, " Process Leave");
    EXPECT_EQ(m.marked(), "");
    ASSERT_EQ(texts.size(), 1U + 31 + 3 + 3 + 1);
    EXPECT_EQ(texts[0], "Initialising please wait....");
    EXPECT_EQ(texts[31], "Initialising please wait....(DAY 31/31)  ");
    EXPECT_EQ(texts[32], "Updating Leave and Over Time Details --1----- ");
    EXPECT_EQ(texts[37], "Updating Pay Days and Present Days ---3-----");
    EXPECT_EQ(texts[38], "Process Completed");
}

TEST(ProcessLeave, CancelsBetweenRowsAndLeavesTheRestMarked) {
    Marked m;
    m.session.gOpenedFromMenu = true;
    modLeaveProcess screen(m.session, m.frontEnd);
    m.frontEnd.atRefresh = [&](Screen&) {
        if (screen.lblProgress.caption != "Updating Pay Days and Present Days ---2-----") return;
        EXPECT_TRUE(screen.cmdCancel.click());
    };
    screen.showModal();
    EXPECT_EQ(m.marked(), "3");

    modLeaveProcess again(m.session, m.frontEnd);
    m.frontEnd.atRefresh = nullptr;
    again.showModal();
    EXPECT_EQ(m.marked(), "") << "the next pass takes up the marks";
}

TEST(ProcessLeave, ClosesByItselfWhereNobodyWaits) {
    struct Case {
        const char* what;
        bool fromMenu, autoClose;
        size_t boxes;
    };
    for (const Case& c : {Case{"start-up", false, false, 0}, {"the full pass", true, true, 1}}) {
        Marked m;
        m.session.gOpenedFromMenu = c.fromMenu;
        m.session.gFullPassAutoClose = c.autoClose;
        m.frontEnd.atInput = [&](Screen&) { ADD_FAILURE() << c.what; };
        modLeaveProcess(m.session, m.frontEnd).showModal();
        ASSERT_EQ(m.boxes.shown.size(), c.boxes) << c.what;
        for (const Box& box : m.boxes.shown) EXPECT_EQ(box.closesAfterSeconds, 1);
    }
}

// What the user reads in and below the bar.
TEST(ProcessLeave, TellsStepsRowsAndTheEnd) {
    struct Case {
        const char* what;
        int32_t menu;
        bool marked;
        std::vector<std::string> told;  // without repetitions, the end last
    };
    const char* nothing = "Nothing waits to be worked out.";
    for (const Case& c : {Case{"all",
                               1600,
                               true,
                               {"Step 1 of 3", "Step 1 of 3 Row 1 of 3", "Step 1 of 3 Row 2 of 3",
                                "Step 2 of 3 Row 3 of 3", "Step 2 of 3 Row 1 of 3",
                                "Step 2 of 3 Row 2 of 3", "Process Completed Row 3 of 3"}},
                          {"without the ledger",
                           1601,
                           true,
                           {"Step 1 of 2", "Step 1 of 2 Row 1 of 3", "Step 1 of 2 Row 2 of 3",
                            "Step 2 of 2 Row 3 of 3", "Step 2 of 2 Row 1 of 3",
                            "Step 2 of 2 Row 2 of 3", "Process Completed Row 3 of 3"}},
                          {"nothing to do", 1508, false, {"Step 1 of 3", nothing}}}) {
        Marked m;
        if (!c.marked)
            m.run("UPDATE LEV_MONTHDET SET EDITMODEYN = 0 UPDATE ATT_DAYTODAY SET EDITMODEYN = 0");
        m.session.gMenuId = c.menu;
        m.session.gOpenedFromMenu = true;
        modLeaveProcess screen(m.session, m.frontEnd);
        std::vector<std::string> told;
        m.frontEnd.atRefresh = [&](Screen&) {
            std::string text = screen.lblStatus.caption + " " + screen.barProgress.progress();
            text = trim(text.substr(0, text.find(", ")));  // a slow machine tells the time left
            if (told.empty() || told.back() != text) told.push_back(text);
        };
        m.frontEnd.atInput = [&](Screen&) {
            EXPECT_EQ(screen.lblProgress.caption, "Process Completed") << c.what;
            EXPECT_EQ(screen.barProgress.value, screen.barProgress.maximum) << c.what;
            EXPECT_GT(screen.barProgress.maximum, 0U) << c.what;
        };
        screen.showModal();
        EXPECT_EQ(told, c.told) << c.what;
    }
}

// The ledger comes last, and not at all from the menu that leaves it out or after a cancel.
TEST(ProcessLeave, WorksTheLedgerOutBehindTheDays) {
    struct Case {
        const char* what;
        int32_t menu;
        const char* cancelAt;
        const char* marked;
    };
    for (const Case& c : {Case{"the whole pass", 1600, "", "0"},
                          {"without allotment", 1601, "", "3"},
                          {"cancelled in the month days", 1600,
                           "Updating Pay Days and Present Days ---3-----", "3"},
                          {"cancelled in the ledger", 1508, "Processing Leave Allotment ", "2"}}) {
        Marked m;
        m.run(
            "INSERT INTO LEV_SETTINGS (LEVID, ATTHEADID, MONTHYEAR, AUTOALLOTYN, COYN) VALUES (2, "
            "10, 24294, 0, 1)");
        InsertAllotFromDate(m.session);
        ReconcileLedgerRows(m.session, [](const char*) {});
        m.session.gMenuId = c.menu;
        m.session.gOpenedFromMenu = true;
        modLeaveProcess screen(m.session, m.frontEnd);
        m.frontEnd.atRefresh = [&](Screen&) {
            if (screen.lblProgress.caption == c.cancelAt) screen.cmdCancel.click();
        };
        screen.showModal();
        EXPECT_EQ(m.value("SELECT COUNT(*) FROM LEV_ALLOTMENT WHERE EDITMODEYN = 1"), c.marked)
            << c.what;
        EXPECT_EQ(m.marked(), "") << c.what;
    }
}

TEST(ProcessLeave, TellsAnErrorByNumberAndStaysUp) {
    Marked m;
    m.session.gOpenedFromMenu = true;
    m.run("DROP TABLE ATT_OVERTIME");
    bool asked = false;
    m.frontEnd.atInput = [&](Screen&) { asked = true; };
    modLeaveProcess(m.session, m.frontEnd).showModal();
    EXPECT_TRUE(asked);
    ASSERT_EQ(m.boxes.shown.size(), 1U);
    EXPECT_EQ(m.boxes.shown[0].text, "208: Invalid object name 'ATT_OVERTIME'.");
    EXPECT_EQ(m.boxes.shown[0].title, "");
    EXPECT_EQ(m.marked(), "1 2 3");
}

TEST(Configuring, BringsTheLeaveTablesInStepWithTheMasters) {
    Payroll p(kJune, kJune + 1);
    TestFrontEnd frontEnd(p.boxes);
    p.head({10, 2});
    p.employee(1, "2020-01-01", 10);
    p.version(1, 2, "2024-06-16", 10);
    p.salary(1, 2, kJune, kJune);
    p.run("DELETE FROM ATT_OPTSETTINGS WHERE ATTHEADID = 10");
    p.run("UPDATE ATT_OPTSETTINGS SET HOLPRIORITY = 1 WHERE ATTHEADID = 0");
    p.run("UPDATE MAS_MONTHYEAR SET CALCENDDATE = NULL");
    p.run(
        "INSERT INTO LEV_DETAILS (EMPID, EMPDETID, LEVID, LEAVEDATE, FIRSTHALFYN, SECONDHALFYN) "
        "VALUES (1, 0, 1, '2024-06-03', 1, NULL), (1, NULL, 1, '2024-06-17', 1, 1), (9, 0, 1, "
        "'2024-06-17', 1, 1), (1, 1, 0, '2024-06-04', 1, 1), (1, 1, 1, '2024-06-05', 0, 0)");
    p.run(
        "INSERT INTO LEV_OTDETAILS (EMPID, EMPDETID, OTDATE, OT1) VALUES (1, 0, '2024-06-20', "
        "2), (1, 2, '2024-06-21', 0), (9, NULL, '2024-06-20', 2)");
    p.run("INSERT INTO LEV_ADJUSTMENT (EMPID, EMPDETID, LEVID, MONTHYEAR) VALUES (1, 1, 1, 24294)");
    p.run(
        "INSERT INTO LEV_SETTINGS (LEVID, ATTHEADID, MONTHYEAR, COTYPE, LOWERLIMITYN) VALUES (2, "
        "10, 24294, 0, 1)");
    p.run(
        "INSERT INTO LEV_SETTINGS (LEVID, ATTHEADID, MONTHYEAR, COTYPE, UPPERLIMITYN) VALUES (2, "
        "0, 24294, 1, 1)");
    std::vector<std::string> texts;
    frontEnd.atRefresh = [&](Screen& screen) {
        texts.push_back(screen.find("lblProgress")->text());
    };
    frontEnd.atInput = [&](Screen&) { ADD_FAILURE() << "it works by itself"; };
    frmConfiguring(p.session, frontEnd).showModal();

    EXPECT_EQ(p.boxes.shown.size(), 0U);
    const std::vector<std::string> expected = {"Initializing Advanced Leave Management",
                                               "Allottment methods ... ",
                                               "Clearing Records ... ",
                                               "Updating Null Values...",
                                               "Updating Option settings...",
                                               "Updating Month Dates...",
                                               "Updating Opening Balance...",
                                               "Updating Allotment Dates...",
                                               "Updating Avail from Dates...",
                                               "Updating monthly records...",
                                               "Deleteing unwanted records...",
                                               "Inserting missing records...",
                                               "Filling default values ..."};
    EXPECT_EQ(texts, expected);
    EXPECT_EQ(p.rows("SELECT EMPDETID, DAY(LEAVEDATE), FIRSTHALFYN, SECONDHALFYN FROM "
                     "LEV_DETAILS ORDER BY LEAVEDATE"),
              "1,3,1,0 2,17,1,1")
        << "versions repaired, what cannot be repaired or holds nothing gone";
    EXPECT_EQ(p.rows("SELECT EMPID, EMPDETID, DAY(OTDATE) FROM LEV_OTDETAILS"), "1,2,20");
    EXPECT_EQ(p.value("SELECT HOLPRIORITY FROM ATT_OPTSETTINGS WHERE ATTHEADID = 10"), "1");
    EXPECT_EQ(p.value("SELECT CALCENDDATE FROM MAS_MONTHYEAR WHERE MONTHYEAR = 24294"),
              "2024-06-30");
    EXPECT_EQ(p.rows("SELECT EMPID, EMPDETID, MONTHYEAR, EDITMODEYN FROM LEV_MONTHDET"),
              "1,2,24294,1");
    EXPECT_EQ(p.rows("SELECT EMPID, EMPDETID, ATTHEADID, EDITMODEYN FROM ATT_DAYTODAY"),
              "1,2,10,1");
    EXPECT_EQ(p.rows("SELECT EMPDETID, ASONDATE FROM LEV_ADJUSTMENT"), "2,2024-06-30")
        << "the version in force on the last day of its month";
    EXPECT_EQ(
        p.rows(
            "SELECT ISNULL(LOWERLIMITYN, 0) + 2 * ISNULL(UPPERLIMITYN, 0) FROM LEV_SETTINGS WHERE "
            "LEVID = 2 AND MONTHYEAR = 24294 AND (ATTHEADID = 10 OR UPPERLIMITYN = 1) ORDER BY "
            "ATTHEADID DESC"),
        "0 2")
        << "limits stay where some are set";
    EXPECT_TRUE(p.session.gFeature.ADVLEAVEYN);
}

// A version whose head was changed in place keeps its hours under the new head.
TEST(Configuring, GivesRegistersTheirVersionsHead) {
    Marked m;
    m.head({11, 2});
    m.hours(1, 1, kJune, 5, "3");
    m.run("UPDATE MAS_EMPLOYEEDET SET ATTHEADID = 11 WHERE EMPID = 1");
    frmConfiguring(m.session, m.frontEnd).showModal();
    EXPECT_EQ(m.rows("SELECT AD.ATTHEADID, AO.OTDAY05 FROM ATT_DAYTODAY AD, ATT_OVERTIME AO "
                     "WHERE AD.ATTTRANNO = AO.ATTTRANNO AND EMPID = 1"),
              "11,3.00");
}

}  // namespace
}  // namespace owb
