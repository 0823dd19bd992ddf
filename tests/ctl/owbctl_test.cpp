#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include <nlohmann/json.hpp>

#include "base/number_text.h"
#include "db/connection.h"
#include "run_owbctl.h"
#include "support/temp_dir.h"

namespace owb::ctl {
namespace {

TEST(Owbctl, WrongUsageIsStatus2) {
    const std::vector<std::vector<std::string>> cases = {{"nosuch"},
                                                         {"create"},
                                                         {"sql"},
                                                         {"sql", "x", "-c", "a", "-f", "b"},
                                                         {"sql", "x", "--json", "--table"},
                                                         {"process", "x", "--menu", "1507"},
                                                         {"screen", "x", "1511"},
                                                         {"sample", "x", "--employees", "0"},
                                                         {"sample", "x", "--employees", "20001"},
                                                         {"help", "nosuch"},
                                                         {"check", "a", "b"},
                                                         {"create", "x", "--nosuch"}};
    for (const auto& c : cases) {
        const Outcome o = owbctl(c);
        EXPECT_EQ(o.status, 2) << testing::PrintToString(c);
        EXPECT_EQ(o.err.rfind("error: ", 0), 0u) << o.err;
        EXPECT_EQ(o.out, "");
    }
}

TEST(Owbctl, HelpOfEachCommandTellsItsContract) {
    const Outcome all = owbctl({"help"});
    EXPECT_EQ(all.status, 0);
    for (const char* name : {"create", "sample", "sql", "process", "screen", "register", "balance",
                             "explain", "check", "backup"}) {
        EXPECT_NE(all.out.find(name), std::string::npos) << name;
        const Outcome one = owbctl({"help", name});
        EXPECT_EQ(one.status, 0);
        EXPECT_NE(one.out.find("DB"), std::string::npos) << name;
        EXPECT_EQ(owbctl({name, "--help"}).out, one.out);
    }
}

class OwbctlFile : public testing::Test {
  protected:
    test::TempDir dir;
    std::string db = dir.file("x.owb");
};

TEST_F(OwbctlFile, WhatCannotBeOpenedIsStatus1) {
    std::ofstream(dir.file("letter")) << std::string(3000, 'x');
    const std::string none = dir.file("none.owb");
    const std::vector<std::vector<std::string>> cases = {
        {"sql", none, "-c", "SELECT 1"},
        {"check", none},
        {"process", none},
        {"screen", none, "1511", "0"},
        {"register", none},
        {"sql", dir.file("letter"), "-c", "SELECT 1"},
        {"check", dir.file("letter")},
        {"create", dir.file("letter")},
        {"backup", none, db},
        {"backup", dir.file("letter"), db},
        {"sample", dir.file("letter")},
        {"create", dir.file("no/folder/x.owb")},
        {"create", "Provider=SQLOLEDB.1;Data Source=srv"},
        {"sql", "Provider=SQLNCLI;Server=srv;", "-c", "SELECT 1"},
        {"sample", db, "--from", "Foo/2024"}};
    for (const auto& c : cases) {
        const Outcome o = owbctl(c);
        EXPECT_EQ(o.status, 1) << testing::PrintToString(c);
        EXPECT_EQ(o.err.rfind("error: ", 0), 0u) << o.err;
        EXPECT_EQ(o.out, "");
    }
    EXPECT_FALSE(std::filesystem::exists(none));
    EXPECT_FALSE(std::filesystem::exists(db));
    EXPECT_EQ(std::filesystem::file_size(dir.file("letter")), 3000u);
}

TEST_F(OwbctlFile, SqlPrintsCsv) {
    ASSERT_EQ(owbctl({"create", "--empty", db}).status, 0);
    const Outcome o =
        owbctl({"sql", db},
               "CREATE TABLE t (id int, s varchar(20), d datetime, n numeric(10,2), f float)\n"
               "INSERT INTO t VALUES (1, 'a,\"b\"', '2014-01-05', 1.5, 0.1)\n"
               "INSERT INTO t VALUES (2, '', '2014-01-05 13:07:09.123', NULL, 1e20)\n"
               "GO\n"
               "SELECT * FROM t ORDER BY id SELECT 1 AS one\n"
               "  go  \n"
               "SELECT NULL AS x, id * 2 FROM t WHERE id = 9\n");
    EXPECT_EQ(o.status, 0);
    EXPECT_EQ(o.err, "");
    EXPECT_EQ(o.out,
              "id,s,d,n,f\n"
              "1,\"a,\"\"b\"\"\",2014-01-05,1.50,0.1\n"
              "2,\"\",2014-01-05 13:07:09.123,,1e+20\n"
              "\n"
              "one\n1\n"
              "\n"
              "x,\n");
}

TEST_F(OwbctlFile, SqlGoesOnAfterAFailedBatch) {
    ASSERT_EQ(owbctl({"create", "--empty", db}).status, 0);
    const std::string batches =
        "SELECT 1 AS a SELECT 1 / 0\nGO\nSELECT * FROM nosuch\nGO\nSELECT 2 AS b";
    std::ofstream(dir.file("batches.sql")) << batches;
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {"sql", db, "-c", batches}, {"sql", db, "-f", dir.file("batches.sql")}}) {
        const Outcome o = owbctl(arguments);
        EXPECT_EQ(o.status, 1);
        EXPECT_EQ(o.err,
                  "error: Divide by zero error encountered.\n"
                  "Msg 8134, Level 16, State 1, Line 1\n"
                  "error: Invalid object name 'nosuch'.\n"
                  "Msg 208, Level 16, State 1, Line 1\n");
        EXPECT_EQ(o.out, "a\n1\n\nb\n2\n");
    }
    EXPECT_EQ(owbctl({"sql", db, "-f", dir.file("none.sql")}).status, 1);
}

