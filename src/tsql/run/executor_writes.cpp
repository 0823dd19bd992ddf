// INSERT, UPDATE and DELETE: rows, constraints, OUTPUT, triggers, identity values.
#include <algorithm>

#include "base/utf8.h"
#include "tsql/run/executor.h"
#include "tsql/types/types.h"

namespace owb::tsql {

// The first key among the rows "src" that the table, or a row before it, holds already.
std::string Executor::duplicateKey(const CatalogTable& table, const CatalogKey& key,
                                   const std::string& rows, Frame* frame, Plan* p) {
    std::string columns, match;
    std::vector<SqlType> types;
    for (const std::string& c : key.columns) {
        const CatalogColumn& column = table.columns[table.findColumn(c)];
        columns += (columns.empty() ? "" : ",") + sqliteName(column.name);
        match += (match.empty() ? "" : " AND ") + sqliteName(column.name) + " IS ?" +
                 std::to_string(types.size() + 1);
        types.push_back(column.type);
    }
    SqliteStatement walk = sqlite_->prepare(rows + " SELECT " + columns + " FROM src");
    if (frame && p) bindParameters(walk, *frame, p->parameters);
    SqliteStatement held = sqlite_->prepare("SELECT 1 FROM " + table.sqlName + " WHERE " + match);
    std::vector<std::string> seen;
    while (sqlite_->step(walk)) {
        std::string text;
        for (size_t i = 0; i < types.size(); ++i) {
            const Value v = walk.value(static_cast<int>(i), types[i]);
            held.bind(static_cast<int>(i) + 1, v);
            text += (i ? ", " : "") + (v.isNull() ? "<NULL>" : v.toText());
        }
        const bool there = sqlite_->step(held);
        held.rewind();
        const std::string folded = foldText(text);
        if (there || std::find(seen.begin(), seen.end(), folded) != seen.end()) return text;
        if (seen.size() < 10000) seen.push_back(folded);
    }
    return "";
}

namespace {

// ", column 'q'" when the check looks at one column alone, otherwise "".
std::string checkedColumn(const CatalogTable& table, const std::string& check) {
    int column = -1;
    for (const CatalogCheck& c : table.checks) {
        if (c.name != check) continue;
        for (const Token& t : tokenize(c.source)) {
            if (t.kind != TokenKind::Name && t.kind != TokenKind::QuotedName) continue;
            const int at = table.findColumn(unquoted(t));
            if (at < 0 || at == column) continue;
            if (column >= 0) return "";
            column = at;
        }
    }
    return column < 0 ? "" : ", column '" + table.columns[column].name + "'";
}

}  // namespace

void Executor::constraintFailure(const DbError& e, const CatalogTable& table, StatementKind writes,
                                 const std::string& rows, Frame* frame, Plan* p) {
    const std::string text = e.what();
    const std::string verb = writes == StatementKind::Insert       ? "INSERT"
                             : writes == StatementKind::AlterTable ? "ALTER TABLE"
                                                                   : "UPDATE";
    const size_t colon = text.find(": ");
    const std::string rest = colon == std::string::npos ? "" : text.substr(colon + 2);
    const std::string object = "dbo." + table.name;
    // SQLite tells "table.column, table.column"; the table may be the one that is to become it.
    const auto namesColumns = [&](const std::vector<std::string>& columns) {
        for (const std::string& name : {table.bareName(), std::string(kRebuiltTable)}) {
            std::string list;
            for (const std::string& c : columns) {
                const int at = table.findColumn(c);
                list +=
                    (list.empty() ? "" : ", ") + name + "." + (at < 0 ? c : table.columns[at].name);
            }
            if (sameName(list, rest)) return true;
        }
        return false;
    };
    if (text.starts_with("NOT NULL")) {
        for (const CatalogColumn& c : table.columns)
            if (namesColumns({c.name}))
                throw makeDbError(515, {c.name, catalog_.fullName(table), verb});
    }
    if (text.starts_with("UNIQUE")) {
        const CatalogKey* key = nullptr;
        for (const CatalogKey& k : table.keys) {
            if (namesColumns(k.columns) || rest == "index '" + table.nullIndexName(k.name) + "'")
                key = &k;
        }
        std::string value;
        if (key && !rows.empty()) {
            const std::string text = duplicateKey(table, *key, rows, frame, p);
            if (!text.empty()) value = " The duplicate key value is (" + text + ").";
        }
        if (key && key->kind != CatalogKey::Index)
            throw makeDbError(
                2627, {key->kind == CatalogKey::Primary ? "PRIMARY KEY" : "UNIQUE KEY", key->name,
                       object, value});
        throw makeDbError(2601, {object, key ? key->name : "", value});
    }
    if (text.starts_with("CHECK"))
        throw makeDbError(547, {verb, "CHECK", rest, sqlite_->databaseName(), object,
                                checkedColumn(table, rest)});
    throw e;
}

int64_t Executor::runPrepared(Frame& frame, Plan& p, const std::string& sql) {
    if (!p.fills.empty()) fillTables(frame, p);
    SqliteStatement statement = sqlite_->prepare(sql);
    bindParameters(statement, frame, p.parameters);
    sqlite_->step(statement);
    return sqlite_->changes();
}

void Executor::runWrite(Frame& frame, const Statement& s) {
    if (functionDepth_ > 0) throw makeDbError(443, {"INSERT"}, s.line);
    if (s.target.last()[0] != '@') requireSoundTransaction();
    if (options_.rowCount > 0 && s.kind != StatementKind::Truncate)
        throw makeDbError(15281, {"A statement that writes under SET ROWCOUNT"}, s.line);
    if (s.kind == StatementKind::Truncate) {
        lookAround();
        CatalogTablePtr table = catalog_.findTable(s.target);
        if (!table) throw makeDbError(4701, {s.target.text()}, s.line);
        AtomicSteps steps(*sqlite_);
        sqlite_->run("DELETE FROM " + table->sqlName);
        if (table->identityColumn() >= 0 && !table->temporary)
            sqlite_->run("UPDATE tsql_identity SET last = NULL WHERE tbl = " +
                         sqliteText(foldName(table->name)));
        steps.commit();
        rowCount_ = 0;
        return;
    }
    if (s.kind == StatementKind::Insert && !s.query && !s.defaultValues)
        return insertExecuted(frame, s);
    const bool explicitIdentity = foldName(s.target.last()) == identityInsert_;
    const auto make = [&](Planner& planner) {
        if (s.kind == StatementKind::Update) return planner.update(s);
        if (s.kind == StatementKind::Delete) return planner.remove(s);
        return planner.insert(s, explicitIdentity);
    };
    Plan* p = &plan(frame, &s, make);
    // Made when SET IDENTITY_INSERT stood otherwise.
    if (explicitIdentity ? p->givesIdentity : p->explicitIdentity) {
        frame.code->plans[&s].reset();
        p = &plan(frame, &s, make);
    }
    runPlanned(frame, s, *p);
}

void Executor::runPlanned(Frame& frame, const Statement& s, Plan& p) {
    const CatalogTablePtr target = p.target;
    try {
        if (!p.triggers.empty() || p.stepwise) return runWithTriggers(frame, s, p);
        if (p.givesIdentity || p.explicitIdentity) {
            AtomicSteps steps(*sqlite_);
            loadIdentity(*target);
            rowCount_ = runPrepared(frame, p, p.sql);
            storeIdentity(*target);
            steps.commit();
            return;
        }
        BorrowedStatement statement(p, acquire(frame, p));
        sqlite_->step(*statement);
        rowCount_ = sqlite_->changes();
    } catch (const DbError& e) {
        if (e.number != -2627) throw;
        // Keys may collide on the way to values that do not: judge the rows all together.
        const bool unique = std::string_view(e.what()).starts_with("UNIQUE");
        if (unique && p.writes == StatementKind::Update && !p.collectSql.empty())
            return replaceRows(frame, p);
        std::string rows;
        if (unique && p.writes == StatementKind::Insert && !p.givesIdentity) {
            rows = "WITH src" + p.insertColumns + " AS (" + p.insertRows + ")";
        }
        constraintFailure(e, *target, p.writes, rows, &frame, &p);
    }
}

// An UPDATE of key columns as one step: the rows leave the table and come back changed.
void Executor::replaceRows(Frame& frame, Plan& p) {
    const std::string rows = "temp.\"rows~" + std::to_string(++workTable_) + "\"";
    AtomicSteps steps(*sqlite_);
    collectRows(frame, p, rows);
    const int64_t count = replaceCollected(p, rows);
    sqlite_->run("DROP TABLE " + rows);
    steps.commit();
    rowCount_ = count;
}

int64_t Executor::replaceCollected(Plan& p, const std::string& rows) {
    const CatalogTable& table = *p.target;
    const std::string moved = "temp.\"moved~" + std::to_string(++workTable_) + "\"";
    const std::string touched = " WHERE rowid IN (SELECT rid FROM " + rows + ")";
    sqlite_->run("CREATE TABLE " + moved + " AS SELECT rowid AS rid, * FROM " + table.sqlName +
                 touched);
    std::string names;
    for (const CatalogColumn& c : table.columns) names += ", " + sqliteName(c.name);
    sqlite_->run(p.updateSql(moved, "rid", rows));
    const int64_t count = sqlite_->changes();
    sqlite_->run("DELETE FROM " + table.sqlName + touched);
    try {
        sqlite_->run("INSERT INTO " + table.sqlName + "(rowid" + names + ") SELECT rid" + names +
                     " FROM " + moved);
    } catch (const DbError& e) {
        if (e.number != -2627) throw;
        constraintFailure(e, table, StatementKind::Update,
                          "WITH src AS (SELECT * FROM " + moved + ")");
    }
    sqlite_->run("DROP TABLE " + moved);
    return count;
}

// Fills a table with the rows that the statement touches ("rid") and their new values ("c0"..).
void Executor::collectRows(Frame& frame, Plan& p, const std::string& rows) {
    SqliteStatement collect = sqlite_->prepare(p.collectSql);
    std::string columns = "rid";
    for (int i = 1; i < collect.columnCount(); ++i) columns += ",c" + std::to_string(i - 1);
    collect = {};
    sqlite_->run("CREATE TABLE " + rows + "(" + columns + ")");
    runPrepared(frame, p, "INSERT INTO " + rows + " " + p.collectSql);
}

// INSERT ... EXEC: what the call gives back goes into the table.
void Executor::insertExecuted(Frame& frame, const Statement& s) {
    if (insertExec_ > 0)
        throw DbError(8164, 16, 1, s.line, "An INSERT EXEC statement cannot be nested.");
    BatchResult rows;
    BatchResult* const outer = result_;
    result_ = &rows;
    ++insertExec_;
    const auto leave = [&] {
        --insertExec_;
        result_ = outer;
        if (!result_) return;
        result_->messages.insert(result_->messages.end(), rows.messages.begin(),
                                 rows.messages.end());
    };
    try {
        execute(frame, *s.body[0]);
    } catch (...) {
        leave();
        throw;
    }
    leave();
    for (const DbError& e : rows.errors) noteError(e);
    AtomicSteps steps(*sqlite_);
    int64_t count = 0;
    for (ResultSet& set : rows.sets) {
        if (s.top) {
            const SqlType big = SqlType::of(SqlKind::BigInt);
            const Value most = evaluate(frame, *s.top, &big);
            if (most.isNull()) throw makeDbError(1060, {}, s.line);
            if (most.toInt() < 0) throw makeDbError(127, {}, s.line);
            set.rows = std::min(set.rows, static_cast<size_t>(most.toInt() - count));
        }
        insertRows(frame, s.target, s.columns, set, s.line);
        count += rowCount_;
    }
    steps.commit();
    rowCount_ = count;
}

// Rows at hand go into a table as those of a query would: with defaults, checks and triggers.
void Executor::insertRows(Frame& frame, const Name& target, const std::vector<std::string>& columns,
                          const ResultSet& set, int line) {
    CatalogTable source;
    source.sqlName = "temp.\"given~" + std::to_string(++workTable_) + "\"";
    std::string names, marks;
    for (size_t i = 0; i < set.columns.size(); ++i) {
        CatalogColumn column;
        column.name = "c" + std::to_string(i);
        column.type = set.columns[i].type;
        names += (i ? "," : "") + column.name;
        marks += i ? ",?" : "?";
        source.columns.push_back(std::move(column));
    }
    AtomicSteps steps(*sqlite_);
    sqlite_->run("CREATE TABLE " + source.sqlName + "(" + names + ")");
    SqliteStatement fill =
        sqlite_->prepare("INSERT INTO " + source.sqlName + " VALUES(" + marks + ")");
    for (size_t r = 0; r < set.rows; ++r) {
        for (size_t c = 0; c < set.columns.size(); ++c)
            fill.bind(static_cast<int>(c) + 1, set.at(r, c));
        sqlite_->step(fill);
        fill.rewind();
    }
    fill = {};
    std::map<std::string, CatalogTablePtr> pseudo;
    if (frame.pseudoTables) pseudo = *frame.pseudoTables;
    pseudo["given rows"] = std::make_shared<CatalogTable>(source);
    Statement insert(StatementKind::Insert, line);
    insert.target = target;
    insert.columns = columns;
    insert.query = std::make_unique<Query>();
    insert.query->body = std::make_unique<QueryBody>();
    insert.query->body->items.emplace_back().star = true;
    insert.query->body->from.push_back(std::make_unique<TableRef>());
    insert.query->body->from[0]->name.parts.emplace_back("given rows");
    BindContext context = bindContext(frame);
    context.pseudoTables = &pseudo;
    try {
        std::unique_ptr<Plan> p =
            Planner(context).insert(insert, foldName(target.last()) == identityInsert_);
        runPlanned(frame, insert, *p);
    } catch (const DbError& e) {
        if (e.number == 120 || e.number == 121) throw makeDbError(213, {}, line);
        throw;
    }
    const int64_t count = rowCount_;
    sqlite_->run("DROP TABLE " + source.sqlName);
    steps.commit();
    rowCount_ = count;
}

void Executor::runOutput(Frame& frame, const Statement& s, const Plan& p,
                         const std::map<std::string, CatalogTablePtr>& rows) {
    if (!p.triggers.empty() && s.outputInto.empty())
        throw makeDbError(334, {s.target.last()}, s.line);
    BindContext context = bindContext(frame);
    context.pseudoTables = &rows;
    std::unique_ptr<Plan> output;
    try {
        output = Planner(context).output(*s.output);
    } catch (const DbError& e) {
        if (e.number != 4104 || s.from.empty()) throw;
        throw makeDbError(15281, {"OUTPUT of a column of another table"}, s.line);
    }
    SqliteStatement read = sqlite_->prepare(output->sql);
    bindParameters(read, frame, output->parameters);
    ResultSet set;
    set.columns = output->columns;
    for (; sqlite_->step(read); ++set.rows)
        for (size_t i = 0; i < set.columns.size(); ++i)
            set.cells.push_back(read.value(static_cast<int>(i), set.columns[i].type));
    read = {};
    if (!s.outputInto.empty())
        insertRows(frame, s.outputInto, s.outputColumns, set, s.line);
    else if (result_)
        result_->sets.push_back(std::move(set));
}

// --- triggers ---

void Executor::runWithTriggers(Frame& frame, const Statement& s, Plan& p) {
    const CatalogTable& table = *p.target;
    const std::string number = std::to_string(++workTable_);
    const std::string rows = "temp.\"rows~" + number + "\"";
    const std::string deletedName = "temp.\"deleted~" + number + "\"";
    const std::string insertedName = "temp.\"inserted~" + number + "\"";
    AtomicSteps steps(*sqlite_);
    sqlite_->run("CREATE TABLE " + deletedName + " AS SELECT * FROM " + table.sqlName +
                 " WHERE 0; CREATE TABLE " + insertedName + " AS SELECT * FROM " + table.sqlName +
                 " WHERE 0");
    int64_t count = 0;
    if (p.writes == StatementKind::Insert) {
        const int64_t before =
            sqlite_->number("SELECT max(rowid) FROM " + table.sqlName).value_or(0);
        if (p.givesIdentity || p.explicitIdentity) loadIdentity(table);
        count = runPrepared(frame, p, p.sql);
        if (p.givesIdentity || p.explicitIdentity) storeIdentity(table);
        sqlite_->run("INSERT INTO " + insertedName + " SELECT * FROM " + table.sqlName +
                     " WHERE rowid > " + std::to_string(before));
    } else {
        // The rows and their new values first, then the old rows, the change, the new rows.
        collectRows(frame, p, rows);
        const std::string touched = " SELECT * FROM " + table.sqlName +
                                    " WHERE rowid IN (SELECT rid FROM " + rows + ") ORDER BY rowid";
        sqlite_->run("INSERT INTO " + deletedName + touched);
        try {
            if (p.writes == StatementKind::Delete || !p.assignedColumns.empty())
                sqlite_->run(p.applySql(rows));
        } catch (const DbError& e) {
            const bool unique =
                e.number == -2627 && std::string_view(e.what()).starts_with("UNIQUE");
            if (!unique || p.writes != StatementKind::Update) throw;
            replaceCollected(p, rows);
        }
        count = sqlite_->number("SELECT count(DISTINCT rid) FROM " + rows).value_or(0);
        if (p.writes == StatementKind::Update)
            sqlite_->run("INSERT INTO " + insertedName + touched);
        sqlite_->run("DROP TABLE " + rows);
    }
    std::map<std::string, CatalogTablePtr> pseudo;
    for (const bool inserted : {true, false}) {
        auto t = std::make_shared<CatalogTable>(table);
        t->name = inserted ? "inserted" : "deleted";
        t->sqlName = inserted ? insertedName : deletedName;
        t->temporary = true;
        pseudo[t->name] = std::move(t);
    }
    if (s.output) runOutput(frame, s, p, pseudo);
    const std::vector<std::string> outer = std::move(updatedColumns_);
    updatedColumns_ = p.assignedColumns;
    // A new row has all its columns from the INSERT, if only by default.
    if (p.writes == StatementKind::Insert)
        for (const CatalogColumn& c : table.columns) updatedColumns_.push_back(foldName(c.name));
    rowCount_ = count;
    fireTriggers(p, pseudo);
    updatedColumns_ = outer;
    sqlite_->run("DROP TABLE " + deletedName + "; DROP TABLE " + insertedName);
    steps.commit();
    rowCount_ = count;
}

void Executor::fireTriggers(Plan& p, const std::map<std::string, CatalogTablePtr>& pseudoTables) {
    // In a trigger there always is a transaction, if only that of its statement.
    const bool alone = transactions_ == 0;
    if (alone) {
        transactions_ = 1;
        statementTransaction_ = inTransaction_ = true;
    }
    const auto leave = [&] {
        if (!alone || !statementTransaction_) return;
        transactions_ = 0;
        statementTransaction_ = inTransaction_ = false;
        appLocks_.endTransaction();
    };
    for (const std::string& name : p.triggers) {
        CatalogModulePtr module = catalog_.findModule(name);
        if (!module) continue;
        // A trigger that writes its own table does not fire itself.
        if (std::find(activeTriggers_.begin(), activeTriggers_.end(), name) !=
            activeTriggers_.end())
            continue;
        activeTriggers_.push_back(name);
        const Options options = options_;
        options_.xactAbort = true;  // as the server has it in every trigger
        Frame body = moduleFrame(*module);
        body.pseudoTables = &pseudoTables;
        const auto done = [&] {
            activeTriggers_.pop_back();
            options_ = options;
            body.code->plans.clear();  // made for these very tables
        };
        try {
            runScope(body);
        } catch (DbError& e) {
            done();
            leave();
            e.undoes = true;
            throw;
        }
        done();
        if (transactions_ == 0) {
            DbError ended = makeDbError(3609);
            ended.endsBatch = true;
            throw ended;
        }
    }
    leave();
}

// --- identity ---

void Executor::loadIdentity(const CatalogTable& table) {
    identityStep_ = table.identityIncrement;
    identityUsed_ = false;
    identityNext_ = table.identitySeed;
    std::optional<int64_t> last;
    if (table.temporary) {
        last =
            sqlite_->number("SELECT max(" + sqliteName(table.columns[table.identityColumn()].name) +
                            ") FROM " + table.sqlName);
    } else {
        last = sqlite_->number("SELECT last FROM tsql_identity WHERE tbl = " +
                               sqliteText(foldName(table.name)));
    }
    if (last) identityNext_ = *last + identityStep_;
}

int64_t Executor::nextIdentity() {
    identityUsed_ = true;
    const int64_t value = identityNext_;
    identityNext_ += identityStep_;
    return value;
}

void Executor::storeIdentity(const CatalogTable& table) {
    const std::string column = sqliteName(table.columns[table.identityColumn()].name);
    std::optional<int64_t> last;
    if (identityUsed_) {
        last = identityNext_ - identityStep_;
        scopeIdentity_ = lastIdentity_ = Value(*last);
    } else {
        last = sqlite_->number(std::string("SELECT ") + (identityStep_ > 0 ? "max(" : "min(") +
                               column + ") FROM " + table.sqlName);
        if (last) scopeIdentity_ = lastIdentity_ = Value(*last);
    }
    if (!last || table.temporary) return;
    sqlite_->run("UPDATE tsql_identity SET last = " + std::to_string(*last) +
                 " WHERE tbl = " + sqliteText(foldName(table.name)));
}

Value Executor::identityOf(const std::string& name) {
    const Name written = nameInText(name);
    if (written.empty() || written.parts.size() > 3 || !catalog_.isHere(written)) return {};
    const auto last = sqlite_->number("SELECT last FROM tsql_identity WHERE tbl = " +
                                      sqliteText(foldName(written.last())));
    return last ? Value(Decimal(*last, 0)) : Value();
}

void Executor::assignVariable(Frame& frame, const std::string& name, Value value, int line) {
    const int at = frame.code->parsed->findVariable(name);
    if (at < 0) throw makeDbError(137, {name}, line);
    frame.variables[at] = std::move(value);
}

}  // namespace owb::tsql
