// The launcher: what it tells of the company, how a screen is found, what it starts, and what it
// learns of programs that open, end or die.
#include <gtest/gtest.h>

#include <set>

#include "app/OneWindow.h"
#include "siblings/frmShell.h"
#include "support/payroll.h"
#include "support/screens.h"

namespace owb {
namespace {

constexpr int32_t kJune = 2024 * 12 + 6;

struct Shell : test::Payroll {
    Shell() : Payroll(kJune, kJune + 1) { head({10, 2}); }
    // The first row of a title; of a menu number where several bear one.
    size_t row(const std::string& title) {
        for (size_t r = 0; r < screen.fpgScreen.rowCount(); ++r)
            if (screen.fpgScreen.cell(r, 0) == title || screen.fpgScreen.cell(r, 4) == title)
                return r;
        ADD_FAILURE() << "no such screen: " << title;
        return 0;
    }
    std::string state(const std::string& title) { return screen.fpgScreen.cell(row(title), 3); }
    void choose(const std::string& title) { screen.fpgScreen.doubleClickCell(row(title), 0); }
    std::string box() { return boxes.shown.empty() ? "" : boxes.shown.back().text; }
    // The rows in sight: "1512 1511".
    std::string shown() {
        std::string menus;
        for (size_t r = 0; r < screen.fpgScreen.rowCount(); ++r)
            if (!screen.fpgScreen.rowHidden(r))
                menus += (menus.empty() ? "" : " ") + screen.fpgScreen.cell(r, 4);
        return menus;
    }

