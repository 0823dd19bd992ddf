#include "tsql/sqlite/sqlite.h"

#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <ctime>
#include <utility>

#include "base/utf8.h"

namespace owb::tsql {

namespace {

constexpr int kApplicationId = 0x4F574231;  // "OWB1"

int collate(void*, int aLength, const void* a, int bLength, const void* b) {
    return compareText({static_cast<const char*>(a), static_cast<size_t>(aLength)},
                       {static_cast<const char*>(b), static_cast<size_t>(bLength)});
}

// Seconds of a clock that runs on, to some milliseconds: the cheap one, read for each statement.
double coarseClock() {
    timespec t{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

bool fileExists(const std::string& path) {
    struct stat s;
    return ::stat(path.c_str(), &s) == 0;
}

int64_t fileSize(const std::string& path) {
    struct stat s;
    return ::stat(path.c_str(), &s) == 0 ? s.st_size : 0;
}

std::string folderOf(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

std::string uriPath(const std::string& path) {
    std::string out;
    for (char c : path) {
        char code[4];
        std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned char>(c));
        out += std::strchr("%?#", c) ? code : std::string(1, c);
    }
    return out;
}

}  // namespace

Sqlite::Sqlite(const std::string& path, bool create, bool readOnly, int busySeconds) : path_(path) {
    const bool memory = path == ":memory:";
    if (!memory && create && fileExists(path))
        throw makeDbError(-3, {"The file " + path + " exists already."});
    if (!memory && !create && !fileExists(path))
        throw makeDbError(-3, {"There is no database file " + path + "."});
    // One connection is used by one thread at a time (an interrupt needs no lock), and nobody asks
    // for the memory in use: both would cost more than the statements of a screen.
    static const int quick = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    (void)quick;
    const int flags =
        SQLITE_OPEN_NOMUTEX |
        (readOnly ? SQLITE_OPEN_READONLY
                  : SQLITE_OPEN_READWRITE | (create || memory ? SQLITE_OPEN_CREATE : 0));
    if (!memory && !readOnly) freeSideFiles();
    open(path, flags);
    try {
        // Beside a write-ahead log readers leave files too. In a folder that may not be written, a
        // file whose log is empty is as good as one that never changes.
        if (!memory && !create && access(folderOf(path).c_str(), W_OK) != 0 &&
            fileSize(path + "-wal") == 0) {
            sqlite3_close(db_);
            open("file:" + uriPath(path) + "?immutable=1",
                 SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
            readOnly = true;
        }
        sqlite3_extended_result_codes(db_, 1);
        setBusySeconds(busySeconds);
        sqlite3_create_collation_v2(db_, "TSQL", SQLITE_UTF8, nullptr, collate, nullptr);
        sqlite3_progress_handler(db_, 20000, progress, this);
        sqlite3_busy_handler(db_, busy, this);
        sqlite3_rollback_hook(
            db_, [](void* self) { static_cast<Sqlite*>(self)->rolledBack = true; }, this);
        if (create || memory) {
            run("PRAGMA application_id = " + std::to_string(kApplicationId));
        } else if (number("PRAGMA application_id") != kApplicationId) {
            throw makeDbError(-3, {"The file " + path + " is no Orvane Wagebook database."});
        }
        if (!readOnly) run("PRAGMA journal_mode = WAL");
        // NORMAL with a write-ahead log: a killed process loses nothing that was committed, a
        // power cut can lose the last commits but leaves the file sound.
        run("PRAGMA synchronous = NORMAL; PRAGMA temp_store = MEMORY; PRAGMA cache_size = -65536;"
            "PRAGMA case_sensitive_like = OFF; PRAGMA recursive_triggers = OFF");
    } catch (const DbError& e) {
        sqlite3_close(db_);
        db_ = nullptr;
        throw;
    }
}

void Sqlite::open(const std::string& name, int flags) {
    if (sqlite3_open_v2(name.c_str(), &db_, flags, nullptr) == SQLITE_OK) return;
    const std::string reason = db_ ? sqlite3_errmsg(db_) : "out of memory";
    sqlite3_close(db_);
    db_ = nullptr;
    throw makeDbError(-3, {"The database file " + path_ + " cannot be opened: " + reason + "."});
}

Sqlite::~Sqlite() {
    dataVersionQuery_ = {};
    sqlite3_close_v2(db_);
}

std::string Sqlite::databaseName() const {
    const std::string file = path_.substr(path_.find_last_of('/') + 1);
    return file.substr(0, file.find_last_of('.'));
}

SqliteStatement Sqlite::prepare(const std::string& sql) {
    sqlite3_stmt* s = nullptr;
    const int rc = sqlite3_prepare_v3(db_, sql.c_str(), static_cast<int>(sql.size()),
                                      SQLITE_PREPARE_PERSISTENT, &s, nullptr);
    if (rc != SQLITE_OK) fail(rc);
    return SqliteStatement(s);
}

void Sqlite::run(const std::string& sql) {
    const char* at = sql.c_str();
    while (*at) {
        sqlite3_stmt* s = nullptr;
        const char* tail = nullptr;
        const int rc = sqlite3_prepare_v2(db_, at, -1, &s, &tail);
        if (rc != SQLITE_OK) fail(rc);
        SqliteStatement statement(s);
        at = tail;
        if (!s) break;
        while (step(statement)) {
        }
    }
}

std::optional<int64_t> Sqlite::number(const std::string& sql) {
    SqliteStatement s = prepare(sql);
    if (!step(s) || sqlite3_column_type(s.statement_.get(), 0) == SQLITE_NULL) return std::nullopt;
    return s.integer(0);
}

bool Sqlite::step(SqliteStatement& statement) {
    const bool before = rolledBack;
    const int rc = sqlite3_step(statement.statement_.get());
    if (rc == SQLITE_ROW) return true;
    if (rc == SQLITE_DONE) return false;
    if ((rc & 0xFF) == SQLITE_CONSTRAINT) rolledBack = before;
    fail(rc);
}

int64_t Sqlite::changes() const {
    return sqlite3_changes64(db_);
}

bool Sqlite::inTransaction() const {
    return sqlite3_get_autocommit(db_) == 0;
}

std::string Sqlite::file() const {
    return sqlite3_db_filename(db_, "main");
}

bool Sqlite::isReadOnly() const {
    return sqlite3_db_readonly(db_, "main") == 1;
}

int64_t Sqlite::dataVersion() {
    if (!dataVersionQuery_) dataVersionQuery_ = prepare("PRAGMA main.data_version");
    step(dataVersionQuery_);
    const int64_t version = dataVersionQuery_.integer(0);
    versionRead_ = versionBeingRead();
    dataVersionQuery_.rewind();
    return version;
}

bool Sqlite::readsSameVersion() const {
    return versionBeingRead() == versionRead_;
}

unsigned Sqlite::versionBeingRead() const {
    unsigned version = 0;
    sqlite3_file_control(db_, "main", SQLITE_FCNTL_DATA_VERSION, &version);
    return version;
}

void Sqlite::cancel() {
    cancelled = true;
    sqlite3_interrupt(db_);
}

// A second connection tries to become the writer: only it can be in nobody's way and find the lock
// of whoever holds it, which the system ends with its process.
bool Sqlite::isBeingWritten() const {
    const std::string file = this->file();
    if (file.empty() || isReadOnly()) return false;
    sqlite3* second = nullptr;
    int rc = sqlite3_open_v2(file.c_str(), &second, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX,
                             nullptr);
    if (rc == SQLITE_OK) rc = sqlite3_exec(second, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
    const std::string reason = second ? sqlite3_errmsg(second) : "out of memory";
    sqlite3_close(second);
    if (rc != SQLITE_OK && (rc & 0xFF) != SQLITE_BUSY)
        throw makeDbError(-3, {"Nobody can say who writes to " + file + ": " + reason + "."});
    return rc != SQLITE_OK;
}

// The log and its index beside a file that was once read-only are so still when the file may be
// written again, and would keep it read-only for ever.
void Sqlite::freeSideFiles() const {
    struct stat s {};
    if (access(path_.c_str(), W_OK) != 0 || ::stat(path_.c_str(), &s) != 0) return;
    for (const char* end : {"-wal", "-shm"}) {
        const std::string side = path_ + end;
        // Where that is not allowed, writing tells which file it is.
        if (fileExists(side) && access(side.c_str(), W_OK) != 0)
            (void)chmod(side.c_str(), s.st_mode & 0666);
    }
}

// The one of the database's files that stands in the way of writing.
std::string Sqlite::unwritableFile() const {
    if (access(path_.c_str(), W_OK) == 0)
        for (const char* end : {"-wal", "-shm"})
            if (fileExists(path_ + end) && access((path_ + end).c_str(), W_OK) != 0)
                return path_ + end;
    return path_;
}

DbError Sqlite::diskFull() const {
    DbError e = makeDbError(1105, {path_});
    e.state = 2;
    return e;
}

// What the system said of the file or of its log.
int Sqlite::lastFileError() const {
    int reason = 0;
    sqlite3_file_control(db_, "main", SQLITE_FCNTL_LAST_ERRNO, &reason);
    sqlite3_file* log = nullptr;
    sqlite3_file_control(db_, "main", SQLITE_FCNTL_JOURNAL_POINTER, &log);
    if (reason == 0 && log && log->pMethods)
        log->pMethods->xFileControl(log, SQLITE_FCNTL_LAST_ERRNO, &reason);
    return reason;
}

void Sqlite::keepException() {
    try {
        throw;
    } catch (const DbError&) {
        pending_ = std::current_exception();
    } catch (...) {
        pending_ = std::make_exception_ptr(caughtError());
    }
}

void Sqlite::fail(int rc) {
    if (pending_) std::rethrow_exception(std::exchange(pending_, nullptr));
    const std::string text = sqlite3_errmsg(db_);
    switch (rc & 0xFF) {
        case SQLITE_INTERRUPT:
            if (cancelled) {
                cancelled = false;
                throw makeDbError(-1);
            }
            throw makeDbError(-2, {std::to_string(seconds_)});
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            if (cancelled) {
                cancelled = false;
                throw makeDbError(-1);
            }
            throw makeDbError(1222);
        case SQLITE_FULL:
            throw diskFull();
        case SQLITE_IOERR: {
            const int reason = lastFileError();
            if (rc == SQLITE_IOERR_SHMSIZE || reason == ENOSPC || reason == EFBIG ||
                reason == EDQUOT)
                throw diskFull();
            throw makeDbError(-3, {"The database file " + path_ + " cannot be read or written: " +
                                   (reason ? std::strerror(reason) : text) + "."});
        }
        case SQLITE_READONLY:
        case SQLITE_PERM:
            throw makeDbError(3906, {unwritableFile()});
        case SQLITE_NOTADB:
            throw makeDbError(-3, {"The file " + path_ + " is no Orvane Wagebook database."});
        case SQLITE_CORRUPT:
            throw makeDbError(-3, {"The database file " + path_ + " is damaged: " + text + "."});
        case SQLITE_NOMEM:
            throw makeDbError(8623);
        case SQLITE_CONSTRAINT:
            throw BrokenConstraint(text);
        case SQLITE_TOOBIG:  // a statement, or a value
            throw makeDbError(text.starts_with("statement") ? 8623 : 8152);
        default:
            if (text.starts_with("Expression tree is too large") ||
                text.starts_with("parser stack overflow") || text.starts_with("at most ") ||
                text.starts_with("too many "))
                throw makeDbError(8623);
            if (text == "integer overflow") throw makeDbError(8115, {"expression", "bigint"});
            throw RefusedSql(text);
    }
}

void Sqlite::setBusySeconds(int seconds) {
    busyLimit_ = seconds <= 0 ? 2e9 : seconds;
}

void Sqlite::setBusyMilliseconds(int64_t milliseconds) {
    busyLimit_ = static_cast<double>(milliseconds) / 1000;
}

int Sqlite::busy(void* self, int times) {
    auto* s = static_cast<Sqlite*>(self);
    if (times == 0) s->busySince_ = coarseClock();
    if (s->cancelled || coarseClock() - s->busySince_ >= s->busyLimit_) return 0;
    usleep(static_cast<useconds_t>(std::min(1000 + 2000 * times, 25000)));
    return 1;
}

void Sqlite::startClock(int seconds) {
    seconds_ = seconds;
    deadline_ = seconds > 0 ? coarseClock() + seconds : 0;
}

void Sqlite::stopClock() {
    deadline_ = 0;
}

bool Sqlite::timeIsUp() const {
    return deadline_ > 0 && coarseClock() >= deadline_;
}

void Sqlite::checkClock() {
    if (cancelled) {
        cancelled = false;
        throw makeDbError(-1);
    }
    // What takes long is watched by SQLite's progress; here it is loops of short statements.
    if (++checks_ % 16 == 0 && timeIsUp()) throw makeDbError(-2, {std::to_string(seconds_)});
}

void Sqlite::sleep(double seconds) {
    usleep(static_cast<useconds_t>(seconds * 1e6));
    checks_ = 15;  // looks at the clock now
    checkClock();
}

int Sqlite::progress(void* self) {
    const auto* s = static_cast<const Sqlite*>(self);
    return s->cancelled || s->timeIsUp() ? 1 : 0;
}

DbError caughtError() {
    try {
        throw;
    } catch (const DbError& e) {
        return e;
    } catch (const DecimalOverflow&) {
        return makeDbError(8115, {"expression", "numeric"});
    } catch (const std::bad_alloc&) {
        return makeDbError(701, {"internal"});
    } catch (const std::exception& e) {
        return makeDbError(8630, {e.what()});
    }
}

}  // namespace owb::tsql
