// Running statements: one after the other, control flow, errors.
//
// Kept true here:
//  1. Each statement is done or undone by itself, and its triggers with it, unless a transaction is
//     open. A batch holds nothing together.
//  2. Nobody else's change of a table or routine is overlooked: the catalog is asked before every
//     statement that stands in no transaction.
//  3. An error ends its statement, its scope or its batch, as reachOf says; it is noted once.
#include "tsql/run/executor.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>

#include "base/utf8.h"
#include "tsql/catalog/file_format.h"
#include "tsql/catalog/system_views.h"
#include "tsql/run/raised_message.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

std::string ownHostName() {
    char name[256] = "localhost";
    gethostname(name, sizeof name - 1);
    return name;
}

}  // namespace

Executor::Executor(std::unique_ptr<Sqlite> sqlite, std::string hostName)
    : sqlite_(std::move(sqlite)),
      catalog_(*sqlite_),
      appLocks_(*sqlite_),
      hostName_(hostName.empty() ? ownHostName() : std::move(hostName)) {
    bringToFormat(*sqlite_);
    addFunctions(*sqlite_, *this);
    addSystemViews(*sqlite_, catalog_, inTransaction_);
}

void Executor::setCommandTimeout(int seconds) {
    commandTimeout_ = seconds;
    if (lockTimeout_ < 0) sqlite_->setBusySeconds(seconds);
}

void Executor::cancel() {
    sqlite_->cancel();
}

Executor::Flow Executor::runStatements(Frame& frame, const std::vector<StatementPtr>& statements) {
    for (size_t at = 0; at < statements.size(); ++at) {
        const StatementPtr& s = statements[at];
        try {
            const Flow flow = runGuarded(frame, *s);
            fresh_ = false;
            if (flow == Flow::Goto) {
                const auto label =
                    std::find_if(statements.begin(), statements.end(), [&](const StatementPtr& l) {
                        return l->kind == StatementKind::Label && l->option == goto_;
                    });
                if (label == statements.end()) return flow;
                at = static_cast<size_t>(label - statements.begin());
                continue;
            }
            if (flow != Flow::Next) return flow;
        } catch (DbError& e) {
            fresh_ = false;
            if (e.line == 0) e.line = s->line;
            if (frame.inFunction || tryDepth_ > 0 || reach(e) != ErrorReach::Statement) throw;
            noteError(e);
        }
    }
    return Flow::Next;
}

// Runs the statement; whatever it fails with is a DbError.
Executor::Flow Executor::runGuarded(Frame& frame, const Statement& s) {
    try {
        return runStatement(frame, s);
    } catch (const DbError&) {
        throw;
    } catch (const std::exception&) {
        throw caughtError();
    }
}