TEST_F(OwbctlFile, SqlPrintsTablesForPeople) {
    ASSERT_EQ(owbctl({"create", "--empty", db}).status, 0);
    const Outcome o = owbctl({"sql", db, "--table"},
                             "CREATE TABLE t (id int, s nvarchar(20), n numeric(10,2))\nGO\n"
                             "INSERT INTO t VALUES (1, N'½ day', 1.5), (20, NULL, NULL) UPDATE t "
                             "SET n = 2 WHERE id = 1\n"
                             "GO\n"
                             "SELECT id, s, n, id FROM t ORDER BY id PRINT 'said'\nGO\n"
                             "SET NOCOUNT ON DELETE FROM t");
    EXPECT_EQ(o.err, "said\n");
    EXPECT_EQ(o.out,
              "Commands completed successfully.\n"
              "(2 rows affected)\n(1 row affected)\n"
              "id  s         n  id\n"
              "--  -----  ----  --\n"
              " 1  ½ day  2.00   1\n"
              "20  NULL   NULL  20\n"
              "\n(2 rows affected)\n"
              "Commands completed successfully.\n");
    const Outcome timed = owbctl({"sql", db, "--time", "-c", "SELECT 1 AS a"});
    EXPECT_EQ(timed.out, "a\n1\n");
    EXPECT_EQ(timed.err.rfind("Time: ", 0), 0u) << timed.err;
}

TEST_F(OwbctlFile, SqlShowsThePlaceOfASyntaxError) {
    ASSERT_EQ(owbctl({"create", "--empty", db}).status, 0);
    struct Case {
        std::string batch, place;
    };
    const std::string far(150, 'x');
    const Case cases[] = {
        {"SELECT 1\n\tFROM N'½' x", "\tFROM N'½' x\n\t     ^\n"},
        {"SELECT '½', FROM t", "SELECT '½', FROM t\n            ^\n"},
        {"SELECT '" + far + "' FROM FROM",
         "..." + std::string(53, 'x') + "' FROM FROM\n" + std::string(63, ' ') + "^\n"},
        {"EXEC('SELECT 1 +')", ""},  // a place in a text that the batch does not show
        {"SELECT 1 / 0", ""},
    };
    for (const Case& c : cases) {
        const Outcome o = owbctl({"sql", db, "-c", c.batch});
        EXPECT_EQ(o.status, 1);
        const size_t message = o.err.find("\nMsg ");
        ASSERT_NE(message, std::string::npos) << o.err;
        EXPECT_EQ(o.err.substr(o.err.find('\n', message + 1) + 1), c.place);
    }
}

