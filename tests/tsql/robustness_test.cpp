// Text that no one meant as T-SQL, files that are no database, and statements that never end:
// each must come back as an error, and leave the engine able to go on.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <thread>

#include "support/temp_dir.h"
#include "tsql/engine.h"

namespace owb::tsql {
namespace {

std::unique_ptr<Engine> memory() {
    return Engine::open(":memory:", {});
}

int firstError(Engine& engine, const std::string& batch) {
    const BatchResult r = engine.run(batch);
    return r.errors.empty() ? 0 : r.errors[0].number;
}

std::string repeated(const std::string& text, int n) {
    std::string out;
    for (int i = 0; i < n; ++i) out += text;
    return out;
}

// Common tables c0, c1 ...: each is `step` with the number before its own for # and its own for @.
std::string doubling(int n, const std::string& step) {
    std::string text = "WITH c0 AS (SELECT 1 AS a)";
    for (int i = 1; i < n; ++i) {
        text += ", c" + std::to_string(i) + " AS (";
        for (const char c : step)
            text += c == '#'   ? std::to_string(i - 1)
                    : c == '@' ? std::to_string(i)
                               : std::string(1, c);
        text += ")";
    }
    return text + " SELECT a FROM c" + std::to_string(n - 1);
}

TEST(Robustness, BadTextEndsInAnError) {
    struct Case {
        const char* what;
        std::string text;
        int number;  // 0: any error
    };
    const Case cases[] = {
        {"unclosed quote", "SELECT 'abc", 105},
        {"unclosed bracket", "SELECT [abc", 105},
        {"unclosed comment", "SELECT 1 /* /* */", 113},
        {"invalid UTF-8 in a text", "SELECT '\xFF\xFE'", 102},
        {"embedded NUL", std::string("SELECT 1\0 + 1", 13), 102},
        {"lone operator", "SELECT 1 +", 102},
        {"no number of rows", "SELECT SUM(1) OVER (ORDER BY a ROWS BETWEEN 1 PRECEDING AND x ROW)",
         102},
        {"keyword for a name", "SELECT 1 FROM WHERE", 156},
        {"deep parentheses", "SELECT " + repeated("(", 5000) + "1" + repeated(")", 5000), 8623},
        {"deep NOT", "SELECT 1 WHERE " + repeated("NOT ", 5000) + "1=1", 8623},
        {"deep BEGIN", repeated("BEGIN ", 3000) + "SELECT 1" + repeated(" END", 3000), 8623},
        {"deep subqueries", "SELECT " + repeated("(SELECT ", 3000) + "1" + repeated(")", 3000),
         8623},
        {"deep CASE",
         "SELECT " + repeated("CASE WHEN 1=1 THEN ", 3000) + "1" + repeated(" END", 3000), 8623},
        {"deep derived tables",
         "SELECT 1 FROM " + repeated("(SELECT * FROM ", 10000) + "t" + repeated(") x", 10000),
         8623},
        {"deep FROM", "SELECT * FROM " + repeated("(", 100000), 8623},
        {"deep common tables",
         repeated("WITH a AS (", 10000) + "SELECT 1 AS a" + repeated(") SELECT a FROM a", 10000),
         8623},
        {"deep APPLY",
         "SELECT 1 FROM t CROSS APPLY " + repeated("(SELECT 1 AS a FROM t CROSS APPLY ", 10000) +
             "t" + repeated(") x", 10000),
         8623},
        {"deep unions", repeated("(", 100000) + "SELECT 1" + repeated(")", 100000), 8623},
        {"a long chain of UNION", "SELECT 1" + repeated(" UNION ALL SELECT 1", 10000), 8623},
        {"a long chain of joins", "SELECT 1 FROM t" + repeated(" CROSS JOIN t", 10000), 106},
        {"a chain of common tables", doubling(10000, "SELECT a FROM c#"), 8623},
        {"a doubling chain", doubling(22, "SELECT x.a FROM c# x, c# y"), 8623},
        {"a long doubling chain", doubling(60, "SELECT x.a FROM c# x, c# y"), 8623},
        {"a chain that widens",
         doubling(1000, "SELECT x.*, y.a AS b@ FROM c# x, (SELECT 1 AS a) y"), 8623},
        {"an operand that is written twice", "SELECT 1" + repeated(" ^ 1", 60), 8623},
        {"an operand that is read twice",
         "SELECT " + repeated("NULLIF(", 40) + "1" + repeated(", 2)", 40), 8623},
        {"too many columns", "SELECT 1" + repeated(", 1", 5000), 8623},
        {"a number too long", "SELECT 1" + repeated("0", 60), 0},
        {"numeric of 39 digits", "DECLARE @x numeric(39,2)", 2750},
        {"a name of 200 characters", "SELECT 1 AS [" + repeated("x", 200) + "]", 103},
        {"variable unknown", "SELECT @nope", 137},
        {"unknown built-in", "SELECT FROBNICATE(1)", 195},
    };
    auto engine = memory();
    for (const Case& c : cases) {
        const int number = firstError(*engine, c.text);
        if (c.number == 0)
            EXPECT_NE(number, 0) << c.what;
        else
            EXPECT_EQ(number, c.number) << c.what;
        EXPECT_EQ(firstError(*engine, "SELECT 1"), 0) << "after " << c.what;
    }
    EXPECT_EQ(firstError(*engine, "DECLARE @n numeric(18,2) SET @n = 1 SELECT @n" +
                                      repeated(" + @n - 0.5", 100)),
              0);
    // Long chains are no deep nesting; those beyond SQLite's own limit end in an error too.
    EXPECT_EQ(firstError(*engine, "SELECT 1" + repeated(" + 1", 20000)), 8623);
    EXPECT_EQ(firstError(*engine, "SELECT 1" + repeated(" + 1", 300)), 0);
    EXPECT_EQ(firstError(*engine, "SELECT 1 WHERE 1=1" + repeated(" AND 1=1", 300)), 0);
}

TEST(Robustness, ASyntaxErrorTellsItsPlace) {
    const BatchResult r = memory()->run("SELECT 1\n  FROM (x");
    ASSERT_EQ(r.errors.size(), 1u);
    EXPECT_EQ(r.errors[0].line, 2);
    EXPECT_GT(r.errors[0].column, 0);
}

TEST(Robustness, FilesThatAreNoDatabase) {
    test::TempDir dir;
    const std::string text = dir.file("text.owb"), plain = dir.file("plain.owb"),
                      none = dir.file("none.owb"), good = dir.file("good.owb");
    std::ofstream(text) << repeated("this is no database\n", 200);
    std::ofstream(plain).flush();
    EXPECT_THROW(Engine::open(text, {}), DbError);
    EXPECT_THROW(Engine::open(plain, {}), DbError);
    EXPECT_THROW(Engine::open(none, {}), DbError);
    EXPECT_THROW(Engine::open(dir.file("."), {}), DbError);
    struct stat s;
    EXPECT_NE(stat(none.c_str(), &s), 0) << "opening must not create the file";
    OpenOptions create;
    create.create = true;
    Engine::open(good, create);
    EXPECT_THROW(Engine::open(good, create), DbError) << "an existing file is never overwritten";
    {
        // The format's number stands at byte 60 of the file.
        std::fstream file(good, std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(60);
        file.write("\0\0\0\x63", 4);
    }
    try {
        Engine::open(good, {});
        FAIL() << "a newer format was opened";
    } catch (const DbError& e) {
        EXPECT_NE(std::string(e.what()).find("newer version"), std::string::npos) << e.what();
    }
}

TEST(Robustness, AFileMayHaveAnyName) {
    test::TempDir dir;
    for (const char* name : {"co$2026.owb", "co%.owb", "it's \"one\" #1?.owb"}) {
        OpenOptions create;
        create.create = true;
        auto engine = Engine::open(dir.file(name), create);
        const BatchResult r = engine->run(
            "CREATE TABLE t (s char(5) NOT NULL) INSERT INTO t VALUES ('a'), (LEFT('bcd', 2)) "
            "EXEC sp_getapplock 'x', 'Shared', 'Session' INSERT INTO t VALUES (NULL)");
        ASSERT_EQ(r.errors.size(), 1u) << name << r.errors[0].what();
        EXPECT_EQ(r.errors[0].number, 515) << name;
        EXPECT_NE(std::string(r.errors[0].what()).find(std::string(name).substr(0, 3)),
                  std::string::npos);
    }
}

TEST(Robustness, AReadOnlyDatabaseAnswersAndRefusesToChange) {
    test::TempDir dir;
    const std::string path = dir.file("ro.owb");
    OpenOptions create;
    create.create = true;
    Engine::open(path, create)->run("CREATE TABLE t(a int) INSERT INTO t VALUES(1)");
    OpenOptions readOnly;
    readOnly.readOnly = true;
    auto engine = Engine::open(path, readOnly);
    EXPECT_EQ(engine->run("SELECT a FROM t").sets.at(0).rows, 1u);
    EXPECT_EQ(firstError(*engine, "UPDATE t SET a = 2"), 3906);
    EXPECT_EQ(firstError(*engine, "INSERT INTO t VALUES(1) INSERT INTO t VALUES(2)"), 3906);
}

TEST(Robustness, AnEndlessLoopStopsAtTheTimeOutAndWhenCancelled) {
    auto engine = memory();
    const std::string endless = "DECLARE @i int SET @i = 0 WHILE 1 = 1 SET @i = @i + 1 - 1";
    engine->setCommandTimeout(1);
    EXPECT_EQ(firstError(*engine, endless), -2);
    // A single statement that runs on is stopped in its midst.
    EXPECT_EQ(firstError(*engine,
                         "WITH n AS (SELECT 1 AS i UNION ALL SELECT i FROM n) SELECT COUNT(*) FROM "
                         "n OPTION (MAXRECURSION 0)"),
              -2);
    engine->setCommandTimeout(0);
    std::atomic<bool> ended = false;
    std::thread canceller([&] {
        // One that comes before the batch begins is for nothing.
        while (!ended) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            engine->cancel();
        }
    });
    EXPECT_EQ(firstError(*engine, endless), -1);
    ended = true;
    canceller.join();
    EXPECT_EQ(firstError(*engine, "SELECT 1"), 0);
}

TEST(Robustness, RunawayRecursionEnds) {
    auto engine = memory();
    engine->run("CREATE PROCEDURE again AS EXEC again");
    EXPECT_EQ(firstError(*engine, "EXEC again"), 217);
    engine->run("CREATE FUNCTION dbo.again2(@a int) RETURNS int AS BEGIN RETURN 0 END");
    engine->run(
        "ALTER FUNCTION dbo.again2(@a int) RETURNS int AS BEGIN RETURN dbo.again2(@a + 1) END");
    EXPECT_EQ(firstError(*engine, "SELECT dbo.again2(1)"), 217);
    EXPECT_EQ(firstError(*engine, "SELECT 1"), 0);
}

}  // namespace
}  // namespace owb::tsql
