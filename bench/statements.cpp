// What a T-SQL statement costs above the prepared statement of the file database below it: the
// same statement text each time, and a text with new literals each time. Both sides work within one
// transaction, so that the disk does not count.
#include "bench.h"
#include "db/connection.h"
#include "db/embedded/embedded_driver.h"

namespace {

using namespace owb;
using bench::seconds;

constexpr int kRows = 10000;
constexpr int kRuns = 100000;

int64_t idOf(int run) {
    return (run * 7919LL) % kRows + 1;
}

struct Times {
    double sameSelect, newSelect, sameUpdate, newUpdate;
};

Times engineTimes(Connection& c) {
    Times t{};
    c.BeginTrans();
    const std::string select = "SELECT name, pay FROM emp WHERE id = ";
    const std::string update = "UPDATE emp SET grade = ";
    t.sameSelect = seconds([&] {
        for (int i = 0; i < kRuns; ++i) c.Run(select + "77");
    });
    t.newSelect = seconds([&] {
        for (int i = 0; i < kRuns; ++i) c.Run(select + std::to_string(idOf(i)));
    });
    t.sameUpdate = seconds([&] {
        for (int i = 0; i < kRuns; ++i) c.Execute(update + "5 WHERE id = 77");
    });
    t.newUpdate = seconds([&] {
        for (int i = 0; i < kRuns; ++i)
            c.Execute(update + std::to_string(i % 50) + " WHERE id = " + std::to_string(idOf(i)));
    });
    c.CommitTrans();
    return t;
}

Times floorTimes(const std::string& path) {
    bench::PlainDatabase db(path);
    db.run("BEGIN");
    bench::Prepared select(db, "SELECT name, pay FROM emp WHERE id = ?");
    bench::Prepared update(db, "UPDATE emp SET grade = ? WHERE id = ?");
    auto timed = [](auto work) {
        return seconds([&] {
            for (int i = 0; i < kRuns; ++i) work(i);
        });
    };
    size_t read = 0;
    auto readRow = [&](int64_t id) {
        for (select.with(id); select.next();)
            read += select.text(0).size() + static_cast<size_t>(select.number(1));
    };
    Times t{};
    t.sameSelect = timed([&](int) { readRow(77); });
    t.newSelect = timed([&](int i) { readRow(idOf(i)); });
    t.sameUpdate = timed([&](int) { update.with(int64_t{5}, int64_t{77}).run(); });
    t.newUpdate = timed([&](int i) { update.with(int64_t{i % 50}, idOf(i)).run(); });
    db.run("COMMIT");
    if (read == 0) throw std::runtime_error("the floor has read nothing");
    return t;
}

}  // namespace

int main() {
    const bench::Folder folder;
    const std::string path = folder.file("engine.owb");
    createEmbedded(path);
    Times engine{};
    {
        Connection c;
        c.Open("Provider=OWBEmbedded;Data Source=" + path);
        c.Execute(
            "CREATE TABLE emp (id int NOT NULL PRIMARY KEY, name varchar(50), pay numeric(18,2), "
            "grade int)");
        c.BeginTrans();
        for (int i = 1; i <= kRows; ++i)
            c.Execute("INSERT INTO emp VALUES (" + std::to_string(i) + ", 'Employee " +
                      std::to_string(i) + "', 1234.50, 1)");
        c.CommitTrans();
        engine = engineTimes(c);
    }
    const std::string plain = folder.file("plain.db");
    {
        bench::PlainDatabase db(plain);
        db.run("PRAGMA journal_mode = WAL");
        db.run("CREATE TABLE emp (id INTEGER PRIMARY KEY, name TEXT, pay INTEGER, grade INTEGER)");
        db.run("BEGIN");
        bench::Prepared insert(db, "INSERT INTO emp VALUES (?1, 'Employee ' || ?1, 123450, 1)");
        for (int64_t i = 1; i <= kRows; ++i) insert.with(i).run();
        db.run("COMMIT");
    }
    const Times floor = floorTimes(plain);
    bench::report("SELECT of one row, the same text", kRuns, engine.sameSelect, floor.sameSelect);
    bench::report("SELECT of one row, new literals", kRuns, engine.newSelect, floor.newSelect);
    bench::report("UPDATE of one row, the same text", kRuns, engine.sameUpdate, floor.sameUpdate);
    bench::report("UPDATE of one row, new literals", kRuns, engine.newUpdate, floor.newUpdate);
    return 0;
}