TEST_F(OwbctlFile, BackupCopiesAFileInUse) {
    ASSERT_EQ(owbctl({"create", "--empty", db}).status, 0);
    Connection connection;
    connection.Open("Provider=OWBEmbedded;Data Source=" + db);
    connection.Execute("CREATE TABLE t (id int PRIMARY KEY, s varchar(10))");
    connection.Execute("INSERT INTO t VALUES (1, 'kept')");
    connection.BeginTrans();
    connection.Execute("INSERT INTO t VALUES (2, 'open')");
    const std::string copy = dir.file("copy.owb");
    const Outcome o = owbctl({"backup", db, copy});
    EXPECT_EQ(o.status, 0) << o.err;
    EXPECT_EQ(owbctl({"backup", db, copy}).status, 1) << "an existing file is left alone";
    connection.RollbackTrans();
    connection.Execute("DELETE FROM t");
    EXPECT_EQ(owbctl({"sql", copy, "-c", "SELECT id, s FROM t"}).out, "id,s\n1,kept\n");
    EXPECT_EQ(owbctl({"check", copy}).out.find("not sound"), std::string::npos);
    EXPECT_EQ(owbctl({"backup", db, dir.file("no/folder/x.owb")}).status, 1);
}

TEST_F(OwbctlFile, CreateRefusesAnExistingFileAndCheckFindsItSound) {
    ASSERT_EQ(owbctl({"create", db}).status, 0);
    EXPECT_EQ(owbctl({"create", db}).status, 1);
    const Outcome o = owbctl({"check", db});
    EXPECT_EQ(o.out, "sound\n");
    EXPECT_EQ(o.status, 0);
}

TEST_F(OwbctlFile, CheckNamesWhatIsNotSound) {
    ASSERT_EQ(owbctl({"create", db}).status, 0);
    ASSERT_EQ(
        owbctl({"sql", db, "-c",
                "INSERT INTO LEV_MONTHDET (EMPID, EMPDETID, MONTHYEAR, EDITMODEYN) VALUES "
                "(1, 1, 24170, 1) INSERT INTO LEV_DETAILS (EMPID, EMPDETID, LEVID, LEAVEDATE, "
                "FIRSTHALFYN, SECONDHALFYN) VALUES (1, 1, 99, '2014-02-03', 1, 0)"})
            .status,
        0);
    const Outcome o = owbctl({"check", db});
    EXPECT_EQ(o.status, 1);
    for (const char* line : {"LEV_MONTHDET: 1 month rows without a salary row",
                             "LEV_DETAILS: 1 leave rows of no leave",
                             "LEV_DETAILS: 1 leave rows of a version that the employee has not",
                             "LEV_MONTHDET: 1 month rows that await recalculation", "not sound"})
        EXPECT_NE(o.out.find(line), std::string::npos) << o.out;

    const Outcome json = owbctl({"check", db, "--json"});
    EXPECT_EQ(json.status, 1);
    const auto told = nlohmann::json::parse(json.out);
    EXPECT_EQ(told.at("sound"), false);
    EXPECT_EQ(static_cast<std::ptrdiff_t>(told.at("findings").size()),
              std::count(o.out.begin(), o.out.end(), '\n') - 1);
    size_t faults = 0;
    for (const auto& finding : told.at("findings")) faults += finding.at("fault").get<bool>();
    EXPECT_EQ(faults, told.at("findings").size() - 1) << "what awaits recalculation is none";
}

TEST_F(OwbctlFile, CheckFindsADamagedFile) {
    ASSERT_EQ(owbctl({"create", db}).status, 0);
    {
        std::fstream file(db, std::ios::in | std::ios::out | std::ios::binary);
        const auto size = static_cast<std::streamoff>(std::filesystem::file_size(db));
        for (std::streamoff at = size / 2; at < size; at += 4096) {
            file.seekp(at);
            file << std::string(600, '\x5a');
        }
    }
    EXPECT_EQ(owbctl({"check", db}).status, 1);
}

