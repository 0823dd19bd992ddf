// CREATE and ALTER: tables with their constraints, indexes, modules.
#include <algorithm>

#include "base/utf8.h"
#include "tsql/catalog/system_views.h"
#include "tsql/parse/parser.h"
#include "tsql/run/executor.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

std::string joined(const std::vector<std::string>& parts, char separator) {
    std::string out;
    for (size_t i = 0; i < parts.size(); ++i) {
        if (i) out += separator;
        out += parts[i];
    }
    return out;
}

// A name for a constraint that the text gives none.
std::string generatedName(const char* kind, const std::string& table, const std::string& what) {
    char suffix[20];
    std::snprintf(suffix, sizeof suffix, "%08zX",
                  std::hash<std::string>{}(foldName(table + "." + what)) & 0xFFFFFFFF);
    return std::string(kind) + "__" + table.substr(0, 9) + "__" + suffix;
}

// SQLite's grammar wants a number where T-SQL says (MAX).
std::string storedType(const SqlType& type) {
    if (type.isText() && type.length == SqlType::kMax) return std::string(type.name()) + "(-1)";
    return type.ddl();
}

// A function changes nothing but its own variables.
void forbidWrites(const std::vector<StatementPtr>& statements) {
    for (const StatementPtr& s : statements) {
        const char* verb = nullptr;
        const bool table = !s->target.empty() && s->target.last()[0] != '@';
        switch (s->kind) {
            case StatementKind::Insert:
                verb = table ? "INSERT" : nullptr;
                break;
            case StatementKind::Update:
                verb = table ? "UPDATE" : nullptr;
                break;
            case StatementKind::Delete:
                verb = table ? "DELETE" : nullptr;
                break;
            case StatementKind::ExecuteText:
                verb = "EXECUTE STRING";
                break;
            case StatementKind::CreateTable:
                verb = "CREATE TABLE";
                break;
            case StatementKind::Drop:
                verb = "DROP";
                break;
            default:
                break;
        }
        if (verb) throw makeDbError(443, {verb}, s->line);
        forbidWrites(s->body);
        forbidWrites(s->otherwise);
    }
}

}  // namespace

CatalogTable Executor::describeTable(const std::string& name,
                                     const std::vector<ColumnDefinition>& columns,
                                     const std::vector<ConstraintDefinition>& constraints) {
    CatalogTable table;
    table.name = name;
    for (const ColumnDefinition& c : columns) {
        if (table.findColumn(c.name) >= 0) throw makeDbError(2705, {c.name, name}, c.line);
        CatalogColumn column;
        column.name = c.name;
        column.type = c.type;
        column.nullable = c.nullable.value_or(!c.identity);
        column.identity = c.identity;
        column.defaultSource = c.defaultSource;
        if (!c.defaultSource.empty())
            column.defaultName =
                c.defaultName.empty() ? generatedName("DF", name, c.name) : c.defaultName;
        if (c.identity) {
            table.identitySeed = c.seed;
            table.identityIncrement = c.increment;
        }
        table.columns.push_back(std::move(column));
    }
    for (const ConstraintDefinition& c : constraints) {
        for (const std::string& column : c.columns)
            if (table.findColumn(column) < 0) throw makeDbError(1911, {column}, c.line);
        std::string constraint = c.name;
        switch (c.kind) {
            case ConstraintDefinition::PrimaryKey:
                for (const std::string& column : c.columns) {
                    const int at = table.findColumn(column);
                    // Written NULL beside PRIMARY KEY is refused; unsaid becomes NOT NULL.
                    for (const ColumnDefinition& d : columns)
                        if (sameName(d.name, column) && d.nullable == true)
                            throw followedBy(makeDbError(8111, {name}),
                                             makeDbError(1750, {}, c.line));
                    table.columns[at].nullable = false;
                }
                for (const CatalogKey& k : table.keys)
                    if (k.kind == CatalogKey::Primary) throw makeDbError(8110, {name}, c.line);
                if (constraint.empty()) constraint = generatedName("PK", name, "");
                table.keys.push_back({constraint, c.columns, CatalogKey::Primary});
                break;
            case ConstraintDefinition::Unique:
                if (constraint.empty())
                    constraint = generatedName("UQ", name, joined(c.columns, ','));
                table.keys.push_back({constraint, c.columns, CatalogKey::Unique});
                break;
            case ConstraintDefinition::Check:
                if (constraint.empty()) constraint = generatedName("CK", name, c.source);
                table.checks.push_back({constraint, c.source});
                break;
            case ConstraintDefinition::Default: {
                const int at = table.findColumn(c.columns[0]);
                table.columns[at].defaultSource = c.source;
                table.columns[at].defaultName =
                    constraint.empty() ? generatedName("DF", name, c.columns[0]) : constraint;
                break;
            }
            case ConstraintDefinition::ForeignKey:
                throw makeDbError(15281, {"A FOREIGN KEY constraint"}, c.line);
        }
    }
    return table;
}

