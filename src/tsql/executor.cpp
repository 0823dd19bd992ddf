// Batches, control flow, errors and transactions.
//
// Kept true here:
//  1. A batch of several statements that may write runs in one SQLite transaction of its own,
//     taken for writing at its start; it is committed at the batch's end, whatever errors its
//     statements met. A batch of one statement commits with that statement.
//  2. A T-SQL transaction ends the batch's own one first and stays open over batches.
//  3. An error ends its statement, its scope or its batch, as reachOf says; it is noted once.
#include "tsql/executor.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>

#include "base/utf8.h"
#include "tsql/file_format.h"
#include "tsql/messages.h"
#include "tsql/parser.h"
#include "tsql/system_views.h"
#include "tsql/types.h"

namespace owb::tsql {

namespace {

constexpr size_t kMostTokens = 200000;  // of the parsed texts that are kept, with their plans

std::string ownHostName() {
    char name[256] = "localhost";
    gethostname(name, sizeof name - 1);
    return name;
}

}  // namespace

Executor::Executor(std::unique_ptr<Sqlite> sqlite, std::string hostName)
    : sqlite_(std::move(sqlite)),
      catalog_(*sqlite_),
      hostName_(hostName.empty() ? ownHostName() : std::move(hostName)) {
    bringToFormat(*sqlite_);
    registerFunctions(*sqlite_, *this);
    registerSystemViews(*sqlite_, catalog_, inTransaction_);
}

Executor::~Executor() {
    // Statements go before the connection does.
    cursors_.clear();
    batches_.clear();
    recentTexts_.fill(nullptr);
    for (const CatalogModulePtr& m : catalog_.modules()) m->code.reset();
}

void Executor::setCommandTimeout(int seconds) {
    commandTimeout_ = seconds;
    sqlite_->setBusySeconds(seconds);
}

void Executor::cancel() {
    sqlite_->cancelled = true;
    sqlite3_interrupt(sqlite_->handle());
}

// --- finding the parsed form of a batch ---

// The shape is the text with its literals taken out: texts of one shape share their plans.
std::shared_ptr<CompiledBatch> Executor::findOrCompile(std::string_view batch) {
    // The very text that was run last of its shape needs no reading.
    std::shared_ptr<CompiledBatch>& recent =
        recentTexts_[std::hash<std::string_view>{}(batch) % recentTexts_.size()];
    if (recent && recent->heldText == batch && recent->running == 0) return recent;
    std::shared_ptr<CompiledBatch> code = findShape(batch);
    if (code->cacheable) {
        code->heldText = batch;
        recent = code;
    }
    return code;
}

std::shared_ptr<CompiledBatch> Executor::findShape(std::string_view batch) {
    const std::vector<Token> tokens = tokenize(batch);
    shape_.clear();
    std::vector<LiteralSlot> literals;
    literals.reserve(8);
    for (const Token& t : tokens) {
        if (t.isLiteral()) {
            literals.push_back(literalOf(t));
            shape_ += '\x01';
            shape_ += static_cast<char>('a' + static_cast<int>(literals.back().type.kind));
        } else {
            shape_ += batch.substr(t.begin, t.end - t.begin);
        }
        shape_ += ' ';
    }
    auto& known = batches_[shape_];
    for (const auto& code : known) {
        if (code->running > 0 || code->ast.literals.size() < literals.size()) continue;
        bool fits = true;
        for (size_t i = 0; i < literals.size() && fits; ++i) {
            const LiteralSlot& held = code->ast.literals[i];
            fits = (!held.fixed || held.value == literals[i].value) &&
                   (!held.typeFixed ||
                    (held.type == literals[i].type && held.digits == literals[i].digits));
        }
        if (!fits) continue;
        for (size_t i = 0; i < literals.size(); ++i) {
            LiteralSlot& held = code->ast.literals[i];
            if (held.fixed) continue;
            held.value = std::move(literals[i].value);
            held.type = literals[i].type;
            held.digits = literals[i].digits;
        }
        return code;
    }
    if (keptTokens_ >= kMostTokens) {
        // Forgetting all is rare and simple; what is used comes back at once.
        const std::string shape = shape_;
        batches_.clear();
        recentTexts_.fill(nullptr);
        keptTokens_ = 0;
        shape_ = shape;
    }
    std::shared_ptr<CompiledBatch> code = compileBatch(std::string(batch));
    if (code->cacheable) {
        auto& list = batches_[shape_];
        if (list.size() >= 16) list.erase(list.begin());
        list.push_back(code);
        keptTokens_ += code->tokens.size();
    } else if (batches_[shape_].empty()) {
        batches_.erase(shape_);
    }
    return code;
}

// A name that does not exist is found out before anything of the batch runs, as long as nothing
// in the batch itself can bring it about.
void Executor::checkAhead(Frame& frame, const std::vector<StatementPtr>& statements) {
    for (const StatementPtr& s : statements) {
        try {
            switch (s->kind) {
                case StatementKind::Query:
                case StatementKind::DeclareCursor:
                    plan(frame, s.get(), [&](Planner& p) { return p.query(*s->query); });
                    break;
                case StatementKind::Insert:
                    if (s->query || s->defaultValues)
                        plan(frame, s.get(), [&](Planner& p) {
                            return p.insert(*s, foldName(s->target.last()) == identityInsert_);
                        });
                    break;
                case StatementKind::Update:
                    plan(frame, s.get(), [&](Planner& p) { return p.update(*s); });
                    break;
                case StatementKind::Delete:
                    plan(frame, s.get(), [&](Planner& p) { return p.remove(*s); });
                    break;
                case StatementKind::If:
                case StatementKind::While:
                    plan(frame, s->condition.get(),
                         [&](Planner& p) { return p.condition(*s->condition); });
                    break;
                default:
                    break;
            }
        } catch (DbError& e) {
            if (e.line == 0) e.line = s->line;
            if (e.number != 208 && e.number != 544 && e.number != 545 && e.number != 8101) throw;
        }
        checkAhead(frame, s->body);
        checkAhead(frame, s->otherwise);
    }
}

namespace {

bool changesSchema(const std::vector<StatementPtr>& statements) {
    return std::any_of(statements.begin(), statements.end(), [](const StatementPtr& s) {
        switch (s->kind) {
            case StatementKind::CreateTable:
            case StatementKind::AlterTable:
            case StatementKind::Drop:
            case StatementKind::Execute:
            case StatementKind::ExecuteText:
            case StatementKind::Declare: {
                if (s->kind != StatementKind::Declare) return true;
                return std::any_of(s->variables.begin(), s->variables.end(),
                                   [](const VariableDeclaration& v) { return v.isTable; });
            }
            case StatementKind::Query: {
                const QueryBody* first = s->query->body.get();
                while (first->left) first = first->left.get();
                return !first->into.empty();
            }
            default:
                return changesSchema(s->body) || changesSchema(s->otherwise);
        }
    });
}

bool runsAlone(const Batch& batch) {
    if (batch.statements.size() != 1) return false;
    const Statement& s = *batch.statements[0];
    return s.kind == StatementKind::Update || s.kind == StatementKind::Delete ||
           (s.kind == StatementKind::Insert && s.body.empty());
}

// BEGIN TRAN and its kin stand alone in a batch: the batch needs no transaction around them.
bool steersTransaction(const Batch& batch) {
    return std::all_of(batch.statements.begin(), batch.statements.end(), [](const StatementPtr& s) {
        return s->kind == StatementKind::BeginTransaction || s->kind == StatementKind::Commit ||
               s->kind == StatementKind::Rollback || s->kind == StatementKind::SaveTransaction;
    });
}

}  // namespace

BatchResult Executor::run(std::string_view batch) {
    BatchResult result;
    BatchResult* const outer = result_;
    result_ = &result;
    sqlite_->cancelled = false;
    sqlite_->startClock(commandTimeout_);
    try {
        runBatch(batch);
    } catch (const DbError& e) {
        noteError(e);
        if (transactions_ > 0 && abortsTransaction(e)) rollbackTransaction();
    }
    endBatchTransaction();
    if (implicit_) {
        implicit_ = false;
        try {
            if (!sqlite3_get_autocommit(sqlite_->handle())) sqlite_->run("COMMIT");
        } catch (const DbError& e) {
            noteError(e);
            try {
                sqlite_->run("ROLLBACK");
            } catch (const DbError&) {
            }
            catalog_.rolledBack();
        }
    }
    // SQLite gives a transaction up by itself when the disk is full or the like.
    if (transactions_ > 0 && sqlite3_get_autocommit(sqlite_->handle())) {
        transactions_ = 0;
        inTransaction_ = false;
        catalog_.rolledBack();
    }
    sqlite_->stopClock();
    result.affected = rowCount_;
    result_ = outer;
    return result;
}

void Executor::runBatch(std::string_view batch) {
    Frame frame;
    frame.code = findOrCompile(batch);
    CompiledBatch* const code = frame.code.get();
    // A lone SELECT asks whether the catalog is current once its read has begun, for less; see
    // runQuery. What it cannot do as things stood is tried again as they stand.
    const bool lone = code->checked && code->ast.statements.size() == 1 && !code->ast.mayWrite &&
                      code->ast.statements[0]->kind == StatementKind::Query &&
                      sqlite3_get_autocommit(sqlite_->handle());
    // Within a transaction nobody else changes anything.
    if (!lone && transactions_ == 0) catalog_.refresh();
    frame.variables.resize(code->variables.size());
    struct Running {
        Executor& self;
        Frame& frame;
        Frame* outer;
        Running(Executor& e, Frame& f) : self(e), frame(f), outer(e.frame_) {
            e.frame_ = &f;
            ++f.code->running;
        }
        ~Running() {
            self.frame_ = outer;
            --frame.code->running;
        }
    } running(*this, frame);
    if (code->definition) {
        Together together(*sqlite_);
        createModule(frame, *code->ast.statements[0]);
        together.done();
        return;
    }
    if (lone) {
        const uint64_t version = catalog_.version();
        lone_ = true;
        try {
            runStatement(frame, *code->ast.statements[0]);
            lone_ = false;
            return;
        } catch (const StaleCatalog&) {
            lone_ = false;
        } catch (DbError& e) {
            lone_ = false;
            if (e.line == 0) e.line = code->ast.statements[0]->line;
            catalog_.refresh();
            if (catalog_.version() == version) throw;
        }
    }
    if (!code->checked) {
        if (!changesSchema(code->ast.statements)) checkAhead(frame, code->ast.statements);
        code->checked = true;
    }
    if (code->ast.mayWrite && transactions_ == 0 && !runsAlone(code->ast) &&
        !steersTransaction(code->ast) && sqlite3_get_autocommit(sqlite_->handle())) {
        sqlite_->run("BEGIN IMMEDIATE");
        implicit_ = true;
        catalog_.refresh();
    }
    runStatements(frame, code->ast.statements);
}

void Executor::noteError(const DbError& e) {
    if (e.before) noteError(*e.before);
    lastError_ = e.number;
    rowCount_ = 0;
    DbError noted = e;
    if (noted.procedure.empty() && frame_) noted.procedure = frame_->procedure;
    if (result_) result_->errors.push_back(noted);
}

// --- statements ---

Executor::Flow Executor::runStatements(Frame& frame, const std::vector<StatementPtr>& statements) {
    for (size_t at = 0; at < statements.size(); ++at) {
        const StatementPtr& s = statements[at];
        try {
            const Flow flow = runStatement(frame, *s);
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
            if (e.line == 0) e.line = s->line;
            if (frame.inFunction || tryDepth_ > 0 || reach(e) != ErrorReach::Statement) throw;
            noteError(e);
        }
    }
    return Flow::Next;
}

Executor::Flow Executor::runStatement(Frame& frame, const Statement& s) {
    sqlite_->checkClock();
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
            runQuery(frame, s);
            break;
        case StatementKind::Insert:
        case StatementKind::Update:
        case StatementKind::Delete:
        case StatementKind::Truncate:
            runWrite(frame, s);
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
                    frame.variables[frame.code->findVariable(v.name)] =
                        evaluate(frame, *v.initial, &v.type);
                }
            }
            break;
        case StatementKind::Set: {
            const int at = frame.code->findVariable(s.variable);
            if (at < 0) throw makeDbError(137, {s.variable}, s.line);
            const SqlType& type = frame.code->variables[at].type;
            if (s.op.empty()) {
                frame.variables[at] = evaluate(frame, *s.value, &type);
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
                        sum.args[1].release();
                        throw;
                    }
                    sum.args[1].release();
                    return made;
                });
                SqliteStatement statement = acquire(frame, p);
                sqlite_->step(statement.get());
                frame.variables[at] = columnValue(statement.get(), 0, p.columns[0].type);
                sqlite3_reset(statement.get());
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
            requireSoundTransaction();
            createTable(s);
            break;
        case StatementKind::AlterTable:
            requireSoundTransaction();
            alterTable(s);
            break;
        case StatementKind::CreateIndex:
            createIndex(s);
            break;
        case StatementKind::Drop:
            requireSoundTransaction();
            drop(s);
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

