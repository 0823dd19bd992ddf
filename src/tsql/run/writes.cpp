#include "tsql/run/writes.h"

#include <algorithm>

#include "tsql/run/atomic_steps.h"
#include "tsql/run/broken_constraint.h"
#include "tsql/run/parameters.h"

namespace owb::tsql {

void Writes::requireWritable(const Name& target, int line) const {
    if (session_.functionDepth > 0) throw makeDbError(443, {"INSERT"}, line);
    if (target.last()[0] != '@') transactions_.requireSound();
}

void Writes::requireWritable(const WriteStatement& s) const {
    requireWritable(s.target, s.line);
    if (session_.options.rowCount > 0)
        throw makeDbError(15281, {"A statement that writes under SET ROWCOUNT"}, s.line);
}

void Writes::truncate(const TruncateStatement& s) {
    requireWritable(s.target, s.line);
    watch_.look();
    CatalogTablePtr table = session_.catalog.findTable(s.target);
    if (!table) throw makeDbError(4701, {s.target.text()}, s.line);
    AtomicSteps steps(session_.sqlite);
    session_.sqlite.run("DELETE FROM " + table->sqlName);
    if (table->identityColumn() >= 0 && !table->temporary)
        session_.sqlite.run("UPDATE tsql_identity SET last = NULL WHERE tbl = " +
                            sqliteText(foldName(table->name)));
    steps.commit();
    session_.rowCount = 0;
}

void Writes::run(Frame& frame, const WriteStatement& s) {
    requireWritable(s);
    const bool explicitIdentity = identity_.isExplicit(s.target);
    const auto make = [&](Planner& planner) {
        if (s.kind == StatementKind::Update) return planner.update(as<ChangeStatement>(s));
        if (s.kind == StatementKind::Delete) return planner.remove(as<ChangeStatement>(s));
        return planner.insert(as<InsertStatement>(s), explicitIdentity);
    };
    Plan* p = &plans_.plan(frame, &s, make);
    // Made when SET IDENTITY_INSERT stood otherwise.
    if (explicitIdentity ? p->givesIdentity : p->explicitIdentity) {
        frame.code->plans[&s].reset();
        p = &plans_.plan(frame, &s, make);
    }
    runPlan(frame, s, *p);
}

void Writes::runPlan(Frame& frame, const WriteStatement& s, Plan& p) {
    const CatalogTablePtr target = p.target;
    try {
        if (!p.triggers.empty() || p.stepwise) return runInSteps(frame, s, p);
        runAtOnce(frame, p);
    } catch (const BrokenConstraint& e) {
        // Keys may collide on the way to values that do not: judge the rows all together.
        if (e.isUnique() && p.writes == StatementKind::Update && !p.collectSql.empty())
            return replaceRows(frame, p);
        RowsOnTheirWay rows;
        if (e.isUnique() && p.writes == StatementKind::Insert && !p.givesIdentity) {
            rows.with = "WITH src" + p.insertColumns + " AS (" + p.insertRows + ")";
            rows.bind = [&](SqliteStatement& read) { bindParameters(read, frame, p.parameters); };
        }
        const char* verb = p.writes == StatementKind::Insert ? "INSERT" : "UPDATE";
        throw constraintError(session_, e, *target, verb, rows);
    }
}

void Writes::runAtOnce(Frame& frame, Plan& p) {
    if (p.givesIdentity || p.explicitIdentity) {
        AtomicSteps steps(session_.sqlite);
        identity_.load(*p.target);
        session_.rowCount = plans_.runOnce(frame, p, p.sql);
        identity_.store(*p.target);
        steps.commit();
        return;
    }
    BorrowedStatement statement = plans_.start(frame, p);
    session_.sqlite.step(*statement);
    session_.rowCount = session_.sqlite.changes();
}

// --- keys that pass through values which other rows hold ---

void Writes::replaceRows(Frame& frame, Plan& p) {
    const std::string rows = session_.workTable("rows");
    AtomicSteps steps(session_.sqlite);
    collectRows(frame, p, rows);
    const int64_t count = replaceCollected(p, rows);
    session_.sqlite.run("DROP TABLE " + rows);
    steps.commit();
    session_.rowCount = count;
}

int64_t Writes::replaceCollected(Plan& p, const std::string& rows) {
    Sqlite& sqlite = session_.sqlite;
    const CatalogTable& table = *p.target;
    const std::string moved = session_.workTable("moved");
    const std::string touched = " WHERE rowid IN (SELECT rid FROM " + rows + ")";
    sqlite.run("CREATE TABLE " + moved + " AS SELECT rowid AS rid, * FROM " + table.sqlName +
               touched);
    std::string names;
    for (const CatalogColumn& c : table.columns) names += ", " + sqliteName(c.name);
    sqlite.run(p.updateSql(moved, "rid", rows));
    const int64_t count = sqlite.changes();
    sqlite.run("DELETE FROM " + table.sqlName + touched);
    try {
        sqlite.run("INSERT INTO " + table.sqlName + "(rowid" + names + ") SELECT rid" + names +
                   " FROM " + moved);
    } catch (const BrokenConstraint& e) {
        throw constraintError(session_, e, table, "UPDATE",
                              {"WITH src AS (SELECT * FROM " + moved + ")", {}});
    }
    sqlite.run("DROP TABLE " + moved);
    return count;
}

// Fills a table with the rows that the statement touches ("rid") and their new values ("c0"..).
void Writes::collectRows(Frame& frame, Plan& p, const std::string& rows) {
    std::string columns = "rid";
    const int width = session_.sqlite.prepare(p.collectSql).columnCount();
    for (int i = 1; i < width; ++i) columns += ",c" + std::to_string(i - 1);
    session_.sqlite.run("CREATE TABLE " + rows + "(" + columns + ")");
    plans_.runOnce(frame, p, "INSERT INTO " + rows + " " + p.collectSql);
}

// --- statements in steps ---

void Writes::runInSteps(Frame& frame, const WriteStatement& s, Plan& p) {
    const CatalogTable& table = *p.target;
    const std::string deleted = session_.workTable("deleted");
    const std::string inserted = session_.workTable("inserted");
    AtomicSteps steps(session_.sqlite);
    for (const std::string& rows : {deleted, inserted})
        session_.sqlite.run("CREATE TABLE " + rows + " AS SELECT * FROM " + table.sqlName +
                            " WHERE 0");
    const int64_t count = p.writes == StatementKind::Insert
                              ? insertCollecting(frame, p, inserted)
                              : changeCollecting(frame, p, deleted, inserted);
    PseudoTables pseudo;
    const auto add = [&](const char* name, const std::string& sqlName) {
        auto t = std::make_shared<CatalogTable>(table);
        t->name = name;
        t->sqlName = sqlName;
        t->temporary = true;
        pseudo[name] = std::move(t);
    };
    add("inserted", inserted);
    add("deleted", deleted);
    if (s.output) output(frame, s, p, pseudo);
    session_.rowCount = count;
    triggers_.fire(p, pseudo);
    session_.sqlite.run("DROP TABLE " + deleted + "; DROP TABLE " + inserted);
    steps.commit();
    session_.rowCount = count;
}

int64_t Writes::insertCollecting(Frame& frame, Plan& p, const std::string& inserted) {
    const CatalogTable& table = *p.target;
    const bool identity = p.givesIdentity || p.explicitIdentity;
    const int64_t before =
        session_.sqlite.number("SELECT max(rowid) FROM " + table.sqlName).value_or(0);
    if (identity) identity_.load(table);
    const int64_t count = plans_.runOnce(frame, p, p.sql);
    if (identity) identity_.store(table);
    session_.sqlite.run("INSERT INTO " + inserted + " SELECT * FROM " + table.sqlName +
                        " WHERE rowid > " + std::to_string(before));
    return count;
}

int64_t Writes::changeCollecting(Frame& frame, Plan& p, const std::string& deleted,
                                 const std::string& inserted) {
    Sqlite& sqlite = session_.sqlite;
    const std::string rows = session_.workTable("rows");
    collectRows(frame, p, rows);
    const std::string touched = " SELECT * FROM " + p.target->sqlName +
                                " WHERE rowid IN (SELECT rid FROM " + rows + ") ORDER BY rowid";
    sqlite.run("INSERT INTO " + deleted + touched);
    try {
        if (p.writes == StatementKind::Delete || !p.assignedColumns.empty())
            sqlite.run(p.applySql(rows));
    } catch (const BrokenConstraint& e) {
        if (!e.isUnique() || p.writes != StatementKind::Update) throw;
        replaceCollected(p, rows);
    }
    const int64_t count = sqlite.number("SELECT count(DISTINCT rid) FROM " + rows).value_or(0);
    if (p.writes == StatementKind::Update) sqlite.run("INSERT INTO " + inserted + touched);
    sqlite.run("DROP TABLE " + rows);
    return count;
}

void Writes::output(Frame& frame, const WriteStatement& s, const Plan& p,
                    const PseudoTables& rows) {
    if (!p.triggers.empty() && s.outputInto.empty())
        throw makeDbError(334, {s.target.last()}, s.line);
    BindContext context = session_.bindContext(frame);
    context.pseudoTables = &rows;
    std::unique_ptr<Plan> output;
    try {
        output = Planner(context).output(*s.output);
    } catch (const DbError& e) {
        if (e.number != 4104 || s.kind == StatementKind::Insert ||
            as<ChangeStatement>(s).from.empty())
            throw;
        throw makeDbError(15281, {"OUTPUT of a column of another table"}, s.line);
    }
    SqliteStatement read = session_.sqlite.prepare(output->sql);
    bindParameters(read, frame, output->parameters);
    ResultSet set;
    set.columns = output->columns;
    for (; session_.sqlite.step(read); ++set.rows)
        for (size_t i = 0; i < set.columns.size(); ++i)
            set.cells.push_back(read.value(static_cast<int>(i), set.columns[i].type));
    read = {};
    if (!s.outputInto.empty())
        insertRows(frame, s.outputInto, s.outputColumns, set, s.line);
    else
        session_.tell(std::move(set));
}

// --- rows at hand ---

void Writes::insertSets(Frame& frame, const InsertStatement& s, std::vector<ResultSet>& sets) {
    AtomicSteps steps(session_.sqlite);
    int64_t count = 0;
    for (ResultSet& set : sets) {
        if (s.top) {
            const Value most = plans_.evaluate(frame, *s.top, SqlType::of(SqlKind::BigInt));
            if (most.isNull()) throw makeDbError(1060, {}, s.line);
            if (most.toInt() < 0) throw makeDbError(127, {}, s.line);
            set.rows = std::min(set.rows, static_cast<size_t>(most.toInt() - count));
        }
        insertRows(frame, s.target, s.columns, set, s.line);
        count += session_.rowCount;
    }
    steps.commit();
    session_.rowCount = count;
}

// A temporary table that holds the rows, under the columns c0, c1 ...
CatalogTable Writes::tableOfRows(const ResultSet& set) {
    Sqlite& sqlite = session_.sqlite;
    CatalogTable table;
    table.sqlName = session_.workTable("given");
    std::string names, marks;
    for (size_t i = 0; i < set.columns.size(); ++i) {
        CatalogColumn column;
        column.name = "c" + std::to_string(i);
        column.type = set.columns[i].type;
        names += (i ? "," : "") + column.name;
        marks += i ? ",?" : "?";
        table.columns.push_back(std::move(column));
    }
    sqlite.run("CREATE TABLE " + table.sqlName + "(" + names + ")");
    SqliteStatement fill =
        sqlite.prepare("INSERT INTO " + table.sqlName + " VALUES(" + marks + ")");
    for (size_t r = 0; r < set.rows; ++r) {
        for (size_t c = 0; c < set.columns.size(); ++c)
            fill.bind(static_cast<int>(c) + 1, set.at(r, c));
        sqlite.step(fill);
        fill.rewind();
    }
    return table;
}

// They go into the table as those of a query would: with defaults, checks and triggers.
void Writes::insertRows(Frame& frame, const Name& target, const std::vector<std::string>& columns,
                        const ResultSet& set, int line) {
    AtomicSteps steps(session_.sqlite);
    const CatalogTable source = tableOfRows(set);
    PseudoTables pseudo;
    if (frame.pseudoTables) pseudo = *frame.pseudoTables;
    pseudo["given rows"] = std::make_shared<CatalogTable>(source);
    InsertStatement insert(StatementKind::Insert, line);
    insert.target = target;
    insert.columns = columns;
    insert.query = std::make_unique<Query>();
    insert.query->body = std::make_unique<QueryBody>();
    insert.query->body->items.emplace_back().star = true;
    insert.query->body->from.push_back(std::make_unique<TableRef>());
    insert.query->body->from[0]->name.parts.emplace_back("given rows");
    BindContext context = session_.bindContext(frame);
    context.pseudoTables = &pseudo;
    try {
        std::unique_ptr<Plan> p = Planner(context).insert(insert, identity_.isExplicit(target));
        runPlan(frame, insert, *p);
    } catch (const DbError& e) {
        if (e.number == 120 || e.number == 121) throw makeDbError(213, {}, line);
        throw;
    }
    const int64_t count = session_.rowCount;
    session_.sqlite.run("DROP TABLE " + source.sqlName);
    steps.commit();
    session_.rowCount = count;
}

}  // namespace owb::tsql
