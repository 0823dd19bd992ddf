#include "tsql/run/atomic_steps.h"

namespace owb::tsql {

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

}  // namespace owb::tsql
