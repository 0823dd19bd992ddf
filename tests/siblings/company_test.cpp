// Which company the launcher opens, and which it remembers.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "db/embedded/embedded_driver.h"
#include "script/script_front_end.h"
#include "siblings/frmCompany.h"
#include "support/company.h"

namespace owb {
namespace {

struct Launcher : test::Company {
    Launcher() { session.gConn.Close(); }
    std::string connection(const std::string& name) {
        return Companies::connectionOf(folder.file(name));
    }
    // "" when it was opened, otherwise the reason.
    std::string open(const std::string& name) {
        try {
            companies.open(connection(name));
            return "";
        } catch (const std::exception& e) {
            return e.what();
        }
    }
    std::string recent() {
        std::string names;
        for (const std::string& each : companies.recent()) {
            const std::string words = Companies::inWords(each);
            names += words.substr(0, words.find(' ')) + " ";
        }
        return names;
    }
    Companies companies{session};
};

TEST(Companies, WhatCannotBeOpenedIsToldAndNotRemembered) {
    Launcher launcher;
    const std::string& folder = launcher.folder.file("");
    std::ofstream(folder + "letter.owb") << "Dear Sir,";
    std::ofstream(folder + "zero.owb");
    createEmbedded(folder + "empty.owb");
    ASSERT_EQ(launcher.open("company.db"), "");
    const std::string named = launcher.settings.GetSetting("Settings", "DefLnk");
    const struct {
        const char* name;
        std::string reason;
    } cases[] = {
        {"none.owb", "There is no database file " + folder + "none.owb."},
        {"letter.owb", "The file " + folder + "letter.owb is no Orvane Wagebook database."},
        {"zero.owb", "The file " + folder + "zero.owb is no Orvane Wagebook database."},
        {"empty.owb", "The database " + folder + "empty.owb holds no Orvane Wagebook company."},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(launcher.open(c.name), c.reason);
        EXPECT_EQ(launcher.session.gConn.State(), 0) << c.name;
        EXPECT_EQ(launcher.recent(), "company.db ");
        EXPECT_EQ(launcher.settings.GetSetting("Settings", "DefLnk"), named);
    }
}

TEST(Companies, TheLastOnesAreRememberedScrambled) {
    Launcher launcher;
    EXPECT_EQ(launcher.companies.last(), "");
    launcher.settings.SaveSetting("Settings", "DefLnk",
                                  launcher.session.gGenCmn.FnStrEncryptWord("Provider=X"));
    EXPECT_EQ(launcher.companies.last(), "Provider=X") << "of the family's programs";
    for (int n = 1; n <= 9; ++n)
        std::filesystem::copy_file(launcher.folder.file("company.db"),
                                   launcher.folder.file("c" + std::to_string(n)));
    for (const char* name : {"c1", "c2", "c3", "c4", "c5", "c6", "c7", "c8", "c9", "c5"})
        EXPECT_EQ(launcher.open(name), "");
    EXPECT_EQ(launcher.recent(), "c5 c9 c8 c7 c6 c4 c3 c2 ");
    EXPECT_EQ(launcher.companies.last(), launcher.connection("c5"));
    EXPECT_EQ(launcher.settings.GetSetting("OWBShell", "Recent1").find("c5"), std::string::npos);
    EXPECT_EQ(launcher.session.gGenCmn.FnStrEncryptWord(
                  launcher.settings.GetSetting("Settings", "DefLnk")),
              launcher.connection("c5"));
    EXPECT_EQ(Companies::inWords("Provider=SQLOLEDB.1;User ID=sa;PWD=x;Initial Catalog=Pay;Data "
                                 "Source=srv"),
              "srv: Pay");
    EXPECT_EQ(Companies::inWords("Provider=SQLNCLI;Server=srv;Database=Pay;"), "srv: Pay");
}

TEST(Companies, AreChosenFromFilesRecentsAndASample) {
    Launcher launcher;
    const std::string folder = launcher.folder.file("");
    struct Case {
        const char* what;
        bool known;
        std::string script, chosen, said;  // said: a part
    };
    const Case cases[] = {
        {"nothing known: a file is asked for", false,
         "focus\nfile " + folder + "a.owb\nclick cmdFile", folder + "a.owb",
         "focus: cmdFile\nfile: open|Open Company|" + folder + "a.owb\n"},
        {"no file named", false, "click cmdFile\ncaption", "", "caption: Orvane Wagebook - Open"},
        {"the last one by Enter", true, "focus\nkey lstRecent Enter", folder + "company.db",
         "focus: lstRecent\n"},
        {"a new sample", false, "file " + folder + "new\nclick cmdSample", folder + "new.owb",
         "file: save|New Sample Company|"},
        {"never over a file", false, "file " + folder + "company.db\nclick cmdSample\ncaption", "",
         "box: critical|"},
        {"none", true, "click cmdClose", "", ""},
    };
    for (const Case& c : cases) {
        Launcher fresh;
        if (c.known) {
            Companies remembered(fresh.session);
            remembered.open(launcher.connection("company.db"));
        }
        std::istringstream in(c.script);
        std::ostringstream out;
        ScriptFrontEnd frontEnd(in, out, out);
        frmCompany screen(fresh.session, frontEnd);
        screen.showModal();
        EXPECT_EQ(screen.chosen(), c.chosen.empty() ? "" : Companies::connectionOf(c.chosen))
            << c.what << out.str();
        EXPECT_NE(out.str().find(c.said), std::string::npos) << c.what << out.str();
    }
    Companies made(launcher.session);
    made.open(launcher.connection("new.owb"));
    EXPECT_EQ(launcher.value("SELECT CMPNAME FROM MAS_COMPANY"), "Sample Engineering Works");
}

}  // namespace
}  // namespace owb
