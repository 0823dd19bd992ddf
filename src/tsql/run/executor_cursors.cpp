// Cursors: each walks over a snapshot that its OPEN takes. The variables in its query count as they
// stood at DECLARE.
#include <algorithm>

#include "base/utf8.h"
#include "tsql/run/executor.h"
#include "tsql/types/types.h"

namespace owb::tsql {

Cursor::Cursor(const Statement& s, const Frame& frame)
    : statement(s), code(frame.code), variables(frame.variables), scroll(s.on) {
    ++code->running;  // its text must not be filled with other literals meanwhile
}

Cursor::~Cursor() {
    --code->running;
}

std::shared_ptr<Cursor> Executor::findCursor(Frame& frame, const std::string& name) {
    const std::string folded = foldName(name);
    for (const auto* cursors : {&frame.cursors, &cursors_}) {
        const auto found = cursors->find(folded);
        if (found != cursors->end()) return found->second;
    }
    if (name[0] == '@') throw makeDbError(16950, {name});
    throw makeDbError(16916, {name});
}

void Executor::runCursor(Frame& frame, const Statement& s) {
    const std::string& name = s.target.last();
    const std::string folded = foldName(name);
    if (s.kind == StatementKind::DeclareCursor) {
        auto& cursors = s.local ? frame.cursors : cursors_;
        if (name[0] != '@' && cursors.count(folded)) throw makeDbError(16915, {name});
        plan(frame, &s, [&](Planner& p) { return p.query(*s.query); });
        cursors[folded] = std::make_shared<Cursor>(s, frame);
        return;
    }
    const std::shared_ptr<Cursor> cursor = findCursor(frame, name);
    switch (s.kind) {
        case StatementKind::OpenCursor:
            openCursor(frame, *cursor);
            break;
        case StatementKind::FetchCursor:
            fetchCursor(frame, *cursor, s);
            break;
        case StatementKind::CloseCursor:
            if (!cursor->open) throw makeDbError(16917);
            cursor->open = false;
            cursor->rows = {};
            break;
        default:
            if (!frame.cursors.erase(folded)) cursors_.erase(folded);
    }
}

void Executor::openCursor(Frame& frame, Cursor& cursor) {
    if (cursor.open) throw makeDbError(16905);
    Frame query;
    query.code = cursor.code;
    query.variables = cursor.variables;
    query.pseudoTables = frame.pseudoTables;
    query.procedure = frame.procedure;
    BatchResult rows;
    BatchResult* const outer = result_;
    result_ = &rows;
    frame_ = &query;
    const auto leave = [&] {
        frame_ = &frame;
        result_ = outer;
    };
    try {
        runQuery(query, cursor.statement);
    } catch (...) {
        leave();
        throw;
    }
    leave();
    cursor.rows = std::move(rows.sets.at(0));
    cursor.at = -1;
    cursor.open = true;
}

void Executor::fetchCursor(Frame& frame, Cursor& cursor, const Statement& s) {
    if (!cursor.open) throw makeDbError(16917);
    if (!cursor.scroll && s.option != "NEXT")
        throw makeDbError(16911, {"fetch", lowerCase(s.option)});
    if (!s.columns.empty() && s.columns.size() != cursor.rows.columns.size())
        throw makeDbError(16924);
    const auto count = static_cast<int64_t>(cursor.rows.rows);
    const SqlType big = SqlType::of(SqlKind::BigInt);
    const int64_t n = s.value ? evaluate(frame, *s.value, &big).toInt() : 0;
    int64_t to = cursor.at + 1;
    if (s.option == "PRIOR") to = cursor.at - 1;
    if (s.option == "FIRST") to = 0;
    if (s.option == "LAST") to = count - 1;
    if (s.option == "ABSOLUTE") to = n > 0 ? n - 1 : n < 0 ? count + n : -1;
    if (s.option == "RELATIVE") to = cursor.at + n;
    cursor.at = std::clamp<int64_t>(to, -1, count);
    const bool found = cursor.at >= 0 && cursor.at < count;
    fetchStatus_ = found ? 0 : -1;
    rowCount_ = found ? 1 : 0;
    const auto row = static_cast<size_t>(found ? cursor.at : 0);
    if (s.columns.empty()) {
        ResultSet set;
        set.columns = cursor.rows.columns;
        for (size_t i = 0; found && i < set.columns.size(); ++i)
            set.cells.push_back(cursor.rows.at(row, i));
        set.rows = found ? 1 : 0;
        if (result_) result_->sets.push_back(std::move(set));
        return;
    }
    for (size_t i = 0; found && i < s.columns.size(); ++i) {
        const int variable = frame.code->parsed->findVariable(s.columns[i]);
        if (variable < 0) throw makeDbError(137, {s.columns[i]}, s.line);
        frame.variables[variable] =
            convertValue(cursor.rows.at(row, i), cursor.rows.columns[i].type,
                         frame.code->parsed->variables[variable].type);
    }
}

}  // namespace owb::tsql
