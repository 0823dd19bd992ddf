// What a T-SQL statement costs above the prepared statement of the file database below it: the
// same statement text each time, and a text with new literals each time. Both sides work within one
// transaction, so that the disk does not count; each number is the best of many rounds.
#include "bench.h"
#include "db/connection.h"
#include "db/embedded/embedded_driver.h"

namespace {

using namespace owb;

constexpr int kRows = 10000;
constexpr int kRounds = 30;
constexpr int kRuns = 5000;  // in each round

int64_t idOf(int run) {
    return (run * 7919LL) % kRows + 1;
}

void race(const char* what, const std::function<void(int)>& engine,
          const std::function<void(int)>& floor) {
    auto repeated = [](const std::function<void(int)>& work) {
        return [&work] {
            for (int i = 0; i < kRuns; ++i) work(i);
        };
    };
    const bench::Race times(kRounds, repeated(engine), repeated(floor));
    bench::report(what, kRuns, times.engine, times.floor);
}

void makeTable(Connection& c) {
    c.Execute(
        "CREATE TABLE emp (id int NOT NULL PRIMARY KEY, name varchar(50), pay numeric(18,2), "
        "grade int)");
    c.BeginTrans();
    for (int i = 1; i <= kRows; ++i)
        c.Execute("INSERT INTO emp VALUES (" + std::to_string(i) + ", 'Employee " +
                  std::to_string(i) + "', 1234.50, 1)");
    c.CommitTrans();
}

// The floor works on the same file: the same tables, keys and rows.
std::string copyOf(const std::string& path, const std::string& copy) {
    bench::PlainDatabase(path).run("PRAGMA wal_checkpoint(TRUNCATE)");
    std::filesystem::copy_file(path, copy);
    return copy;
}

}  // namespace

int main() {
    const bench::Folder folder;
    const std::string path = folder.file("engine.owb");
    createEmbedded(path);
    Connection c;
    c.Open("Provider=OWBEmbedded;Data Source=" + path);
    makeTable(c);
    bench::PlainDatabase db(copyOf(path, folder.file("plain.db")));

    bench::Prepared select(db, "SELECT name, pay FROM emp WHERE id = ?");
    bench::Prepared update(db, "UPDATE emp SET grade = ? WHERE id = ?");
    size_t read = 0;
    auto readRow = [&](int64_t id) {
        for (select.with(id); select.next();)
            read += select.text(0).size() + static_cast<size_t>(select.number(1));
        select.reset();
    };
    const std::string selectText = "SELECT name, pay FROM emp WHERE id = ";
    const std::string updateText = "UPDATE emp SET grade = ";
    const std::string sameSelect = selectText + "77";
    const std::string sameUpdate = updateText + "5 WHERE id = 77";
    c.BeginTrans();
    db.run("BEGIN");
    race(
        "SELECT of one row, the same text", [&](int) { c.Run(sameSelect); },
        [&](int) { readRow(77); });
    race(
        "SELECT of one row, new literals",
        [&](int i) { c.Run(selectText + std::to_string(idOf(i))); },
        [&](int i) { readRow(idOf(i)); });
    race(
        "UPDATE of one row, the same text", [&](int) { c.Execute(sameUpdate); },
        [&](int) { update.with(int64_t{5}, int64_t{77}).run(); });
    race(
        "UPDATE of one row, new literals",
        [&](int i) {
            c.Execute(updateText + std::to_string(i % 50) +
                      " WHERE id = " + std::to_string(idOf(i)));
        },
        [&](int i) { update.with(int64_t{i % 50}, idOf(i)).run(); });
    db.run("COMMIT");
    c.CommitTrans();
    return read > 0 ? 0 : 1;
}
