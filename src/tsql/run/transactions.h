// Transactions, savepoints, and what an error does to them.
//
// Kept true here:
//  1. T-SQL counts levels, SQLite has one transaction: only the outermost COMMIT writes, any
//     ROLLBACK without a savepoint's name undoes all.
//  2. A doomed transaction can do nothing but be rolled back.
//  3. Table variables keep their rows through a ROLLBACK.
#pragma once

#include <string>
#include <vector>

#include "tsql/run/app_locks.h"
#include "tsql/run/session.h"

namespace owb::tsql {

class TableWriter;

class Transactions {
  public:
    Transactions(Session& session, AppLocks& locks, TableWriter& tables)
        : session_(session), locks_(locks), tables_(tables) {}

    int level() const { return level_; }
    bool isOpen() const { return level_ > 0; }
    bool isDoomed() const { return doomed_; }
    void doom() { doomed_ = true; }
    void requireSound() const;  // throws 3930

    void begin(const std::string& name = "");
    void commit();
    void rollback(const std::string& name = "");
    void save(const std::string& name);

    // The level of a statement whose triggers run: in a trigger there always is a transaction, if
    // only that of its statement.
    class OfStatement {
      public:
        explicit OfStatement(Transactions& transactions);
        ~OfStatement();
        OfStatement(const OfStatement&) = delete;
        OfStatement& operator=(const OfStatement&) = delete;

      private:
        Transactions& transactions_;
        bool own_;
    };

    // What the error ends, SET XACT_ABORT ON taken into account; whether it undoes the transaction.
    ErrorReach reachOf(const DbError& e) const;
    bool areAbortedBy(const DbError& e) const;

    // At the end of a batch: a doomed transaction is rolled back, and one that SQLite gave up by
    // itself, because the disk was full or the like, is over.
    void endBatch();

  private:
    void rollbackFile(const std::string& sql);

    Session& session_;
    AppLocks& locks_;
    TableWriter& tables_;
    int level_ = 0;  // T-SQL's own
    std::string name_;
    std::vector<std::string> savepoints_;
    bool doomed_ = false;       // the open transaction can only be rolled back
    bool ofStatement_ = false;  // see OfStatement
};

}  // namespace owb::tsql