Executor::Flow Executor::runStatement(Frame& frame, const Statement& s) {
    sqlite_->checkClock();
    if (sqlite_->rolledBack) catalog_.rolledBack();
    if (functionDepth_ == 0) {
        if (!memo_.empty()) memo_ = {};  // clear() would keep, and wipe, a big one's buckets
        statementTime_ = {};
    }
    switch (s.kind) {
        case StatementKind::If:
        case StatementKind::While:
        case StatementKind::Block:
        case StatementKind::Break:
        case StatementKind::Continue:
        case StatementKind::Return:
        case StatementKind::TryCatch:
        case StatementKind::Goto:
            return runControl(frame, s);
        default:
            break;
    }
    bool keepsError = false;
    switch (s.kind) {
        case StatementKind::Query:
            upToDate([&] { runQuery(frame, s); });
            break;
        case StatementKind::Insert:
        case StatementKind::Update:
        case StatementKind::Delete:
        case StatementKind::Truncate:
            if (s.kind == StatementKind::Insert && !s.body.empty())
                runWrite(frame, s);  // what it calls is not called again
            else
                upToDate([&] { runWrite(frame, s); });
            if (s.kind != StatementKind::Truncate) tellCount();
            break;
        case StatementKind::Declare:
            for (const VariableDeclaration& v : s.variables) {
                if (v.isTable) {
                    if (CatalogTablePtr old = catalog_.findTable(v.name)) {
                        sqlite_->run("DROP TABLE " + old->sqlName);
                        catalog_.forgetTemporary(*old);
                    }
                    createTable(describeTable(v.name, v.tableColumns, v.tableConstraints), s.line);
                } else if (v.initial) {
                    frame.variables[frame.code->parsed->findVariable(v.name)] =
                        evaluate(frame, *v.initial, &v.type);
                }
            }
            break;
        case StatementKind::Set: {
            const int at = frame.code->parsed->findVariable(s.variable);
            if (at < 0) throw makeDbError(137, {s.variable}, s.line);
            const SqlType& type = frame.code->parsed->variables[at].type;
            if (s.op.empty()) {
                upToDate([&] { frame.variables[at] = evaluate(frame, *s.value, &type); });
            } else {
                Plan& p = plan(frame, &s, [&](Planner& planner) {
                    Expr sum(ExprKind::Binary, s.line);
                    sum.op = s.op;
                    sum.args.push_back(std::make_unique<Expr>(ExprKind::Variable, s.line));
                    sum.args[0]->name.parts.push_back(s.variable);
                    // Borrowed for the time of planning.
                    sum.args.push_back(ExprPtr(const_cast<Expr*>(s.value.get())));
                    std::unique_ptr<Plan> made;
                    try {
                        made = planner.value(sum, &type);
                    } catch (...) {
                        static_cast<void>(sum.args[1].release());
                        throw;
                    }
                    static_cast<void>(sum.args[1].release());
                    return made;
                });
                SqliteStatement statement = acquire(frame, p);
                sqlite_->step(statement);
                frame.variables[at] = statement.value(0, p.columns[0].type);
                statement.rewind();
                p.idle.push_back(std::move(statement));
            }
            rowCount_ = 1;
            break;
        }
        case StatementKind::SetOption:
            setOption(frame, s);
            break;
        case StatementKind::Execute:
        case StatementKind::ExecuteText:
            try {
                execute(frame, s);
            } catch (DbError& e) {
                e.column = 0;  // that is a place in another text
                throw;
            }
            keepsError = true;
            break;
        case StatementKind::CreateTable:
        case StatementKind::AlterTable:
        case StatementKind::CreateIndex:
        case StatementKind::Drop:
            define(s);
            break;
        case StatementKind::CreateModule:
            throw makeDbError(111, {"CREATE"}, s.line);
        case StatementKind::BeginTransaction:
        case StatementKind::Commit:
        case StatementKind::Rollback:
        case StatementKind::SaveTransaction:
            runTransaction(frame, s);
            break;
        case StatementKind::Print: {
            const SqlType text = SqlType::text(SqlKind::NVarChar, 4000);
            const Value v = evaluate(frame, *s.value, &text);
            if (result_) result_->messages.push_back(v.toText());
            rowCount_ = 0;
            break;
        }
        case StatementKind::DeclareCursor:
        case StatementKind::OpenCursor:
        case StatementKind::FetchCursor:
        case StatementKind::CloseCursor:
        case StatementKind::DeallocateCursor:
            runCursor(frame, s);
            break;
        case StatementKind::WaitFor:
            waitFor(frame, s);
            break;
        case StatementKind::Label:
            return Flow::Next;
        case StatementKind::RaiseError:
            raiseError(frame, s);
            keepsError = true;
            break;
        case StatementKind::Throw:
            throwStatement(frame, s);
            break;
        default:
            break;
    }
    if (!keepsError) lastError_ = 0;
    return Flow::Next;
}

// Nobody else makes or drops anything between the look whether it can be done and the doing.
void Executor::define(const Statement& s) {
    requireSoundTransaction();
    if (s.kind == StatementKind::Drop) return drop(s);
    AtomicSteps steps(*sqlite_, s.target.last().starts_with("#"));
    lookAround();
    if (s.kind == StatementKind::CreateTable)
        createTable(s);
    else if (s.kind == StatementKind::AlterTable)
        alterTable(s);
    else
        createIndex(s);
    steps.commit();
}

// Whether a statement may have failed for a change that somebody made between the look at the
// catalog and the statement. It did nothing, and may be tried again as things stand now.
bool Executor::wasOutrun(const DbError& e) {
    if (e.number != -3 || transactions_ > 0 || functionDepth_ > 0 || catalogUnchecked_)
        return false;
    const uint64_t version = catalog_.version();
    catalog_.refresh();
    return catalog_.version() != version;
}

// Outside a transaction of T-SQL's anybody may have changed the catalog since the last statement.
void Executor::lookAround() {
    if (transactions_ == 0 && functionDepth_ == 0 && !catalogUnchecked_) catalog_.refresh();
}

Executor::Flow Executor::runControl(Frame& frame, const Statement& s) {
    switch (s.kind) {
        case StatementKind::If: {
            bool yes = false;
            upToDate([&] { yes = condition(frame, *s.condition); });
            rowCount_ = 0;
            lastError_ = 0;
            return runStatements(frame, yes ? s.body : s.otherwise);
        }
        case StatementKind::While:
            while (condition(frame, *s.condition)) {
                sqlite_->checkClock();
                const Flow flow = runStatements(frame, s.body);
                if (flow == Flow::Break) break;
                if (flow == Flow::Return || flow == Flow::Goto) return flow;
            }
            return Flow::Next;
        case StatementKind::Block:
            return runStatements(frame, s.body);
        case StatementKind::Break:
            return Flow::Break;
        case StatementKind::Continue:
            return Flow::Continue;
        case StatementKind::Goto:
            goto_ = s.option;
            return Flow::Goto;
        case StatementKind::TryCatch:
            return runTryCatch(frame, s);
        default:
            break;
    }
    // RETURN
    if (s.value) {
        if (frame.inFunction) {
            const SqlType type = frame.code->parsed->definition->returns;
            frame.returned = evaluate(frame, *s.value, &type);
        } else {
            if (!frame.code->parsed->definition ||
                frame.code->parsed->definition->kind != ModuleKind::Procedure)
                throw makeDbError(178, {}, s.line);
            const SqlType type = SqlType::of(SqlKind::Int);
            frame.returned = evaluate(frame, *s.value, &type);
        }
    }
    return Flow::Return;
}

