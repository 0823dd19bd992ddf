// The executables as a script starts them: what they answer before a company is open, and a
// launcher driven from end to end.
#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/wait.h>

#include <fstream>

#include "base/version.h"
#include "db/embedded/embedded_driver.h"
#include "support/company.h"

namespace owb {
namespace {

struct Programs : test::Company {
    Programs() { session.gConn.Close(); }
    struct Outcome {
        int status;
        std::string out;  // and what stands on stderr
    };
    Outcome run(const std::string& command, const std::string& script) {
        std::ofstream(folder.file("script")) << script;
        FILE* pipe = popen(("OWB_SCRIPT=1 XDG_RUNTIME_DIR=" + folder.file("") +
                            " OWB_SETTINGS=" + folder.file("settings.db") + " " OWB_PROGRAMS "/" +
                            command + " <" + folder.file("script") + " 2>&1")
                               .c_str(),
                           "r");
        std::string out;
        char buffer[4096];
        while (fgets(buffer, sizeof buffer, pipe) != nullptr) out += buffer;
        const int status = pclose(pipe);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, out};
    }
};

TEST(Programs, AnswerBeforeACompanyIsOpen) {
    Programs programs;
    const std::string folder = programs.folder.file("");
    createEmbedded(folder + "empty.owb");
    const std::string version = std::string(" ") + programVersion() + "\n";
    const std::string chooser = "open: frmCompany|Orvane Wagebook - Open Company\n";
    const struct {
        std::string command;
        int status;
        std::string out;  // its beginning
    } cases[] = {
        {"OWBShell --version", 0, "OWBShell" + version},
        {"OWBFilter --version", 0, "OWBFilter" + version},
        {"OWBLeaveMgmt --version", 0, "OWBLeaveMgmt" + version},
        {"OWBShell --help", 0, "Usage: OWBShell [COMPANY]\n"},
        {"OWBFilter --help", 0, "Usage: OWBFilter 1500,True\n"},
        {"OWBLeaveMgmt --help", 0, "Usage: OWBLeaveMgmt <menu id>#"},
        {"OWBLeaveMgmt", 1, "error: Command line: expected <menu id>#"},
        {"OWBShell", 0, chooser},
        {"OWBShell " + folder + "none.owb", 1,
         "box: critical|Orvane Wagebook|There is no database file " + folder + "none.owb.|OK|OK\n" +
             chooser},
        {"OWBShell " + folder + "empty.owb", 1,
         "box: critical|Orvane Wagebook|The database " + folder +
             "empty.owb holds no Orvane Wagebook company.|OK|OK\n" + chooser},
        {"OWBShell", 0, chooser},  // neither is remembered
    };
    for (const auto& c : cases) {
        const Programs::Outcome o = programs.run(c.command, "");
        EXPECT_EQ(o.status, c.status) << c.command << o.out;
        EXPECT_EQ(o.out.substr(0, c.out.size()), c.out);
    }
}

TEST(Programs, TheLauncherIsDrivenByScript) {
    Programs programs;
    const std::string company = programs.folder.file("company.db");
    const Programs::Outcome opened =
        programs.run("OWBShell " + company,
                     "set txtSearch hol\nkey txtSearch Enter\nanswer Yes\nclick cmdClose\n");
    EXPECT_EQ(opened.status, 0);
    EXPECT_EQ(opened.out,
              "open: frmShell|Orvane Wagebook\n"
              "box: question|Orvane Wagebook|Still open: Holiday List (All).\\nThey stay open. "
              "Close the launcher?|YesNo|Yes\n"
              "close: frmShell\n");
    // The company has been opened by no screen so far.
    EXPECT_EQ(programs.run("OWBFilter 1500,True", "click cmdClose\n").out,
              "open: frmFilter|OrvaneWagebook - Filter\nclose: frmFilter\n");
    const std::string sample = programs.folder.file("new.owb");
    const Programs::Outcome changed =
        programs.run("OWBShell",
                     "show fpgScreen 1 Section\nclick cmdCompany\nclick cmdClose\n"
                     "click cmdCompany\nfile " +
                         sample + "\nclick cmdSample\nshow lblCompany\nclick cmdClose\n");
    EXPECT_EQ(changed.status, 0) << changed.out;
    const std::string shell = "open: frmShell|Orvane Wagebook\n",
                      chooser = "open: frmCompany|Orvane Wagebook - Open Company\n",
                      shut = "close: frmShell\n", chosen = "close: frmCompany\n";
    EXPECT_EQ(changed.out.find("fpgScreen 1 Section: Recent |"), shell.size()) << changed.out;
    EXPECT_NE(
        changed.out.find(shut + chooser + chosen + shell + shut + chooser +
                         "file: save|New "
                         "Sample Company|" +
                         sample + "\n" + chosen + shell + "lblCompany: Sample Engineering Works |"),
        std::string::npos)
        << changed.out;
}

}  // namespace
}  // namespace owb
