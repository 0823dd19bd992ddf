#include "tsql/catalog/catalog.h"

#include <algorithm>
#include <functional>

#include "base/utf8.h"

namespace owb::tsql {

namespace {

uint64_t mix(uint64_t seed, const std::string& text) {
    return seed * 1099511628211ull ^ std::hash<std::string>{}(text);
}

}  // namespace

SqlType typeOfDeclaration(std::string_view text) {
    const size_t open = text.find('(');
    const std::string word = lowerCase(trim(text.substr(0, open)));
    int first = 0, second = 0;
    bool max = false;
    if (open != std::string_view::npos) {
        const std::string inner(text.substr(open + 1));
        max = inner.starts_with("-1");
        if (!max) std::sscanf(inner.c_str(), "%d,%d", &first, &second);
    }
    static const std::pair<const char*, SqlKind> kinds[] = {
        {"bit", SqlKind::Bit},
        {"tinyint", SqlKind::TinyInt},
        {"smallint", SqlKind::SmallInt},
        {"int", SqlKind::Int},
        {"bigint", SqlKind::BigInt},
        {"numeric", SqlKind::Numeric},
        {"float", SqlKind::Float},
        {"char", SqlKind::Char},
        {"varchar", SqlKind::VarChar},
        {"nchar", SqlKind::NChar},
        {"nvarchar", SqlKind::NVarChar},
        {"date", SqlKind::Date},
        {"datetime", SqlKind::DateTime},
        {"smalldatetime", SqlKind::SmallDateTime},
        {"datetime2", SqlKind::DateTime2},
        {"time", SqlKind::Time},
        {"money", SqlKind::Money},
        {"smallmoney", SqlKind::SmallMoney},
        {"real", SqlKind::Real}};
    for (const auto& [name, kind] : kinds) {
        if (word != name) continue;
        if (kind == SqlKind::Numeric) return SqlType::numeric(first, second);
        SqlType t = SqlType::of(kind);
        if (t.isText()) t.length = max ? SqlType::kMax : first;
        if (t.isClock()) t.scale = static_cast<uint8_t>(first);
        return t;
    }
    return SqlType::text(SqlKind::NVarChar, SqlType::kMax);
}

int CatalogTable::findColumn(std::string_view columnName) const {
    for (size_t i = 0; i < columns.size(); ++i)
        if (sameName(columns[i].name, columnName)) return static_cast<int>(i);
    return -1;
}

int CatalogTable::identityColumn() const {
    for (size_t i = 0; i < columns.size(); ++i)
        if (columns[i].identity) return static_cast<int>(i);
    return -1;
}

std::string CatalogTable::bareName() const {
    const size_t open = sqlName.find('"');
    std::string name;
    for (size_t i = open + 1; i + 1 < sqlName.size(); ++i) {
        name += sqlName[i];
        if (sqlName[i] == '"') ++i;
    }
    return name;
}

std::string CatalogTable::indexName(const std::string& name) const {
    return sqlName.substr(sqlName.find('"') + 1) + name;
}

Catalog::Catalog(Sqlite& sqlite) : sqlite_(sqlite) {
    scopes_.emplace_back();
}

void Catalog::refresh() {
    const int64_t data = sqlite_.dataVersion();
    if (data == dataVersion_) return;
    dataVersion_ = data;
    const int64_t schema = sqlite_.number("PRAGMA main.schema_version").value_or(0);
    if (schema != schemaVersion_) {
        schemaVersion_ = schema;
        tables_.clear();
        ++version_;
    }
    const int64_t modules =
        sqlite_.number("SELECT value FROM tsql_meta WHERE name = 'modules'").value_or(0);
    if (modules != moduleVersion_) {
        moduleVersion_ = modules;
        modulesLoaded_ = false;
        ++version_;
    }
}

bool Catalog::stillCurrent(bool readingFile) {
    if (readingFile && sqlite_.readsSameVersion()) return true;
    const uint64_t before = version_;
    refresh();
    return version_ == before;
}

void Catalog::changed(const std::string& name) {
    tables_.erase(foldName(name));
    ++version_;
}

void Catalog::modulesChanged(const std::string& name) {
    sqlite_.run("UPDATE tsql_meta SET value = value + 1 WHERE name = 'modules'");
    // Only the one that changed is read anew; the others keep their parsed bodies.
    modules_.erase(foldName(name));
    modulesLoaded_ = false;
    tables_.clear();  // triggers stand with their tables
    ++version_;
}

void Catalog::rolledBack() {
    sqlite_.rolledBack = false;
    tables_.clear();
    modules_.clear();
    modulesLoaded_ = false;
    dataVersion_ = -1;
    schemaVersion_ = moduleVersion_ = -1;
    ++version_;
    for (auto& scope : scopes_) {
        for (auto it = scope.begin(); it != scope.end();) {
            const bool there = sqlite_
                                   .number("SELECT 1 FROM sqlite_temp_master WHERE name = " +
                                           sqliteText(it->second->bareName()))
                                   .has_value();
            it = there ? std::next(it) : scope.erase(it);
        }
    }
}

CatalogTablePtr Catalog::findTable(const std::string& name) {
    const std::string folded = foldName(name);
    if (!name.empty() && (name[0] == '#' || name[0] == '@')) {
        for (auto scope = scopes_.rbegin(); scope != scopes_.rend(); ++scope) {
            const auto found = scope->find(folded);
            if (found != scope->end()) return found->second;
        }
        return nullptr;
    }
    const auto found = tables_.find(folded);
    if (found != tables_.end()) return found->second;
    CatalogTablePtr table = load(name);
    tables_[folded] = table;
    return table;
}

bool Catalog::isDatabaseHere(const Name& name) const {
    const size_t parts = name.parts.size();
    if (parts < 3) return true;
    if (parts > 3) throw makeDbError(7202, {name.parts[0]});
    const std::string& database = name.parts[parts - 3];
    // Temporary tables are the server's own, whatever database is named.
    return database.empty() || name.last().starts_with("#") ||
           sameName(database, sqlite_.databaseName());
}

bool Catalog::isHere(const Name& name) const {
    const std::string schema = name.qualifier();
    return isDatabaseHere(name) && (schema.empty() || sameName(schema, "dbo"));
}

void Catalog::requirePlace(const Name& name, int line) const {
    if (!isDatabaseHere(name)) throw makeDbError(2702, {name.parts[name.parts.size() - 3]}, line);
    if (!isHere(name)) throw makeDbError(2760, {name.qualifier()}, line);
}

CatalogTablePtr Catalog::findTable(const Name& name) {
    return isHere(name) ? findTable(name.last()) : nullptr;
}

CatalogModulePtr Catalog::findModule(const Name& name) {
    return isHere(name) ? findModule(name.last()) : nullptr;
}

// Keys, checks and defaults.
void Catalog::readConstraints(CatalogTable& table) {
    SqliteStatement constraints = sqlite_.prepare(
        "SELECT name, kind, columns, source FROM tsql_constraint WHERE tbl = ?1 ORDER BY name");
    constraints.bind(1, Value(foldName(table.name)));
    while (sqlite_.step(constraints)) {
        const std::string constraint = constraints.text(0);
        const std::string kind = constraints.text(1);
        const std::string columns = constraints.text(2);
        const std::string source = constraints.text(3);
        table.signature = mix(table.signature, constraint + kind + columns + source);
        if (kind == "D") {
            const int at = table.findColumn(columns);
            if (at < 0) continue;
            table.columns[at].defaultSource = source;
            table.columns[at].defaultName = constraint;
        } else if (kind == "C") {
            table.checks.push_back({constraint, source});
        } else {
            table.keys.push_back({constraint, split(columns, '\x1f'),
                                  kind == "P"   ? CatalogKey::Primary
                                  : kind == "U" ? CatalogKey::Unique
                                                : CatalogKey::Index});
        }
    }
}

void Catalog::readIdentity(CatalogTable& table) {
    const std::string folded = foldName(table.name);
    SqliteStatement identity =
        sqlite_.prepare("SELECT seed, increment FROM tsql_identity WHERE tbl = ?1");
    identity.bind(1, Value(folded));
    if (sqlite_.step(identity)) {
        table.identitySeed = identity.integer(0);
        table.identityIncrement = identity.integer(1);
        SqliteStatement which =
            sqlite_.prepare("SELECT columns FROM tsql_constraint WHERE tbl = ?1 AND kind = 'N'");
        which.bind(1, Value(folded));
        if (sqlite_.step(which)) {
            const int at = table.findColumn(which.text(0));
            if (at >= 0) table.columns[at].identity = true;
        }
        std::erase_if(table.keys, [](const CatalogKey& k) { return k.name == "\x01identity"; });
    }
}

CatalogTablePtr Catalog::load(const std::string& name) {
    if (foldName(name).starts_with("tsql_") || foldName(name).starts_with("sqlite_"))
        return nullptr;
    SqliteStatement find = sqlite_.prepare(
        "SELECT name, sql FROM main.sqlite_master WHERE type = 'table' AND name = ?1 COLLATE TSQL");
    find.bind(1, Value(name));
    if (!sqlite_.step(find)) return nullptr;
    auto table = std::make_shared<CatalogTable>();
    table->name = find.text(0);
    table->sqlName = "main." + sqliteName(table->name);
    table->signature = mix(mix(14695981039346656037ull, table->name), find.text(1));

    SqliteStatement info =
        sqlite_.prepare("PRAGMA main.table_info(" + sqliteName(table->name) + ")");
    while (sqlite_.step(info)) {
        CatalogColumn c;
        c.name = info.text(1);
        c.type = typeOfDeclaration(info.text(2));
        c.nullable = info.integer(3) == 0;
        table->columns.push_back(std::move(c));
    }
    readConstraints(*table);
    readIdentity(*table);
    const std::string folded = foldName(table->name);
    for (const CatalogModulePtr& m : modules()) {
        if (m->kind != ModuleKind::Trigger || foldName(m->table) != folded) continue;
        table->triggers.push_back(m->name);
        table->signature = mix(table->signature, m->name + m->source);
    }
    return table;
}

void Catalog::loadModules() {
    if (modulesLoaded_) return;
    std::map<std::string, CatalogModulePtr> fresh;
    SqliteStatement s =
        sqlite_.prepare("SELECT name, kind, source, stars, tbl, events FROM tsql_module");
    while (sqlite_.step(s)) {
        const std::string name = s.text(0);
        const std::string folded = foldName(name);
        const std::string source = s.text(2);
        const std::string stars = s.text(3);
        const uint64_t signature = mix(mix(7, source), stars);
        const auto known = modules_.find(folded);
        if (known != modules_.end() && known->second->signature == signature) {
            fresh[folded] = known->second;
            continue;
        }
        auto m = std::make_shared<CatalogModule>();
        m->name = name;
        m->kind = static_cast<ModuleKind>(s.integer(1));
        m->source = source;
        for (const std::string& star : split(stars, '\x1e'))
            m->stars.push_back(split(star, '\x1f'));
        m->table = s.text(4);
        const int events = s.integer(5);
        m->onInsert = events & 1;
        m->onUpdate = events & 2;
        m->onDelete = events & 4;
        m->signature = signature;
        fresh[folded] = std::move(m);
    }
    modules_ = std::move(fresh);
    modulesLoaded_ = true;
}

CatalogModulePtr Catalog::findModule(const std::string& name) {
    loadModules();
    const auto found = modules_.find(foldName(name));
    return found == modules_.end() ? nullptr : found->second;
}

ParsedBatch& Catalog::parsed(CatalogModule& module) {
    if (module.parsed) return *module.parsed;
    std::string damage = "its text is that of another object";
    try {
        std::shared_ptr<ParsedBatch> parsed = parseBatch(module.source);
        const ModuleDefinition* d = parsed->definition;
        if (d && d->kind == module.kind && sameName(d->name.last(), module.name)) {
            module.parsed = std::move(parsed);
            return *module.parsed;
        }
    } catch (const DbError& e) {
        damage = e.what();
    }
    throw makeDbError(-3, {"The routine " + module.name + " is damaged: " + damage});
}

std::vector<CatalogModulePtr> Catalog::modules() {
    loadModules();
    std::vector<CatalogModulePtr> all;
    for (const auto& [name, module] : modules_) all.push_back(module);
    return all;
}

std::vector<std::string> Catalog::tableNames() {
    std::vector<std::string> names;
    SqliteStatement s = sqlite_.prepare(
        "SELECT name FROM main.sqlite_master WHERE type = 'table' AND name NOT LIKE 'tsql~_%' "
        "ESCAPE '~' AND name NOT LIKE 'sqlite~_%' ESCAPE '~' ORDER BY name COLLATE TSQL");
    while (sqlite_.step(s)) names.push_back(s.text(0));
    return names;
}

std::vector<CatalogTablePtr> Catalog::tableVariables() const {
    std::vector<CatalogTablePtr> all;
    for (const auto& scope : scopes_)
        for (const auto& [name, table] : scope)
            if (name[0] == '@') all.push_back(table);
    return all;
}

Value Catalog::createdAt(const std::string& name) {
    SqliteStatement s = sqlite_.prepare("SELECT moment FROM tsql_created WHERE name = ?1");
    s.bind(1, Value(foldName(name)));
    if (!sqlite_.step(s)) return {};
    return s.value(0, SqlType::of(SqlKind::DateTime));
}

void Catalog::noteCreated(const std::string& name, const DateTime& moment) {
    SqliteStatement s = sqlite_.prepare("INSERT OR REPLACE INTO tsql_created VALUES(?1, ?2)");
    s.bind(1, Value(foldName(name)));
    s.bind(2, Value(moment));
    sqlite_.step(s);
}

void Catalog::forgetCreated(const std::string& name) {
    SqliteStatement s = sqlite_.prepare("DELETE FROM tsql_created WHERE name = ?1");
    s.bind(1, Value(foldName(name)));
    sqlite_.step(s);
}

void Catalog::openScope() {
    scopes_.emplace_back();
}

void Catalog::closeScope() {
    for (const auto& [name, table] : scopes_.back())
        sqlite_.run("DROP TABLE IF EXISTS " + table->sqlName);
    if (!scopes_.back().empty()) ++version_;
    scopes_.pop_back();
}

std::string Catalog::newTemporaryName(const std::string& name) const {
    std::string actual = foldName(name);
    if (scopes_.size() > 1) actual += "~" + std::to_string(scopes_.size() - 1);
    return "temp." + sqliteName(actual);
}

void Catalog::addTemporary(CatalogTable table) {
    table.temporary = true;
    uint64_t signature = mix(3, table.sqlName);
    for (const CatalogColumn& c : table.columns)
        signature = mix(signature, c.name + c.type.ddl() + (c.nullable ? "?" : "!"));
    table.signature = signature;
    const std::string folded = foldName(table.name);
    scopes_.back()[folded] = std::make_shared<CatalogTable>(std::move(table));
    ++version_;
}

void Catalog::replaceTemporary(CatalogTable table) {
    const std::string folded = foldName(table.name);
    for (auto scope = scopes_.rbegin(); scope != scopes_.rend(); ++scope) {
        const auto found = scope->find(folded);
        if (found == scope->end()) continue;
        ++table.signature;
        for (const CatalogColumn& c : table.columns)
            table.signature = mix(table.signature, c.name + c.type.ddl());
        found->second = std::make_shared<CatalogTable>(std::move(table));
        ++version_;
        return;
    }
}

void Catalog::forgetTemporary(const CatalogTable& table) {
    const std::string folded = foldName(table.name);
    for (auto scope = scopes_.rbegin(); scope != scopes_.rend(); ++scope) {
        if (scope->erase(folded)) {
            ++version_;
            return;
        }
    }
}

}  // namespace owb::tsql
