#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "app/LocalTalk.h"
#include "app/SettingsShellTalk.h"
#include "app/ThisApp.h"
#include "app/frmMain.h"
#include "app/modInitialize.h"
#include "db/embedded/embedded_driver.h"
#include "db/recordset.h"
#include "script/script_front_end.h"
#include "support/driver_layer.h"
#include "support/payroll.h"
#include "support/screens.h"

namespace owb {
namespace {

using test::Payroll;
using test::RecordedBoxes;
using test::TestFrontEnd;

constexpr int32_t kJune = 2024 * 12 + 6;

// A program that has not connected yet, beside a company database that it may be sent to.
struct Launch {
    Launch() {
        payroll.head({10, 2});
        payroll.employee(1, "2020-01-01", 10);
        payroll.salary(1, 1, kJune, kJune);
        database = payroll.folder.file("company.db");
        payroll.session.gConn.Close();
        session.shell = &shell;
        settings.SaveSetting("Settings", "DBType", "SQL");
    }
    std::string file(const std::string& line) {
        const std::string path = payroll.folder.file("connection.txt");
        std::ofstream(path) << line << "\r\nsecond line\r\n";  // as the shell writes it
        return path;
    }
    // "status", or "error: <text>" of a launch that stops.
    std::string run(const std::string& commandLine) {
        try {
            return std::to_string(frmMain(session, frontEnd).Run(commandLine));
        } catch (const std::exception& e) {
            return std::string("error: ") + e.what();
        }
    }
    std::string boxText() { return boxes.shown.empty() ? "" : boxes.shown.back().text; }

