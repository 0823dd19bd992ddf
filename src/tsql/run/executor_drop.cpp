// DROP: tables, indexes, modules.
#include <algorithm>

#include "base/utf8.h"
#include "tsql/catalog/system_views.h"
#include "tsql/run/executor.h"
#include "tsql/types/types.h"

namespace owb::tsql {

void Executor::drop(const Statement& s) {
    for (const Name& name : s.names) {  // those before one that is not there are gone
        AtomicSteps steps(*sqlite_, name.last().starts_with("#"));
        lookAround();
        dropOne(s, name);
        steps.commit();
    }
}

void Executor::dropOne(const Statement& s, const Name& name) {
    const std::string& object = name.last();
    const std::string kind = lowerCase(s.dropKind);
    if (s.dropKind == "INDEX") {
        Name tableName = s.target;
        if (tableName.empty()) tableName.parts.assign(name.parts.begin(), name.parts.end() - 1);
        if (tableName.empty()) throw makeDbError(3701, {"index", name.text()}, s.line);
        CatalogTablePtr table = catalog_.findTable(tableName);
        if (!table) throw makeDbError(3701, {"index", name.text()}, s.line);
        for (const CatalogKey& k : table->keys)
            if (sameName(k.name, object) && k.kind != CatalogKey::Index)
                throw makeDbError(
                    3723,
                    {name.text(), k.kind == CatalogKey::Primary ? "PRIMARY KEY" : "UNIQUE KEY"},
                    s.line);
        try {
            sqlite_->run("DROP INDEX " + schemaOf(table->sqlName) +
                         sqliteName(table->indexName(object)));
        } catch (const DbError&) {
            if (s.ifExists) return;
            throw makeDbError(3701, {"index", tableName.text() + "." + object}, s.line);
        }
        SqliteStatement erase = sqlite_->prepare(
            "DELETE FROM tsql_constraint WHERE tbl = ?1 AND name = ?2 AND kind = 'I'");
        erase.bind(1, Value(foldName(table->name)));
        erase.bind(2, Value(object));
        sqlite_->step(erase);
        catalog_.changed(table->name);
        return;
    }
    if (s.dropKind == "TABLE") {
        CatalogTablePtr table = catalog_.findTable(name);
        if (!table) {
            if (s.ifExists) return;
            throw makeDbError(3701, {kind, name.text()}, s.line);
        }
        sqlite_->run("DROP TABLE " + table->sqlName);
        if (table->temporary) {
            catalog_.forgetTemporary(*table);
        } else {
            const std::string folded = sqliteText(foldName(object));
            sqlite_->run("DELETE FROM tsql_constraint WHERE tbl = " + folded +
                         "; DELETE FROM tsql_identity WHERE tbl = " + folded);
            catalog_.forgetCreated(object);
            if (!table->triggers.empty()) {
                for (const std::string& trigger : table->triggers) {
                    sqlite_->run("DELETE FROM tsql_module WHERE name = " +
                                 sqliteText(foldName(trigger)) + " COLLATE TSQL");
                    catalog_.forgetCreated(trigger);
                }
                catalog_.modulesChanged(object);
            }
            catalog_.changed(object);
        }
        return;
    }
    CatalogModulePtr module = catalog_.findModule(name);
    bool right = false;
    if (module) {
        switch (module->kind) {
            case ModuleKind::View:
                right = s.dropKind == "VIEW";
                break;
            case ModuleKind::Procedure:
                right = s.dropKind == "PROCEDURE";
                break;
            case ModuleKind::Trigger:
                right = s.dropKind == "TRIGGER";
                break;
            default:
                right = s.dropKind == "FUNCTION";
        }
    }
    if (!right && !module && catalog_.findTable(name))
        throw makeDbError(3705, {s.dropKind, object, object, "table", "TABLE"}, s.line);
    if (!right) {
        if (s.ifExists && !module) return;
        throw makeDbError(3701, {kind, name.text()}, s.line);
    }
    SqliteStatement erase = sqlite_->prepare("DELETE FROM tsql_module WHERE name = ?1");
    erase.bind(1, Value(module->name));
    sqlite_->step(erase);
    erase = {};
    catalog_.forgetCreated(object);
    catalog_.modulesChanged(object);
}

}  // namespace owb::tsql
