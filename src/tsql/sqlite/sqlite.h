// The one place that talks to the SQLite library: opening, statements, errors.
#pragma once

#include <sqlite3.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/db_error.h"
#include "base/sql_type.h"
#include "base/value.h"

namespace owb::tsql {

struct StatementDeleter {
    void operator()(sqlite3_stmt* s) const { sqlite3_finalize(s); }
};
using SqliteStatement = std::unique_ptr<sqlite3_stmt, StatementDeleter>;

class Sqlite {
  public:
    // Throws DbError.
    Sqlite(const std::string& path, bool create, bool readOnly, int busySeconds);
    ~Sqlite();

    sqlite3* handle() const { return db_; }
    const std::string& path() const { return path_; }
    std::string databaseName() const;  // the file's name without its ending

    SqliteStatement prepare(const std::string& sql);
    void run(const std::string& sql);  // all statements of the text, rows thrown away
    std::optional<int64_t> number(const std::string& sql);  // first cell

    // Steps; true on a row. A failure throws: the error that one of our functions raised, or
    // the one that SQLite's result code means.
    bool step(sqlite3_stmt* statement);

    // Set when a transaction was undone, be it by SQLite itself because the disk was full or the
    // like: what is known of tables may be wrong. The statement that breaks a constraint, which
    // makes and drops none, does not set it.
    bool rolledBack = false;

    // Whether anybody, be it another process, writes to the file or is in a transaction, which is
    // taken for writing at its start. Throws when that cannot be found out; false for a file that
    // this connection may only read.
    bool isBeingWritten() const;

    // A function's error, kept until the statement that called it has failed.
    void raise(const DbError& error) { pending_ = error; }
    [[noreturn]] void fail(int resultCode);

    // --- time-out and cancelling ---
    // How long another connection's lock is waited for.
    void setBusySeconds(int seconds);
    void setBusyMilliseconds(int64_t milliseconds);
    void startClock(int seconds);  // 0: no limit
    void stopClock();
    void checkClock();           // throws when time is up or the user cancelled
    void sleep(double seconds);  // and then as checkClock
    std::atomic<bool> cancelled{false};
    bool timeIsUp() const;

  private:
    void open(const std::string& name, int flags);
    static int progress(void* self);
    static int busy(void* self, int times);
    DbError diskFull() const;
    std::string unwritableFile() const;
    void freeSideFiles() const;
    int lastFileError() const;

    sqlite3* db_ = nullptr;
    std::string path_;
    std::optional<DbError> pending_;
    double deadline_ = 0;  // on the coarse clock; 0: no limit
    int seconds_ = 0;
    double busyLimit_ = 0, busySince_ = 0;  // seconds
    unsigned checks_ = 0;
};

// The exception that is being handled, as the error that it means: SQLite's code may not be left by
// exceptions, nor the engine by any but DbError.
DbError caughtError();

// --- values between the two worlds (see types.h for how each type lies in SQLite) ---
void bindValue(sqlite3_stmt* statement, int index, const Value& value);
Value columnValue(sqlite3_stmt* statement, int index, const SqlType& type);
Value argumentValue(sqlite3_value* value, const SqlType& type);
void resultValue(sqlite3_context* context, const Value& value);
// A scaled number out of INTEGER or wide BLOB, and back. A wide one is 16 bytes, the sign bit
// flipped, most significant byte first.
void packWide(int128 value, unsigned char* out);
int128 wideNumber(sqlite3_value* value);
void resultWide(sqlite3_context* context, int128 value);

}  // namespace owb::tsql
