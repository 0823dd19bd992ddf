// Several processes on one file, and processes that are killed: nothing committed is lost, nothing
// half done is left, and no caller ever hears that the file is locked.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

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

TEST(Processes, TwoWriteAtOnce) {
    test::TempDir dir;
    const std::string path = createPair(dir);
    constexpr int kSteps = 300;
    pid_t children[3];
    for (int who = 0; who < 3; ++who)
        children[who] = start([&] {
            auto engine = Engine::open(path, {});
            for (int n = 0; n < kSteps; ++n) {
                const std::string row = std::to_string(who) + "," + std::to_string(n);
                const BatchResult r =
                    engine->run("INSERT INTO step VALUES(" + row + ") UPDATE total SET v = v + 1");
                if (!r.errors.empty()) return 1;
                // Now and then what a start of the program does: objects dropped and made anew.
                if (n % 50 == 0 &&
                    !engine
                         ->run("IF EXISTS (SELECT * FROM SYS.TABLES WHERE NAME = 'w" +
                               std::to_string(who) + "') DROP TABLE w" + std::to_string(who) +
                               " SELECT * INTO w" + std::to_string(who) + " FROM total")
                         .errors.empty())
                    return 2;
            }
            return 0;
        });
    for (pid_t child : children) {
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    }
    auto engine = Engine::open(path, {});
    EXPECT_EQ(single(*engine, "SELECT v FROM total"), 3 * kSteps);
    EXPECT_EQ(single(*engine, "SELECT COUNT(*) FROM step"), 3 * kSteps);
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
