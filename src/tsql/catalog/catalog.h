// What stands in the database: tables with their T-SQL types, and modules (views, functions,
// procedures, triggers) with their source.
//
// Table definitions are SQLite's own schema; what it cannot hold (named defaults, checks, keys,
// identity) stands in tsql_constraint and tsql_identity, the modules in tsql_module.
//
//  1. Objects are read when they are first asked for, and forgotten when anybody changes one: by
//     refresh() when it was another process, by changed() and modulesChanged() when it was us.
//  2. An object that was handed out never changes (a module gets its parsed text, when that is
//  first
//     asked for); a changed one is another object.
//  3. The signature of an object is made from all that plans rest on. Equal signatures mean that a
//     plan is still good, also when the object was forgotten and read again.
//  4. version() moves whenever anything may have changed: as long as it stands, no signature needs
//     to be asked for.
//  5. Temporary tables live in scopes, one for each call that runs; the innermost is searched
//  first.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "tsql/parse/names.h"
#include "tsql/parse/parsed_batch.h"
#include "tsql/sqlite/sql_text.h"
#include "tsql/sqlite/sqlite.h"

namespace owb::tsql {

struct CatalogColumn {
    std::string name;
    SqlType type;
    bool nullable = true;
    bool identity = false;
    std::string defaultSource;  // "" none
    std::string defaultName;
};

struct CatalogKey {
    std::string name;
    std::vector<std::string> columns;
    enum Kind { Primary, Unique, Index } kind = Index;  // Index: a unique index, no constraint
};

struct CatalogCheck {
    std::string name;
    std::string source;
};

struct CatalogTable {
    std::string name;     // as created: "LEV_MONTHDET", "#TMP"
    std::string sqlName;  // quoted and with its schema: main."LEV_MONTHDET", temp."#tmp"
    bool temporary = false;
    bool system = false;  // a system view
    std::vector<CatalogColumn> columns;
    std::vector<CatalogKey> keys;
    std::vector<CatalogCheck> checks;
    std::vector<std::string> triggers;  // module names
    int64_t identitySeed = 1, identityIncrement = 1;
    uint64_t signature = 0;

    int findColumn(std::string_view columnName) const;  // -1 when absent
    int identityColumn() const;
    std::string bareName() const;  // under which SQLite holds it, without schema and quotes
    // Of the index of that name, and of the one beside it that keeps NULL single in a key.
    std::string indexName(const std::string& name) const;
    std::string nullIndexName(const std::string& name) const { return indexName(name) + "~null"; }
};
using CatalogTablePtr = std::shared_ptr<const CatalogTable>;

// The name of a table while it is made anew.
constexpr const char* kRebuiltTable = "tsql_rebuilt";

struct CatalogModule {
    std::string name;
    ModuleKind kind = ModuleKind::View;
    std::string source;
    std::vector<std::vector<std::string>> stars;  // view: columns of each "*" as at creation
    std::string table;                            // trigger
    bool onInsert = false, onUpdate = false, onDelete = false;
    uint64_t signature = 0;
    std::shared_ptr<ParsedBatch> parsed;  // on first use; see Catalog::parsed
};
using CatalogModulePtr = std::shared_ptr<CatalogModule>;

class Catalog {
  public:
    explicit Catalog(Sqlite& sqlite);

    // Looks whether another process changed the schema, and forgets what was read if so.
    void refresh();
    // Whether nothing that plans rest on has changed. In the midst of a statement that reads the
    // file SQLite knows at no cost.
    bool stillCurrent(bool readingFile);
    // Our own change: forget the object, count the version on.
    void changed(const std::string& name);
    void modulesChanged(const std::string& name);
    uint64_t version() const { return version_; }

    // Null when there is none. Names are compared without regard to case. Temporary tables are
    // looked for from the innermost scope out.
    CatalogTablePtr findTable(const std::string& name);
    CatalogModulePtr findModule(const std::string& name);
    // The same by a written name: null, too, when its parts lead to another schema or database.
    CatalogTablePtr findTable(const Name& name);
    CatalogModulePtr findModule(const Name& name);
    // The module's text, parsed. Throws -3 when the file holds damage instead of it.
    ParsedBatch& parsed(CatalogModule& module);
    // Whether a written name leads to this database; to its schema dbo as well, or to the temporary
    // tables. Throws 7202 for another server.
    bool isDatabaseHere(const Name& name) const;
    bool isHere(const Name& name) const;
    // Throws 2702 or 2760 when nothing of that name can be made here.
    void requirePlace(const Name& name, int line) const;
    std::vector<std::string> tableNames();
    // When a table or module was made; NULL where that is not known.
    Value createdAt(const std::string& name);
    void noteCreated(const std::string& name, const DateTime& moment);
    void forgetCreated(const std::string& name);
    std::vector<CatalogModulePtr> modules();
    std::vector<CatalogTablePtr> tableVariables() const;  // of all scopes

    // --- scopes of temporary tables: a procedure's end drops what it made ---
    void openScope();
    void closeScope();
    // Takes the table over into the innermost scope; its sqlName is set by newTemporaryName.
    void addTemporary(CatalogTable table);
    void replaceTemporary(CatalogTable table);
    void forgetTemporary(const CatalogTable& table);
    // temp."name" under which SQLite holds a temporary table made now.
    std::string newTemporaryName(const std::string& name) const;
    // After a rollback: everything is read anew, temporary tables that went are forgotten.
    void rolledBack();

    Sqlite& sqlite() { return sqlite_; }
    // "company.dbo.T", as some errors name a table.
    std::string fullName(const CatalogTable& table) const {
        if (table.name[0] == '@') return table.name;
        return (table.temporary ? "tempdb" : sqlite_.databaseName()) + ".dbo." + table.name;
    }

  private:
    CatalogTablePtr load(const std::string& name);
    void readConstraints(CatalogTable& table);
    void readIdentity(CatalogTable& table);
    void loadModules();

    Sqlite& sqlite_;
    uint64_t version_ = 1;
    int64_t dataVersion_ = -1;
    int64_t schemaVersion_ = -1;
    int64_t moduleVersion_ = -1;
    std::unordered_map<std::string, CatalogTablePtr> tables_;  // by folded name
    std::map<std::string, CatalogModulePtr> modules_;
    bool modulesLoaded_ = false;
    std::vector<std::map<std::string, CatalogTablePtr>> scopes_;  // by folded name
};

// The T-SQL type that a column's declaration names, as SqlType::ddl writes it.
SqlType typeOfDeclaration(std::string_view declaration);

}  // namespace owb::tsql
