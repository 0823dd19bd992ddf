#include "tsql/run/executor.h"

#include "tsql/catalog/file_format.h"
#include "tsql/catalog/system_views.h"

namespace owb::tsql {

namespace {

// A batch that runs may not be filled with other literals.
class Running {
  public:
    Running(Session& session, Frame& frame) : frame_(session.frame, &frame), code_(*frame.code) {
        ++code_.running;
    }
    ~Running() { --code_.running; }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

  private:
    Restored<Frame*> frame_;
    CompiledBatch& code_;
};

}  // namespace

Executor::Executor(std::unique_ptr<Sqlite> sqlite, const std::string& hostName)
    : sqlite_(std::move(sqlite)),
      sessionFunctions_(session_, transactions_, scalarFunctions_, tableFunctions_, identity_,
                        triggers_, cursors_, locks_, help_, hostName) {
    bringToFormat(*sqlite_);
    addFunctions(*sqlite_, sessionFunctions_);
    addSystemViews(*sqlite_, catalog_, [this] { return transactions_.isOpen(); });
}

void Executor::begin() {
    if (transactions_.isOpen())
        throw DbError(-2147168237, 16, 1, 0, "A transaction is already open.");
    transactions_.begin();
}

BatchResult Executor::run(std::string_view batch) {
    BatchResult result;
    Restored outer(session_.result, &result);
    sqlite_->cancelled = false;
    sqlite_->startClock(options_.commandTimeout());
    const auto failed = [&](const DbError& e) {
        session_.noteError(e);
        if (transactions_.isOpen() && transactions_.areAbortedBy(e)) transactions_.rollback();
    };
    try {
        runBatch(batch);
    } catch (const DbError& e) {
        failed(e);
    } catch (const std::exception&) {
        failed(caughtError());
    }
    transactions_.endBatch();
    sqlite_->stopClock();
    result.affected = session_.rowCount;
    return result;
}

void Executor::runBatch(std::string_view batch) {
    Frame frame(codes_.batch(batch));
    CompiledBatch& code = *frame.code;
    const std::vector<StatementPtr>& statements = code.parsed->ast.statements;
    const bool loneSelect = code.loneSelect && !sqlite_->inTransaction();
    if (sqlite_->rolledBack) catalog_.rolledBack();
    if (!loneSelect && !transactions_.isOpen()) catalog_.refresh();
    watch_.batchBegins();
    Running running(session_, frame);
    if (code.parsed->definition) return modules_.define(frame);
    if (loneSelect && runAlone(frame, *statements[0])) return;
    if (!code.checked) {
        const bool steady = !ForwardCheck::changesSchema(statements);
        if (steady) forwardCheck_.check(frame, statements);
        code.checked = true;
        code.loneSelect =
            steady && statements.size() == 1 && statements[0]->kind == StatementKind::Query;
    }
    statements_.run(frame, statements);
}

// A SELECT that stands alone asks whether the catalog is current once its read has begun. False
// when it was not: what could not be done as things stood is to be tried again as they stand.
bool Executor::runAlone(Frame& frame, const Statement& s) {
    const uint64_t version = catalog_.version();
    watch_.setUnchecked(true);
    try {
        statements_.runGuarded(frame, s);
        watch_.setUnchecked(false);
        return true;
    } catch (const CatalogWatch::StaleCatalog&) {
        watch_.setUnchecked(false);
        return false;
    } catch (DbError& e) {
        watch_.setUnchecked(false);
        if (e.line == 0) e.line = s.line;
        catalog_.refresh();
        if (catalog_.version() == version) throw;
        return false;
    }
}

void Executor::runScope(Frame& callee) {
    CallDepth depth(session_);
    Restored options(session_.options);
    Restored identity(identity_.ofScope(), Value());
    catalog_.openScope();
    const auto leave = [&] { catalog_.closeScope(); };
    try {
        Running running(session_, callee);
        try {
            statements_.run(callee, callee.code->parsed->body());
        } catch (const DbError& e) {
            TravellingError error(e);
            if (error.procedure.empty()) error.procedure = callee.procedure;
            error.left = true;
            if (session_.tryDepth > 0 || transactions_.reachOf(e) != ErrorReach::Scope) throw error;
            session_.noteError(error);
        }
    } catch (...) {
        leave();
        throw;
    }
    leave();
}

void Executor::runFunction(Frame& callee) {
    statements_.run(callee, callee.code->parsed->body());
}

}  // namespace owb::tsql
