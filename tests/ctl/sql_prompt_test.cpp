// The interactive mode of owbctl sql: when a batch runs, what Tab offers, and a session typed at a
// terminal.
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <iostream>

#include "ctl/sql_prompt.h"
#include "db/connection.h"
#include "run_owbctl.h"
#include "support/temp_dir.h"

namespace owb::ctl {
namespace {

TEST(SqlPrompt, ASemicolonEndsABatchWhereItCan) {
    const char* ends[] = {"SELECT 1;",
                          "SELECT 1; -- so\n",
                          "SELECT ';' /* ; */ ;\n",
                          "WHILE 1=1 BEGIN BREAK; END;",
                          "BEGIN TRAN;",
                          "SELECT CASE WHEN 1=1 THEN 2 END;",
                          "CREATE TABLE t (a int);",
                          "SELECT 'it''s' AS [begin];"};
    for (const char* text : ends) EXPECT_TRUE(endsBatch(text)) << text;
    const char* goesOn[] = {"SELECT 1",
                            "SELECT ';",
                            "SELECT 1 -- ;",
                            "SELECT 1 /* ;",
                            "WHILE 1=1 BEGIN BREAK;",
                            "SELECT [a;",
                            "CREATE PROCEDURE p AS SELECT 1;",
                            "create or alter function f() returns int as begin return 1; end;",
                            "SELECT CASE WHEN 1=1 THEN 2;"};
    for (const char* text : goesOn) EXPECT_FALSE(endsBatch(text)) << text;
}

TEST(SqlPrompt, HelpOfTheServerRunsAtOnce) {
    const struct {
        const char* line;
        bool runs;
    } cases[] = {{"sp_help", true},      {"  SP_HELP t", true},   {"sp_help;", true},
                 {"sp_helptext", false}, {"sp_helptext v", true}, {"sp_helptrigger t", true},
                 {"sp_helper", false},   {"SELECT 1", false},     {"", false},
                 {"exec sp_help", false}};
    for (const auto& c : cases) EXPECT_EQ(runsAtOnce(c.line), c.runs) << c.line;
}

struct Prompt : testing::Test {
    Prompt() { owbctl({"create", "--empty", db}); }
    test::TempDir dir;
    std::string db = dir.file("x.owb");
};

TEST_F(Prompt, TabOffersNamesAndWords) {
    Connection connection;
    connection.Open("Provider=OWBEmbedded;Data Source=" + db);
    connection.Execute("CREATE TABLE Staff (StaffName varchar(20), Age int)");
    const struct {
        const char* beginning;
        std::vector<std::string> words;
    } cases[] = {{"sta", {"Staff", "StaffName"}},
                 {"STAFFN", {"StaffName"}},
                 {"ag", {"Age"}},
                 {"sele", {"SELECT"}},
                 {"sp_helpt", {"sp_helptext", "sp_helptrigger"}},
                 {"zz", {}},
                 {"", {}}};
    for (const auto& c : cases) EXPECT_EQ(sqlWordsFrom(connection, c.beginning), c.words);
}

TEST_F(Prompt, VerticalPrintsALineForEachColumn) {
    const Outcome o = owbctl({"sql", db, "--vertical", "-c",
                              "SELECT 1 AS a, N'½' AS long, NULL UNION SELECT 2, 'x', 3"});
    EXPECT_EQ(o.out,
              "-- row 1\na                 1\nlong              ½\n(No column name)  NULL\n"
              "-- row 2\na                 2\nlong              x\n(No column name)  3\n"
              "\n(2 rows affected)\n");
    EXPECT_EQ(owbctl({"sql", db, "--vertical", "--json"}).status, 1);
}

// A terminal with owbctl at it: what is typed, and all that stands on it after a while.
class Terminal {
  public:
    explicit Terminal(const std::string& db, const std::string& state) {
        child_ = forkpty(&master_, nullptr, nullptr, nullptr);
        if (child_ != 0) return;
        setenv("XDG_STATE_HOME", state.c_str(), 1);
        setenv("TERM", "dumb", 1);
        Streams io{std::cin, std::cout, std::cerr, true, true};
        _exit(runOwbctl({"sql", db}, io));
    }
    ~Terminal() {
        close(master_);
        if (child_ > 0) waitpid(child_, nullptr, 0);
    }
    void type(const std::string& keys) {
        EXPECT_EQ(write(master_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    }
    // Waits for a text; false when it does not come.
    bool shows(const std::string& text) {
        pollfd wait{master_, POLLIN, 0};
        char buffer[4096];
        while (screen_.find(text) == std::string::npos) {
            if (poll(&wait, 1, 20000) != 1) return false;
            const ssize_t got = read(master_, buffer, sizeof buffer);
            if (got <= 0) return false;
            screen_.append(buffer, static_cast<size_t>(got));
        }
        screen_.erase(0, screen_.find(text) + text.size());
        return true;
    }
    const std::string& screen() const { return screen_; }

  private:
    int master_ = -1;
    pid_t child_ = -1;
    std::string screen_;
};

TEST_F(Prompt, ASessionAtATerminal) {
    owbctl({"sql", db, "-c", "CREATE TABLE Staff (StaffName varchar(20), Age int)"});
    Terminal terminal(db, dir.file("state"));
    const struct {
        const char *keys, *shown;
    } steps[] = {
        {"", "1> "},
        {"sp_help Staff\r", "StaffName"},
        {"\\x\r", "A line for each column."},
        {"select COUNT(*) AS people from Sta\t;\r", "people  0"},
        {"begin tran;\r", "Commands completed successfully."},
        {"exit\r", "The open transaction is rolled back."},
    };
    for (const auto& step : steps) {
        terminal.type(step.keys);
        EXPECT_TRUE(terminal.shows(step.shown)) << step.keys << terminal.screen();
    }
}

}  // namespace
}  // namespace owb::ctl
