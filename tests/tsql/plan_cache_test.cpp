// One plan serves all texts of a shape. These cases are those in which serving the wrong plan, or
// a stale one, would give a wrong answer rather than an error.
#include <gtest/gtest.h>

#include "support/temp_dir.h"
#include "tsql/engine.h"

namespace owb::tsql {
namespace {

std::string answer(Engine& engine, const std::string& batch) {
    const BatchResult r = engine.run(batch);
    if (!r.errors.empty()) return "error " + std::to_string(r.errors[0].number);
    std::string out;
    for (const ResultSet& set : r.sets)
        for (size_t i = 0; i < set.cells.size(); ++i)
            out += (out.empty() ? "" : ",") + set.cells[i].toText();
    return out;
}

TEST(PlanCache, LiteralsOfOneShape) {
    auto engine = Engine::open(":memory:", {});
    engine->run("CREATE TABLE t(id int, n numeric(9,2), s varchar(3), d datetime)");
    engine->run("INSERT INTO t VALUES(1, 1.5, 'a', '2024-01-05')");
    struct Case {
        const char* batch;
        const char* expected;
    };
    // Each batch has the shape of the one before it, or nearly.
    const Case cases[] = {
        {"SELECT 7 / 2.0", "3.500000"},
        {"SELECT 700 / 2.0", "350.000000"},
        {"SELECT 7 / 2.00", "3.500000"},
        {"SELECT 1 WHERE 1.5 = 1.50", "1"},
        {"SELECT 1 WHERE 1.5 = 1.505", ""},
        {"SELECT TOP 1 name FROM sys.objects ORDER BY name", "t"},
        {"SELECT TOP 0 name FROM sys.objects ORDER BY name", ""},
        {"SELECT id, n FROM t ORDER BY 1", "1,1.50"},
        {"SELECT id, n FROM t ORDER BY 3", "error 108"},
        {"SELECT CONVERT(CHAR(11), d, 106) FROM t", "05 Jan 2024"},
        {"SELECT CONVERT(CHAR(11), d, 103) FROM t", "05/01/2024 "},
        {"UPDATE t SET n = 2.25 SELECT n FROM t", "2.25"},
        {"UPDATE t SET n = 12.3456 SELECT n FROM t", "12.35"},
        {"UPDATE t SET n = -0.5 SELECT n FROM t", "-0.50"},
        {"UPDATE t SET n = -0.125 SELECT n FROM t", "-0.13"},
        {"UPDATE t SET n = 12345678.5 SELECT n FROM t", "error 8115"},
        {"UPDATE t SET s = 'a' + 'b' SELECT s FROM t", "ab"},
        {"UPDATE t SET s = 'a' + 'bcd' SELECT s FROM t", "error 2628"},
        {"SELECT id % 2 FROM t GROUP BY id % 2", "1"},
        {"SELECT id % 3 FROM t GROUP BY id % 2", "error 8120"},
        {"SELECT ISNULL(NULL, 'abc')", "abc"},
        {"SELECT ISNULL(NULL, 'abcdef')", "abcdef"},
        {"SELECT CASE WHEN 1 = 1 THEN 'a' ELSE 'bcd' END", "a"},
        {"SELECT CASE WHEN 1 = 2 THEN 'a' ELSE 'bcdefg' END", "bcdefg"},
        {"IF 1 = 2 SELECT TOP 5 id FROM t ELSE SELECT 'no'", "no"},
        {"IF 1 = 1 SELECT TOP 0 id FROM t ELSE SELECT 'no'", ""},
    };
    for (const Case& c : cases) EXPECT_EQ(answer(*engine, c.batch), c.expected) << c.batch;
}

TEST(PlanCache, AChangedObjectIsBoundAnew) {
    auto engine = Engine::open(":memory:", {});
    engine->run("CREATE TABLE t(a int)");
    engine->run("INSERT INTO t VALUES(3)");
    engine->run("CREATE FUNCTION dbo.f() RETURNS int AS BEGIN RETURN 1 END");
    engine->run("CREATE VIEW v AS SELECT a FROM t");
    EXPECT_EQ(answer(*engine, "SELECT a / 2 FROM t"), "1");
    EXPECT_EQ(answer(*engine, "SELECT dbo.f() / 2"), "0");
    EXPECT_EQ(answer(*engine, "SELECT * FROM v"), "3");
    engine->run("DROP TABLE t CREATE TABLE t(a numeric(5,2)) INSERT INTO t VALUES(3)");
    engine->run("DROP FUNCTION dbo.f");
    EXPECT_EQ(answer(*engine, "SELECT dbo.f() / 2"), "error 4121");
    engine->run("CREATE FUNCTION dbo.f() RETURNS numeric(5,1) AS BEGIN RETURN 1 END");
    EXPECT_EQ(answer(*engine, "SELECT a / 2 FROM t"), "1.500000");
    EXPECT_EQ(answer(*engine, "SELECT dbo.f() / 2"), "0.500000");
    EXPECT_EQ(answer(*engine, "SELECT * FROM v"), "3.00");
    // A temporary table of the same name and another make.
    EXPECT_EQ(answer(*engine, "SELECT 5 AS x INTO #w SELECT x / 2 FROM #w DROP TABLE #w"), "2");
    EXPECT_EQ(answer(*engine, "SELECT 5.0 AS x INTO #w SELECT x / 2 FROM #w DROP TABLE #w"),
              "2.500000");
    // Rolled back definitions are forgotten.
    engine->begin();
    engine->run("ALTER TABLE t ADD b int");
    EXPECT_EQ(answer(*engine, "SELECT b FROM t"), "");
    engine->rollback();
    EXPECT_EQ(answer(*engine, "SELECT b FROM t"), "error 207");
}

TEST(PlanCache, AnotherConnectionsChangesAreSeen) {
    test::TempDir dir;
    OpenOptions create;
    create.create = true;
    auto a = Engine::open(dir.file("two.owb"), create);
    a->run("CREATE TABLE t(a int)");
    a->run("INSERT INTO t VALUES(3)");
    auto b = Engine::open(dir.file("two.owb"), {});
    EXPECT_EQ(answer(*a, "SELECT a / 2 FROM t"), "1");
    EXPECT_EQ(answer(*b, "SELECT a / 2 FROM t"), "1");
    b->run("DROP TABLE t CREATE TABLE t(a float) INSERT INTO t VALUES(3)");
    EXPECT_EQ(answer(*a, "SELECT a / 2 FROM t"), "1.5");
    b->run("CREATE FUNCTION dbo.f() RETURNS int AS BEGIN RETURN 1 END");
    EXPECT_EQ(answer(*a, "SELECT dbo.f()"), "1");
    b->run("DROP FUNCTION dbo.f");
    EXPECT_EQ(answer(*a, "SELECT dbo.f()"), "error 4121");
}

}  // namespace
}  // namespace owb::tsql
