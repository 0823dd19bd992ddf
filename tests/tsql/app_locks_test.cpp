// Application locks between connections of one process, between processes, and past a kill.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "support/temp_dir.h"
#include "tsql/engine.h"

namespace owb::tsql {
namespace {

struct AppLocks : testing::Test {
    AppLocks() {
        OpenOptions create;
        create.create = true;
        Engine::open(path, create)->run("CREATE TABLE t(a int)");
    }
    std::unique_ptr<Engine> open() { return Engine::open(path, {}); }

    test::TempDir dir;
    const std::string path = dir.file("locked.owb");
};

// The return code; the number of the error, below -1000, where there is one.
int64_t get(Engine& engine, const std::string& mode, int timeout = 0,
            const std::string& owner = "Session") {
    const BatchResult r =
        engine.run("DECLARE @r int EXEC @r = sp_getapplock 'job', '" + mode + "', '" + owner +
                   "', " + std::to_string(timeout) + " SELECT @r");
    if (!r.errors.empty()) return -1000 - std::abs(r.errors[0].number);
    return r.sets.at(0).cells.at(0).toInt();
}

void release(Engine& engine) {
    EXPECT_TRUE(engine.run("EXEC sp_releaseapplock 'job', 'Session'").errors.empty());
}

TEST_F(AppLocks, ModesThatGoTogether) {
    const std::string modes[] = {"IntentShared", "Shared", "Update", "Exclusive"};
    const bool together[4][4] = {{true, true, true, false},
                                 {true, true, true, false},
                                 {true, true, false, false},
                                 {false, false, false, false}};
    auto one = open(), other = open();
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            ASSERT_EQ(get(*one, modes[i]), 0);
            const BatchResult free =
                other->run("SELECT APPLOCK_TEST('public', 'job', '" + modes[j] + "', 'Session')");
            EXPECT_EQ(free.sets.at(0).cells[0].toInt(), together[i][j]) << modes[i] << modes[j];
            EXPECT_EQ(get(*other, modes[j]), together[i][j] ? 0 : -1) << modes[i] << modes[j];
            if (together[i][j]) release(*other);
            release(*one);
            // Nothing stays of it.
            EXPECT_EQ(get(*other, "Exclusive"), 0) << modes[i] << modes[j];
            release(*other);
        }
}

TEST_F(AppLocks, WhatIsReleasedGoesDownToWhatIsStillHeld) {
    auto one = open(), other = open();
    ASSERT_EQ(get(*one, "Shared"), 0);
    one->begin();
    ASSERT_EQ(get(*one, "Exclusive", 0, "Transaction"), 0);
    EXPECT_EQ(get(*other, "Shared"), -1);
    one->rollback();
    EXPECT_EQ(get(*other, "Shared"), 0);
    EXPECT_EQ(get(*one, "Exclusive"), -1);
    release(*other);
    EXPECT_EQ(get(*one, "Exclusive"), 0);
    release(*one);
    EXPECT_EQ(get(*other, "Shared"), -1) << "once of two";
    one.reset();
    EXPECT_EQ(get(*other, "Exclusive"), 0) << "the connection is gone";
}

TEST_F(AppLocks, WaitingEnds) {
    auto one = open(), other = open();
    ASSERT_EQ(get(*one, "Exclusive"), 0);
    EXPECT_EQ(get(*other, "Shared", 100), -1);
    EXPECT_TRUE(other->run("SET LOCK_TIMEOUT 100").errors.empty());
    EXPECT_EQ(other
                  ->run("DECLARE @r int EXEC @r = sp_getapplock 'job', 'Shared', 'Session' "
                        "SELECT @r")
                  .sets.at(0)
                  .cells[0]
                  .toInt(),
              -1);
    other->setCommandTimeout(1);
    EXPECT_EQ(get(*other, "Shared", -1), -1002) << "the command's time-out";
    other->setCommandTimeout(0);
    std::atomic<bool> ended = false;
    std::thread canceller([&] {
        // One that comes before the batch begins is for nothing.
        while (!ended) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            other->cancel();
        }
    });
    EXPECT_EQ(get(*other, "Shared", -1), -1001) << "a cancel";
    ended = true;
    canceller.join();
}