TEST_F(OwbctlFile, ScreenRunsAScriptOnTheScreenOfTheMenu) {
    ASSERT_EQ(owbctl({"create", db}).status, 0);
    ASSERT_EQ(
        owbctl({"sql", db, "-c",
                "INSERT INTO SEC_USERLIST (USERID, USERNAME, READONLYYN) VALUES (2, 'AUDITOR', "
                "1)"})
            .status,
        0);
    const std::string opened =
        "open: frmConfiguring|Initializing Advanced Leave Management\nclose: frmConfiguring\n";
    const std::string screen = "open: modHolidayWeekly|Weekly Holiday\n";
    std::ofstream(dir.file("script")) << "# nothing chosen\nclick cmdSave\nclose\n";
    const Outcome o = owbctl({"screen", db, "1511", "0", "-f", dir.file("script")});
    EXPECT_EQ(o.status, 0);
    EXPECT_EQ(o.err, "");
    EXPECT_EQ(o.out, opened + screen +
                         "box: information|Orvane Wagebook|Select effective Month/Year.|OK|OK\n"
                         "close: modHolidayWeekly\n");

    const Outcome denied =
        owbctl({"screen", db, "1511", "0", "--user", "AUDITOR"}, "click cmdSave");
    EXPECT_EQ(denied.status, 1);
    EXPECT_EQ(denied.err, "error: line 1: cmdSave takes no click now\n");

    const Outcome none = owbctl({"screen", db, "1513", "0"});
    EXPECT_EQ(none.out, opened + "box: information|Orvane Wagebook|Invalid form reference|OK|OK\n");
    EXPECT_EQ(owbctl({"screen", db, "1511", "0", "-f", dir.file("none")}).status, 1);
}

TEST_F(OwbctlFile, ScreenTakesClockSettingsAndFolder) {
    ASSERT_EQ(owbctl({"create", db}).status, 0);
    owbctl({"sql", db, "-c",
            "INSERT INTO SEC_USERLIST (USERID, USERNAME, READONLYYN) VALUES (2, 'AUDITOR', 1)"});
    const std::string calendar = "key txtHDate F2\nclick lbltoady\nshow txtHDate";
    const struct {
        std::vector<std::string> options;
        std::string script, out, err;
    } cases[] = {
        {{"--clock", "29/02/2024"}, calendar, "txtHDate: 29/02/2024", ""},
        {{"--clock", "2031-12-05"}, calendar, "txtHDate: 05/12/2031", ""},
        {{"--clock", "31/02/2024x"}, calendar, "", "\"31/02/2024x\" is no date"},
        {{"--setting", "Settings.User=AUDITOR", "--setting", "LeaveMgmt.A.B=c=d"},
         "click cmdSave",
         "open: modHolidayList|",
         "cmdSave takes no click now"},
        {{"--setting", "User"}, "", "", "\"User\" is no setting (SECTION.KEY=VALUE)"},
        {{"--setting", "=A.B"}, "", "", "\"=A.B\" is no setting (SECTION.KEY=VALUE)"},
        {{"--folder", dir.file("none")}, "", "", "there is no folder"},
        {{"--folder", dir.file("")}, "caption", "caption: Holiday List", ""},
    };
    for (const auto& c : cases) {
        std::vector<std::string> arguments = {"screen"};
        arguments.insert(arguments.end(), c.options.begin(), c.options.end());
        for (const std::string& rest : {db, std::string("1512"), std::string("0")})
            arguments.push_back(rest);
        const Outcome o = owbctl(arguments, c.script);
        EXPECT_EQ(o.status, c.err.empty() ? 0 : 1) << c.options[1];
        EXPECT_NE(o.out.find(c.out), std::string::npos) << c.options[1] << o.out << o.err;
        EXPECT_NE(o.err.find(c.err), std::string::npos) << c.options[1] << o.err;
    }
}

