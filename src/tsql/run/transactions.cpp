#include "tsql/run/transactions.h"

#include <algorithm>

#include "tsql/run/table_writer.h"

namespace owb::tsql {

ErrorReach Transactions::reachOf(const DbError& e) const {
    const bool raised = TravellingError(e).raised;
    return session_.options.xactAbort && !raised ? ErrorReach::Batch : tsql::reachOf(e);
}

bool Transactions::areAbortedBy(const DbError& e) const {
    const TravellingError t(e);
    if (t.raised || t.undoes) return t.undoes;
    if (session_.options.xactAbort) return true;
    const bool ofTheEngine = e.number < 0 || e.number == 701 || e.number == 8630;
    return !ofTheEngine && !t.endsBatch && tsql::reachOf(e) == ErrorReach::Batch;
}

void Transactions::requireSound() const {
    if (doomed_) throw makeDbError(3930);
}

void Transactions::endBatch() {
    if (doomed_ && level_ > 0) {
        rollback();
        session_.noteError(makeDbError(3998));
    }
    doomed_ = false;
    if (level_ > 0 && !session_.sqlite.inTransaction()) {
        level_ = 0;
        locks_.endTransaction();
        session_.catalog.rolledBack();
    }
}

void Transactions::begin(const std::string& name) {
    if (level_ == 0) {
        session_.sqlite.run("BEGIN IMMEDIATE");
        session_.catalog.refresh();
        name_ = name;
    }
    ++level_;
}

void Transactions::commit() {
    if (level_ == 0) throw makeDbError(3902);
    requireSound();
    if (level_ == 1) {
        session_.sqlite.run("COMMIT");
        savepoints_.clear();
        ofStatement_ = false;
        locks_.endTransaction();
    }
    --level_;
}

void Transactions::save(const std::string& name) {
    if (level_ == 0) throw makeDbError(628);
    requireSound();
    savepoints_.push_back(name);
    session_.sqlite.run("SAVEPOINT \"save " + std::to_string(savepoints_.size()) + "\"");
}

void Transactions::rollback(const std::string& name) {
    if (level_ == 0) throw makeDbError(3903);
    if (session_.insertExecs > 0)
        throw DbError(3915, 16, 0, 0,
                      "Cannot use the ROLLBACK statement within an INSERT-EXEC statement.");
    if (!name.empty() && name != name_) {
        const auto found = std::find(savepoints_.rbegin(), savepoints_.rend(), name);
        if (found == savepoints_.rend()) throw makeDbError(6401, {name});
        requireSound();
        savepoints_.erase(found.base(), savepoints_.end());
        return rollbackFile("ROLLBACK TO \"save " + std::to_string(savepoints_.size()) + "\"");
    }
    level_ = 0;
    doomed_ = false;
    savepoints_.clear();
    locks_.endTransaction();
    ofStatement_ = false;
    if (session_.sqlite.inTransaction()) return rollbackFile("ROLLBACK");
    session_.catalog.rolledBack();
}

void Transactions::rollbackFile(const std::string& sql) {
    struct Kept {
        CatalogTablePtr table;
        std::vector<std::vector<Value>> rows;
    };
    std::vector<Kept> kept;
    for (const CatalogTablePtr& table : session_.catalog.tableVariables())
        kept.push_back({table, tables_.rowsOf(*table)});
    session_.sqlite.run(sql);
    for (const Kept& k : kept) {
        session_.sqlite.run("DROP TABLE IF EXISTS " + k.table->sqlName);
        tables_.makeWithKeys(*k.table);
        tables_.addRows(*k.table, k.rows);
    }
    session_.catalog.rolledBack();
}

Transactions::OfStatement::OfStatement(Transactions& transactions)
    : transactions_(transactions), own_(transactions.level_ == 0) {
    if (!own_) return;
    transactions_.level_ = 1;
    transactions_.ofStatement_ = true;
}

Transactions::OfStatement::~OfStatement() {
    if (!own_ || !transactions_.ofStatement_) return;
    transactions_.level_ = 0;
    transactions_.ofStatement_ = false;
    transactions_.locks_.endTransaction();
}

}  // namespace owb::tsql
