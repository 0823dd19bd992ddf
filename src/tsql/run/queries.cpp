#include "tsql/run/queries.h"

#include "tsql/run/atomic_steps.h"
#include "tsql/types/types.h"

namespace owb::tsql {

void Queries::run(Frame& frame, const Statement& s, const Query& query) {
    Plan& p = plans_.plan(frame, &s, [&](Planner& planner) { return planner.query(query); });
    if (!p.into.empty()) return makeTable(frame, p);
    if (!p.variables.empty()) return assign(frame, p);
    if (frame.inFunction)
        throw DbError(444, 16, 2, s.line,
                      "Select statements included within a function cannot return data to a "
                      "client.");
    answer(frame, p);
}

void Queries::assign(Frame& frame, Plan& p) {
    BorrowedStatement statement = plans_.start(frame, p);
    const int64_t most = session_.options.rowCount;
    int64_t rows = 0;
    while (session_.sqlite.step(*statement)) {
        if (most > 0 && rows == most) break;
        ++rows;
        for (size_t i = 0; i < p.variables.size(); ++i)
            frame.variables[p.variables[i]] =
                statement->value(static_cast<int>(i), p.columns[i].type);
    }
    session_.rowCount = rows;
}

void Queries::answer(Frame& frame, Plan& p) {
    BorrowedStatement statement = plans_.start(frame, p);
    ResultSet set;
    set.columns = p.columns;
    const auto width = static_cast<int>(p.columns.size());
    const auto most = static_cast<size_t>(session_.options.rowCount);
    set.cells.reserve(p.columns.size());
    bool row = session_.sqlite.step(*statement);
    if (watch_.isUnchecked() && session_.depth == 0)  // not inside a function that it calls
        watch_.checkWhileReading(p.readsFile);
    for (; row; row = session_.sqlite.step(*statement)) {
        if (most > 0 && set.rows == most) break;
        ++set.rows;
        for (int i = 0; i < width; ++i) set.cells.push_back(statement->value(i, p.columns[i].type));
    }
    session_.rowCount = static_cast<int64_t>(set.rows);
    for (int i = 0; i < width; ++i) {
        const SqlType& type = p.columns[i].type;
        if (!type.isClock() && type.kind != SqlKind::Real) continue;
        for (size_t at = i; at < set.cells.size(); at += width)
            set.cells[at] = clientValue(set.cells[at], type);
    }
    session_.tell(std::move(set));
}

CatalogTable Queries::newTable(const Plan& p) const {
    session_.catalog.requirePlace(p.into, 0);
    CatalogTable table;
    table.name = p.into.last();
    if (session_.catalog.findTable(table.name) || session_.catalog.findModule(table.name))
        throw makeDbError(2714, {table.name});
    for (const Column& c : p.columns) {
        if (table.findColumn(c.name) >= 0) throw makeDbError(2705, {c.name, table.name});
        CatalogColumn column;
        column.name = c.name;
        column.type = c.type;
        column.nullable = c.nullable;
        table.columns.push_back(std::move(column));
    }
    return table;
}

void Queries::makeTable(Frame& frame, Plan& p) {
    transactions_.requireSound();
    const bool temporary = p.into.last().starts_with("#");
    AtomicSteps steps(session_.sqlite, temporary);
    if (!temporary) watch_.look();
    CatalogTable table = newTable(p);
    const std::string name = table.name;
    tables_.create(std::move(table), 0);
    try {
        session_.rowCount = plans_.runOnce(
            frame, p, "INSERT INTO " + session_.catalog.findTable(name)->sqlName + " " + p.sql);
        steps.commit();
    } catch (const DbError&) {
        if (CatalogTablePtr made = session_.catalog.findTable(name); made && made->temporary)
            session_.catalog.forgetTemporary(*made);
        session_.catalog.changed(name);
        throw;
    }
    session_.tellCount();
}

}  // namespace owb::tsql
