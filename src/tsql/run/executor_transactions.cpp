// Transactions, savepoints, and what an error does to them.
//
// Kept true here:
//  1. T-SQL counts levels, SQLite has one transaction: only the outermost COMMIT writes, any
//     ROLLBACK without a savepoint's name undoes all.
//  2. A doomed transaction can do nothing but be rolled back.
//  3. Table variables keep their rows through a ROLLBACK.
#include <algorithm>

#include "tsql/run/executor.h"

namespace owb::tsql {

ErrorReach reachOf(const DbError& e) {
    if (e.endsBatch || e.undoes) return ErrorReach::Batch;
    if (e.raised) return ErrorReach::Statement;
    switch (e.number) {
        case 207:
        case 208:
        case 209:
        case 213:
        case 4104:
        case 4121:
        case 195:
        case 8120:
        case 8121:
        case 8127:
        case 2714:
        case 206:
        case 15281:
            return ErrorReach::Scope;
        case 241:
        case 242:
        case 244:
        case 245:
        case 248:
        case 8114:
        case 217:
        case 1222:
        case 1105:
        case 3906:
        case 3930:
        case 3998:
            return ErrorReach::Batch;
        case 127:  // counts of rows are judged as the statement runs
        case 1031:
        case 1060:
        case 10742:
        case 10744:
            return ErrorReach::Statement;
        default:
            break;
    }
    if (e.number < 0 || e.severity >= 20) return ErrorReach::Batch;
    if (e.severity == 15) return ErrorReach::Scope;  // found while binding
    return ErrorReach::Statement;
}

AtomicSteps::AtomicSteps(Sqlite& sqlite, bool temporary)
    : sqlite_(sqlite), own_(!sqlite.inTransaction()) {
    sqlite_.run(!own_ ? "SAVEPOINT atomic_steps" : temporary ? "BEGIN" : "BEGIN IMMEDIATE");
}

AtomicSteps::~AtomicSteps() {
    if (finished_) return;
    try {
        if (own_ || !sqlite_.inTransaction()) {
            if (sqlite_.inTransaction()) sqlite_.run("ROLLBACK");
        } else {
            sqlite_.run("ROLLBACK TO atomic_steps; RELEASE atomic_steps");
        }
    } catch (const DbError&) {
        // SQLite has rolled back by itself already.
    }
}

void AtomicSteps::commit() {
    sqlite_.run(own_ ? "COMMIT" : "RELEASE atomic_steps");
    finished_ = true;
}

// What SET XACT_ABORT ON makes of it counts too.
ErrorReach Executor::reach(const DbError& e) const {
    return options_.xactAbort && !e.raised ? ErrorReach::Batch : reachOf(e);
}

bool Executor::abortsTransaction(const DbError& e) const {
    if (e.raised) return e.undoes;
    if (options_.xactAbort || e.undoes) return true;
    return e.number > 0 && !e.endsBatch && reachOf(e) == ErrorReach::Batch;
}

void Executor::requireSoundTransaction() const {
    if (doomed_) throw makeDbError(3930);
}

void Executor::endBatchTransaction() {
    if (!doomed_) return;
    if (transactions_ > 0) {
        rollbackTransaction();
        noteError(makeDbError(3998));
    }
    doomed_ = false;
}

void Executor::begin() {
    if (transactions_ > 0) throw DbError(-2147168237, 16, 1, 0, "A transaction is already open.");
    beginTransaction();
}

void Executor::commit() {
    commitTransaction();
}

void Executor::rollback() {
    rollbackTransaction();
}

void Executor::runTransaction(Frame& frame, const Statement& s) {
    std::string name = s.target.empty() ? "" : s.target.last();
    if (s.value) name = evaluate(frame, *s.value).toText();
    switch (s.kind) {
        case StatementKind::BeginTransaction:
            beginTransaction(name);
            break;
        case StatementKind::Commit:
            commitTransaction();
            break;
        case StatementKind::SaveTransaction:
            saveTransaction(name);
            break;
        default:
            rollbackTransaction(name);
    }
}

void Executor::beginTransaction(const std::string& name) {
    if (transactions_ == 0) {
        sqlite_->run("BEGIN IMMEDIATE");
        catalog_.refresh();
        transactionName_ = name;
    }
    ++transactions_;
    inTransaction_ = true;
}

void Executor::commitTransaction() {
    if (transactions_ == 0) throw makeDbError(3902);
    requireSoundTransaction();
    if (transactions_ == 1) {
        sqlite_->run("COMMIT");
        savepoints_.clear();
        statementTransaction_ = false;
        appLocks_.endTransaction();
    }
    --transactions_;
    inTransaction_ = transactions_ > 0;
}

void Executor::saveTransaction(const std::string& name) {
    if (transactions_ == 0) throw makeDbError(628);
    requireSoundTransaction();
    savepoints_.push_back(name);
    sqlite_->run("SAVEPOINT \"save " + std::to_string(savepoints_.size()) + "\"");
}

void Executor::rollbackTransaction(const std::string& name) {
    if (transactions_ == 0) throw makeDbError(3903);
    if (insertExec_ > 0)
        throw DbError(3915, 16, 0, 0,
                      "Cannot use the ROLLBACK statement within an INSERT-EXEC statement.");
    if (!name.empty() && name != transactionName_) {
        const auto found = std::find(savepoints_.rbegin(), savepoints_.rend(), name);
        if (found == savepoints_.rend()) throw makeDbError(6401, {name});
        requireSoundTransaction();
        savepoints_.erase(found.base(), savepoints_.end());
        return rollbackFile("ROLLBACK TO \"save " + std::to_string(savepoints_.size()) + "\"");
    }
    transactions_ = 0;
    inTransaction_ = false;
    doomed_ = false;
    savepoints_.clear();
    appLocks_.endTransaction();
    statementTransaction_ = false;
    if (sqlite_->inTransaction()) return rollbackFile("ROLLBACK");
    catalog_.rolledBack();
}

void Executor::rollbackFile(const std::string& sql) {
    struct Kept {
        CatalogTablePtr table;
        std::vector<std::vector<Value>> rows;
    };
    std::vector<Kept> kept;
    for (const CatalogTablePtr& table : catalog_.tableVariables()) {
        Kept k{table, {}};
        SqliteStatement read = sqlite_->prepare("SELECT * FROM " + table->sqlName);
        while (sqlite_->step(read)) {
            k.rows.emplace_back();
            for (size_t i = 0; i < table->columns.size(); ++i)
                k.rows.back().push_back(read.value(static_cast<int>(i), table->columns[i].type));
        }
        kept.push_back(std::move(k));
    }
    sqlite_->run(sql);
    for (const Kept& k : kept) {
        sqlite_->run("DROP TABLE IF EXISTS " + k.table->sqlName);
        sqlite_->run(tableDdl(*k.table, k.table->sqlName));
        for (const CatalogKey& key : k.table->keys) createKeyIndex(*k.table, key, true);
        std::string marks;
        for (size_t i = 0; i < k.table->columns.size(); ++i) marks += i ? ",?" : "?";
        SqliteStatement write =
            sqlite_->prepare("INSERT INTO " + k.table->sqlName + " VALUES(" + marks + ")");
        for (const auto& row : k.rows) {
            for (size_t i = 0; i < row.size(); ++i) write.bind(static_cast<int>(i) + 1, row[i]);
            sqlite_->step(write);
            write.rewind();
        }
    }
    catalog_.rolledBack();
}

}  // namespace owb::tsql