    const std::string socket = folder.file("shell");
    std::vector<std::string> lines;
    std::set<int> ended;
    int nextProcess = 41;
    test::TestFrontEnd frontEnd{boxes};
    frmShell screen{session, frontEnd, socket,
                    [this](const std::string& line) {
                        lines.push_back(line);
                        return nextProcess++;
                    },
                    [this](int process) { return ended.contains(process); }};
};

TEST(Shell, StartsScreensAndShowsWhichAreOpen) {
    Shell shell;
    shell.frontEnd.atInput = [&](Screen&) {
        EXPECT_EQ(shell.session.settings.GetSetting("ExeTalk", "Orvane WagebookStatusHWND"),
                  shell.socket);
        shell.screen.fpgHead.goTo(2, 0);
        shell.choose("Holiday List");
        shell.choose("Weekly Holiday");
        shell.choose("Weekly Holiday");  // it starts already
        EXPECT_EQ(shell.lines, (std::vector<std::string>{"1512#False#0#10", "1511#False#0#10"}));
        EXPECT_EQ(shell.state("Holiday List"), "Starting: Head 10");
        SendLocalMessage(shell.socket, "opened OWBLeaveMgmt modHolidayList 41");
        SendLocalMessage(shell.socket, "opened OWBLeaveMgmt modHolidayWeekly 42");
        SendLocalMessage(shell.socket, "opened OWBLeaveMgmt modHolidayList 99");
        SendLocalMessage(shell.socket, "nonsense");
        shell.screen.tick();
        EXPECT_EQ(shell.state("Holiday List"), "Open: Head 10");
        EXPECT_EQ(shell.state("Weekly Holiday"), "Open: Head 10");
        shell.screen.fpgHead.goTo(0, 0);
        shell.choose("Holiday List");  // of another head
        EXPECT_EQ(shell.lines.back(), "1512#False#0#0");
        EXPECT_EQ(shell.state("Holiday List"), "Open: Head 10, Starting: All");
        SendLocalMessage(shell.socket, "ended OWBLeaveMgmt 41");
        shell.ended = {41, 43};
        shell.screen.tick();
        EXPECT_EQ(shell.state("Holiday List"), "");
        EXPECT_EQ(shell.boxes.shown.size(), 0U);
        shell.ended = {41, 42, 43};  // it died without a word
        shell.screen.tick();
        EXPECT_EQ(shell.state("Weekly Holiday"), "");
        EXPECT_EQ(
            shell.box(),
            "Weekly Holiday (Head 10) has ended unexpectedly.\nWhat was saved there is kept.");
        shell.nextProcess = 0;
        shell.choose("Weekly Holiday");
        EXPECT_EQ(shell.box(), "Required External Application not found");
    };
    shell.screen.showModal();
    EXPECT_EQ(shell.session.settings.GetSetting("ExeTalk", "Orvane WagebookStatusHWND"), "0");
}

// A window that stands already, of this launcher or of another, comes forward.
TEST(Shell, AScreenThatIsOpenForTheHeadComesForward) {
    Shell shell;
    const std::string open = FnStrWindowSocket(shell.session, 1512, 10);
    for (const auto& [menu, head] : {std::pair{1512, 0}, {1511, 10}})
        EXPECT_NE(FnStrWindowSocket(shell.session, menu, head), open);
    LocalListener window(open);
    shell.frontEnd.atInput = [&](Screen&) {
        shell.screen.fpgHead.goTo(2, 0);
        shell.choose("Holiday List");
        EXPECT_EQ(window.take(), std::vector<std::string>{"forward"});
        EXPECT_TRUE(shell.lines.empty());
        shell.screen.fpgHead.goTo(0, 0);
        shell.choose("Holiday List");
        EXPECT_EQ(shell.lines, std::vector<std::string>{"1512#False#0#0"});
        EXPECT_TRUE(window.take().empty());
    };
    shell.screen.showModal();
}

TEST(Shell, FindsScreensByAFewLetters) {
    struct Case {
        const char *typed, *shown, *line;  // menu numbers in sight; what Enter starts, "" nothing
        const char* box = "";
    };
    Shell shell;
    shell.frontEnd.atInput = [&](Screen& screen) {
        EXPECT_EQ(screen.takeFocus(), &shell.screen.txtSearch);
        for (const Case& c :
             {Case{"1500", "1500", "1500"},
              {"hol", "1511 1512 1523 1528", "1512"},
              {"WEEK", "1511", "1511"},
              {"list", "1512 1528", "1512"},
              {"ledger", "1601", "1601"},
              {"1600", "1600", "1600"},
              {"alendar v", "1527", "", "Calendar View is not available in this version."},
              {"zz", "", "", "Select a screen to open."}}) {
            shell.lines.clear();
            shell.boxes.shown.clear();
            shell.ended.insert(shell.nextProcess - 1);
            screen.tick();
            EXPECT_TRUE(shell.screen.txtSearch.edit(c.typed));
            EXPECT_EQ(shell.shown(), c.shown) << c.typed;
            EXPECT_TRUE(shell.screen.txtSearch.key("Enter"));
            EXPECT_EQ(shell.lines.empty() ? "" : shell.lines[0].substr(0, 4), c.line) << c.typed;
            EXPECT_EQ(shell.box(), c.box) << c.typed;
        }
        // What was opened last stands first from now on, the newest at the top.
        shell.screen.txtSearch.edit("");
        EXPECT_EQ(shell.shown().substr(0, 25), "1600 1601 1512 1511 1511 ") << "four are kept";
        EXPECT_EQ(shell.screen.fpgScreen.cell(0, 2), "Recent");
        shell.lines.clear();
        shell.screen.txtSearch.key("Down");
        shell.screen.txtSearch.key("Down");
        shell.screen.txtSearch.key("Up");
        shell.screen.txtSearch.key("Up");
        shell.screen.txtSearch.key("Up");
        shell.screen.txtSearch.key("Down");
        EXPECT_EQ(shell.screen.fpgScreen.currentRow(), 1);
        shell.screen.txtSearch.key("Enter");
        EXPECT_EQ(shell.lines, std::vector<std::string>{"1601#False#0#0"});
        EXPECT_FALSE(shell.screen.txtSearch.key("F7"));
    };
    shell.screen.showModal();
}

TEST(Shell, ProcessLeaveIsThreeDifferentThings) {
    Shell shell;
    shell.frontEnd.atInput = [&](Screen&) {
        std::set<std::string> what;
        for (const char* menu : {"1508", "1600", "1601"}) {
            EXPECT_EQ(shell.screen.fpgScreen.cell(shell.row(menu), 0), "Process Leave");
            what.insert(shell.screen.fpgScreen.cell(shell.row(menu), 1));
        }
        EXPECT_EQ(what.size(), 3U);
    };
    shell.screen.showModal();
}

TEST(Shell, TellsWhatTheCompanyIsLike) {
    struct Case {
        const char *sql, *user, *months, *awaiting;
    };
    const char* nobody = "Signed in: ADMIN";
    const char* open = "Months open: Jun/2024, Jul/2024";
    const char* nothing = "Nothing awaits recalculation";
    for (const Case& c :
         {Case{"", nobody, open, nothing},
          {"UPDATE LEV_MONTHDET SET EDITMODEYN = 1 WHERE MONTHYEAR = 24294", nobody, open,
           "1 row awaits recalculation"},
          {"UPDATE LEV_MONTHDET SET EDITMODEYN = 1", nobody, open, "2 rows await recalculation"},
          {"UPDATE MAS_MONTHYEAR SET LOCKEDYN = 1 WHERE MONTHYEAR = 24294", nobody,
           "Months open: Jul/2024; 1 locked", nothing},
          {"UPDATE MAS_MONTHYEAR SET ATTLOCKYN = 1", nobody, "No month is open; 2 locked", nothing},
          {"INSERT INTO MAS_MONTHYEAR (MONTHYEAR, CALCSTARTDATE, CALCENDDATE) VALUES (24296, "
           "'2024-08-01', '2024-08-31'), (24297, '2024-09-01', '2024-09-30')",
           nobody, "Months open: Jun/2024 to Sep/2024", nothing},
          {"INSERT INTO SEC_USERLIST (USERID, USERNAME, READONLYYN) VALUES (9, 'AUDITOR', 1)",
           "Signed in: AUDITOR (may only look)", open, nothing}}) {
        Shell shell;
        shell.employee(1, "2020-01-01", 10);
        shell.employee(2, "2020-01-01", 10, "2024-08-01");  // has left by the session's day
        shell.salary(1, 1, kJune, kJune + 1);
        shell.reconcile();
        shell.run("UPDATE LEV_MONTHDET SET EDITMODEYN = 0 UPDATE ATT_DAYTODAY SET EDITMODEYN = 0");
        if (*c.sql) shell.run(c.sql);
        shell.session.now = [] { return DateTime::fromCivil(2024, 8, 15); };
        shell.session.gReadOnly = std::string(c.user).find("look") != std::string::npos;
        if (shell.session.gReadOnly) shell.session.gUser = "AUDITOR";
        shell.frontEnd.atInput = [&](Screen&) {
            EXPECT_EQ(shell.screen.lblUser.caption, c.user);
            EXPECT_EQ(shell.screen.lblMonths.caption, c.months);
            EXPECT_EQ(shell.screen.lblAwaiting.caption, c.awaiting);
            const Grid& heads = shell.screen.fpgHead;
            std::string listed;
            for (size_t r = 0; r < heads.rowCount(); ++r)
                listed += heads.cell(r, 0) + "|" + heads.cell(r, 1) + "|" + heads.cell(r, 2) + "\n";
            EXPECT_EQ(listed, "All||1\nGeneral|Daily status|0\nHead 10|Daily status|1\n");
            EXPECT_TRUE(shell.screen.press("F9", &shell.screen.fpgHead));
            EXPECT_EQ(shell.lines, std::vector<std::string>{"1508#False#0#0"});
        };
        shell.screen.showModal();
    }
}

TEST(Shell, SaysWhatIsOpenBeforeItGoes) {
    for (const bool other : {false, true})
        for (const bool agrees : {false, true}) {
            Shell shell;
            shell.frontEnd.atInput = [&](Screen& screen) {
                shell.screen.fpgHead.goTo(2, 0);
                shell.choose("Holiday List");
                shell.choose("Weekly Holiday");
                shell.boxes.answers = {agrees ? BoxAnswer::Yes : BoxAnswer::No};
                if (other)
                    shell.screen.cmdCompany.click();
                else
                    screen.closeByUser();
                EXPECT_EQ(screen.isOpen(), !agrees);
                EXPECT_EQ(shell.box(),
                          "Still open: Holiday List (Head 10), Weekly Holiday (Head 10).\n"
                          "They stay open. Close the launcher?");
            };
            shell.screen.showModal();
            EXPECT_EQ(shell.screen.wantsOtherCompany(), other && agrees);
        }
}

TEST(Shell, AboutTellsVersionCompanyAndFile) {
    Shell shell;
    shell.frontEnd.atInput = [&](Screen&) { shell.screen.cmdAbout.click(); };
    shell.run("UPDATE MAS_COMPANY SET CMPNAME = 'Asha & Sons'");
    shell.screen.showModal();
    for (const std::string& part :
         {std::string("\nVersion "), std::string("Company: Asha & Sons\n"),
          "company.db - " + shell.folder.file("company.db")})
        EXPECT_NE(shell.box().find(part), std::string::npos) << shell.box();
}

}  // namespace
}  // namespace owb