TEST_F(OwbctlFile, JsonHasTheFiguresWithTheirTypes) {
    ASSERT_EQ(owbctl({"create", "--empty", db}).status, 0);
    const struct {
        const char* batch;
        const char* json;
    } cases[] = {
        {"SELECT 1 AS a, 'x\"y' AS b, NULL AS c WHERE 1 = 2", "[]\n"},
        {"SELECT -7 AS i, CAST(1 AS bit) AS b, CAST(NULL AS bit) AS n, 1.50 AS d, 1e300 AS f "
         "SELECT "
         "CAST(0 AS bit) AS b",
         "[\n{\"i\":-7,\"b\":true,\"n\":null,\"d\":1.5,\"f\":1e+300}\n]\n\n[\n{\"b\":false}\n]\n"},
        {"SELECT 'a\"b\\\n' AS s, N'½' AS u, CAST('2024-02-29' AS datetime) AS d, '12' AS t",
         "[\n{\"s\":\"a\\\"b\\\\\\n\",\"u\":\"½\",\"d\":\"2024-02-29\",\"t\":\"12\"}\n]\n"},
        {"SELECT CAST(12345678901234567.89 AS numeric(19, 2)) AS long, 9007199254740993 AS whole",
         "[\n{\"long\":\"12345678901234567.89\",\"whole\":9007199254740993}\n]\n"},
        {"SELECT 1, 2 AS a, 3 AS a SELECT 4 AS b",
         "[\n{\"#1\":1,\"a\":2,\"a#3\":3}\n]\n\n[\n{\"b\":4}\n]\n"}};
    for (const auto& c : cases)
        EXPECT_EQ(owbctl({"sql", db, "--json", "-c", c.batch}).out, c.json) << c.batch;
}

TEST_F(OwbctlFile, ASmallCompanyFromMakingToRegister) {
    ASSERT_EQ(owbctl({"sample", db, "--employees", "6", "--from", "Apr/2024", "--months", "2"}).err,
              "");
    const Outcome processed = owbctl({"process", db});
    EXPECT_EQ(processed.status, 0) << processed.err;
    const Outcome again = owbctl({"process", db, "--menu", "1601"});
    EXPECT_EQ(again.status, 0) << again.err;
    const Outcome register_ = owbctl({"register", db, "--month", "May/2024"});
    EXPECT_NE(register_.out.find("Register of May/2024"), std::string::npos) << register_.err;
    EXPECT_NE(register_.out.find("Pay Days"), std::string::npos);
    EXPECT_EQ(register_.out.find('*'), std::string::npos) << register_.out;
    const auto json =
        nlohmann::json::parse(owbctl({"register", db, "--month", "May/2024", "--json"}).out);
    ASSERT_EQ(json.size(), 6U);
    EXPECT_EQ(json[0].at("month"), "May/2024");
    EXPECT_EQ(json[0].at("employee"), 1);
    EXPECT_TRUE(json[0].at("payDays").is_number());
    EXPECT_EQ(json[0].at("awaitsRecalculation"), false);
    EXPECT_EQ(owbctl({"check", db}).out.find("not sound"), std::string::npos);
}

