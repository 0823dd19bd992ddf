// Queries and statements that write: plans, parameters, rows, triggers.
#include <algorithm>

#include "base/utf8.h"
#include "tsql/executor.h"
#include "tsql/types.h"

namespace owb::tsql {

BindContext Executor::bindContext(Frame& frame) {
    BindContext context{catalog_};
    context.literals = &frame.code->ast.literals;
    context.variables = &frame.code->variables;
    context.pseudoTables = frame.pseudoTables;
    context.functionId = [this](const std::string& name) {
        const std::string folded = foldName(name);
        for (size_t i = 0; i < functions_.size(); ++i)
            if (functions_[i].name == folded) return static_cast<int>(i);
        functions_.push_back({folded, nullptr, 0});
        return static_cast<int>(functions_.size() - 1);
    };
    context.definition = [this](CatalogModule& m) -> const ModuleDefinition& {
        return *moduleCode(m).definition;
    };
    context.moduleLiterals = [this](CatalogModule& m) -> const std::vector<LiteralSlot>& {
        return moduleCode(m).ast.literals;
    };
    return context;
}

bool Executor::dependenciesHold(Plan& plan) {
    for (const Dependency& d : plan.dependencies) {
        if (d.module) {
            const CatalogModulePtr m = catalog_.findModule(d.name);
            if (!m || m->signature != d.signature) return false;
        } else {
            const CatalogTablePtr t = catalog_.findTable(d.name);
            if (!t || t->signature != d.signature) return false;
        }
    }
    plan.checkedVersion = catalog_.version();
    return true;
}

const Value& Executor::parameterValue(Frame& frame, const PlanParameter& p) {
    if (p.kind == PlanParameter::Literal) return frame.code->ast.literals[p.index].value;
    return p.kind == PlanParameter::Variable ? frame.variables[p.index] : p.constant;
}

namespace {

Value negated(const Value& v) {
    if (v.isInt()) return Value(-v.asInt());
    if (v.isDecimal()) return Value(-v.asDecimal());
    return Value(-v.asDouble());
}

}  // namespace

void Executor::bindParameters(sqlite3_stmt* statement, Frame& frame, const Plan& plan) {
    for (size_t i = 0; i < plan.parameters.size(); ++i) {
        const PlanParameter& p = plan.parameters[i];
        const Value& v = parameterValue(frame, p);
        const int at = static_cast<int>(i) + 1;
        // The type of this run's literal: only its kind is sure to be that of the plan's making.
        const SqlType& from =
            p.kind == PlanParameter::Literal ? frame.code->ast.literals[p.index].type : p.from;
        if (p.negated)
            bindValue(statement, at, convertValue(negated(v), from, p.to));
        else if (from == p.to || v.isNull() || (v.isText() && p.from == p.to))
            bindValue(statement, at, v);
        else
            bindValue(statement, at, convertValue(v, from, p.to));
    }
}

// Runs the table functions of a statement: each leaves its rows in the table that the statement
// reads.
void Executor::fillTables(Frame& frame, Plan& plan) {
    for (const Plan::TableFill& fill : plan.fills) {
        CatalogModulePtr module = catalog_.findModule(fill.function);
        if (!module) throw makeDbError(208, {fill.function});
        Frame callee = moduleFrame(*module);
        for (size_t i = 0; i < fill.arguments.size(); ++i) {
            const PlanParameter& p = fill.arguments[i];
            const Value& v = parameterValue(frame, p);
            callee.variables[i] = convertValue(p.negated ? negated(v) : v, p.from, p.to);
        }
        const ModuleDefinition& definition = *callee.code->definition;
        CatalogTable table =
            describeTable(definition.returnsVariable, definition.returnsColumns, {});
        // The variable's table belongs to the call, the rows stay for the statement.
        table.sqlName = fill.sqlName;
        sqlite_->run("DROP TABLE IF EXISTS " + fill.sqlName);
        sqlite_->run(tableDdl(table, fill.sqlName));
        std::map<std::string, CatalogTablePtr> pseudo;
        table.temporary = true;
        pseudo[foldName(table.name)] = std::make_shared<CatalogTable>(table);
        callee.pseudoTables = &pseudo;
        ++tryDepth_;  // an error in there is the statement's
        try {
            runScope(callee);
        } catch (...) {
            --tryDepth_;
            throw;
        }
        --tryDepth_;
        callee.code->plans.clear();
    }
}

SqliteStatement Executor::acquire(Frame& frame, Plan& plan) {
    if (!plan.fills.empty()) fillTables(frame, plan);
    SqliteStatement statement;
    if (!plan.idle.empty()) {
        statement = std::move(plan.idle.back());
        plan.idle.pop_back();
    } else {
        if (plan.parameters.size() > 32000) throw makeDbError(8623);
        statement = sqlite_->prepare(plan.sql);
    }
    bindParameters(statement.get(), frame, plan);
    return statement;
}

namespace {

// Gives a statement back to its plan, reset, however its run ended.
class Lease {
  public:
    Lease(Plan& plan, SqliteStatement statement) : plan_(plan), statement_(std::move(statement)) {}
    ~Lease() {
        sqlite3_reset(statement_.get());
        plan_.idle.push_back(std::move(statement_));
    }
    sqlite3_stmt* get() const { return statement_.get(); }