    Payroll payroll{kJune, kJune};
    std::string database;
    MemorySettingsStore settings;
    RecordedBoxes boxes;
    TestFrontEnd frontEnd{boxes};
    Session session{settings, frontEnd, [] { return DateTime::fromCivil(2024, 8, 15); },
                    payroll.folder.file("")};
    SettingsShellTalk shell{settings, "OWBLeaveMgmt"};
};

TEST(Launch, TellsAShellThatListensAndPassesByOneThatDied) {
    Launch launch;
    const std::string socket = launch.payroll.folder.file("shell");
    launch.settings.SaveSetting("ExeTalk", "Orvane WagebookStatusHWND", socket);
    const std::string line = "1600#True#7#10#" + launch.file("OWB:(embedded):" + launch.database);
    const std::string who = std::to_string(getpid());
    {
        LocalListener shell(socket);
        EXPECT_EQ(launch.run(line), "0");
        EXPECT_EQ(shell.take(),
                  (std::vector<std::string>{"opened OWBLeaveMgmt modLeaveProcess " + who,
                                            "ended OWBLeaveMgmt " + who}));
        // A shell that does not listen for a while loses messages and holds nobody up.
        while (SendLocalMessage(socket, "more")) {
        }
        launch.shell.screenOpened("modLeaveProcess");
    }
    EXPECT_FALSE(SendLocalMessage(socket, "gone"));
    std::ofstream(socket) << "left behind";
    EXPECT_FALSE(SendLocalMessage(socket, "dead"));
    LocalListener next(socket);
    EXPECT_TRUE(SendLocalMessage(socket, "again"));
    EXPECT_EQ(next.take(), std::vector<std::string>{"again"});
}

TEST(Launch, ByConnectionFileOpensTheScreenAndTellsTheShell) {
    Launch launch;
    launch.settings.SaveSetting("ExeTalk", "Orvane WagebookStatusHWND", "77");
    std::string handle;
    launch.frontEnd.atRefresh = [&](Screen&) {
        handle = launch.settings.GetSetting("ExeTalk", "OWBLeaveMgmtHWND");
    };
    const std::string path = launch.file("OWB:(embedded):" + launch.database);
    EXPECT_EQ(launch.run("1600#True#7#10#" + path), "0");
    EXPECT_EQ(launch.boxText(), "Process Completed");
    EXPECT_EQ(launch.frontEnd.events,
              (std::vector<std::string>{"open frmConfiguring", "close frmConfiguring",
                                        "open modLeaveProcess", "close modLeaveProcess"}));
    EXPECT_TRUE(launch.session.gFileLaunch);
    EXPECT_TRUE(launch.session.gLaunchFlag);
    EXPECT_EQ(launch.session.gLaunchOption, 7);
    EXPECT_EQ(launch.session.gAttHeadId, 10);
    EXPECT_EQ(launch.session.gAtt.ATTHEADNAME, "Head 10");
    EXPECT_EQ(launch.session.gFirstLeaveMonth, kJune);
    EXPECT_NE(handle, "");
    EXPECT_EQ(launch.settings.GetSetting("ExeTalk", "OWBLeaveMgmtHWND"), "0");
    EXPECT_NE(launch.settings.GetSetting("ExeTalk", "Orvane WagebookStatus"), "");
    EXPECT_EQ(launch.session.gNodNdp, nullptr);
}

TEST(Launch, TakesTheFormThatTheFieldsAndTheExecutableSay) {
    struct Case {
        const char* what;
        const char* commandLine;
        const char* exeName;
        bool file;
        int head;
    };
    for (const Case& c : {Case{"five fields", "1502#0#0#10#<file>", "OWBLeaveMgmt", true, 10},
                          {"four fields", "1502#False#0#10", "OWBLeaveMgmt", false, 10},
                          {"five fields of another executable: the head is the path",
                           "1502#0#0#10#<file>", "owbleavemgmt", false, 0},
                          {"numbers stop at the first bad character, halves go to the even",
                           "1502x#-1#2.5#9.5x#<file>", "OWBLeaveMgmt", true, 10}}) {
        Launch launch;
        launch.session.exeName = c.exeName;
        launch.settings.SaveSetting("Settings", "DefLnk",
                                    launch.session.gGenCmn.FnStrEncryptWord(
                                        "Provider=OWBEmbedded;Data Source=" + launch.database));
        std::string commandLine = c.commandLine;
        if (const size_t at = commandLine.find("<file>"); at != std::string::npos)
            commandLine.replace(at, 6, launch.file("x:(embedded):" + launch.database + "::"));
        EXPECT_EQ(launch.run(commandLine), "0") << c.what;
        EXPECT_EQ(launch.session.gMenuId, 1502) << c.what;
        EXPECT_EQ(launch.session.gFileLaunch, c.file) << c.what;
        EXPECT_EQ(launch.session.gAttHeadId, c.head) << c.what;
        EXPECT_EQ(launch.boxText(),
                  "General : Optional Configuration is not available in this version.")
            << c.what;
    }
}

TEST(Launch, WithBadInputStopsAndWritesNothing) {
    struct Case {
        const char* what;
        const char* commandLine;
        const char* fileLine;  // null: no such file
        const char* result;    // begins so
        const char* box;
    };
    const char* open = "Please open the Orvane Wagebook file.";
    for (const Case& c :
         {Case{"no command line", "", "", "error: Command line: expected", ""},
          {"too few fields", "1502#True", "", "error: Command line: expected", ""},
          {"menu identifier out of range", "99999999999#0#0#1#<file>", "",
           "error: Command line: the menu", ""},
          {"flag that is none", "1502#maybe#0#1#<file>", "",
           "error: Command line: the flag 'maybe'", ""},
          {"option out of range", "1502#0#40000#1#<file>", "",
           "error: Command line: the option '40000'", ""},
          {"no such connection file", "1502#0#0#1#<file>", nullptr, "error: The connection file",
           ""},
          {"blank connection file", "1502#0#0#1#<file>", "  ", "1", open},
          {"too few fields in it", "1502#0#0#1#<file>", "x:(embedded)",
           "error: The connection file", ""},
          {"a user without a password", "1502#0#0#1#<file>", "x:s:d:u",
           "error: The connection file", ""},
          {"missing database", "1502#0#0#1#<file>", "x:(embedded):/no/such/file.db", "error: ", ""},
          {"a file that is no database", "1502#0#0#1#<file>", "x:(embedded):<self>", "error: ", ""},
          {"settings form without connection data", "1502#0#0#1", "", "1", open}}) {
        Launch launch;
        std::string path = launch.payroll.folder.file("none.txt");
        if (c.fileLine != nullptr) {
            path = launch.payroll.folder.file("connection.txt");
            std::string line = c.fileLine;
            if (const size_t at = line.find("<self>"); at != std::string::npos)
                line.replace(at, 6, path);
            launch.file(line);
        }
        std::string commandLine = c.commandLine;
        if (const size_t at = commandLine.find("<file>"); at != std::string::npos)
            commandLine.replace(at, 6, path);
        const auto before = std::filesystem::last_write_time(launch.database);
        EXPECT_EQ(launch.run(commandLine).rfind(c.result, 0), 0U)
            << c.what << ": " << launch.run(commandLine);
        EXPECT_EQ(launch.boxText(), c.box) << c.what;
        EXPECT_EQ(launch.session.gConn.State(), 0) << c.what;
        EXPECT_EQ(std::filesystem::last_write_time(launch.database), before) << c.what;
        EXPECT_FALSE(std::filesystem::exists("/no/such/file.db"));
        EXPECT_TRUE(launch.frontEnd.events.empty()) << c.what;
    }
}

// Head 0 is the whole company: a head that there is not must never be taken for it.
TEST(Launch, RefusesAHeadThatDoesNotExist) {
    for (const int head : {99, -1}) {
        Launch launch;
        const std::string path = launch.file("x:(embedded):" + launch.database);
        EXPECT_EQ(launch.run("1512#0#0#" + std::to_string(head) + "#" + path), "1");
        EXPECT_EQ(launch.boxText(),
                  "There is no attendance head " + std::to_string(head) + " in this company.");
        EXPECT_TRUE(launch.frontEnd.events.empty());
    }
}

TEST(Launch, ADatabaseWithoutACompanyIsToldInASentence) {
    Launch launch;
    const std::string empty = launch.payroll.folder.file("empty.owb");
    createEmbedded(empty);
    EXPECT_EQ(launch.run("1512#0#0#0#" + launch.file("x:(embedded):" + empty)),
              "error: The database " + empty + " holds no Orvane Wagebook company.");
}

TEST(Launch, EndsWhereTheScreenIsOpenAlready) {
    for (const bool open : {false, true}) {
        Launch launch;
        launch.settings.SaveSetting("ExeTalk", "Orvane WagebookStatusHWND", "77");
        frmMain program(launch.session, launch.frontEnd);
        program.isOpenElsewhere = [&] {
            EXPECT_EQ(launch.session.gMenuId, 1600);
            EXPECT_EQ(launch.session.gAttHeadId, 10);
            EXPECT_EQ(launch.session.gConn.State(), 1);
            return open;
        };
        EXPECT_EQ(program.Run("1600#0#0#10#" + launch.file("x:(embedded):" + launch.database)), 0);
        EXPECT_EQ(launch.frontEnd.events.empty(), open);
        EXPECT_NE(launch.settings.GetSetting("ExeTalk", "Orvane WagebookStatus"), "")
            << "the shell learns of the end";
    }
}

TEST(Launch, DispatchesByMenuIdentifier) {
    struct Case {
        int menu;
        const char* box;
        const char* screens;  // opened, but for the configuration pass
    };
    for (const Case& c : {Case{1513, "Invalid form reference", ""},
                          {1602, "Invalid form reference", ""},
                          {1506,
                           "Automatic Allotment Configuration (Monthly) is not available in this "
                           "version.",
                           ""},
                          {1508, "", "modLeaveProcess"},
                          {1600, "Process Completed", "modLeaveProcess"},
                          {15210, "Leave Encashment is not available in this version.",
                           "pause 1000 modLeaveProcess"},
                          {1525,
                           "Automatic Allotment Configuration (Quarterly) is not available in "
                           "this version.",
                           ""},
                          {1601, "", "modLeaveProcess"}}) {
        Launch launch;
        launch.settings.SaveSetting("ExeTalk", "Orvane WagebookStatusHWND", "77");
        const std::string path = launch.file("x:(embedded):" + launch.database);
        EXPECT_EQ(launch.run(std::to_string(c.menu) + "#0#0#10#" + path), "0") << c.menu;
        EXPECT_EQ(launch.boxText(), c.box) << c.menu;
        std::string screens;
        bool configured = false;
        for (const std::string& event : launch.frontEnd.events) {
            if (event == "open frmConfiguring")
                configured = true;
            else if (event.rfind("open ", 0) == 0 || event.rfind("pause", 0) == 0)
                screens +=
                    (screens.empty() ? "" : " ") + (event[0] == 'o' ? event.substr(5) : event);
        }
        EXPECT_EQ(screens, c.screens) << c.menu;
        EXPECT_EQ(configured, c.menu != 1525 && c.menu != 1601) << c.menu;
        EXPECT_NE(launch.settings.GetSetting("ExeTalk", "Orvane WagebookStatus"), "") << c.menu;
    }
}

TEST(Launch, InAnExtendedSessionWorksInTransactions) {
    for (const int menu : {1508, 1515}) {
        Launch launch;
        launch.settings.SaveSetting("ExeTalk", "OWBExtendedYN", "1");
        launch.settings.SaveSetting("Settings", "WinUserID", "asha");
        auto open = [&] {
            return Recordset(launch.session.gConn, "SELECT @@TRANCOUNT").Fields(0).toInt();
        };
        int64_t during = 0;
        launch.frontEnd.atRefresh = [&](Screen& screen) {
            if (screen.name() == "modLeaveProcess") during = open();
        };
        const std::string path = launch.file("x:(embedded):" + launch.database);
        EXPECT_EQ(launch.run(std::to_string(menu) + "#0#0#10#" + path), "0");
        EXPECT_EQ(during, 1) << menu;
        EXPECT_EQ(open(), 0) << menu;
        EXPECT_EQ(launch.session.gHostPrefix.substr(launch.session.gHostPrefix.size() - 4), "asha");
        launch.session.gConn.Close();
        launch.payroll.session.gConn.Open("Provider=OWBEmbedded;Data Source=" + launch.database);
        EXPECT_EQ(launch.payroll.value("SELECT EDITMODEYN FROM LEV_MONTHDET"), "0");
    }
}

// A driver layer: somebody else holds a transaction while the program asks whether one is open.
class OthersTransaction final : public test::DriverLayer {
  public:
    OthersTransaction(std::unique_ptr<Driver> inner, const std::string& connectionString)
        : DriverLayer(std::move(inner)) {
        other_.Open(connectionString);
    }
    BatchResult run(std::string_view batch) override {
        const bool asks = batch.find("dm_tran_database_transactions") != std::string_view::npos;
        if (asks) other_.BeginTrans();
        BatchResult result = inner_->run(batch);
        if (asks) other_.CommitTrans();
        return result;
    }