TEST_F(AppLocks, AReleaseLetsTheNextOneIn) {
    auto one = open(), other = open();
    // The other may come when the lock is free already: then the release waits longer the next
    // time.
    int64_t got = 0;
    for (int pause = 50; got == 0 && pause < 20000; pause *= 3) {
        ASSERT_EQ(get(*one, "Exclusive"), 0);
        std::thread releaser([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(pause));
            release(*one);
        });
        got = get(*other, "Shared", -1);
        releaser.join();
        release(*other);
    }
    EXPECT_EQ(got, 1) << "granted after a wait";
}

TEST_F(AppLocks, TheOneWhoHoldsItWritesWhileOthersWait) {
    auto one = open();
    ASSERT_EQ(get(*one, "Exclusive"), 0);
    std::thread waiting([&] {
        const BatchResult r = open()->run(
            "DECLARE @r int INSERT INTO t VALUES (1) EXEC @r = sp_getapplock 'job', 'Exclusive', "
            "'Session' INSERT INTO t VALUES (2) SELECT @r");
        EXPECT_EQ(r.sets.at(0).cells[0].toInt(), 1);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_TRUE(one->run("INSERT INTO t VALUES (3) DELETE FROM t WHERE a = 3").errors.empty());
    release(*one);
    waiting.join();
    EXPECT_EQ(one->run("SELECT COUNT(*) FROM t").sets.at(0).cells[0].toInt(), 2);
}

// Every child counts up a file that only the lock guards; some are killed in the midst.
TEST_F(AppLocks, ProcessesTakeTurnsAndAKilledOneIsForgotten) {
    int pipes[2];
    ASSERT_EQ(pipe(pipes), 0);
    pid_t children[4];
    for (pid_t& child : children) {
        child = fork();
        if (child != 0) continue;
        auto engine = open();
        for (int i = 0; i < 10; ++i) {
            if (get(*engine, "Exclusive", 20000) < 0) _exit(1);
            // Two at a time would part the pair.
            if (write(pipes[1], "<", 1) != 1) _exit(2);
            usleep(2000);
            if (write(pipes[1], ">", 1) != 1) _exit(3);
            release(*engine);
        }
        if (get(*engine, "Exclusive", 20000) < 0) _exit(4);
        kill(getpid(), SIGKILL);
    }
    close(pipes[1]);
    std::string turns;
    char buffer[256];
    for (ssize_t n; (n = read(pipes[0], buffer, sizeof buffer)) > 0;) turns.append(buffer, n);
    close(pipes[0]);
    for (const pid_t child : children) {
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status)) << WEXITSTATUS(status);
    }
    std::string paired;
    for (int i = 0; i < 40; ++i) paired += "<>";
    EXPECT_EQ(turns, paired);
    EXPECT_EQ(get(*open(), "Exclusive"), 0);
}

TEST_F(AppLocks, AnotherFileAndMemoryHaveTheirOwn) {
    auto one = open(), memory = Engine::open(":memory:", {});
    ASSERT_EQ(get(*one, "Exclusive"), 0);
    EXPECT_EQ(get(*memory, "Exclusive"), 0);
    ASSERT_EQ(symlink(path.c_str(), dir.file("other name.owb").c_str()), 0);
    auto same = Engine::open(dir.file("other name.owb"), {});
    EXPECT_EQ(get(*same, "Exclusive"), -1) << "the same file by another name";
}

TEST_F(AppLocks, AReadOnlyDatabaseHasNone) {
    OpenOptions readOnly;
    readOnly.readOnly = true;
    EXPECT_EQ(get(*Engine::open(path, readOnly), "Shared"), -1000 - 3906);
    auto one = open();
    ASSERT_EQ(get(*one, "Shared"), 0);
    struct stat s {
    }, locks{};
    ASSERT_EQ(stat(path.c_str(), &s), 0);
    ASSERT_EQ(stat((path + "-locks").c_str(), &locks), 0);
    EXPECT_EQ(locks.st_mode, s.st_mode) << "for everybody who may use the database";
}

}  // namespace
}  // namespace owb::tsql
