// Connection::ExecuteAtomic: statements that are done together or not at all.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <functional>

#include "db/connection.h"
#include "support/test_database.h"

namespace owb {
namespace {

int failure(const std::function<void()>& work) {
    try {
        work();
    } catch (const DbError& e) {
        return e.number;
    }
    return 0;
}

std::string rows(test::TestDatabase& db) {
    return db.value(
        "SELECT STRING_AGG(CAST(a AS varchar(9)), ' ') WITHIN GROUP (ORDER BY a) FROM t");
}

const char* const kTable =
    "CREATE TABLE t (a int NOT NULL CONSTRAINT pk PRIMARY KEY) INSERT INTO t VALUES (1)";

TEST(Atomic, AllOrNothing) {
    struct Case {
        const char* text;
        int error;
        const char* left;  // in the table
    };
    const Case cases[] = {
        {"INSERT INTO t VALUES (2) INSERT INTO t VALUES (3)", 0, "1 2 3"},
        {"INSERT INTO t VALUES (2) INSERT INTO t VALUES (1) INSERT INTO t VALUES (3)", 2627, "1"},
        {"INSERT INTO t VALUES (2) INSERT INTO t VALUES (NULL)", 515, "1"},
        {"INSERT INTO t VALUES (2) SELECT 1 / 0", 8134, "1"},
        {"INSERT INTO t VALUES (2) UPDATE nowhere SET a = 1", 208, "1"},
        {"INSERT INTO t VALUES (2) UPDATE t SET b = 1", 207, "1"},
        {"INSERT INTO t VALUES (2) INSERT INTO t VALUES ('x')", 245, "1"},
        {"INSERT INTO t VALUES (2) EXEC nothing", 2812, "1"},
        {"INSERT INTO t VALUES (2) EXEC fails", 2627, "1"},
        {"INSERT INTO t VALUES (2) INSERT INTO guarded VALUES (1)", 50000, "1"},
        {"INSERT INTO t VALUES (2) BEGIN TRY INSERT INTO t VALUES (1) END TRY BEGIN CATCH SELECT 1 "
         "END CATCH INSERT INTO t VALUES (3)",
         3930, "1"},
        {"INSERT INTO t VALUES (2) THROW 50001, 'x', 1", 50001, "1"},
        {"SELECT a INTO #x FROM t INSERT INTO t SELECT a + 1 FROM #x DROP TABLE #x", 0, "1 2"},
        {"SELECT a INTO #x FROM t INSERT INTO t SELECT a + 1 FROM #x INSERT INTO t SELECT a FROM "
         "#x",
         2627, "1"},
        {"SELECT a INTO made FROM t INSERT INTO t VALUES (1)", 2627, "1"},
        {"DECLARE @a int DECLARE c CURSOR LOCAL FOR SELECT a FROM t OPEN c FETCH c INTO @a WHILE "
         "@@FETCH_STATUS = 0 BEGIN INSERT INTO t VALUES (@a + 5) FETCH c INTO @a END CLOSE c "
         "DEALLOCATE c",
         0, "1 6"},
        {"DECLARE @a int DECLARE c CURSOR LOCAL FOR SELECT a FROM t OPEN c FETCH c INTO @a WHILE "
         "@@FETCH_STATUS = 0 BEGIN INSERT INTO t VALUES (@a + 5) INSERT INTO t VALUES (@a) FETCH c "
         "INTO @a END CLOSE c DEALLOCATE c",
         2627, "1"},
        {"WITH n AS (SELECT 7 AS a) INSERT INTO t SELECT a FROM n -- a remark", 0, "1 7"},
        {"adds", 102, "1"},  // a call without EXEC, and no name of a transaction
        {"", 0, "1"},
    };
    test::TestDatabase db(kTable);
    for (const char* setup :
         {"CREATE PROCEDURE fails AS INSERT INTO t VALUES (9) INSERT INTO t VALUES (1)",
          "CREATE PROCEDURE adds AS INSERT INTO t VALUES (20)", "CREATE TABLE guarded (a int)",
          "CREATE TRIGGER tr ON guarded FOR INSERT AS RAISERROR('no', 16, 1) ROLLBACK"})
        db.connection.Execute(setup);
    for (const Case& c : cases) {
        EXPECT_EQ(failure([&] { db.connection.ExecuteAtomic(c.text); }), c.error) << c.text;
        EXPECT_EQ(rows(db), c.left) << c.text;
        EXPECT_EQ(db.value("SELECT @@TRANCOUNT"), "0") << c.text;
        EXPECT_EQ(db.value("SELECT OBJECT_ID('made')"), "") << c.text;
        // A statement that fails alone in the next batch ends nothing but itself.
        EXPECT_EQ(failure([&] {
                      db.connection.Execute(
                          "DELETE FROM t WHERE a > 1 INSERT INTO t VALUES (1) "
                          "INSERT INTO t VALUES (30)");
                  }),
                  2627);
        EXPECT_EQ(rows(db), "1 30") << "after " << c.text;
        db.connection.Execute("DELETE FROM t WHERE a > 1");
    }
}

TEST(Atomic, AnErrorUndoesTheCallersTransactionToo) {
    test::TestDatabase db(kTable);
    Connection& c = db.connection;
    c.BeginTrans();
    c.Execute("INSERT INTO t VALUES (2)");
    c.ExecuteAtomic("INSERT INTO t VALUES (3)");
    EXPECT_EQ(db.value("SELECT @@TRANCOUNT"), "1");
    EXPECT_EQ(failure([&] { c.ExecuteAtomic("INSERT INTO t VALUES (4) SELECT 1 / 0"); }), 8134);
    EXPECT_EQ(db.value("SELECT @@TRANCOUNT"), "0");
    EXPECT_EQ(failure([&] { c.CommitTrans(); }), 3902);
    EXPECT_EQ(rows(db), "1");
    // What is found out before anything runs leaves it.
    c.BeginTrans();
    c.Execute("INSERT INTO t VALUES (2)");
    EXPECT_EQ(failure([&] { c.ExecuteAtomic("INSERT INTO t VALUES (3) SELECT b FROM t"); }), 207);
    EXPECT_EQ(failure([&] { c.ExecuteAtomic("INSERT INTO t VALUES (3) SELEKT 1"); }), 102);
    c.CommitTrans();
    EXPECT_EQ(rows(db), "1 2");
}

// Each reads the sum and writes on; whoever came second would fail, or lose the other's step, if
// its transaction were not for writing from the start.
TEST(Atomic, ProcessesDoNotStandInEachOthersWay) {
    const test::TempDir dir;
    const std::string path = dir.file("shared.owb"), open = "Provider=OWBEmbedded;Data Source=";
    createEmbedded(path);
    {
        Connection c;
        c.Open(open + path);
        c.Execute("CREATE TABLE t (a int) INSERT INTO t VALUES (0)");
    }
    constexpr int kEach = 100;
    pid_t children[3];
    for (pid_t& child : children) {
        child = fork();
        if (child != 0) continue;
        Connection c;
        c.Open(open + path);
        for (int i = 0; i < kEach; ++i)
            if (failure([&] {
                    c.ExecuteAtomic(
                        "DECLARE @a int SELECT @a = a FROM t UPDATE t SET a = @a + 1 "
                        "SELECT a INTO #x FROM t DROP TABLE #x");
                }) != 0)
                _exit(1);
        _exit(0);
    }
    for (const pid_t child : children) {
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    }
    Connection c;
    c.Open(open + path);
    EXPECT_EQ(c.Run("SELECT a FROM t").sets[0].at(0, 0).toInt(), 3 * kEach);
}

}  // namespace
}  // namespace owb