  private:
    Connection other_;
};

// The pass is left out only when the marker file is there and another transaction is open.
TEST(Launch, SkipsTheConfigurationPassOnlyForBothReasons) {
    for (const bool marker : {false, true})
        for (const bool transaction : {false, true}) {
            Launch launch;
            if (marker) std::ofstream(launch.payroll.folder.file("SkipLEVConfigBegintrans.dat"));
            Connection& connection = launch.session.gConn;
            connection.Open("Provider=OWBEmbedded;Data Source=" + launch.database);
            if (transaction)
                connection.Wrap([&](std::unique_ptr<Driver> inner) {
                    return std::make_unique<OthersTransaction>(std::move(inner),
                                                               connection.ConnectionString());
                });
            launch.session.gMenuId = 1600;
            launch.session.gAttHeadId = 10;
            StartOnConnection(launch.session, launch.frontEnd);
            const std::vector<std::string>& events = launch.frontEnd.events;
            const bool configured =
                std::find(events.begin(), events.end(), "open frmConfiguring") != events.end();
            EXPECT_EQ(configured, !(marker && transaction)) << marker << transaction;
            EXPECT_EQ(events.back(), "close modLeaveProcess");
        }
}

TEST(Launch, ReadsWhatTheCompanyIs) {
    Launch launch;
    launch.payroll.session.gConn.Open("Provider=OWBEmbedded;Data Source=" + launch.database);
    launch.payroll.run(
        "INSERT INTO MAS_PULLDOWNVALUES (REFID, PDID, PDLISTNAME) VALUES (2001, 1, 'x'), (2001, "
        "2, 'Student')");
    launch.payroll.run(
        "INSERT INTO ATT_DEFINITION (LEVID, LEVNAME, LEVSHORT) VALUES (9, 'Restricted', 'RH')");
    launch.payroll.run(
        "INSERT INTO ATT_RESTRICTHOLIDAY (HOLIDAYID, HOLIDAYDATE, RESTRICTYN) VALUES (1, "
        "'2024-06-03', 1)");
    launch.payroll.run(
        "INSERT INTO SEC_USERLIST (USERID, USERNAME, READONLYYN) VALUES (2, 'O''Neil', 1)");
    launch.payroll.run("UPDATE MAS_MONTHYEAR SET LOCKEDYN = 1");
    launch.payroll.session.gConn.Close();
    launch.settings.SaveSetting("Settings", "USER", "O'Neil");
    launch.settings.SaveSetting("ExeTalk", "HelpFile", launch.database);
    const std::string path = launch.file("x:(embedded):" + launch.database);
    EXPECT_EQ(launch.run("1502#0#0#10#" + path), "0");
    EXPECT_EQ(launch.session.gEmployeeCaption, "Student");
    EXPECT_EQ(launch.session.gRestrictedLeaveId, 9);
    EXPECT_TRUE(launch.session.gRestrictedHolidayOn);
    EXPECT_TRUE(launch.session.gReadOnly);
    EXPECT_TRUE(launch.session.gPeriodLocked);
    EXPECT_EQ(launch.session.gHelpFile, launch.database);
}

// What decides about rights and locks, and cannot be asked, ends the start.
TEST(Launch, WithoutAnAnswerAboutRightsOpensNothing) {
    for (const char* broken :
         {"DROP TABLE SEC_USERLIST", "ALTER TABLE SEC_USERLIST DROP COLUMN READONLYYN",
          "DROP FUNCTION [dbo].udf_getEmpLock", "DROP TABLE MAS_PULLDOWNVALUES"}) {
        Launch launch;
        launch.payroll.session.gConn.Open("Provider=OWBEmbedded;Data Source=" + launch.database);
        launch.payroll.run(broken);
        launch.payroll.session.gConn.Close();
        const std::string path = launch.file("x:(embedded):" + launch.database);
        EXPECT_NE(launch.run("1512#0#0#10#" + path), "0") << broken;
        for (const std::string& event : launch.frontEnd.events)
            EXPECT_NE(event, "open modHolidayList") << broken;
    }
}

}  // namespace
}  // namespace owb