Executor::Flow Executor::runTryCatch(Frame& frame, const Statement& s) {
    std::optional<DbError> error;
    ++tryDepth_;
    try {
        const Flow flow = runStatements(frame, s.body);
        --tryDepth_;
        return flow;
    } catch (DbError& e) {
        --tryDepth_;
        // Nothing catches the client's own giving up, nor a broken connection.
        if (e.number < 0 || e.severity >= 20) throw;
        // A name that proves wrong as the statement is made ready ends the scope that holds it.
        if (!e.left && reachOf(e) == ErrorReach::Scope) throw;
        if (transactions_ > 0 && abortsTransaction(e)) doomed_ = true;
        if (e.procedure.empty()) e.procedure = frame.procedure;
        error = e;
    }
    frame_ = &frame;
    std::optional<DbError> outer = caught_;
    caught_ = error;
    lastError_ = error->number;
    try {
        const Flow flow = runStatements(frame, s.otherwise);
        caught_ = outer;
        return flow;
    } catch (...) {
        caught_ = outer;
        throw;
    }
}

void Executor::tellCount() {
    if (result_ && !noCount_) result_->counts.push_back(rowCount_);
}

void Executor::raiseError(Frame& frame, const Statement& s) {
    if (s.arguments.size() < 3) throw makeDbError(102, {"RAISERROR"}, s.line);
    const Value message = evaluate(frame, *s.arguments[0].value);
    const auto severity = static_cast<int>(evaluate(frame, *s.arguments[1].value).toInt());
    const auto state = static_cast<int>(evaluate(frame, *s.arguments[2].value).toInt());
    if (severity > 18 && !s.on) throw makeDbError(2754, {}, s.line);
    std::string text;
    if (message.isText()) {
        std::vector<Value> values;
        for (size_t i = 3; i < s.arguments.size(); ++i)
            values.push_back(evaluate(frame, *s.arguments[i].value));
        text = raisedMessage(message.asText(), values);
    } else {
        text = "Error " + message.toText() + ", severity " + std::to_string(severity) + ", state " +
               std::to_string(state) +
               " was raised, but no message with that error number was found in sys.messages. If "
               "error is larger than 50000, make sure the user-defined message is added using "
               "sp_addmessage.";
    }
    const int number = message.isText() ? 50000 : static_cast<int>(message.toInt());
    if (severity <= 10) {
        if (result_) result_->messages.push_back(text);
        lastError_ = s.local ? number : 0;
        return;
    }
    DbError error(number, severity, std::max(state, 0), s.line, text);
    error.raised = true;
    throw error;
}

void Executor::waitFor(Frame& frame, const Statement& s) {
    const SqlType time = SqlType::of(SqlKind::DateTime);
    Value until;
    try {
        until = evaluate(frame, *s.value, &time);
    } catch (const DbError& e) {
        if (e.number != 241 && e.number != 242) throw;
        throw makeDbError(148, {evaluate(frame, *s.value).toText()}, s.line);
    }
    if (until.isNull()) return;
    double seconds = until.asDate().tick / 300.0;
    if (s.on) {
        seconds -= statementTime().tick / 300.0;
        if (seconds < 0) seconds += 86400;
    }
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    while (Clock::now() < end) {
        const std::chrono::duration<double> left = end - Clock::now();
        sqlite_->sleep(std::clamp(left.count(), 0.0, 0.05));
    }
}

void Executor::throwStatement(Frame& frame, const Statement& s) {
    if (s.arguments.empty()) {
        if (!caught_)
            throw DbError(10704, 15, 1, s.line,
                          "To rethrow an error, a THROW statement must be used inside a CATCH "
                          "block. Insert the THROW statement inside a CATCH block, or add error "
                          "parameters to the THROW statement.");
        DbError again = *caught_;
        again.endsBatch = true;
        throw again;
    }
    const auto number = static_cast<int>(evaluate(frame, *s.arguments[0].value).toInt());
    const std::string text = evaluate(frame, *s.arguments[1].value).toText();
    const auto state = static_cast<int>(evaluate(frame, *s.arguments[2].value).toInt());
    if (number < 50000) throw makeDbError(35100, {std::to_string(number)}, s.line);
    DbError error(number, 16, state, s.line, text);
    error.endsBatch = true;
    throw error;
}

}  // namespace owb::tsql
