// INSERT, UPDATE, DELETE and TRUNCATE.
//
//  1. A plain write is one statement of SQLite's. One that reads what it changes, has triggers or
//  an
//     OUTPUT clause runs in steps: the rows and their new values are collected first, then the old
//     rows, the change, the new rows; then OUTPUT reads them and the triggers fire.
//  2. The steps are done all or none (AtomicSteps).
//  3. A key may pass through values that other rows hold: where SQLite finds two rows in each
//     other's way, the rows leave the table and come back changed.
#pragma once

#include "tsql/run/identity_values.h"
#include "tsql/run/plan_runner.h"
#include "tsql/run/triggers.h"

namespace owb::tsql {

class Writes {
  public:
    Writes(Session& session, const Transactions& transactions, CatalogWatch& watch,
           PlanRunner& plans, IdentityValues& identity, Triggers& triggers)
        : session_(session),
          transactions_(transactions),
          watch_(watch),
          plans_(plans),
          identity_(identity),
          triggers_(triggers) {}

    // Throws where nothing may be written now.
    void requireWritable(const WriteStatement& s) const;
    void run(Frame& frame, const WriteStatement& s);
    void truncate(const TruncateStatement& s);
    // The sets that a call gave back, for INSERT ... EXEC.
    void insertSets(Frame& frame, const InsertStatement& s, std::vector<ResultSet>& sets);

  private:
    void requireWritable(const Name& target, int line) const;
    void runPlan(Frame& frame, const WriteStatement& s, Plan& plan);
    void runAtOnce(Frame& frame, Plan& plan);
    void runInSteps(Frame& frame, const WriteStatement& s, Plan& plan);
    int64_t insertCollecting(Frame& frame, Plan& plan, const std::string& inserted);
    int64_t changeCollecting(Frame& frame, Plan& plan, const std::string& deleted,
                             const std::string& inserted);
    void collectRows(Frame& frame, Plan& plan, const std::string& rows);
    void replaceRows(Frame& frame, Plan& plan);
    int64_t replaceCollected(Plan& plan, const std::string& rows);
    void output(Frame& frame, const WriteStatement& s, const Plan& plan, const PseudoTables& rows);
    void insertRows(Frame& frame, const Name& target, const std::vector<std::string>& columns,
                    const ResultSet& set, int line);
    CatalogTable tableOfRows(const ResultSet& set);

    Session& session_;
    const Transactions& transactions_;
    CatalogWatch& watch_;
    PlanRunner& plans_;
    IdentityValues& identity_;
    Triggers& triggers_;
};

}  // namespace owb::tsql
