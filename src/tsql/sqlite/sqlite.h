// A connection to a file of SQLite: opening, statements, errors, time-outs. This folder is the one
// place that includes the library's header.
//
//  1. Every failure of the library leaves as a DbError: step() and run() know which.
//  2. An exception of one of our functions passes through SQLite's code as a failed call and is
//     thrown again by the step() that made the call.
//  3. The file is in write-ahead mode with synchronous = NORMAL: a killed process loses nothing
//  that
//     was committed, a power cut can lose the last commits but never damages the file.
//  4. Another connection's lock is waited for (busy), a long statement is watched (progress): both
//     end by the time-out or a cancel. One thread at a time uses a connection; cancel() alone may
//     come from another.
#pragma once

#include <atomic>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/db_error.h"
#include "tsql/sqlite/extensions.h"
#include "tsql/sqlite/statement.h"

struct sqlite3;

namespace owb::tsql {

// A row that breaks a NOT NULL, UNIQUE or CHECK of the file, in SQLite's words. Whoever knows the
// table makes the server's error of it.
struct BrokenConstraint : DbError {
    explicit BrokenConstraint(const std::string& text) : DbError(-2627, 14, 1, 0, text) {}
    bool isUnique() const { return std::string_view(what()).starts_with("UNIQUE"); }
};

// SQL that SQLite does not understand, because what it names has gone or changed.
struct RefusedSql : DbError {
    explicit RefusedSql(const std::string& text)
        : DbError(makeDbError(-3, {"The database engine failed: " + text})) {}
};

class Sqlite {
  public:
    // Throws DbError.
    Sqlite(const std::string& path, bool create, bool readOnly, int busySeconds);
    ~Sqlite();
    Sqlite(const Sqlite&) = delete;
    Sqlite& operator=(const Sqlite&) = delete;

    const std::string& path() const { return path_; }
    std::string file() const;  // its full path; "" in memory
    bool isReadOnly() const;
    std::string databaseName() const;  // the file's name without its ending

    SqliteStatement prepare(const std::string& sql);
    void run(const std::string& sql);  // all statements of the text, rows thrown away
    std::optional<int64_t> number(const std::string& sql);  // first cell

    // Steps; true on a row. A failure throws: the error that one of our functions raised, or
    // the one that SQLite's result code means.
    bool step(SqliteStatement& statement);
    int64_t changes() const;     // rows that the last INSERT, UPDATE or DELETE wrote
    bool inTransaction() const;  // BEGIN was run, and neither COMMIT nor ROLLBACK since

    // Changes whenever another connection has written the file; asking reads it.
    int64_t dataVersion();
    // While a statement reads the file: whether that is the file as dataVersion() last found it.
    // Asking costs nothing.
    bool readsSameVersion() const;

    void addFunction(const char* name, int count, FunctionBody body, bool deterministic = true);
    void addAggregate(const char* name, int count, const AggregateBody& body);
    void addTable(const std::string& name, ComputedTable table);

    // Set when a transaction was undone, be it by SQLite itself because the disk was full or the
    // like: what is known of tables may be wrong. The statement that breaks a constraint, which
    // makes and drops none, does not set it.
    bool rolledBack = false;

    // Whether anybody, be it another process, writes to the file or is in a transaction, which is
    // taken for writing at its start. Throws when that cannot be found out; false for a file that
    // this connection may only read.
    bool isBeingWritten() const;

    // Keeps the exception that is being handled, thrown by a function of ours, until the statement
    // that called the function has failed; step() throws it then.
    void keepException();

    // --- time-out and cancelling ---
    // How long another connection's lock is waited for.
    void setBusySeconds(int seconds);
    void setBusyMilliseconds(int64_t milliseconds);
    void startClock(int seconds);  // 0: no limit
    void stopClock();
    void checkClock();           // throws when time is up or the user cancelled
    void sleep(double seconds);  // and then as checkClock
    void cancel();               // from another thread
    std::atomic<bool> cancelled{false};

  private:
    [[noreturn]] void fail(int resultCode);
    bool timeIsUp() const;
    unsigned versionBeingRead() const;
    void open(const std::string& name, int flags);
    static int progress(void* self);
    static int busy(void* self, int times);
    DbError diskFull() const;
    std::string unwritableFile() const;
    void freeSideFiles() const;
    int lastFileError() const;

    sqlite3* db_ = nullptr;
    std::string path_;
    std::exception_ptr pending_;  // see keepException
    SqliteStatement dataVersionQuery_;
    unsigned versionRead_ = 0;  // SQLite's own count, as of dataVersion()
    double deadline_ = 0;       // on the coarse clock; 0: no limit
    int seconds_ = 0;
    double busyLimit_ = 0, busySince_ = 0;  // seconds
    unsigned checks_ = 0;
};

// The exception that is being handled, as the error that it means: SQLite's code may not be left by
// exceptions, nor the engine by any but DbError.
DbError caughtError();

}  // namespace owb::tsql
