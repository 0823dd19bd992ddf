// ALTER TABLE. Each of its actions takes the table as the one before it left it.
#include <algorithm>

#include "tsql/run/atomic_steps.h"
#include "tsql/run/table_definitions.h"
#include "tsql/run/table_description.h"

namespace owb::tsql {

// Keeps what became of a table whose SQL stands already.
void TableDefinitions::store(const CatalogTable& before, CatalogTable after) {
    if (!before.temporary) tables_.storeConstraints(after);
    tables_.changed(before, std::move(after));
}

void TableDefinitions::alter(const AlterTableStatement& s) {
    const CatalogTablePtr before = session_.catalog.findTable(s.table);
    if (!before) throw makeDbError(4902, {s.table.text()}, s.line);
    try {
        AtomicSteps steps(session_.sqlite);
        for (const AlterAction& action : s.actions)
            alter(*session_.catalog.findTable(s.table.last()), action, s.line);
        steps.commit();
    } catch (const DbError&) {
        // The actions before the failed one are undone in the file; the catalog must follow.
        tables_.changed(*before, *before);
        throw;
    }
}

void TableDefinitions::alter(const CatalogTable& table, const AlterAction& action, int line) {
    switch (action.kind) {
        case AlterAction::AddColumn:
            return addColumn(table, action.column, line);
        case AlterAction::AddConstraint:
            return addConstraint(table, action.constraint, line);
        case AlterAction::DropColumn:
            return dropColumn(table, action.name, line);
        case AlterAction::DropConstraint:
            return dropConstraint(table, action.name, line);
        case AlterAction::AlterColumn:
            return alterColumn(table, action.column, line);
    }
}

// What the rows that are there already get: the default where the column may not be NULL, and NULL
// otherwise ("").
std::string TableDefinitions::newColumnDefault(const CatalogTable& table, const ColumnDefinition& c,
                                               int line) {
    if (c.nullable != false && !c.identity) return "";
    if (!c.defaultSource.empty()) {
        Frame frame(compileBatch("SELECT " + c.defaultSource));
        const Query& query = *as<QueryStatement>(*frame.code->parsed->ast.statements[0]).query;
        return sqliteLiteral(plans_.evaluate(frame, *query.body->items[0].expr, c.type));
    }
    if (!c.identity && session_.sqlite.number("SELECT 1 FROM " + table.sqlName + " LIMIT 1"))
        throw makeDbError(4901, {c.name, table.name}, line);
    // An empty table: SQLite still wants a default beside NOT NULL.
    return c.type.isText() ? "''" : "0";
}

void TableDefinitions::addColumn(const CatalogTable& table, const ColumnDefinition& c, int line) {
    if (table.findColumn(c.name) >= 0) throw makeDbError(2705, {c.name, table.name}, line);
    CatalogTable after = table;
    after.columns.push_back(describeTable(table.name, {c}, {}).columns[0]);
    if (c.identity) {
        after.identitySeed = c.seed;
        after.identityIncrement = c.increment;
    }
    std::string ddl = "ALTER TABLE " + table.sqlName + " ADD COLUMN " + sqliteName(c.name) + " " +
                      storedType(c.type);
    if (c.type.isText()) ddl += " COLLATE TSQL";
    const std::string fill = newColumnDefault(table, c, line);
    if (!fill.empty()) ddl += " NOT NULL DEFAULT " + fill;
    session_.sqlite.run(ddl);
    if (c.identity)
        session_.sqlite.run("UPDATE " + table.sqlName + " SET " + sqliteName(c.name) + " = " +
                            std::to_string(c.seed) + " + " + std::to_string(c.increment) +
                            " * (rowid - 1)");
    store(table, std::move(after));
}

void TableDefinitions::addKey(const CatalogTable& table, const ConstraintDefinition& c, int line) {
    const bool primary = c.kind == ConstraintDefinition::PrimaryKey;
    if (primary) {
        for (const CatalogKey& k : table.keys)
            if (k.kind == CatalogKey::Primary)
                throw followedBy(makeDbError(1779, {table.name}), makeDbError(1750, {}, line));
        for (const std::string& column : c.columns)
            if (table.columns[table.findColumn(column)].nullable)
                throw followedBy(makeDbError(8111, {table.name}), makeDbError(1750, {}, line));
    }
    CatalogKey key{c.name, c.columns, primary ? CatalogKey::Primary : CatalogKey::Unique};
    if (key.name.empty())
        key.name = primary ? generatedName("PK", table.name, "")
                           : generatedName("UQ", table.name, joined(c.columns, ','));
    try {
        tables_.createKeyIndex(table, key, true);
    } catch (const DbError& e) {
        throw followedBy(e, makeDbError(1750, {}, line));
    }
    CatalogTable after = table;
    after.keys.push_back(std::move(key));
    store(table, std::move(after));
}

void TableDefinitions::addConstraint(const CatalogTable& table, const ConstraintDefinition& c,
                                     int line) {
    for (const std::string& column : c.columns)
        if (table.findColumn(column) < 0) throw makeDbError(1911, {column}, line);
    if (!c.name.empty()) {
        bool taken = std::any_of(table.keys.begin(), table.keys.end(),
                                 [&](const CatalogKey& k) { return sameName(k.name, c.name); });
        for (const CatalogColumn& column : table.columns)
            taken |= !column.defaultName.empty() && sameName(column.defaultName, c.name);
        if (taken) throw makeDbError(2714, {c.name}, line);
    }
    switch (c.kind) {
        case ConstraintDefinition::PrimaryKey:
        case ConstraintDefinition::Unique:
            return addKey(table, c, line);
        case ConstraintDefinition::Default: {
            CatalogTable after = table;
            CatalogColumn& column = after.columns[after.findColumn(c.columns[0])];
            if (!column.defaultSource.empty()) throw makeDbError(1781, {}, line);
            column.defaultSource = c.source;
            column.defaultName =
                c.name.empty() ? generatedName("DF", table.name, c.columns[0]) : c.name;
            return store(table, std::move(after));
        }
        case ConstraintDefinition::Check: {
            CatalogTable after = table;
            after.checks.push_back(
                {c.name.empty() ? generatedName("CK", table.name, c.source) : c.name, c.source});
            return tables_.rebuild(table, std::move(after));
        }
        case ConstraintDefinition::ForeignKey:
            throw makeDbError(15281, {"A FOREIGN KEY constraint"}, line);
    }
}

void TableDefinitions::dropConstraint(const CatalogTable& table, const std::string& name,
                                      int line) {
    CatalogTable after = table;
    const std::string folded = foldName(name);
    bool found = false, check = false;
    for (const CatalogKey& k : table.keys) {
        if (foldName(k.name) != folded || k.kind == CatalogKey::Index) continue;
        const std::string schema = schemaOf(table.sqlName);
        session_.sqlite.run("DROP INDEX " + schema + sqliteName(table.indexName(k.name)) +
                            "; DROP INDEX IF EXISTS " + schema +
                            sqliteName(table.nullIndexName(k.name)));
        found = true;
    }
    std::erase_if(after.keys, [&](const CatalogKey& k) { return foldName(k.name) == folded; });
    for (CatalogColumn& c : after.columns)
        if (!c.defaultName.empty() && foldName(c.defaultName) == folded) {
            c.defaultName.clear();
            c.defaultSource.clear();
            found = true;
        }
    const size_t checks = after.checks.size();
    std::erase_if(after.checks, [&](const CatalogCheck& c) { return foldName(c.name) == folded; });
    check = after.checks.size() != checks;
    if (!found && !check) throw followedBy(makeDbError(3728, {name}), makeDbError(3727, {}, line));
    if (table.temporary) {
        session_.catalog.replaceTemporary(std::move(after));
        return;
    }
    SqliteStatement erase = session_.sqlite.prepare(
        "DELETE FROM tsql_constraint WHERE tbl = ?1 AND name = ?2 COLLATE TSQL");
    erase.bind(1, Value(foldName(table.name)));
    erase.bind(2, Value(name));
    session_.sqlite.step(erase);
    erase = {};
    if (check) tables_.rebuild(table, std::move(after));
    session_.catalog.changed(table.name);
}

void TableDefinitions::dropColumn(const CatalogTable& table, const std::string& name, int line) {
    const int at = table.findColumn(name);
    if (at < 0) throw makeDbError(4924, {"DROP COLUMN", name, table.name}, line);
    if (!table.columns[at].defaultName.empty())
        throw followedBy(makeDbError(5074, {table.columns[at].defaultName, name}),
                         makeDbError(4922, {"DROP COLUMN", name}, line));
    for (const CatalogKey& k : table.keys)
        for (const std::string& c : k.columns)
            if (sameName(c, name))
                throw followedBy(makeDbError(5074, {k.name, name}),
                                 makeDbError(4922, {"DROP COLUMN", name}, line));
    session_.sqlite.run("ALTER TABLE " + table.sqlName + " DROP COLUMN " +
                        sqliteName(table.columns[at].name));
    if (table.temporary) {
        CatalogTable after = table;
        after.columns.erase(after.columns.begin() + at);
        session_.catalog.replaceTemporary(std::move(after));
    }
    session_.catalog.changed(table.name);
}

void TableDefinitions::alterColumn(const CatalogTable& table, const ColumnDefinition& c, int line) {
    const int at = table.findColumn(c.name);
    if (at < 0) throw makeDbError(4924, {"ALTER COLUMN", c.name, table.name}, line);
    CatalogTable after = table;
    after.columns[at].type = c.type;
    after.columns[at].nullable = c.nullable.value_or(true);
    tables_.rebuild(table, std::move(after));
}

}  // namespace owb::tsql
