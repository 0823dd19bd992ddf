// What owbctl says to somebody who mistypes: hints, usage, and what there is in place of a key that
// the company has not.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

#include "base/version.h"
#include "ctl/suggestion.h"
#include "run_owbctl.h"
#include "support/temp_dir.h"

namespace owb::ctl {
namespace {

TEST(Usage, NearWordsAreHinted) {
    const std::vector<std::string> words = {"register", "screen", "sql", "sample", "help"};
    const struct {
        const char *typed, *meant;
    } cases[] = {{"regster", "register"},
                 {"REGISTER", "register"},
                 {"reigster", "register"},
                 {"sc", "screen"},
                 {"sq", "sql"},
                 {"sqll", "sql"},
                 {"hepl", "help"},
                 {"x", ""},
                 {"xyz", ""},
                 {"", ""},
                 {"balance", ""},
                 {"ab", ""}};
    for (const auto& c : cases) {
        const std::string hint = *c.meant ? "; did you mean " + std::string(c.meant) + "?" : "";
        EXPECT_EQ(didYouMean(c.typed, words), hint) << c.typed;
    }
}

TEST(Usage, HelpVersionAndHints) {
    const std::string overview = owbctl({"help"}).out;
    const struct {
        std::vector<std::string> arguments;
        int status;
        std::string out, err;  // beginnings
    } cases[] = {
        {{}, 0, overview, ""},
        {{"--help"}, 0, overview, ""},
        {{"help", "help"}, 0, overview, ""},
        {{"--version"}, 0, std::string("owbctl ") + programVersion() + "\n", ""},
        {{"regster"}, 2, "", "error: there is no command \"regster\"; did you mean register?\n"},
        {{"help", "regster"}, 2, "", "error: there is no command \"regster\"; did you mean"},
        {{"quite-else"}, 2, "", "error: there is no command \"quite-else\"; owbctl help lists"},
        {{"register"},
         2,
         "",
         "error: DB is required\nUsage: owbctl register [OPTIONS] DB\nSee: owbctl help register\n"},
        {{"check", "x", "--jsn"},
         2,
         "",
         "error: The following argument was not expected: --jsn; did you mean --json?\nUsage: "},
        {{"check", "x", "--json", "--csv"}, 2, "", "error: --json excludes --csv\nUsage: "},
        {{"completion", "fish"}, 2, "", "error: SHELL: fish not in {bash,zsh}"},
    };
    for (const auto& c : cases) {
        const Outcome o = owbctl(c.arguments);
        EXPECT_EQ(o.status, c.status) << testing::PrintToString(c.arguments);
        EXPECT_EQ(o.out, c.out) << testing::PrintToString(c.arguments);
        EXPECT_EQ(o.err.substr(0, c.err.size()), c.err);
        EXPECT_EQ(o.err.empty(), c.err.empty()) << o.err;
    }
    EXPECT_NE(overview.find("Usage: owbctl"), std::string::npos);
}

class CompanyFile : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(
            owbctl({"sample", db, "--employees", "6", "--months", "2", "--from", "Apr/2024"}).err,
            "");
        ASSERT_EQ(owbctl({"process", db}).status, 0);
    }
    test::TempDir dir;
    std::string db = dir.file("x.owb");
};

TEST_F(CompanyFile, UnknownKeysAreErrorsThatTellWhatThereIs) {
    const std::string employees = "; there are 6, numbered from 1 to 6\n",
                      months = "; there are Apr/2024 to May/2024\n",
                      leaves =
                          "; there are LOP (1), CO (2), CW (3), RES (4), CL (5), SL (6), EL "
                          "(7), RH (8)\n",
                      heads =
                          "; there are Office (1), Plant (2), Workshop (3), Field Sales (4), "
                          "Stores (5), Security (6)\n";
    const struct {
        std::vector<std::string> arguments;
        std::string error;
    } cases[] = {
        {{"balance", db, "999", "CL", "2024-04-10"}, "there is no employee 999" + employees},
        {{"balance", db, "1", "XX", "2024-04-10"}, "there is no leave \"XX\"" + leaves},
        {{"balance", db, "1", "99", "2024-04-10"}, "there is no leave \"99\"" + leaves},
        {{"balance", db, "1", "CL", "2030-04-10"}, "no month holds 2030-04-10" + months},
        {{"balance", db, "1", "CL", "2024-04-10", "Foo"},
         "there is no attendance head \"Foo\"" + heads},
        {{"balance", db, "1", "CL", "2024-04-10", "7"},
         "there is no attendance head \"7\"" + heads},
        {{"explain", db, "0", "CL", "May/2024"}, "there is no employee 0" + employees},
        {{"explain", db, "1", "XX", "May/2024"}, "there is no leave \"XX\"" + leaves},
        {{"explain", db, "1", "CL", "Jun/2024"}, "there is no month Jun/2024" + months},
        {{"register", db, "--month", "Mar/2030"}, "there is no month Mar/2030" + months},
        {{"register", db, "--month", "Foo/2030"}, "\"Foo/2030\" is no month (Mmm/YYYY)\n"},
        {{"screen", db, "1512", "99"}, "there is no attendance head \"99\"" + heads},
        {{"screen", db, "1512", "Shop"}, "there is no attendance head \"Shop\"" + heads},
        {{"formula", db, "9", "1", "0", "May/2024"},
         "there is no formula 9; MAS_FORMULA lists them\n"},
        {{"formula", db, "1", "9", "0", "May/2024"}, "there is no employee 9" + employees},
        {{"formula", db, "1", "1", "5", "May/2024"},
         "there is no version 5 of employee 1; the last is 1\n"},
        {{"formula", db, "1", "1", "1", "24000"}, "there is no month Dec/1999" + months},
    };
    for (const auto& c : cases) {
        const Outcome o = owbctl(c.arguments);
        EXPECT_EQ(o.status, 1) << testing::PrintToString(c.arguments);
        EXPECT_EQ(o.out, "");
        EXPECT_EQ(o.err, "error: " + c.error);
    }
}