// What explain tells must be what the passes wrote, for every row of a small company.
TEST_F(OwbctlFile, ExplainTellsWhatTheLedgerHolds) {
    ASSERT_EQ(
        owbctl({"sample", db, "--employees", "8", "--from", "Apr/2024", "--months", "14"}).err, "");
    ASSERT_EQ(owbctl({"process", db}).status, 0);
    const std::string everything = "SELECT * FROM LEV_ALLOTMENT ORDER BY ALLOTID";
    const std::string before = owbctl({"sql", db, "-c", everything}).out;

    std::istringstream rows(
        owbctl({"sql", db, "-c",
                "SELECT LA.EMPID, LEVSHORT, [dbo].FnStrMonthName([dbo].FnLngMonthYear(ALLOTFROM, "
                "ALLOTTO)), CAST(ALLOTLEV AS float), CAST(COLEV AS float), LA.LEVID FROM "
                "LEV_ALLOTMENT LA, ATT_DEFINITION AD WHERE AD.LEVID = LA.LEVID AND LA.EMPID IN (3, "
                "6) ORDER BY ALLOTID"})
            .out);
    std::string row;
    std::getline(rows, row);
    size_t explained = 0;
    for (; std::getline(rows, row); ++explained) {
        std::istringstream fields(row);
        std::string employee, leave, month, credit, carried;
        for (std::string* field : {&employee, &leave, &month, &credit, &carried})
            std::getline(fields, *field, ',');
        const Outcome o = owbctl({"explain", db, employee, leave, month});
        EXPECT_EQ(o.status, 0) << o.err;
        if (leave != "CO") {
            EXPECT_NE(o.out.find(" is " + formatNumber(textToNumber(credit), "0.00") + "\n"),
                      std::string::npos)
                << row << "\n"
                << o.out;
        }
        const bool first = o.out.find("no row ends the day before: opening") != std::string::npos;
        if (!first) {
            EXPECT_NE(o.out.find("result           " + carried + " brought forward"),
                      std::string::npos)
                << row << "\n"
                << o.out;
        }
    }
    EXPECT_GT(explained, 50U);
    const auto json =
        nlohmann::json::parse(owbctl({"explain", db, "6", "EL", "May/2024", "--json"}).out);
    ASSERT_EQ(json.size(), 1U);
    EXPECT_EQ(json[0].at("from"), "2024-05-01");
    EXPECT_EQ(json[0].at("steps").at(0).at("what"), "setting");
    EXPECT_TRUE(json[0].at("ledger").at("broughtForward").is_number());
    EXPECT_EQ(owbctl({"balance", db, "6", "7", "2024-04-10", "--json"}).out,
              "{\"employee\":6,\"leave\":7,\"date\":\"2024-04-10\",\"balance\":" +
                  numberText(textToNumber(owbctl({"balance", db, "6", "7", "2024-04-10"}).out)) +
                  "}\n");
    EXPECT_EQ(owbctl({"sql", db, "-c", everything}).out, before) << "nothing is written";

    EXPECT_EQ(owbctl({"explain", db, "6", "7", "May/2024"}).out,
              owbctl({"explain", db, "6", "el", "May/2024"}).out);
    EXPECT_EQ(owbctl({"explain", db, "3", "LOP", "May/2024"}).err,
              "error: the ledger holds no such row\n");
    EXPECT_EQ(owbctl({"balance", db, "6", "5", "2024-13-10"}).status, 1);
    EXPECT_EQ(owbctl({"balance", db, "6", "7", "2024-04-10"}).out,
              owbctl({"sql", db, "-c",
                      "SELECT COLEV FROM LEV_ALLOTMENT WHERE EMPID = 6 AND LEVID = 7 AND ALLOTFROM "
                      "= '2024-05-01'"})
                  .out.substr(std::string("COLEV\n").size()))
        << "what May opens with";
}

TEST_F(OwbctlFile, CheckFollowsTheLedgersLinks) {
    ASSERT_EQ(owbctl({"sample", db, "--employees", "4", "--from", "Apr/2024", "--months", "3"}).err,
              "");
    ASSERT_EQ(owbctl({"process", db}).status, 0);
    EXPECT_EQ(owbctl({"check", db}).out, "sound\n");
    owbctl(
        {"sql", db, "-c",
         "UPDATE LEV_ALLOTMENT SET COLEV = COLEV + 1 WHERE EMPID = 1 AND LEVID = 5 AND ALLOTFROM "
         "= '2024-05-01' UPDATE LEV_ALLOTMENT SET ALLOTTO = ALLOTTO + 1, LAPSE = NULL WHERE EMPID "
         "= 2 AND LEVID = 6 AND ALLOTFROM = '2024-05-01'"});
    const Outcome o = owbctl({"check", db});
    for (const char* line : {"LEV_ALLOTMENT: 2 ledger rows that do not open with",
                             "LEV_ALLOTMENT: 1 ledger rows that begin within another",
                             "LEV_ALLOTMENT: 1 ledger rows without figures", "not sound"})
        EXPECT_NE(o.out.find(line), std::string::npos) << line << "\n" << o.out;
    std::string named;
    const auto told = nlohmann::json::parse(owbctl({"check", db, "--json"}).out);
    for (const auto& finding : told.at("findings"))
        if (finding.contains("employees")) named = finding.at("employees").dump();
    EXPECT_NE(o.out.find("employees 2\n"), std::string::npos) << o.out;
    EXPECT_EQ(named, "[2]");
}

}  // namespace
}  // namespace owb::ctl
