// CREATE TABLE, ALTER TABLE, CREATE INDEX, and DROP of all that.
//
// Nobody else makes or drops anything between the look whether it can be done and the doing: the
// catalog is looked at inside the AtomicSteps.
#pragma once

#include "tsql/run/plan_runner.h"

namespace owb::tsql {

class TableDefinitions {
  public:
    TableDefinitions(Session& session, const Transactions& transactions, CatalogWatch& watch,
                     TableWriter& tables, PlanRunner& plans)
        : session_(session),
          transactions_(transactions),
          watch_(watch),
          tables_(tables),
          plans_(plans) {}

    void run(const Statement& s);
    // DECLARE @t TABLE: new each time it is met.
    void declare(const VariableDeclaration& v, int line);

  private:
    template <class S>
    void define(const S& s, void (TableDefinitions::*work)(const S&));
    void create(const CreateTableStatement& s);
    void createIndex(const CreateIndexStatement& s);

    // --- ALTER TABLE (alter_table.cpp) ---
    void alter(const AlterTableStatement& s);
    void alter(const CatalogTable& table, const AlterAction& action, int line);
    void addColumn(const CatalogTable& table, const ColumnDefinition& column, int line);
    std::string newColumnDefault(const CatalogTable& table, const ColumnDefinition& column,
                                 int line);
    void addConstraint(const CatalogTable& table, const ConstraintDefinition& c, int line);
    void addKey(const CatalogTable& table, const ConstraintDefinition& c, int line);
    void dropConstraint(const CatalogTable& table, const std::string& name, int line);
    void dropColumn(const CatalogTable& table, const std::string& name, int line);
    void alterColumn(const CatalogTable& table, const ColumnDefinition& column, int line);
    void store(const CatalogTable& before, CatalogTable after);

    // --- DROP (drop.cpp) ---
    void drop(const DropStatement& s);
    void dropIndex(const DropStatement& s, const Name& name);
    void dropTable(const DropStatement& s, const Name& name);
    void dropModule(const DropStatement& s, const Name& name);

    Session& session_;
    const Transactions& transactions_;
    CatalogWatch& watch_;
    TableWriter& tables_;
    PlanRunner& plans_;
};

}  // namespace owb::tsql
