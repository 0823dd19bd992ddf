#include "tsql/run/table_definitions.h"

#include "tsql/run/atomic_steps.h"
#include "tsql/run/table_description.h"

namespace owb::tsql {

template <class S>
void TableDefinitions::define(const S& s, void (TableDefinitions::*work)(const S&)) {
    AtomicSteps steps(session_.sqlite, s.table.last().starts_with("#"));
    watch_.look();
    (this->*work)(s);
    steps.commit();
}

void TableDefinitions::run(const Statement& s) {
    transactions_.requireSound();
    switch (s.kind) {
        case StatementKind::Drop:
            return drop(as<DropStatement>(s));
        case StatementKind::CreateTable:
            return define(as<CreateTableStatement>(s), &TableDefinitions::create);
        case StatementKind::AlterTable:
            return define(as<AlterTableStatement>(s), &TableDefinitions::alter);
        default:
            return define(as<CreateIndexStatement>(s), &TableDefinitions::createIndex);
    }
}

void TableDefinitions::declare(const VariableDeclaration& v, int line) {
    if (CatalogTablePtr old = session_.catalog.findTable(v.name)) {
        session_.sqlite.run("DROP TABLE " + old->sqlName);
        session_.catalog.forgetTemporary(*old);
    }
    tables_.create(describeTable(v.name, v.tableColumns, v.tableConstraints), line);
}

void TableDefinitions::create(const CreateTableStatement& s) {
    session_.catalog.requirePlace(s.table, s.line);
    const std::string& name = s.table.last();
    if (session_.catalog.findTable(name) || session_.catalog.findModule(name))
        throw makeDbError(2714, {name}, s.line);
    tables_.create(describeTable(name, s.columns, s.constraints), s.line);
}

void TableDefinitions::createIndex(const CreateIndexStatement& s) {
    CatalogTablePtr table = session_.catalog.findTable(s.table);
    if (!table) throw makeDbError(4902, {s.table.text()}, s.line);
    for (const std::string& c : s.columns)
        if (table->findColumn(c) < 0) throw makeDbError(1911, {c}, s.line);
    CatalogKey key{s.name, s.columns, CatalogKey::Index};
    if (session_.sqlite.number("SELECT 1 FROM " + schemaOf(table->sqlName) +
                               "sqlite_master WHERE type = 'index' AND name = " +
                               sqliteText(table->indexName(key.name)) + " COLLATE NOCASE"))
        throw makeDbError(1913, {s.name, table->name}, s.line);
    AtomicSteps steps(session_.sqlite);
    tables_.createKeyIndex(*table, key, s.unique);
    if (s.unique) {
        CatalogTable after = *table;
        after.keys.push_back(std::move(key));
        if (table->temporary)
            session_.catalog.replaceTemporary(std::move(after));
        else
            tables_.storeConstraints(after);
    }
    steps.commit();
    session_.catalog.changed(table->name);
}

}  // namespace owb::tsql