// The condition of a CHECK in SQLite's words, over the table's bare columns.
std::string Executor::checkText(const CatalogTable& table, const std::string& source) {
    const std::string select = "SELECT 1 FROM checked WHERE " + source;
    auto code = compileBatch(select);
    std::map<std::string, CatalogTablePtr> pseudo;
    pseudo["checked"] = std::make_shared<CatalogTable>(table);
    Frame frame;
    frame.code = code;
    frame.pseudoTables = &pseudo;
    BindContext context = bindContext(frame);
    Binder binder(context);
    auto q = binder.bindQuery(*code->parsed->ast.statements[0]->query);
    std::function<void(BoundExpr&)> prepare = [&](BoundExpr& e) {
        if (e.query) throw makeDbError(15281, {"A subquery in a CHECK constraint"});
        if (e.kind == BoundKind::Column) {
            e.kind = BoundKind::Verbatim;
            e.pattern = sqliteName(table.columns[e.column].name);
        }
        if (e.kind == BoundKind::Literal) {
            const Value& held =
                e.index < 0 ? e.constant : code->parsed->ast.literals[e.index].value;
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

std::string Executor::tableDdl(const CatalogTable& table, const std::string& sqlName) {
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

void Executor::createKeyIndex(const CatalogTable& table, const CatalogKey& key, bool unique) {
    std::string columns;
    for (const std::string& c : key.columns) {
        const int at = table.findColumn(c);
        columns += (columns.empty() ? "" : ", ") + sqliteName(table.columns[at].name);
    }
    const std::string schema = schemaOf(table.sqlName);
    try {
        sqlite_->run("CREATE " + std::string(unique ? "UNIQUE " : "") + "INDEX " + schema +
                     sqliteName(table.indexName(key.name)) + " ON " + withoutSchema(table.sqlName) +
                     "(" + columns + ")");
        // One NULL counts as equal to another in a key, which SQLite does not think.
        const CatalogColumn& column = table.columns[table.findColumn(key.columns[0])];
        if (unique && key.columns.size() == 1 && column.nullable)
            sqlite_->run("CREATE UNIQUE INDEX " + schema +
                         sqliteName(table.nullIndexName(key.name)) + " ON " +
                         withoutSchema(table.sqlName) + "((1)) WHERE " + sqliteName(column.name) +
                         " IS NULL");
    } catch (const DbError& e) {
        if (e.number != -2627) throw;
        throw makeDbError(1505, {"dbo." + table.name, key.name});
    }
}

void Executor::storeConstraints(const CatalogTable& table) {
    if (table.temporary) return;
    const std::string name = foldName(table.name);
    SqliteStatement insert =
        sqlite_->prepare("INSERT OR REPLACE INTO tsql_constraint VALUES(?1, ?2, ?3, ?4, ?5)");
    const auto add = [&](const std::string& constraint, const char* kind,
                         const std::string& columns, const std::string& source) {
        insert.bind(1, Value(name));
        insert.bind(2, Value(constraint));
        insert.bind(3, Value(kind));
        insert.bind(4, Value(columns));
        insert.bind(5, Value(source));
        sqlite_->step(insert);
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
        sqlite_->run("INSERT OR IGNORE INTO tsql_identity VALUES(" + sqliteText(name) + "," +
                     std::to_string(table.identitySeed) + "," +
                     std::to_string(table.identityIncrement) + ",NULL)");
    }
}

void Executor::createTable(const Statement& s) {
    catalog_.requirePlace(s.target, s.line);
    const std::string& name = s.target.last();
    if (catalog_.findTable(name) || catalog_.findModule(name))
        throw makeDbError(2714, {name}, s.line);
    createTable(describeTable(name, s.tableColumns, s.constraints), s.line);
}

void Executor::createTable(CatalogTable table, int line) {
    const bool temporary = table.name[0] == '#' || table.name[0] == '@';
    table.temporary = temporary;
    table.sqlName =
        temporary ? catalog_.newTemporaryName(table.name) : "main." + sqliteName(table.name);
    if (foldName(table.name).starts_with("tsql_") || foldName(table.name).starts_with("sqlite_"))
        throw makeDbError(15281, {"The table name " + table.name}, line);
    AtomicSteps steps(*sqlite_, temporary);
    sqlite_->run(tableDdl(table, table.sqlName));
    for (const CatalogKey& key : table.keys) createKeyIndex(table, key, true);
    storeConstraints(table);
    if (!temporary) catalog_.noteCreated(table.name, statementTime());
    steps.commit();
    const std::string name = table.name;
    if (temporary) catalog_.addTemporary(std::move(table));
    catalog_.changed(name);
}

// SQLite cannot change a column's type or a check in place: the table is made anew under its name.
void Executor::rebuildTable(const CatalogTable& before, CatalogTable after) {
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
        sqlite_->prepare("SELECT sql FROM " + schema +
                         "sqlite_master WHERE type = 'index' AND sql IS NOT NULL AND tbl_name = " +
                         withoutSchema(before.sqlName) + " COLLATE NOCASE");
    while (sqlite_->step(find)) indexes.push_back(find.text(0));
    find = {};
    AtomicSteps steps(*sqlite_);
    sqlite_->run(tableDdl(after, fresh));
    try {
        sqlite_->run("INSERT INTO " + fresh + "(" + names + ") SELECT " + values + " FROM " +
                     before.sqlName);
    } catch (const DbError& e) {
        if (e.number != -2627) throw;
        constraintFailure(e, after, StatementKind::AlterTable);
    }
    sqlite_->run("DROP TABLE " + before.sqlName);
    sqlite_->run("ALTER TABLE " + fresh + " RENAME TO " + withoutSchema(before.sqlName));
    for (std::string index : indexes) {
        // SQLite keeps the text without the schema.
        if (before.temporary) index.insert(index.find("INDEX ") + 6, "temp.");
        sqlite_->run(index);
    }
    storeConstraints(after);
    steps.commit();
    if (before.temporary)
        catalog_.replaceTemporary(std::move(after));
    else
        catalog_.changed(before.name);
}

void Executor::alterTable(const Statement& s) {
    const CatalogTablePtr before = catalog_.findTable(s.target);
    if (!before) throw makeDbError(4902, {s.target.text()}, s.line);
    try {
        AtomicSteps steps(*sqlite_);
        for (const AlterAction& action : s.actions)
            alterTable(*catalog_.findTable(s.target.last()), action, s.line);
        steps.commit();
    } catch (const DbError&) {
        // The actions before the failed one are undone in the file; the catalog must follow.
        if (before->temporary)
            catalog_.replaceTemporary(*before);
        else
            catalog_.changed(before->name);
        throw;
    }
}

void Executor::alterTable(const CatalogTable& table, const AlterAction& action, int line) {
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

void Executor::addColumn(const CatalogTable& table, const ColumnDefinition& c, int line) {
    if (table.findColumn(c.name) >= 0) throw makeDbError(2705, {c.name, table.name}, line);
    CatalogTable after = table;
    CatalogTable one = describeTable(table.name, {c}, {});
    after.columns.push_back(one.columns[0]);
    if (c.identity) {
        after.identitySeed = c.seed;
        after.identityIncrement = c.increment;
    }
    const bool empty = !sqlite_->number("SELECT 1 FROM " + table.sqlName + " LIMIT 1");
    const bool notNull = c.nullable == false || c.identity;
    if (notNull && c.defaultSource.empty() && !c.identity && !empty)
        throw makeDbError(4901, {c.name, table.name}, line);
    std::string ddl = "ALTER TABLE " + table.sqlName + " ADD COLUMN " + sqliteName(c.name) + " " +
                      storedType(c.type);
    if (c.type.isText()) ddl += " COLLATE TSQL";
    // Existing rows take the default when the column may not be NULL, and NULL otherwise.
    std::string fill;
    if (notNull && !c.defaultSource.empty()) {
        auto code = compileBatch("SELECT " + c.defaultSource);
        Frame frame;
        frame.code = code;
        const Value v =
            evaluate(frame, *code->parsed->ast.statements[0]->query->body->items[0].expr, &c.type);
        fill = sqliteLiteral(v);
        ddl += " NOT NULL DEFAULT " + fill;
    } else if (notNull) {
        // Empty table: SQLite still wants a default beside NOT NULL.
        ddl += c.type.isText() ? " NOT NULL DEFAULT ''" : " NOT NULL DEFAULT 0";
    }
    sqlite_->run(ddl);
    if (c.identity)
        sqlite_->run("UPDATE " + table.sqlName + " SET " + sqliteName(c.name) + " = " +
                     std::to_string(c.seed) + " + " + std::to_string(c.increment) +
                     " * (rowid - 1)");
    if (table.temporary) {
        catalog_.replaceTemporary(after);
    } else {
        storeConstraints(after);
        catalog_.changed(table.name);
    }
}

void Executor::addConstraint(const CatalogTable& table, const ConstraintDefinition& c, int line) {
    for (const std::string& column : c.columns)
        if (table.findColumn(column) < 0) throw makeDbError(1911, {column}, line);
    if (!c.name.empty()) {
        bool taken = std::any_of(table.keys.begin(), table.keys.end(),
                                 [&](const CatalogKey& k) { return sameName(k.name, c.name); });
        for (const CatalogColumn& column : table.columns)
            taken |= !column.defaultName.empty() && sameName(column.defaultName, c.name);
        if (taken) throw makeDbError(2714, {c.name}, line);
    }
    CatalogTable after = table;
    switch (c.kind) {
        case ConstraintDefinition::Default: {
            CatalogColumn& column = after.columns[after.findColumn(c.columns[0])];
            if (!column.defaultSource.empty()) throw makeDbError(1781, {}, line);
            column.defaultSource = c.source;
            column.defaultName =
                c.name.empty() ? generatedName("DF", table.name, c.columns[0]) : c.name;
            break;
        }
        case ConstraintDefinition::PrimaryKey:
        case ConstraintDefinition::Unique: {
            const bool primary = c.kind == ConstraintDefinition::PrimaryKey;
            for (const CatalogKey& k : table.keys)
                if (primary && k.kind == CatalogKey::Primary)
                    throw followedBy(makeDbError(1779, {table.name}), makeDbError(1750, {}, line));
            if (primary)
                for (const std::string& column : c.columns)
                    if (table.columns[table.findColumn(column)].nullable)
                        throw followedBy(makeDbError(8111, {table.name}),
                                         makeDbError(1750, {}, line));
            CatalogKey key{c.name.empty() ? generatedName(primary ? "PK" : "UQ", table.name,
                                                          primary ? "" : joined(c.columns, ','))
                                          : c.name,
                           c.columns, primary ? CatalogKey::Primary : CatalogKey::Unique};
            try {
                createKeyIndex(table, key, true);
            } catch (const DbError& e) {
                throw followedBy(e, makeDbError(1750, {}, line));
            }
            after.keys.push_back(std::move(key));
            break;
        }
        case ConstraintDefinition::Check: {
            after.checks.push_back(
                {c.name.empty() ? generatedName("CK", table.name, c.source) : c.name, c.source});
            rebuildTable(table, std::move(after));
            return;
        }
        case ConstraintDefinition::ForeignKey:
            throw makeDbError(15281, {"A FOREIGN KEY constraint"}, line);
    }
    if (table.temporary) {
        catalog_.replaceTemporary(std::move(after));
    } else {
        storeConstraints(after);
        catalog_.changed(table.name);
    }
}

void Executor::dropConstraint(const CatalogTable& table, const std::string& name, int line) {
    CatalogTable after = table;
    const std::string folded = foldName(name);
    bool found = false, check = false;
    for (const CatalogKey& k : table.keys) {
        if (foldName(k.name) != folded || k.kind == CatalogKey::Index) continue;
        const std::string schema = schemaOf(table.sqlName);
        sqlite_->run("DROP INDEX " + schema + sqliteName(table.indexName(k.name)) +
                     "; DROP INDEX IF EXISTS " + schema + sqliteName(table.nullIndexName(k.name)));
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
        catalog_.replaceTemporary(std::move(after));
        return;
    }
    SqliteStatement erase =
        sqlite_->prepare("DELETE FROM tsql_constraint WHERE tbl = ?1 AND name = ?2 COLLATE TSQL");
    erase.bind(1, Value(foldName(table.name)));
    erase.bind(2, Value(name));
    sqlite_->step(erase);
    erase = {};
    if (check) rebuildTable(table, std::move(after));
    catalog_.changed(table.name);
}

void Executor::dropColumn(const CatalogTable& table, const std::string& name, int line) {
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
    sqlite_->run("ALTER TABLE " + table.sqlName + " DROP COLUMN " +
                 sqliteName(table.columns[at].name));
    if (table.temporary) {
        CatalogTable after = table;
        after.columns.erase(after.columns.begin() + at);
        catalog_.replaceTemporary(std::move(after));
    }
    catalog_.changed(table.name);
}

void Executor::alterColumn(const CatalogTable& table, const ColumnDefinition& c, int line) {
    const int at = table.findColumn(c.name);
    if (at < 0) throw makeDbError(4924, {"ALTER COLUMN", c.name, table.name}, line);
    CatalogTable after = table;
    after.columns[at].type = c.type;
    after.columns[at].nullable = c.nullable.value_or(true);
    rebuildTable(table, std::move(after));
}

void Executor::createIndex(const Statement& s) {
    CatalogTablePtr table = catalog_.findTable(s.target);
    if (!table) throw makeDbError(4902, {s.target.text()}, s.line);
    for (const std::string& c : s.columns)
        if (table->findColumn(c) < 0) throw makeDbError(1911, {c}, s.line);
    CatalogKey key{s.indexName, s.columns, CatalogKey::Index};
    if (sqlite_->number("SELECT 1 FROM " + schemaOf(table->sqlName) +
                        "sqlite_master WHERE type = 'index' AND name = " +
                        sqliteText(table->indexName(key.name)) + " COLLATE NOCASE"))
        throw makeDbError(1913, {s.indexName, table->name}, s.line);
    AtomicSteps steps(*sqlite_);
    createKeyIndex(*table, key, s.unique);
    if (s.unique) {
        CatalogTable after = *table;
        after.keys.push_back(std::move(key));
        if (table->temporary)
            catalog_.replaceTemporary(std::move(after));
        else
            storeConstraints(after);
    }
    steps.commit();
    catalog_.changed(table->name);
}

void Executor::defineModule(Frame& frame) {
    AtomicSteps steps(*sqlite_);
    lookAround();
    createModule(frame, *frame.code->parsed->ast.statements[0]);
    steps.commit();
}

void Executor::createModule(Frame& frame, const Statement& s) {
    const ModuleDefinition& m = *s.module;
    const std::string& name = m.name.last();
    if (m.name.parts.size() > 2) throw makeDbError(166, {s.alter ? "ALTER" : "CREATE"}, s.line);
    if (!s.alter) catalog_.requirePlace(m.name, s.line);
    CatalogModulePtr old = catalog_.findModule(m.name);
    if (s.alter && !old) throw makeDbError(208, {m.name.text()}, s.line);
    if ((old && !s.alter && !s.orAlter) || catalog_.findTable(name))
        throw makeDbError(2714, {name}, s.line);
    std::string stars;
    if (m.kind == ModuleKind::View || m.kind == ModuleKind::InlineFunction) {
        BindContext context = bindContext(frame);
        Binder binder(context);
        std::vector<std::vector<std::string>> recorded;
        binder.recordStars = &recorded;
        auto q = binder.bindSubquery(*m.query);
        for (size_t i = 0; i < q->columns.size(); ++i) {
            const std::string column =
                i < m.viewColumns.size() ? m.viewColumns[i] : q->columns[i].name;
            if (column.empty()) throw makeDbError(4511, {std::to_string(i + 1)}, s.line);
            for (size_t j = 0; j < i; ++j) {
                const std::string& before =
                    j < m.viewColumns.size() ? m.viewColumns[j] : q->columns[j].name;
                if (sameName(before, column)) throw makeDbError(4506, {column, name}, s.line);
            }
        }
        for (size_t i = 0; i < recorded.size(); ++i)
            stars += (i ? "\x1e" : "") + joined(recorded[i], '\x1f');
    }
    int events = 0;
    if (m.kind == ModuleKind::Trigger) {
        CatalogTablePtr table = catalog_.findTable(m.table);
        if (!table)
            throw DbError(8197, 16, 4, s.line,
                          "The object '" + m.table.text() +
                              "' does not exist or is invalid for this operation.");
        events = (m.onInsert ? 1 : 0) | (m.onUpdate ? 2 : 0) | (m.onDelete ? 4 : 0);
    }
    SqliteStatement insert =
        sqlite_->prepare("INSERT OR REPLACE INTO tsql_module VALUES(?1, ?2, ?3, ?4, ?5, ?6)");
    insert.bind(1, Value(old ? old->name : name));
    insert.bind(2, Value(static_cast<int>(m.kind)));
    insert.bind(3, Value(s.moduleSource));
    insert.bind(4, Value(stars));
    insert.bind(5, Value(m.table.empty() ? std::string() : m.table.last()));
    insert.bind(6, Value(events));
    sqlite_->step(insert);
    insert = {};
    if (!old) catalog_.noteCreated(name, statementTime());
    catalog_.modulesChanged(name);
    if (m.kind == ModuleKind::ScalarFunction || m.kind == ModuleKind::TableFunction)
        forbidWrites(m.body);
    if (m.kind == ModuleKind::Procedure || m.kind == ModuleKind::ScalarFunction) {
        // Tables may come later; a variable that is not declared never will.
        Frame body = moduleFrame(*catalog_.findModule(name));
        try {
            checkAhead(body, body.code->parsed->definition->body);
        } catch (const DbError& e) {
            if (e.number == 137) throw;
        }
        body.code->plans.clear();
    }
}

}  // namespace owb::tsql