  private:
    Plan& plan_;
    SqliteStatement statement_;
};

}  // namespace

Value Executor::evaluate(Frame& frame, const Expr& e, const SqlType* target) {
    if (e.kind == ExprKind::Literal) {
        const LiteralSlot& slot = frame.code->ast.literals[e.literal];
        if (target) requireConversion(slot.type, *target, false);
        return target ? convertValue(slot.value, slot.type, *target) : slot.value;
    }
    if (e.kind == ExprKind::Null) return {};
    if (e.kind == ExprKind::Variable) {
        const int at = frame.code->findVariable(e.name.last());
        if (at < 0) throw makeDbError(137, {e.name.last()}, e.line);
        const Value& v = frame.variables[at];
        if (target) requireConversion(frame.code->variables[at].type, *target, false);
        return target ? convertValue(v, frame.code->variables[at].type, *target) : v;
    }
    Plan& p = plan(frame, &e, [&](Planner& planner) { return planner.value(e, target); });
    Lease lease(p, acquire(frame, p));
    sqlite_->step(lease.get());
    return columnValue(lease.get(), 0, p.columns[0].type);
}

bool Executor::condition(Frame& frame, const Expr& e) {
    Plan& p = plan(frame, &e, [&](Planner& planner) { return planner.condition(e); });
    Lease lease(p, acquire(frame, p));
    sqlite_->step(lease.get());
    return sqlite3_column_int(lease.get(), 0) != 0;
}

void Executor::runQuery(Frame& frame, const Statement& s) {
    Plan& p = plan(frame, &s, [&](Planner& planner) { return planner.query(*s.query); });
    if (!p.into.empty()) return runInto(frame, p);
    Lease lease(p, acquire(frame, p));
    if (!p.variables.empty()) {
        int64_t rows = 0;
        while (sqlite_->step(lease.get())) {
            ++rows;
            for (size_t i = 0; i < p.variables.size(); ++i)
                frame.variables[p.variables[i]] =
                    columnValue(lease.get(), static_cast<int>(i), p.columns[i].type);
        }
        rowCount_ = rows;
        return;
    }
    if (frame.inFunction)
        throw DbError(444, 16, 2, s.line,
                      "Select statements included within a function cannot return data to a "
                      "client.");
    ResultSet set;
    set.columns = p.columns;
    const auto width = static_cast<int>(p.columns.size());
    set.cells.reserve(p.columns.size());
    bool row = sqlite_->step(lease.get());
    if (lone_ && depth_ == 0) {  // not inside a function that it calls
        lone_ = false;
        if (!catalog_.stillCurrent(p.readsFile)) throw StaleCatalog();
    }
    for (; row; row = sqlite_->step(lease.get())) {
        ++set.rows;
        for (int i = 0; i < width; ++i)
            set.cells.push_back(columnValue(lease.get(), i, p.columns[i].type));
    }
    rowCount_ = static_cast<int64_t>(set.rows);
    for (int i = 0; i < width; ++i) {
        const SqlType& type = p.columns[i].type;
        if (!type.isClock() && type.kind != SqlKind::Real) continue;
        for (size_t at = i; at < set.cells.size(); at += width)
            set.cells[at] = clientValue(set.cells[at], type);
    }
    if (result_) result_->sets.push_back(std::move(set));
}

void Executor::runInto(Frame& frame, Plan& p) {
    requireSoundTransaction();
    CatalogTable table;
    table.name = p.into.last();
    if (catalog_.findTable(table.name) || catalog_.findModule(table.name))
        throw makeDbError(2714, {table.name});
    for (const Column& c : p.columns) {
        if (table.findColumn(c.name) >= 0) throw makeDbError(2705, {c.name, table.name});
        CatalogColumn column;
        column.name = c.name;
        column.type = c.type;
        column.nullable = c.nullable;
        table.columns.push_back(std::move(column));
    }
    Together together(*sqlite_);
    const std::string name = table.name;
    createTable(std::move(table), 0);
    if (!p.fills.empty()) fillTables(frame, p);
    SqliteStatement insert =
        sqlite_->prepare("INSERT INTO " + catalog_.findTable(name)->sqlName + " " + p.sql);
    bindParameters(insert.get(), frame, p);
    try {
        sqlite_->step(insert.get());
    } catch (const DbError&) {
        insert.reset();
        if (CatalogTablePtr made = catalog_.findTable(name); made && made->temporary)
            catalog_.forgetTemporary(*made);
        catalog_.changed(name);
        throw;
    }
    rowCount_ = sqlite3_changes64(sqlite_->handle());
    insert.reset();
    together.done();
    tellCount();
}

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
    if (frame && p) bindParameters(walk.get(), *frame, *p);
    SqliteStatement held = sqlite_->prepare("SELECT 1 FROM " + table.sqlName + " WHERE " + match);
    std::vector<std::string> seen;
    while (sqlite_->step(walk.get())) {
        std::string text;
        for (size_t i = 0; i < types.size(); ++i) {
            const Value v = columnValue(walk.get(), static_cast<int>(i), types[i]);
            bindValue(held.get(), static_cast<int>(i) + 1, v);
            text += (i ? ", " : "") + (v.isNull() ? "<NULL>" : v.toText());
        }
        const bool there = sqlite_->step(held.get());
        sqlite3_reset(held.get());
        const std::string folded = foldText(text);
        if (there || std::find(seen.begin(), seen.end(), folded) != seen.end()) return text;
        if (seen.size() < 10000) seen.push_back(folded);
    }
    return "";
}

