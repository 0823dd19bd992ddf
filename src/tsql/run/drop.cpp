// DROP: tables, indexes, modules.
#include "base/utf8.h"
#include "tsql/run/atomic_steps.h"
#include "tsql/run/table_definitions.h"

namespace owb::tsql {

namespace {

const char* dropWord(ModuleKind kind) {
    switch (kind) {
        case ModuleKind::View:
            return "VIEW";
        case ModuleKind::Procedure:
            return "PROCEDURE";
        case ModuleKind::Trigger:
            return "TRIGGER";
        default:
            return "FUNCTION";
    }
}

}  // namespace

void TableDefinitions::drop(const DropStatement& s) {
    for (const Name& name : s.names) {  // those before one that is not there are gone
        AtomicSteps steps(session_.sqlite, name.last().starts_with("#"));
        watch_.look();
        if (s.what == "INDEX")
            dropIndex(s, name);
        else if (s.what == "TABLE")
            dropTable(s, name);
        else
            dropModule(s, name);
        steps.commit();
    }
}

void TableDefinitions::dropIndex(const DropStatement& s, const Name& name) {
    const std::string& object = name.last();
    Name tableName = s.table;
    if (tableName.empty()) tableName.parts.assign(name.parts.begin(), name.parts.end() - 1);
    if (tableName.empty()) throw makeDbError(3701, {"index", name.text()}, s.line);
    CatalogTablePtr table = session_.catalog.findTable(tableName);
    if (!table) throw makeDbError(3701, {"index", name.text()}, s.line);
    for (const CatalogKey& k : table->keys)
        if (sameName(k.name, object) && k.kind != CatalogKey::Index)
            throw makeDbError(
                3723, {name.text(), k.kind == CatalogKey::Primary ? "PRIMARY KEY" : "UNIQUE KEY"},
                s.line);
    try {
        session_.sqlite.run("DROP INDEX " + schemaOf(table->sqlName) +
                            sqliteName(table->indexName(object)));
    } catch (const DbError&) {
        if (s.ifExists) return;
        throw makeDbError(3701, {"index", tableName.text() + "." + object}, s.line);
    }
    SqliteStatement erase = session_.sqlite.prepare(
        "DELETE FROM tsql_constraint WHERE tbl = ?1 AND name = ?2 AND kind = 'I'");
    erase.bind(1, Value(foldName(table->name)));
    erase.bind(2, Value(object));
    session_.sqlite.step(erase);
    session_.catalog.changed(table->name);
}

void TableDefinitions::dropTable(const DropStatement& s, const Name& name) {
    const std::string& object = name.last();
    CatalogTablePtr table = session_.catalog.findTable(name);
    if (!table) {
        if (s.ifExists) return;
        throw makeDbError(3701, {"table", name.text()}, s.line);
    }
    session_.sqlite.run("DROP TABLE " + table->sqlName);
    if (table->temporary) {
        session_.catalog.forgetTemporary(*table);
    } else {
        const std::string folded = sqliteText(foldName(object));
        session_.sqlite.run("DELETE FROM tsql_constraint WHERE tbl = " + folded +
                            "; DELETE FROM tsql_identity WHERE tbl = " + folded);
        session_.catalog.forgetCreated(object);
        if (!table->triggers.empty()) {
            for (const std::string& trigger : table->triggers) {
                session_.sqlite.run("DELETE FROM tsql_module WHERE name = " +
                                    sqliteText(foldName(trigger)) + " COLLATE TSQL");
                session_.catalog.forgetCreated(trigger);
            }
            session_.catalog.modulesChanged(object);
        }
        session_.catalog.changed(object);
    }
}

void TableDefinitions::dropModule(const DropStatement& s, const Name& name) {
    const std::string& object = name.last();
    CatalogModulePtr module = session_.catalog.findModule(name);
    if (!module || s.what != dropWord(module->kind)) {
        if (!module && session_.catalog.findTable(name))
            throw makeDbError(3705, {s.what, object, object, "table", "TABLE"}, s.line);
        if (s.ifExists && !module) return;
        throw makeDbError(3701, {lowerCase(s.what), name.text()}, s.line);
    }
    SqliteStatement erase = session_.sqlite.prepare("DELETE FROM tsql_module WHERE name = ?1");
    erase.bind(1, Value(module->name));
    session_.sqlite.step(erase);
    erase = {};
    session_.catalog.forgetCreated(object);
    session_.catalog.modulesChanged(object);
}

}  // namespace owb::tsql
