// The launcher: what it starts, and what it learns of programs that open, end or die.
#include <gtest/gtest.h>

#include <set>

#include "siblings/frmShell.h"
#include "support/payroll.h"
#include "support/screens.h"

namespace owb {
namespace {

constexpr int32_t kJune = 2024 * 12 + 6;

struct Shell : test::Payroll {
    Shell() : Payroll(kJune, kJune) { head({10, 2}); }
    std::string state(const std::string& title) {
        for (size_t r = 0; r < screen.fpgScreen.rowCount(); ++r)
            if (screen.fpgScreen.cell(r, 2) == title) return screen.fpgScreen.cell(r, 3);
        return "no such screen";
    }
    void choose(const std::string& title) {
        for (size_t r = 0; r < screen.fpgScreen.rowCount(); ++r)
            if (screen.fpgScreen.cell(r, 2) == title) screen.fpgScreen.doubleClickCell(r, 2);
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
        shell.screen.cmdOpen.click();
        EXPECT_EQ(shell.boxes.shown.back().text, "Select a screen to open.");
        shell.screen.lstHead.choose(shell.screen.lstHead.items.size() - 1);
        shell.choose("Holiday List");
        shell.choose("Weekly Holiday");
        EXPECT_EQ(shell.lines, (std::vector<std::string>{"1512#False#0#10", "1511#False#0#10"}));
        EXPECT_EQ(shell.state("Holiday List"), "Starting");
        SendLocalMessage(shell.socket, "opened OWBLeaveMgmt modHolidayList 41");
        SendLocalMessage(shell.socket, "opened OWBLeaveMgmt modHolidayWeekly 42");
        SendLocalMessage(shell.socket, "opened OWBLeaveMgmt modHolidayList 99");
        SendLocalMessage(shell.socket, "nonsense");
        shell.screen.tick();
        EXPECT_EQ(shell.state("Holiday List"), "Open");
        EXPECT_EQ(shell.state("Weekly Holiday"), "Open");
        SendLocalMessage(shell.socket, "ended OWBLeaveMgmt 41");
        shell.ended = {41};
        shell.screen.tick();
        EXPECT_EQ(shell.state("Holiday List"), "");
        shell.ended = {41, 42};  // it died without a word
        shell.screen.tick();
        EXPECT_EQ(shell.state("Weekly Holiday"), "");
        shell.nextProcess = 0;
        shell.choose("Weekly Holiday");
        EXPECT_EQ(shell.boxes.shown.back().text, "Required External Application not found");
    };
    shell.screen.showModal();
    EXPECT_EQ(shell.session.settings.GetSetting("ExeTalk", "Orvane WagebookStatusHWND"), "0");
}

}  // namespace
}  // namespace owb
