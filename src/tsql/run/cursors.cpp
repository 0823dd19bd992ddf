#include "tsql/run/cursors.h"

#include <algorithm>
#include <utility>

#include "base/utf8.h"
#include "tsql/types/types.h"

namespace owb::tsql {

Cursor::Cursor(const CursorStatement& s, const Frame& frame)
    : statement(s), code(frame.code), variables(frame.variables), scroll(s.scroll) {
    ++code->running;  // its text must not be filled with other literals meanwhile
}

Cursor::~Cursor() {
    --code->running;
}

std::shared_ptr<Cursor> Cursors::find(Frame& frame, const std::string& name) const {
    const std::string folded = foldName(name);
    for (const auto* cursors : {&std::as_const(frame.cursors), &global_}) {
        const auto found = cursors->find(folded);
        if (found != cursors->end()) return found->second;
    }
    throw makeDbError(name[0] == '@' ? 16950 : 16916, {name});
}

void Cursors::run(Frame& frame, const CursorStatement& s) {
    if (s.kind == StatementKind::DeclareCursor) return declare(frame, s);
    const std::string& name = s.name;
    const std::shared_ptr<Cursor> cursor = find(frame, name);
    switch (s.kind) {
        case StatementKind::OpenCursor:
            return open(frame, *cursor);
        case StatementKind::FetchCursor:
            return fetch(frame, *cursor, s);
        case StatementKind::CloseCursor:
            return close(*cursor);
        default: {
            const std::string folded = foldName(name);
            if (!frame.cursors.erase(folded)) global_.erase(folded);
        }
    }
}

void Cursors::declare(Frame& frame, const CursorStatement& s) {
    const std::string& name = s.name;
    const std::string folded = foldName(name);
    auto& cursors = s.local ? frame.cursors : global_;
    if (name[0] != '@' && cursors.count(folded)) throw makeDbError(16915, {name});
    plans_.plan(frame, &s, [&](Planner& p) { return p.query(*s.query); });
    cursors[folded] = std::make_shared<Cursor>(s, frame);
}

void Cursors::open(Frame& frame, Cursor& cursor) {
    if (cursor.open) throw makeDbError(16905);
    Frame query(cursor.code);
    query.variables = cursor.variables;
    query.pseudoTables = frame.pseudoTables;
    query.procedure = frame.procedure;
    BatchResult rows;
    {
        Restored result(session_.result, &rows);
        Restored running(session_.frame, &query);
        queries_.run(query, cursor.statement, *cursor.statement.query);
    }
    cursor.rows = std::move(rows.sets.at(0));
    cursor.at = -1;
    cursor.open = true;
}

void Cursors::close(Cursor& cursor) {
    if (!cursor.open) throw makeDbError(16917);
    cursor.open = false;
    cursor.rows = {};
}

// The row that a FETCH goes to, counted from 0; -1 before the first, the count behind the last.
int64_t Cursors::placeOf(Frame& frame, const Cursor& cursor, const CursorStatement& s) {
    const auto count = static_cast<int64_t>(cursor.rows.rows);
    const int64_t n =
        s.distance ? plans_.evaluate(frame, *s.distance, SqlType::of(SqlKind::BigInt)).toInt() : 0;
    int64_t to = cursor.at + 1;
    if (s.way == "PRIOR") to = cursor.at - 1;
    if (s.way == "FIRST") to = 0;
    if (s.way == "LAST") to = count - 1;
    if (s.way == "ABSOLUTE") to = n > 0 ? n - 1 : n < 0 ? count + n : -1;
    if (s.way == "RELATIVE") to = cursor.at + n;
    return std::clamp<int64_t>(to, -1, count);
}

void Cursors::fetch(Frame& frame, Cursor& cursor, const CursorStatement& s) {
    if (!cursor.open) throw makeDbError(16917);
    if (!cursor.scroll && s.way != "NEXT") throw makeDbError(16911, {"fetch", lowerCase(s.way)});
    const Columns& columns = cursor.rows.columns;
    if (!s.into.empty() && s.into.size() != columns.size()) throw makeDbError(16924);
    cursor.at = placeOf(frame, cursor, s);
    const bool found = cursor.at >= 0 && cursor.at < static_cast<int64_t>(cursor.rows.rows);
    fetchStatus_ = found ? 0 : -1;
    session_.rowCount = found ? 1 : 0;
    const auto row = static_cast<size_t>(found ? cursor.at : 0);
    if (s.into.empty()) {
        ResultSet set;
        set.columns = columns;
        for (size_t i = 0; found && i < columns.size(); ++i)
            set.cells.push_back(cursor.rows.at(row, i));
        set.rows = found ? 1 : 0;
        return session_.tell(std::move(set));
    }
    for (size_t i = 0; found && i < s.into.size(); ++i) {
        const size_t at = frame.variable(s.into[i], s.line);
        frame.variables[at] =
            convertValue(cursor.rows.at(row, i), columns[i].type, frame.typeOf(at));
    }
}

}  // namespace owb::tsql
