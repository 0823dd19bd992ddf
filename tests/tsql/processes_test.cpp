// Several processes on one file, and processes that are killed: nothing committed is lost, nothing
// half done is left, and no caller ever hears that the file is locked.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "support/temp_dir.h"
#include "tsql/engine.h"

namespace owb::tsql {
namespace {

std::string createPair(const test::TempDir& dir) {
    const std::string path = dir.file("pair.owb");
    OpenOptions create;
    create.create = true;
    auto engine = Engine::open(path, create);
    engine->run("CREATE TABLE total(v int)");
    engine->run("INSERT INTO total VALUES(0)");
    engine->run("CREATE TABLE step(who int, n int, CONSTRAINT PK_step PRIMARY KEY(who, n))");
    return path;
}

int64_t single(Engine& engine, const std::string& sql) {
    const BatchResult r = engine.run(sql);
    return r.errors.empty() && !r.sets.empty() ? r.sets[0].cells[0].toInt() : -1;
}

// Runs `work` in a process of its own; it leaves with the number that `work` gives.
template <class Work>
pid_t start(Work work) {
    const pid_t child = fork();
    if (child == 0) _exit(work());
    return child;
}

// OWB_WRITE_SECONDS sets how long: a moment by default, ten minutes for a long run.
TEST(Processes, SeveralWriteAtOnce) {
    test::TempDir dir;
    const std::string path = createPair(dir);
    const char* wanted = std::getenv("OWB_WRITE_SECONDS");
    const auto end =
        std::chrono::steady_clock::now() + std::chrono::seconds(wanted ? std::atoi(wanted) : 2);
    pid_t children[4];
    for (int who = 0; who < 4; ++who)
        children[who] = start([&] {
            auto engine = Engine::open(path, {});
            const auto fails = [&](const std::string& batch) {
                const BatchResult r = engine->run(batch);
                if (!r.errors.empty()) fprintf(stderr, "%s\n", r.errors[0].what());
                return !r.errors.empty();
            };
            const std::string own = "w" + std::to_string(who);
            for (int n = 0; std::chrono::steady_clock::now() < end; ++n) {
                const std::string row = std::to_string(who) + "," + std::to_string(n);
                if (fails("INSERT INTO step VALUES(" + row + ") UPDATE total SET v = v + 1"))
                    return 1;
                // Now and then what a start of the program does: objects dropped and made anew.
                if (n % 50 == 0 &&
                    fails("IF EXISTS (SELECT * FROM SYS.TABLES WHERE NAME = '" + own +
                          "') DROP TABLE " + own + " SELECT * INTO " + own + " FROM total"))
                    return 2;
                // A transaction over several batches, and a read while the others write.
                if (n % 20 == 0) {
                    engine->begin();
                    if (fails("UPDATE total SET v = v + 1") ||
                        fails("INSERT INTO step VALUES(" + std::to_string(who) + "," +
                              std::to_string(-n - 1) + ")"))
                        return 3;
                    engine->commit();
                    if (single(*engine, "SELECT v - (SELECT COUNT(*) FROM step) FROM total") != 0)
                        return 4;
                }
            }
            return 0;
        });
    for (pid_t child : children) {
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    }
    auto engine = Engine::open(path, {});
    const int64_t steps = single(*engine, "SELECT COUNT(*) FROM step");
    EXPECT_GT(steps, 100);
    EXPECT_EQ(single(*engine, "SELECT v FROM total"), steps);
    RecordProperty("batches", std::to_string(steps));
    EXPECT_TRUE(engine->checkIntegrity().empty());
}

// OWB_KILLS sets how often; a few times by default, hundreds for a long run.
TEST(Processes, AKilledWriterLeavesWholeBatches) {
    test::TempDir dir;
    const std::string path = createPair(dir);
    const char* wanted = std::getenv("OWB_KILLS");
    const int kills = wanted ? std::atoi(wanted) : 25;
    std::mt19937 random(7);
    for (int i = 0; i < kills; ++i) {
        int pipes[2];
        ASSERT_EQ(pipe(pipes), 0);
        const pid_t child = start([&] {
            close(pipes[0]);
            auto engine = Engine::open(path, {});
            for (int n = 0;; ++n) {
                const std::string row = std::to_string(i) + "," + std::to_string(n);
                engine->run("INSERT INTO step VALUES(" + row +
                            ") UPDATE total SET v = v + 1 SELECT * INTO t" + std::to_string(n) +
                            " FROM total DROP TABLE t" + std::to_string(n));
                // Told only once it is committed.
                if (write(pipes[1], "x", 1) != 1) return 1;
            }
        });
        close(pipes[1]);
        usleep(1000 + random() % 40000);
        kill(child, SIGKILL);
        int64_t told = 0;
        char buffer[4096];
        for (ssize_t n; (n = read(pipes[0], buffer, sizeof buffer)) > 0;) told += n;
        close(pipes[0]);
        waitpid(child, nullptr, 0);

        auto engine = Engine::open(path, {});
        const int64_t steps = single(*engine, "SELECT COUNT(*) FROM step");
        EXPECT_EQ(single(*engine, "SELECT v FROM total"), steps);
        EXPECT_GE(single(*engine, "SELECT COUNT(*) FROM step WHERE who = " + std::to_string(i)),
                  told);
        const std::vector<std::string> problems = engine->checkIntegrity();
        EXPECT_TRUE(problems.empty()) << problems[0];
        EXPECT_EQ(single(*engine, "SELECT COUNT(*) FROM sys.tables"), 2) << "a work table stayed";
    }
}

}  // namespace
}  // namespace owb::tsql
