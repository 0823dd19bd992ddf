#include "tsql/run/statements.h"

#include <algorithm>
#include <chrono>

namespace owb::tsql {

Statements::Flow Statements::run(Frame& frame, const std::vector<StatementPtr>& statements) {
    for (size_t at = 0; at < statements.size(); ++at) {
        const StatementPtr& s = statements[at];
        try {
            const Flow flow = runGuarded(frame, *s);
            watch_.statementEnded();
            if (flow.kind == Flow::Next) continue;
            if (flow.kind != Flow::Goto) return flow;
            const auto label =
                std::find_if(statements.begin(), statements.end(), [&](const StatementPtr& l) {
                    return l->kind == StatementKind::Label &&
                           as<LabelStatement>(*l).label == *flow.label;
                });
            if (label == statements.end()) return flow;
            at = static_cast<size_t>(label - statements.begin());
        } catch (DbError& e) {
            watch_.statementEnded();
            if (e.line == 0) e.line = s->line;
            if (frame.inFunction || session_.tryDepth > 0 ||
                transactions_.reachOf(e) != ErrorReach::Statement)
                throw;
            session_.noteError(e);
        }
    }
    return {};
}

Statements::Flow Statements::runGuarded(Frame& frame, const Statement& s) {
    try {
        return runOne(frame, s);
    } catch (const DbError&) {
        throw;
    } catch (const std::exception&) {
        throw caughtError();
    }
}

Statements::Flow Statements::runOne(Frame& frame, const Statement& s) {
    session_.sqlite.checkClock();
    if (session_.sqlite.rolledBack) session_.catalog.rolledBack();
    if (session_.functionDepth == 0) {
        functions_.forgetResults();
        session_.forgetStatementTime();
    }
    switch (s.kind) {
        case StatementKind::If:
            return choose(frame, as<CompoundStatement>(s));
        case StatementKind::While:
            return loop(frame, as<CompoundStatement>(s));
        case StatementKind::Block:
            return run(frame, as<CompoundStatement>(s).body);
        case StatementKind::Break:
            return {Flow::Break};
        case StatementKind::Continue:
            return {Flow::Continue};
        case StatementKind::Goto:
            return {Flow::Goto, &as<LabelStatement>(s).label};
        case StatementKind::Return:
            return leave(frame, as<ValueStatement>(s));
        case StatementKind::TryCatch:
            return tryAndCatch(frame, as<CompoundStatement>(s));
        case StatementKind::Label:
            return {};
        default:
            break;
    }
    if (runPlain(frame, s)) session_.lastError = 0;
    return {};
}

// False for a statement that leaves an @@ERROR of its own.
bool Statements::runPlain(Frame& frame, const Statement& s) {
    switch (s.kind) {
        case StatementKind::Query:
            watch_.upToDate([&] { queries_.run(frame, s, *as<QueryStatement>(s).query); });
            return true;
        case StatementKind::Insert:
        case StatementKind::Update:
        case StatementKind::Delete:
            write(frame, as<WriteStatement>(s));
            return true;
        case StatementKind::Truncate:
            watch_.upToDate([&] { writes_.truncate(as<TruncateStatement>(s)); });
            return true;
        case StatementKind::Declare:
            declare(frame, as<DeclareStatement>(s));
            return true;
        case StatementKind::Set:
            assign(frame, as<SetStatement>(s));
            return true;
        case StatementKind::SetOption:
            options_.set(frame, as<OptionStatement>(s));
            return true;
        case StatementKind::Execute:
        case StatementKind::ExecuteText:
            execute(frame, s);
            return false;
        case StatementKind::CreateTable:
        case StatementKind::AlterTable:
        case StatementKind::CreateIndex:
        case StatementKind::Drop:
            tables_.run(s);
            return true;
        case StatementKind::BeginTransaction:
        case StatementKind::Commit:
        case StatementKind::Rollback:
        case StatementKind::SaveTransaction:
            changeTransaction(frame, as<TransactionStatement>(s));
            return true;
        case StatementKind::DeclareCursor:
        case StatementKind::OpenCursor:
        case StatementKind::FetchCursor:
        case StatementKind::CloseCursor:
        case StatementKind::DeallocateCursor:
            cursors_.run(frame, as<CursorStatement>(s));
            return true;
        case StatementKind::WaitFor:
            waitFor(frame, as<WaitStatement>(s));
            return true;
        case StatementKind::Print:
        case StatementKind::RaiseError:
        case StatementKind::Throw:
            messages_.run(frame, s);
            return s.kind != StatementKind::RaiseError;
        default:
            throw makeDbError(111, {"CREATE"}, s.line);
    }
}

Statements::Flow Statements::choose(Frame& frame, const CompoundStatement& s) {
    bool yes = false;
    watch_.upToDate([&] { yes = plans_.condition(frame, *s.condition); });
    session_.rowCount = 0;
    session_.lastError = 0;
    return run(frame, yes ? s.body : s.otherwise);
}

Statements::Flow Statements::loop(Frame& frame, const CompoundStatement& s) {
    while (plans_.condition(frame, *s.condition)) {
        session_.sqlite.checkClock();
        const Flow flow = run(frame, s.body);
        if (flow.kind == Flow::Break) break;
        if (flow.kind == Flow::Return || flow.kind == Flow::Goto) return flow;
    }
    return {};
}

// RETURN
Statements::Flow Statements::leave(Frame& frame, const ValueStatement& s) {
    if (!s.value) return {Flow::Return};
    const ModuleDefinition* definition = frame.code->parsed->definition;
    if (!frame.inFunction && (!definition || definition->kind != ModuleKind::Procedure))
        throw makeDbError(178, {}, s.line);
    frame.returned = plans_.evaluate(
        frame, *s.value, frame.inFunction ? definition->returns : SqlType::of(SqlKind::Int));
    return {Flow::Return};
}

Statements::Flow Statements::tryAndCatch(Frame& frame, const CompoundStatement& s) {
    std::optional<TravellingError> error;
    try {
        Restored inTry(session_.tryDepth, session_.tryDepth + 1);
        return run(frame, s.body);
    } catch (const DbError& e) {
        error.emplace(e);
        // Nothing catches the client's own giving up, nor a broken connection.
        if (e.number < 0 || e.severity >= 20) throw;
        // A name that proves wrong as the statement is made ready ends the scope that holds it.
        if (!error->left && reachOf(e) == ErrorReach::Scope) throw;
    }
    if (transactions_.isOpen() && transactions_.areAbortedBy(*error)) transactions_.doom();
    if (error->procedure.empty()) error->procedure = frame.procedure;
    session_.frame = &frame;
    session_.lastError = error->number;
    Restored caught(session_.caught, std::move(error));
    return run(frame, s.otherwise);
}

void Statements::declare(Frame& frame, const DeclareStatement& s) {
    for (const VariableDeclaration& v : s.variables) {
        if (v.isTable)
            tables_.declare(v, s.line);
        else if (v.initial)
            frame.variables[frame.variable(v.name, s.line)] =
                plans_.evaluate(frame, *v.initial, v.type);
    }
}

// SET @x = value, SET @x += value
void Statements::assign(Frame& frame, const SetStatement& s) {
    const size_t at = frame.variable(s.variable, s.line);
    const SqlType& type = frame.typeOf(at);
    if (s.op.empty()) {
        watch_.upToDate([&] { frame.variables[at] = plans_.evaluate(frame, *s.value, type); });
    } else {
        Plan& p = plans_.plan(frame, &s, [&](Planner& planner) { return planner.sum(s, type); });
        frame.variables[at] = plans_.run(frame, p);
    }
    session_.rowCount = 1;
}

void Statements::write(Frame& frame, const WriteStatement& s) {
    if (s.kind == StatementKind::Insert && as<InsertStatement>(s).executed)
        insertExecuted(frame, as<InsertStatement>(s));  // what it calls is not called again
    else
        watch_.upToDate([&] { writes_.run(frame, s); });
    session_.tellCount();
}

// INSERT ... EXEC: what the call gives back goes into the table.
void Statements::insertExecuted(Frame& frame, const InsertStatement& s) {
    writes_.requireWritable(s);
    if (session_.insertExecs > 0)
        throw DbError(8164, 16, 1, s.line, "An INSERT EXEC statement cannot be nested.");
    BatchResult rows;
    const auto handOn = [&] {
        for (std::string& message : rows.messages) session_.tell(std::move(message));
    };
    try {
        Restored result(session_.result, &rows);
        Restored nested(session_.insertExecs, session_.insertExecs + 1);
        calls_.execute(frame, *s.executed);
    } catch (...) {
        handOn();
        throw;
    }
    handOn();
    for (const DbError& e : rows.errors) session_.noteError(e);
    writes_.insertSets(frame, s, rows.sets);
}

void Statements::execute(Frame& frame, const Statement& s) {
    try {
        calls_.execute(frame, s);
    } catch (DbError& e) {
        e.column = 0;  // that is a place in another text
        throw;
    }
}

void Statements::changeTransaction(Frame& frame, const TransactionStatement& s) {
    const std::string name = s.nameValue ? plans_.evaluate(frame, *s.nameValue).toText() : s.name;
    switch (s.kind) {
        case StatementKind::BeginTransaction:
            return transactions_.begin(name);
        case StatementKind::Commit:
            return transactions_.commit();
        case StatementKind::SaveTransaction:
            return transactions_.save(name);
        default:
            return transactions_.rollback(name);
    }
}

void Statements::waitFor(Frame& frame, const WaitStatement& s) {
    Value until;
    try {
        until = plans_.evaluate(frame, *s.time, SqlType::of(SqlKind::DateTime));
    } catch (const DbError& e) {
        if (e.number != 241 && e.number != 242) throw;
        throw makeDbError(148, {plans_.evaluate(frame, *s.time).toText()}, s.line);
    }
    if (until.isNull()) return;
    double seconds = until.asDate().tick / 300.0;
    if (s.untilTime) {
        seconds -= session_.statementTime().tick / 300.0;
        if (seconds < 0) seconds += 86400;
    }
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    while (Clock::now() < end) {
        const std::chrono::duration<double> left = end - Clock::now();
        session_.sqlite.sleep(std::clamp(left.count(), 0.0, 0.05));
    }
}

}  // namespace owb::tsql
