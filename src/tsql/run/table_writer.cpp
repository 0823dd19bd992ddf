#include "tsql/run/table_writer.h"

#include <functional>

#include "tsql/lower/lowerer.h"
#include "tsql/run/atomic_steps.h"
#include "tsql/run/broken_constraint.h"
#include "tsql/run/table_description.h"
#include "tsql/types/types.h"

namespace owb::tsql {

std::string storedType(const SqlType& type) {
    if (type.isText() && type.length == SqlType::kMax) return std::string(type.name()) + "(-1)";
    return type.ddl();
}

// The condition of a CHECK in SQLite's words, over the table's bare columns.
std::string TableWriter::checkText(const CatalogTable& table, const std::string& source) {
    Frame frame(compileBatch("SELECT 1 FROM checked WHERE " + source));
    const Batch& ast = frame.code->parsed->ast;
    PseudoTables pseudo;
    pseudo["checked"] = std::make_shared<CatalogTable>(table);
    frame.pseudoTables = &pseudo;
    BindContext context = session_.bindContext(frame);
    Binder binder(context);
    auto q = binder.bindQuery(*as<QueryStatement>(*ast.statements[0]).query);
    std::function<void(BoundExpr&)> prepare = [&](BoundExpr& e) {
        if (e.query) throw makeDbError(15281, {"A subquery in a CHECK constraint"});
        if (e.kind == BoundKind::Column) {
            e.kind = BoundKind::Verbatim;
            e.pattern = sqliteName(table.columns[e.column].name);
        }
        if (e.kind == BoundKind::Literal) {
            const Value& held = e.index < 0 ? e.constant : ast.literals[e.index].value;
            e.kind = BoundKind::Verbatim;
            e.pattern =
                sqliteLiteral(convertValue(e.negated ? negated(held) : held, e.sourceType, e.type));
        }
        for (BoundPtr& a : e.args) prepare(*a);
    };
    prepare(*q->where);
    std::vector<PlanParameter> none;
    return Lowerer(none).expression(*q->where);
}

std::string TableWriter::ddl(const CatalogTable& table, const std::string& sqlName) {
    std::string ddl = "CREATE TABLE " + sqlName + "(";
    for (size_t i = 0; i < table.columns.size(); ++i) {
        const CatalogColumn& c = table.columns[i];
        ddl += (i ? ", " : "") + sqliteName(c.name) + " " + storedType(c.type);
        if (c.type.isText()) ddl += " COLLATE TSQL";
        if (!c.nullable) ddl += " NOT NULL";
    }
    for (const CatalogCheck& check : table.checks)
        ddl += ", CONSTRAINT " + sqliteName(check.name) + " CHECK (" +
               checkText(table, check.source) + ")";
    return ddl + ")";
}

void TableWriter::createKeyIndex(const CatalogTable& table, const CatalogKey& key, bool unique) {
    std::string columns;
    for (const std::string& c : key.columns)
        columns +=
            (columns.empty() ? "" : ", ") + sqliteName(table.columns[table.findColumn(c)].name);
    const std::string schema = schemaOf(table.sqlName);
    const std::string on = " ON " + withoutSchema(table.sqlName) + "(";
    try {
        session_.sqlite.run("CREATE " + std::string(unique ? "UNIQUE " : "") + "INDEX " + schema +
                            sqliteName(table.indexName(key.name)) + on + columns + ")");
        // One NULL counts as equal to another in a key, which SQLite does not think.
        const CatalogColumn& column = table.columns[table.findColumn(key.columns[0])];
        if (unique && key.columns.size() == 1 && column.nullable)
            session_.sqlite.run("CREATE UNIQUE INDEX " + schema +
                                sqliteName(table.nullIndexName(key.name)) + on + "(1)) WHERE " +
                                sqliteName(column.name) + " IS NULL");
    } catch (const BrokenConstraint&) {
        throw makeDbError(1505, {"dbo." + table.name, key.name});
    }
}

void TableWriter::storeConstraints(const CatalogTable& table) {
    if (table.temporary) return;
    const std::string name = foldName(table.name);
    SqliteStatement insert = session_.sqlite.prepare(
        "INSERT OR REPLACE INTO tsql_constraint VALUES(?1, ?2, ?3, ?4, ?5)");
    const auto add = [&](const std::string& constraint, const char* kind,
                         const std::string& columns, const std::string& source) {
        insert.bind(1, Value(name));
        insert.bind(2, Value(constraint));
        insert.bind(3, Value(kind));
        insert.bind(4, Value(columns));
        insert.bind(5, Value(source));
        session_.sqlite.step(insert);
        insert.rewind();
    };
    for (const CatalogKey& k : table.keys)
        add(k.name,
            k.kind == CatalogKey::Primary  ? "P"
            : k.kind == CatalogKey::Unique ? "U"
                                           : "I",
            joined(k.columns, '\x1f'), "");
    for (const CatalogCheck& c : table.checks) add(c.name, "C", "", c.source);
    for (const CatalogColumn& c : table.columns)
        if (!c.defaultSource.empty()) add(c.defaultName, "D", c.name, c.defaultSource);
    const int identity = table.identityColumn();
    if (identity >= 0) {
        add("\x01identity", "N", table.columns[identity].name, "");
        session_.sqlite.run("INSERT OR IGNORE INTO tsql_identity VALUES(" + sqliteText(name) + "," +
                            std::to_string(table.identitySeed) + "," +
                            std::to_string(table.identityIncrement) + ",NULL)");
    }
}

void TableWriter::create(CatalogTable table, int line) {
    const bool temporary = table.name[0] == '#' || table.name[0] == '@';
    table.temporary = temporary;
    table.sqlName = temporary ? session_.catalog.newTemporaryName(table.name)
                              : "main." + sqliteName(table.name);
    if (foldName(table.name).starts_with("tsql_") || foldName(table.name).starts_with("sqlite_"))
        throw makeDbError(15281, {"The table name " + table.name}, line);
    AtomicSteps steps(session_.sqlite, temporary);
    makeWithKeys(table);
    storeConstraints(table);
    if (!temporary) session_.catalog.noteCreated(table.name, session_.statementTime());
    steps.commit();
    const std::string name = table.name;
    if (temporary) session_.catalog.addTemporary(std::move(table));
    session_.catalog.changed(name);
}

void TableWriter::changed(const CatalogTable& before, CatalogTable after) {
    if (before.temporary)
        session_.catalog.replaceTemporary(std::move(after));
    else
        session_.catalog.changed(before.name);
}

void TableWriter::rebuild(const CatalogTable& before, CatalogTable after) {
    Sqlite& sqlite = session_.sqlite;
    const std::string schema = schemaOf(before.sqlName);
    const std::string fresh = schema + sqliteName(kRebuiltTable);
    std::string names, values;
    for (const CatalogColumn& c : after.columns) {
        const int at = before.findColumn(c.name);
        if (at < 0) continue;
        names += (names.empty() ? "" : ", ") + sqliteName(c.name);
        const SqlType& from = before.columns[at].type;
        values += values.empty() ? "" : ", ";
        values += from == c.type
                      ? sqliteName(c.name)
                      : "t_cv(" + sqliteName(c.name) + "," + std::to_string(packType(from)) + "," +
                            std::to_string(packType(c.type)) + ",-1)";
    }
    // Plain indexes stand only in SQLite's own schema.
    std::vector<std::string> indexes;
    SqliteStatement find =
        sqlite.prepare("SELECT sql FROM " + schema +
                       "sqlite_master WHERE type = 'index' AND sql IS NOT NULL AND tbl_name = " +
                       withoutSchema(before.sqlName) + " COLLATE NOCASE");
    while (sqlite.step(find)) indexes.push_back(find.text(0));
    find = {};
    AtomicSteps steps(sqlite);
    sqlite.run(ddl(after, fresh));
    try {
        sqlite.run("INSERT INTO " + fresh + "(" + names + ") SELECT " + values + " FROM " +
                   before.sqlName);
    } catch (const BrokenConstraint& e) {
        throw constraintError(session_, e, after, "ALTER TABLE");
    }
    sqlite.run("DROP TABLE " + before.sqlName);
    sqlite.run("ALTER TABLE " + fresh + " RENAME TO " + withoutSchema(before.sqlName));
    for (std::string index : indexes) {
        // SQLite keeps the text without the schema.
        if (before.temporary) index.insert(index.find("INDEX ") + 6, "temp.");
        sqlite.run(index);
    }
    storeConstraints(after);
    steps.commit();
    changed(before, std::move(after));
}

void TableWriter::makeWithKeys(const CatalogTable& table) {
    session_.sqlite.run(ddl(table, table.sqlName));
    for (const CatalogKey& key : table.keys) createKeyIndex(table, key, true);
}

std::vector<std::vector<Value>> TableWriter::rowsOf(const CatalogTable& table) {
    std::vector<std::vector<Value>> rows;
    SqliteStatement read = session_.sqlite.prepare("SELECT * FROM " + table.sqlName);
    while (session_.sqlite.step(read)) {
        rows.emplace_back();
        for (size_t i = 0; i < table.columns.size(); ++i)
            rows.back().push_back(read.value(static_cast<int>(i), table.columns[i].type));
    }
    return rows;
}

void TableWriter::addRows(const CatalogTable& table, const std::vector<std::vector<Value>>& rows) {
    std::string marks;
    for (size_t i = 0; i < table.columns.size(); ++i) marks += i ? ",?" : "?";
    SqliteStatement write =
        session_.sqlite.prepare("INSERT INTO " + table.sqlName + " VALUES(" + marks + ")");
    for (const auto& row : rows) {
        for (size_t i = 0; i < row.size(); ++i) write.bind(static_cast<int>(i) + 1, row[i]);
        session_.sqlite.step(write);
        write.rewind();
    }
}

}  // namespace owb::tsql
