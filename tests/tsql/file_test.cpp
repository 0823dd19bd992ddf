// What happens to the file itself: a full disk, files and folders that may only be read, and files
// of older and newer formats. An error is told, nothing changes, and the file goes on working.
#include <gtest/gtest.h>

#include <signal.h>
#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <functional>

#include "support/temp_dir.h"
#include "tsql/engine.h"

namespace owb::tsql {
namespace {

std::string createFile(const test::TempDir& dir) {
    const std::string path = dir.file("file.owb");
    OpenOptions create;
    create.create = true;
    auto engine = Engine::open(path, create);
    engine->run("CREATE TABLE t(a int, s varchar(8000))");
    engine->run("INSERT INTO t VALUES(1, 'one')");
    return path;
}

int firstError(Engine& engine, const std::string& batch) {
    const BatchResult r = engine.run(batch);
    return r.errors.empty() ? 0 : r.errors[0].number;
}

int64_t single(Engine& engine, const std::string& sql) {
    const BatchResult r = engine.run(sql);
    return r.errors.empty() && !r.sets.empty() ? r.sets[0].cells.at(0).toInt() : -1;
}

// Runs the checks in a process of its own, whose limits and rights they may change.
void inAnotherProcess(const std::function<void()>& checks) {
    const pid_t child = fork();
    if (child == 0) {
        EXPECT_NO_THROW(checks());
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

void limitFileSize(rlim_t bytes) {
    signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
}

TEST(File, AFullDiskIsToldAndChangesNothing) {
    const test::TempDir dir;
    const std::string path = createFile(dir);
    inAnotherProcess([&] {
        auto engine = Engine::open(path, {});
        struct stat s = {};
        stat((path + "-wal").c_str(), &s);
        const std::string much =
            "SET XACT_ABORT ON BEGIN TRAN DECLARE @i int SET @i = 0 WHILE @i < 200 BEGIN INSERT "
            "INTO t VALUES(@i + 10, REPLICATE('x', 8000)) SET @i = @i + 1 END COMMIT";
        const std::string once =
            "WITH n AS (SELECT 1 AS i UNION ALL SELECT i + 1 FROM n WHERE i < 90) INSERT INTO t "
            "SELECT i + 10, REPLICATE('y', 8000) FROM n";
        limitFileSize(static_cast<rlim_t>(s.st_size) + 100000);
        // A transaction in a batch, a statement alone, and a transaction of the caller's.
        EXPECT_EQ(firstError(*engine, much), 1105);
        EXPECT_EQ(firstError(*engine, once), 1105);
        engine->begin();
        EXPECT_EQ(firstError(*engine, "UPDATE t SET a = 2"), 0);
        EXPECT_EQ(firstError(*engine, once), 0);
        EXPECT_THROW(engine->commit(), DbError);
        EXPECT_NO_THROW(engine->rollback());
        EXPECT_EQ(single(*engine, "SELECT COUNT(*) FROM t"), 1);
        EXPECT_EQ(single(*engine, "SELECT a FROM t"), 1);

        limitFileSize(RLIM_INFINITY);
        EXPECT_EQ(firstError(*engine, much), 0);
        EXPECT_EQ(firstError(*engine, once), 0);
        EXPECT_EQ(single(*engine, "SELECT COUNT(*) FROM t"), 291);
    });
    auto engine = Engine::open(path, {});
    EXPECT_EQ(single(*engine, "SELECT COUNT(*) FROM t"), 291);
    EXPECT_TRUE(engine->checkIntegrity().empty());
}

// What was made in vain is known to be gone: doing it again meets the full disk, not its shadow.
TEST(File, AFullDiskLeavesNoShadowsOfTables) {
    const test::TempDir dir;
    const std::string path = createFile(dir);
    const std::string rows =
        "WITH n AS (SELECT 1 AS i UNION ALL SELECT i + 1 FROM n WHERE i < 90) SELECT i, "
        "CAST(REPLICATE('y', 8000) AS varchar(8000)) AS s INTO u FROM n";
    const std::string batches[] = {
        rows,
        "BEGIN TRAN CREATE TABLE u(i int, s varchar(8000)) " +
            std::string("INSERT INTO u SELECT a, REPLICATE('z', 8000) FROM t "
                        "DECLARE @i int SET @i = 0 WHILE @i < 7 BEGIN INSERT INTO u SELECT "
                        "i, s FROM u SET @i = @i + 1 END COMMIT"),
        "SELECT 1 AS a INTO #x; " + rows, "SET XACT_ABORT ON; BEGIN TRAN; " + rows + " COMMIT"};
    inAnotherProcess([&] {
        auto engine = Engine::open(path, {});
        struct stat s = {};
        stat((path + "-wal").c_str(), &s);
        limitFileSize(static_cast<rlim_t>(s.st_size) + 100000);
        for (const std::string& batch : batches)
            for (int again = 0; again < 2; ++again) {
                EXPECT_EQ(firstError(*engine, batch), 1105) << batch;
                firstError(*engine, "DROP TABLE #x");
                firstError(*engine, "IF OBJECT_ID('u') IS NOT NULL DROP TABLE u");
            }
        limitFileSize(RLIM_INFINITY);
        for (const std::string& batch : batches)
            EXPECT_EQ(firstError(*engine, batch + " DROP TABLE u"), 0) << batch;
    });
    EXPECT_TRUE(Engine::open(path, {})->checkIntegrity().empty());
}

TEST(File, TheLogOfAFileThatWasReadOnlyDoesNotKeepItSo) {
    const test::TempDir dir;
    const std::string path = createFile(dir);
    // Left by a process that was killed.
    inAnotherProcess([&] {
        auto engine = Engine::open(path, {});
        EXPECT_EQ(firstError(*engine, "INSERT INTO t VALUES(2, 'two')"), 0);
        (void)engine.release();
    });
    const std::string side[] = {path + "-wal", path + "-shm"};
    for (const auto& [owned, expected] : {std::pair{false, 3906}, {true, 0}}) {
        for (const std::string& file : {path, side[0], side[1], dir.file("")}) {
            const bool own = owned || (file != side[0] && file != side[1]);
            ASSERT_EQ(chown(file.c_str(), own ? 65534 : 0, 65534), 0) << file;
        }
        for (const std::string& file : side) chmod(file.c_str(), 0444);
        inAnotherProcess([&, expected = expected] {
            if (geteuid() != 0 || setuid(65534) != 0 || access("/", X_OK) != 0) return;
            auto engine = Engine::open(path, {});
            const BatchResult r = engine->run("INSERT INTO t VALUES(3, 'three')");
            EXPECT_EQ(r.errors.empty() ? 0 : r.errors[0].number, expected);
            if (expected != 0) {
                EXPECT_NE(std::string(r.errors.at(0).what()).find("-"), std::string::npos);
            }
            EXPECT_EQ(single(*engine, "SELECT COUNT(*) FROM t"), expected ? 2 : 3);
            (void)engine.release();
        });
    }
}

TEST(File, WhatMayOnlyBeReadIsReadAndNotWritten) {
    struct Case {
        const char* what;
        mode_t file, folder;
    };
    for (const Case& c : {Case{"file", 0444, 0777}, Case{"folder", 0666, 0555},
                          Case{"file and folder", 0444, 0555}}) {
        SCOPED_TRACE(c.what);
        const test::TempDir dir;
        const std::string path = createFile(dir);
        chmod(path.c_str(), c.file);
        chmod(dir.file("").c_str(), c.folder);
        inAnotherProcess([&] {
            // Nothing is forbidden to root.
            if (geteuid() == 0 && (setuid(65534) != 0 || access("/", X_OK) != 0)) return;
            auto engine = Engine::open(path, {});
            EXPECT_EQ(single(*engine, "SELECT COUNT(*) FROM t"), 1);
            EXPECT_EQ(firstError(*engine, "UPDATE t SET a = 2"), 3906);
            EXPECT_EQ(firstError(*engine, "CREATE TABLE u(a int)"), 3906);
            EXPECT_EQ(
                firstError(*engine, "INSERT INTO t VALUES(2, '') INSERT INTO t VALUES(3, '')"),
                3906);
            EXPECT_EQ(firstError(*engine, "CREATE TABLE #u(a int) INSERT INTO #u VALUES(1)"), 0);
            EXPECT_EQ(single(*engine, "SELECT a FROM t"), 1);
        });
        chmod(dir.file("").c_str(), 0700);
        chmod(path.c_str(), 0600);
        auto engine = Engine::open(path, {});
        EXPECT_EQ(single(*engine, "SELECT a FROM t"), 1);
        EXPECT_EQ(firstError(*engine, "UPDATE t SET a = 2"), 0);
    }
}

void sqlite(const std::string& path, const char* sql) {
    sqlite3* db = nullptr;
    sqlite3_open(path.c_str(), &db);
    sqlite3_create_collation(db, "TSQL", SQLITE_UTF8, nullptr,
                             [](void*, int a, const void* x, int b, const void* y) {
                                 return std::string(static_cast<const char*>(x), a)
                                     .compare(std::string(static_cast<const char*>(y), b));
                             });
    char* error = nullptr;
    EXPECT_EQ(sqlite3_exec(db, sql, nullptr, nullptr, &error), SQLITE_OK) << error;
    sqlite3_close(db);
}

// A file as the first format had it.
void makeFirstFormat(const std::string& path) {
    sqlite(path,
           "PRAGMA application_id = 1331118641; PRAGMA user_version = 1; PRAGMA journal_mode = WAL;"
           "CREATE TABLE tsql_meta(name TEXT PRIMARY KEY, value INTEGER) WITHOUT ROWID;"
           "INSERT INTO tsql_meta VALUES('modules', 1);"
           "CREATE TABLE tsql_module(name TEXT PRIMARY KEY, kind INTEGER NOT NULL, source TEXT NOT "
           "NULL, stars TEXT, tbl TEXT, events INTEGER) WITHOUT ROWID;"
           "CREATE TABLE tsql_constraint(tbl TEXT NOT NULL, name TEXT NOT NULL, kind TEXT NOT NULL,"
           " columns TEXT NOT NULL, source TEXT, PRIMARY KEY(tbl, name)) WITHOUT ROWID;"
           "CREATE TABLE tsql_identity(tbl TEXT PRIMARY KEY, seed INTEGER, increment INTEGER, last "
           "INTEGER) WITHOUT ROWID;"
           "CREATE TABLE \"t\" (\"a\" int NOT NULL, \"n\" numeric(18,2));"
           "INSERT INTO t VALUES(1, 250)");
}

TEST(File, AnOlderFormatIsBroughtUpToDate) {
    const test::TempDir dir;
    const std::string path = dir.file("old.owb");
    makeFirstFormat(path);
    {
        OpenOptions readOnly;
        readOnly.readOnly = true;
        EXPECT_THROW(Engine::open(path, readOnly), DbError) << "it cannot be brought up to date";
    }
    // By two processes at once.
    pid_t children[2];
    for (pid_t& child : children) {
        child = fork();
        if (child != 0) continue;
        auto engine = Engine::open(path, {});
        const bool works = firstError(*engine, "SELECT n FROM t CREATE TABLE w" +
                                                   std::to_string(getpid()) + "(a int)") == 0;
        engine.reset();
        _exit(works ? 0 : 1);
    }
    for (const pid_t child : children) {
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    auto engine = Engine::open(path, {});
    EXPECT_EQ(engine->run("SELECT n FROM t").sets.at(0).cells.at(0).toText(), "2.50");
    // What was there before has no date; what was made since has one.
    EXPECT_EQ(single(*engine, "SELECT COUNT(*) FROM sys.tables WHERE create_date IS NULL"), 1);
    EXPECT_EQ(single(*engine, "SELECT COUNT(*) FROM sys.tables WHERE create_date IS NOT NULL"), 2);
    EXPECT_TRUE(engine->checkIntegrity().empty());
}

// A routine whose text is no longer its own is told by its name, and fails as itself alone.
TEST(File, ADamagedRoutineIsNamed) {
    const char* damages[] = {"'CREATE PROCEDURE hurt AS SELEKT 1'",
                             "''",
                             "'SELECT 1'",
                             "'CREATE PROCEDURE other AS SELECT 1'",
                             "'CREATE VIEW hurt AS SELECT 1 AS a'",
                             "substr(source, 1, 20)",
                             "x'00FF00'"};
    for (const char* damage : damages) {
        const test::TempDir dir;
        const std::string path = createFile(dir);
        {
            auto engine = Engine::open(path, {});
            engine->run("CREATE PROCEDURE hurt AS SELECT a FROM t");
            engine->run("CREATE PROCEDURE sound AS SELECT 5");
            engine->run("CREATE VIEW seen AS SELECT a FROM t");
            EXPECT_TRUE(engine->checkIntegrity().empty());
        }
        sqlite(path,
               (std::string("UPDATE tsql_module SET source = ") + damage + " WHERE name = 'hurt'")
                   .c_str());
        auto engine = Engine::open(path, {});
        const auto names = [&](const std::vector<std::string>& problems, const char* name) {
            return problems.size() == 1 && problems[0].find(name) != std::string::npos;
        };
        EXPECT_TRUE(names(engine->checkIntegrity(), "hurt")) << damage;
        const BatchResult r = engine->run("EXEC hurt");
        ASSERT_EQ(r.errors.size(), 1u) << damage;
        EXPECT_NE(std::string(r.errors[0].what()).find("hurt"), std::string::npos) << damage;
        EXPECT_EQ(single(*engine, "EXEC sound"), 5) << damage;
        EXPECT_EQ(firstError(*engine, "ALTER PROCEDURE hurt AS SELECT 1"), 0) << damage;
        EXPECT_TRUE(engine->checkIntegrity().empty()) << damage;
        engine->run("ALTER TABLE t DROP COLUMN a");
        EXPECT_TRUE(names(engine->checkIntegrity(), "seen"));
    }
}

TEST(File, AnUpgradeThatFailsLeavesTheFileAsItWas) {
    const test::TempDir dir;
    const std::string path = dir.file("old.owb");
    makeFirstFormat(path);
    sqlite(path, "CREATE TABLE tsql_created(x)");  // in the way of the second step
    EXPECT_THROW(Engine::open(path, {}), DbError);
    sqlite(path, "DROP TABLE tsql_created");
    auto engine = Engine::open(path, {});
    EXPECT_EQ(single(*engine, "SELECT a FROM t"), 1);
}

}  // namespace
}  // namespace owb::tsql
