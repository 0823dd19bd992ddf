#include <gtest/gtest.h>

#include <fstream>
#include <functional>

#include "app/ProcessLauncher.h"
#include "session/screens/modExternal.h"
#include "support/screens.h"
#include "support/scripted.h"

namespace owb {
namespace {

using test::Company;

// A sibling that is told when it would have gone, and what happens while somebody waits for it.
class FakeLauncher final : public SiblingLauncher {
  public:
    std::string handle() const override { return "55"; }
    bool raise(const std::string&, const std::string& title) override {
        if (alreadyRuns) log += "raise " + title + ";";
        return alreadyRuns;
    }
    void start(const std::string& path, const std::string& parameter, const std::string&) override {
        log += "start " + path.substr(path.rfind('/') + 1) + " " + parameter + ";";
    }
    bool hasEnded(int) override {
        ++waits;
        if (atWait) atWait();
        return waits >= endsAfter;
    }
    bool alreadyRuns = false;
    int waits = 0, endsAfter = 3;
    std::function<void()> atWait;
    std::string log;
};

struct Siblings : Company {
    Siblings() {
        session.siblings = &launcher;
        std::ofstream(folder.file("OWBFilter")) << "program";
        settings.SaveSetting("ExeTalk", "Orvane WagebookStatusHWND", "77");
    }
    std::string statusHandle() {
        return settings.GetSetting("ExeTalk", "Orvane WagebookStatusHWND");
    }
    FakeLauncher launcher;
};

// A screen with properties set before it opens.
struct External {
    std::string appName;
    int mode;
    std::string title;
};

std::string open(Siblings& s, const External& e) {
    std::istringstream in;
    std::ostringstream out, errors;
    ScriptFrontEnd frontEnd(in, out, errors);
    modExternal screen(s.session, frontEnd);
    screen.AppName = e.appName;
    screen.Mode = e.mode;
    screen.AppTitle = e.title;
    screen.AppParameter = "1500,True";
    screen.showModal();
    return out.str() + errors.str();
}

TEST(External, StartsRaisesAndWaits) {
    const std::string opened = "open: modExternal|Orvane Wagebook\n";
    const std::string closed = "close: modExternal\n";
    const std::string notFound =
        opened +
        "box: information|Orvane Wagebook|Required External Application not found|OK|OK\n" + closed;
    struct Case {
        External external;
        std::string out, log;
        int waits = 0;
        bool runs = false, told = false;
    };
    for (const Case& c :
         {Case{{"", 0, ""},
               "box: information|Orvane Wagebook|Properties of external application is not set "
               "properly|OK|OK\n",
               ""},
          {{"", 2, ""}, notFound, ""},
          {{"OWBFFS", 3, ""}, notFound, ""},
          {{"OWBFilter", 3, ""}, opened + closed, "start OWBFilter 1500,True;", 3},
          {{"OWBFilter", 1, ""}, opened + closed, "start OWBFilter 1500,True;", 3},
          {{"OWBFilter", 3, "Title"}, opened + closed, "raise Title;", 3, true},
          {{"OWBFilter", 3, ""}, opened + closed, "raise OWBFilter;", 3, true},
          {{"OWBFilter", 3, ""}, opened + closed, "start OWBFilter 1500,True;", 2, false, true},
          {{"OWBFilter", 2, ""}, opened + closed, "start OWBFilter 1500,True;", 5, false, true}}) {
        Siblings s;
        s.launcher.alreadyRuns = c.runs;
        s.launcher.atWait = [&] {
            EXPECT_EQ(s.statusHandle(), "55");
            if (c.told && s.launcher.waits == c.waits)
                s.settings.SaveSetting("ExeTalk", "Orvane WagebookStatus", "OWBFilter 1");
        };
        EXPECT_EQ(open(s, c.external), c.out);
        EXPECT_EQ(s.launcher.log, c.log);
        EXPECT_EQ(s.launcher.waits, c.waits) << c.log;
        EXPECT_EQ(s.statusHandle(), "77") << "the shell's own again";
    }
}

// Waiting does not hold the screen: its commands work, and closing it gives the waiting up.
TEST(External, TakesCommandsWhileTheSiblingRuns) {
    Siblings s;
    s.launcher.endsAfter = 1000;
    test::TestFrontEnd frontEnd(s.boxes);
    modExternal screen(s.session, frontEnd);
    screen.AppName = "OWBFilter";
    screen.Mode = 3;
    frontEnd.atInput = [&](Screen& shown) {
        shown.tick();
        EXPECT_TRUE(shown.isOpen());
        s.launcher.alreadyRuns = true;
        EXPECT_TRUE(screen.cmdFront.click());
        EXPECT_TRUE(screen.cmdClose.click());
        EXPECT_FALSE(shown.isOpen());
    };
    screen.showModal();
    EXPECT_EQ(s.launcher.log, "start OWBFilter ;raise OWBFilter;");
    EXPECT_EQ(s.launcher.waits, 1);
    EXPECT_EQ(s.statusHandle(), "77");
}

TEST(External, TheFilterTellsWhetherSomebodyIsLeftOut) {
    Siblings s;
    s.session.gMultiLogin = true;
    s.launcher.atWait = [&] { s.settings.SaveSetting("Settings", "Filter", "1"); };
    std::istringstream in;
    std::ostringstream out;
    ScriptFrontEnd frontEnd(in, out, out);
    ShowFilterProgram(s.session, frontEnd);
    EXPECT_EQ(s.launcher.log, "start OWBFilter 1500,True;");
    EXPECT_TRUE(s.session.gFilterActive);
    EXPECT_EQ(s.settings.GetSetting("ExeTalk", "OWBLeaveMgmtHWND"), "55");
}

TEST(ProcessLauncher, StartsAProgramInItsFolderAndLearnsOfItsEnd) {
    Company company;
    const std::string program = company.folder.file("OWBSibling");
    std::ofstream(program) << "#!/bin/sh\necho \"$1\" > told\nread line < go\n";
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    ASSERT_EQ(std::system(("mkfifo " + company.folder.file("go")).c_str()), 0);
    ProcessLauncher launcher(company.settings);
    EXPECT_TRUE(launcher.hasEnded(0)) << "nothing was started";
    EXPECT_FALSE(launcher.raise("OWBSibling", "Sibling"));
    launcher.start(program, "1500,True x", company.folder.file(""));
    EXPECT_FALSE(launcher.hasEnded(0));
    EXPECT_TRUE(launcher.raise("OWBSibling", "Sibling"));
    std::ofstream(company.folder.file("go")) << "on\n";
    EXPECT_TRUE(launcher.hasEnded(10000));
    EXPECT_FALSE(launcher.raise("OWBSibling", "Sibling"));
    std::ifstream told(company.folder.file("told"));
    std::string line;
    std::getline(told, line);
    EXPECT_EQ(line, "1500,True x");
    EXPECT_THROW(launcher.start(company.folder.file("none"), "", ""), std::runtime_error);

    // This test's own process stands for a sibling that runs already.
    company.settings.SaveSetting("ExeTalk", "test_appHWND", launcher.handle());
    company.settings.SaveSetting("ExeTalk", "OWBFilterHWND", launcher.handle());
    EXPECT_FALSE(launcher.raise("OWBFilter", "Filter")) << "the number is another program's now";
    EXPECT_TRUE(launcher.raise("test_app", "Test"));
    EXPECT_FALSE(launcher.hasEnded(0));
}

}  // namespace
}  // namespace owb