void Executor::constraintFailure(const DbError& e, const CatalogTable& table, StatementKind writes,
                                 const std::string& rows, Frame* frame, Plan* p) {
    const std::string text = e.what();
    const std::string verb = writes == StatementKind::Insert ? "INSERT" : "UPDATE";
    const size_t colon = text.find(": ");
    const std::string rest = colon == std::string::npos ? "" : text.substr(colon + 2);
    const std::string object = "dbo." + table.name;
    if (text.starts_with("NOT NULL")) {
        const std::string column = rest.substr(rest.find_last_of('.') + 1);
        throw makeDbError(515, {column, object, verb});
    }
    if (text.starts_with("UNIQUE")) {
        std::vector<std::string> columns;
        size_t from = 0;
        while (from < rest.size()) {
            size_t end = rest.find(", ", from);
            if (end == std::string::npos) end = rest.size();
            const std::string one = rest.substr(from, end - from);
            columns.push_back(one.substr(one.find_last_of('.') + 1));
            from = end + 2;
        }
        const CatalogKey* key = table.keyOn(columns);
        if (rest.starts_with("index '")) {  // the one that keeps NULL single: T"name~null
            const size_t from = rest.find_last_of('"') + 1;
            const std::string name = rest.substr(from, rest.find_last_of('~') - from);
            for (const CatalogKey& k : table.keys)
                if (k.name == name) key = &k;
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
        throw makeDbError(547, {verb, "CHECK", rest, systemValue("DB_NAME").toText(), object});
    throw e;
}

int64_t Executor::runPrepared(Frame& frame, Plan& p, const std::string& sql) {
    if (!p.fills.empty()) fillTables(frame, p);
    SqliteStatement statement = sqlite_->prepare(sql);
    bindParameters(statement.get(), frame, p);
    sqlite_->step(statement.get());
    return sqlite3_changes64(sqlite_->handle());
}

void Executor::runWrite(Frame& frame, const Statement& s) {
    if (functionDepth_ > 0) throw makeDbError(443, {"INSERT"}, s.line);
    if (s.target.last()[0] != '@') requireSoundTransaction();
    if (s.kind == StatementKind::Truncate) {
        CatalogTablePtr table = catalog_.findTable(s.target.last());
        if (!table) throw makeDbError(4701, {s.target.last()}, s.line);
        sqlite_->run("DELETE FROM " + table->sqlName);
        if (table->identityColumn() >= 0 && !table->temporary)
            sqlite_->run("UPDATE tsql_identity SET last = NULL WHERE tbl = " +
                         sqliteText(foldName(table->name)));
        rowCount_ = 0;
        return;
    }
    if (s.kind == StatementKind::Insert && !s.query && !s.defaultValues)
        return insertExecuted(frame, s);
    Plan& p = plan(frame, &s, [&](Planner& planner) {
        if (s.kind == StatementKind::Update) return planner.update(s);
        if (s.kind == StatementKind::Delete) return planner.remove(s);
        return planner.insert(s, foldName(s.target.last()) == identityInsert_);
    });
    const CatalogTablePtr target = p.target;
    try {
        if (!p.triggers.empty()) return runWithTriggers(frame, p);
        if (p.givesIdentity || p.explicitIdentity) {
            Together together(*sqlite_);
            loadIdentity(*target);
            rowCount_ = runPrepared(frame, p, p.sql);
            storeIdentity(*target);
            together.done();
            return;
        }
        Lease lease(p, acquire(frame, p));
        sqlite_->step(lease.get());
        rowCount_ = sqlite3_changes64(sqlite_->handle());
    } catch (const DbError& e) {
        if (e.number != -2627) throw;
        // Keys may collide on the way to values that do not: judge the rows all together.
        const bool unique = std::string_view(e.what()).starts_with("UNIQUE");
        if (unique && p.writes == StatementKind::Update && !p.collectSql.empty())
            return replaceRows(frame, p);
        std::string rows;
        if (unique && p.writes == StatementKind::Insert && !p.givesIdentity) {
            const size_t list = p.sql.find('(');
            const size_t end = p.sql.find(") ", list);
            rows = "WITH src" + p.sql.substr(list, end + 1 - list) + " AS (" +
                   p.sql.substr(end + 2) + ")";
        }
        constraintFailure(e, *target, p.writes, rows, &frame, &p);
    }
}

// An UPDATE of key columns as one step: the rows leave the table and come back changed.
void Executor::replaceRows(Frame& frame, Plan& p) {
    const CatalogTable& table = *p.target;
    const std::string number = std::to_string(++workTable_);
    const std::string rows = "temp.\"rows~" + number + "\"";
    const std::string moved = "temp.\"moved~" + number + "\"";
    Together together(*sqlite_);
    collectRows(frame, p, rows);
    const std::string touched = " WHERE rowid IN (SELECT rid FROM " + rows + ")";
    sqlite_->run("CREATE TABLE " + moved + " AS SELECT rowid AS rid, * FROM " + table.sqlName +
                 touched);
    std::string names;
    for (const CatalogColumn& c : table.columns) names += ", " + sqliteName(c.name);
    std::string change = p.applySql;
    change.replace(change.find(table.sqlName), table.sqlName.size(), moved);
    change.replace(change.find('%'), 1, rows);
    change.replace(change.rfind("u.rowid"), 7, "u.rid");
    sqlite_->run(change);
    const int64_t count = sqlite3_changes64(sqlite_->handle());
    sqlite_->run("DELETE FROM " + table.sqlName + touched);
    try {
        sqlite_->run("INSERT INTO " + table.sqlName + "(rowid" + names + ") SELECT rid" + names +
                     " FROM " + moved);
    } catch (const DbError& e) {
        if (e.number != -2627) throw;
        constraintFailure(e, table, StatementKind::Update,
                          "WITH src AS (SELECT * FROM " + moved + ")");
    }
    sqlite_->run("DROP TABLE " + rows + "; DROP TABLE " + moved);
    together.done();
    rowCount_ = count;
}

// Fills a table with the rows that the statement touches ("rid") and their new values ("c0"..).
void Executor::collectRows(Frame& frame, Plan& p, const std::string& rows) {
    SqliteStatement collect = sqlite_->prepare(p.collectSql);
    std::string columns = "rid";
    for (int i = 1; i < sqlite3_column_count(collect.get()); ++i)
        columns += ",c" + std::to_string(i - 1);
    collect.reset();
    sqlite_->run("CREATE TABLE " + rows + "(" + columns + ")");
    runPrepared(frame, p, "INSERT INTO " + rows + " " + p.collectSql);
}

// INSERT ... EXEC: what the call gives back goes into the table.
void Executor::insertExecuted(Frame& frame, const Statement& s) {
    CatalogTablePtr table = catalog_.findTable(s.target.last());
    if (!table) throw makeDbError(208, {s.target.text()}, s.line);
    BatchResult rows;
    BatchResult* const outer = result_;
    result_ = &rows;
    ++insertExec_;
    try {
        execute(frame, *s.body[0]);
    } catch (...) {
        --insertExec_;
        result_ = outer;
        throw;
    }
    --insertExec_;
    result_ = outer;
    for (const DbError& e : rows.errors) noteError(e);
    std::vector<int> columns;
    for (const std::string& name : s.columns) {
        columns.push_back(table->findColumn(name));
        if (columns.back() < 0) throw makeDbError(207, {name}, s.line);
    }
    if (s.columns.empty())
        for (size_t i = 0; i < table->columns.size(); ++i) columns.push_back(static_cast<int>(i));
    std::string names, marks;
    for (size_t i = 0; i < columns.size(); ++i) {
        names += (i ? "," : "") + sqliteName(table->columns[columns[i]].name);
        marks += i ? ",?" : "?";
    }
    Together together(*sqlite_);
    SqliteStatement insert =
        sqlite_->prepare("INSERT INTO " + table->sqlName + "(" + names + ") VALUES(" + marks + ")");
    int64_t count = 0;
    try {
        for (const ResultSet& set : rows.sets) {
            if (set.columns.size() != columns.size()) throw makeDbError(213, {}, s.line);
            for (size_t r = 0; r < set.rows; ++r, ++count) {
                for (size_t c = 0; c < columns.size(); ++c)
                    bindValue(insert.get(), static_cast<int>(c) + 1,
                              convertValue(set.at(r, c), set.columns[c].type,
                                           table->columns[columns[c]].type));
                sqlite_->step(insert.get());
                sqlite3_reset(insert.get());
            }
        }
    } catch (const DbError& e) {
        insert.reset();
        if (e.number != -2627) throw;
        constraintFailure(e, *table, StatementKind::Insert);
    }
    insert.reset();
    together.done();
    rowCount_ = count;
}

// --- triggers ---

void Executor::runWithTriggers(Frame& frame, Plan& p) {
    const CatalogTable& table = *p.target;
    const std::string number = std::to_string(++workTable_);
    const std::string rows = "temp.\"rows~" + number + "\"";
    const std::string deletedName = "temp.\"deleted~" + number + "\"";
    const std::string insertedName = "temp.\"inserted~" + number + "\"";
    Together together(*sqlite_, transactions_ == 0 ? "statement" : "together");
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
        const std::string touched =
            " SELECT * FROM " + table.sqlName + " WHERE rowid IN (SELECT rid FROM " + rows + ")";
        sqlite_->run("INSERT INTO " + deletedName + touched);
        std::string apply = p.applySql;
        apply.replace(apply.find('%'), 1, rows);
        sqlite_->run(apply);
        count = sqlite3_changes64(sqlite_->handle());
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
    const std::vector<std::string> outer = std::move(updatedColumns_);
    updatedColumns_ = p.assignedColumns;
    rowCount_ = count;
    fireTriggers(p, pseudo);
    updatedColumns_ = outer;
    sqlite_->run("DROP TABLE " + deletedName + "; DROP TABLE " + insertedName);
    together.done();
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
    const auto last =
        sqlite_->number("SELECT last FROM tsql_identity WHERE tbl = " +
                        sqliteText(foldName(name.substr(name.find_last_of('.') + 1))));
    return last ? Value(Decimal(*last, 0)) : Value();
}

void Executor::assignVariable(Frame& frame, const std::string& name, Value value, int line) {
    const int at = frame.code->findVariable(name);
    if (at < 0) throw makeDbError(137, {name}, line);
    frame.variables[at] = std::move(value);
}

}  // namespace owb::tsql