TEST_F(CompanyFile, NamesAndNumbersMeanTheSame) {
    const std::vector<std::vector<std::string>> same[] = {
        {{"balance", db, "1", "5", "2024-05-10"}, {"balance", db, "1", "cl", "2024-05-10"}},
        {{"balance", db, "1", "5", "2024-05-10", "3"},
         {"balance", db, "1", "CL", "2024-05-10", "WORKSHOP"}},
        {{"explain", db, "1", "5", "May/2024"}, {"explain", db, "1", "cl", "May/2024"}},
        {{"screen", db, "1512", "3"}, {"screen", db, "1512", "workshop"}},
    };
    for (const auto& pair : same) {
        const Outcome number = owbctl(pair[0], "caption\n"), name = owbctl(pair[1], "caption\n");
        EXPECT_EQ(number.status, 0) << number.err;
        EXPECT_NE(number.out, "");
        EXPECT_EQ(number.out, name.out);
    }
}

TEST_F(CompanyFile, CsvHasTheRowsOfJson) {
    owbctl({"sql", db, "-c", "UPDATE LEV_MONTHDET SET EDITMODEYN = 1 WHERE EMPID = 1"});
    const struct {
        std::vector<std::string> arguments;
        const char *head, *line;
    } cases[] = {
        {{"register", db, "--month", "May/2024"},
         "month,employee,name,head,nwd,payDays,presentDays,ot1,ot2,awaitsRecalculation\n",
         "\nMay/2024,3,Arjun Naik,Plant,30.00,"},
        {{"check", db},
         "fault,table,rows,what,employees\n",
         "\n0,LEV_MONTHDET,2,month rows that await recalculation,\n"},
        {{"explain", db, "1", "CL", "May/2024"},
         "from,to,head,what,finding\n",
         "\n2024-05-01,2024-05-31,3,figure,1 leaves\n"},
    };
    for (const auto& c : cases) {
        std::vector<std::string> csv = c.arguments;
        csv.emplace_back("--csv");
        const Outcome o = owbctl(csv);
        EXPECT_EQ(o.status, 0) << o.err;
        EXPECT_EQ(o.out.rfind(c.head, 0), 0U) << o.out;
        EXPECT_NE(o.out.find(c.line), std::string::npos) << o.out;
    }
}

TEST(Usage, ADatabaseWithoutACompanyIsToldInASentence) {
    test::TempDir dir;
    const std::string db = dir.file("empty.owb");
    ASSERT_EQ(owbctl({"create", "--empty", db}).status, 0);
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"register", db},
                                               {"process", db},
                                               {"screen", db, "1512", "0"},
                                               {"balance", db, "1", "CL", "2024-04-01"},
                                               {"formula", db, "1", "1", "1", "May/2024"}}) {
        const Outcome o = owbctl(arguments);
        EXPECT_EQ(o.status, 1);
        EXPECT_EQ(o.err, "error: The database " + db + " holds no Orvane Wagebook company.\n");
    }
}

// The script is given to the shell that it is made for.
TEST(Completion, TheShellCompletesCommandsOptionsAndFiles) {
    test::TempDir dir;
    std::ofstream(dir.file("company.owb")) << "x";
    for (const char* shell : {"bash", "zsh"})
        EXPECT_NE(owbctl({"completion", shell}).out.find("_owbctl"), std::string::npos);
    std::ofstream(dir.file("script")) << owbctl({"completion", "bash"}).out;
    const struct {
        std::string words;
        int at;
        std::string completed;
    } cases[] = {{"owbctl reg", 1, "register"},
                 {"owbctl help ba", 2, "balance backup"},
                 {"owbctl register comp", 2, "company.owb"},
                 {"owbctl check --", 2, "--help --json --csv"},
                 {"owbctl nosuch --", 2, "--help"}};
    for (const auto& c : cases) {
        const std::string command =
            "cd " + dir.file("") + " && bash -c 'source ./script; COMP_WORDS=(" + c.words +
            "); COMP_CWORD=" + std::to_string(c.at) + "; _owbctl; echo \"${COMPREPLY[@]}\"' 2>&1";
        FILE* pipe = popen(command.c_str(), "r");
        ASSERT_NE(pipe, nullptr);
        char line[256] = "";
        EXPECT_NE(fgets(line, sizeof line, pipe), nullptr);
        pclose(pipe);
        EXPECT_EQ(line, c.completed + "\n") << c.words;
    }
}

}  // namespace
}  // namespace owb::ctl