Executor::Flow Executor::runControl(Frame& frame, const Statement& s) {
    switch (s.kind) {
        case StatementKind::If: {
            const bool yes = condition(frame, *s.condition);
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
            const SqlType type = frame.code->definition->returns;
            frame.returned = evaluate(frame, *s.value, &type);
        } else {
            if (!frame.code->definition || frame.code->definition->kind != ModuleKind::Procedure)
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

// Options that change nothing here are taken; one that would change answers is refused.
void Executor::tellCount() {
    if (result_ && !noCount_) result_->counts.push_back(rowCount_);
}

void Executor::setOption(Frame& frame, const Statement& s) {
    if (s.option == "IDENTITY_INSERT") {
        const CatalogTablePtr table = catalog_.findTable(s.target.last());
        if (!table) throw makeDbError(1088, {s.target.last()}, s.line);
        if (table->identityColumn() < 0) throw makeDbError(8106, {table->name}, s.line);
        const std::string name = foldName(table->name);
        if (s.on && !identityInsert_.empty() && identityInsert_ != name)
            throw makeDbError(8107, {identityInsert_, table->name}, s.line);
        if (s.on || identityInsert_ == name) identityInsert_ = s.on ? name : "";
        return;
    }
    if (s.option == "NOCOUNT") {
        noCount_ = s.on;
        return;
    }
    if (s.option == "ROWCOUNT") {
        const SqlType big = SqlType::of(SqlKind::BigInt);
        options_.rowCount = evaluate(frame, *s.value, &big).toInt();
        return;
    }
    if (s.option == "DATEFIRST" && s.value && evaluate(frame, *s.value).toText() == "7") return;
    static constexpr const char* kAnyway[] = {"QUOTED_IDENTIFIER", "ARITHABORT",
                                              "NUMERIC_ROUNDABORT", "LOCK_TIMEOUT", "STATISTICS"};
    static constexpr const char* kOnlyOn[] = {"ANSI_NULLS",    "ANSI_PADDING",
                                              "ANSI_WARNINGS", "ANSI_NULL_DFLT_ON",
                                              "ANSI_DEFAULTS", "CONCAT_NULL_YIELDS_NULL"};
    for (const char* name : kAnyway)
        if (s.option.starts_with(name)) return;
    for (const char* name : kOnlyOn)
        if (s.option == name && s.on) return;
    if (s.option == "XACT_ABORT") {
        options_.xactAbort = s.on;
        return;
    }
    if (s.option == "DATEFORMAT MDY" || s.option.starts_with("LANGUAGE") ||
        s.option.starts_with("TRANSACTION ISOLATION"))
        return;
    throw makeDbError(15281, {"SET " + s.option}, s.line);
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
        text = formatMessage(message.asText(), values);
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
    const DateTime until = evaluate(frame, *s.value, &time).asDate();
    double seconds = until.tick / 300.0;
    if (s.on) {
        seconds -= statementTime().tick / 300.0;
        if (seconds < 0) seconds += 86400;
    }
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    while (Clock::now() < end) {
        sqlite_->checkClock();
        const std::chrono::duration<double> left = end - Clock::now();
        usleep(static_cast<useconds_t>(std::clamp(left.count(), 0.0, 0.05) * 1e6));
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

// --- what functions ask ---

Value Executor::liveVariable(int index) {
    return frame_->variables[index];
}

void Executor::setVariable(int index, Value value) {
    frame_->variables[index] = std::move(value);
}

DateTime Executor::statementTime() {
    if (statementTime_ == DateTime{}) {
        timespec t{};
        clock_gettime(CLOCK_REALTIME, &t);
        tm local{};
        localtime_r(&t.tv_sec, &local);
        statementTime_ = DateTime::fromCivil(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
        statementTime_.tick = (local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec) * 300 +
                              static_cast<int32_t>(t.tv_nsec / 3333334);
    }
    return statementTime_;
}

Value Executor::systemValue(const std::string& name) {
    if (name == "ROWCOUNT") return Value(rowCount_);
    if (name == "ERROR") return Value(lastError_);
    if (name == "TRANCOUNT") return Value(transactions_);
    if (name == "IDENTITY")
        return lastIdentity_.isNull() ? Value() : Value(Decimal(lastIdentity_.asInt(), 0));
    if (name == "SCOPE_IDENTITY")
        return scopeIdentity_.isNull() ? Value() : Value(Decimal(scopeIdentity_.asInt(), 0));
    if (name == "HOST_NAME") return Value(hostName_);
    if (name == "NESTLEVEL") return Value(depth_);
    if (name == "SPID") return Value(static_cast<int64_t>(getpid() % 32768));
    if (name == "DATEFIRST") return Value(7);
    if (name == "FETCH_STATUS") return Value(fetchStatus_);
    if (name == "DB_ID") return Value(1);
    if (name == "DB_NAME") return Value(sqlite_->databaseName());
    if (name == "APP_NAME") return Value("Orvane Wagebook");
    if (name == "VERSION") return Value("Orvane Wagebook embedded database");
    if (name == "SERVERNAME") return Value("(embedded)");
    if (name.ends_with("USER_NAME") || name.ends_with("SUSER_SNAME") || name == "SUSER_NAME" ||
        name == "SYSTEM_USER" || name == "CURRENT_USER")
        return Value(name == "USER_NAME" || name == "CURRENT_USER" ? "dbo" : "sa");
    if (name.starts_with("UPDATED:"))
        return Value(std::find(updatedColumns_.begin(), updatedColumns_.end(), name.substr(8)) !=
                     updatedColumns_.end());
    if (name == "XACT_STATE") return Value(doomed_ ? -1 : transactions_ > 0 ? 1 : 0);
    if (!caught_) return {};
    if (name == "ERROR_NUMBER") return Value(caught_->number);
    if (name == "ERROR_MESSAGE") return Value(std::string(caught_->what()));
    if (name == "ERROR_SEVERITY") return Value(caught_->severity);
    if (name == "ERROR_STATE") return Value(caught_->state);
    if (name == "ERROR_LINE") return Value(caught_->line);
    if (name == "ERROR_PROCEDURE")
        return caught_->procedure.empty() ? Value() : Value(caught_->procedure);
    return {};
}

void Executor::backup(const std::string& path) {
    if (access(path.c_str(), F_OK) == 0)
        throw makeDbError(-3, {"The file " + path + " exists already."});
    try {
        // Reads in one transaction, so that it needs no pause of those who write.
        sqlite_->run("VACUUM main INTO " + sqliteText(path));
    } catch (const DbError&) {
        ::unlink(path.c_str());
        throw;
    }
}

std::vector<std::string> Executor::checkIntegrity() {
    std::vector<std::string> problems;
    SqliteStatement s = sqlite_->prepare("PRAGMA integrity_check(50)");
    while (sqlite_->step(s.get())) {
        const std::string line = reinterpret_cast<const char*>(sqlite3_column_text(s.get(), 0));
        if (line != "ok") problems.push_back("file: " + line);
    }
    catalog_.refresh();
    for (const CatalogModulePtr& m : catalog_.modules()) {
        try {
            compileBatch(m->source);
            if (m->kind == ModuleKind::Trigger && !catalog_.findTable(m->table))
                problems.push_back("catalog: the trigger " + m->name + " stands on " + m->table +
                                   ", which is gone");
        } catch (const DbError& e) {
            problems.push_back("catalog: the source of " + m->name +
                               " does not parse: " + e.what());
        }
    }
    SqliteStatement lost = sqlite_->prepare(
        "SELECT tbl, name FROM tsql_constraint WHERE tbl NOT IN (SELECT lower(name) FROM "
        "main.sqlite_master WHERE type = 'table')");
    while (sqlite_->step(lost.get()))
        problems.push_back(
            "catalog: the constraint " +
            std::string(reinterpret_cast<const char*>(sqlite3_column_text(lost.get(), 1))) +
            " belongs to no table");
    return problems;
}

}  // namespace owb::tsql
