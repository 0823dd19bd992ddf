// Runs batches: statements in order, control flow, variables, calls, errors and transactions.
#pragma once

#include <array>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/result_set.h"
#include "tsql/catalog/catalog.h"
#include "tsql/functions/functions.h"
#include "tsql/plan/planner.h"
#include "tsql/run/app_locks.h"
#include "tsql/run/compiled_batch.h"

namespace owb::tsql {

// One activation of a batch or module.
struct Frame {
    std::shared_ptr<CompiledBatch> code;
    std::vector<Value> variables;
    const std::map<std::string, CatalogTablePtr>* pseudoTables = nullptr;
    bool inFunction = false;
    std::string procedure;  // name, for errors
    Value returned;
    std::map<std::string, std::shared_ptr<struct Cursor>> cursors;  // LOCAL ones
};

struct Cursor {
    Cursor(const Statement& s, const Frame& frame);
    ~Cursor();
    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;

    const Statement& statement;
    std::shared_ptr<CompiledBatch> code;  // that the statement stands in
    std::vector<Value> variables;
    ResultSet rows;
    int64_t at = -1;
    bool open = false;
    bool scroll = false;
};

// Thrown by a lone SELECT that was planned on a catalog which another process has changed since.
struct StaleCatalog {};

// Keeps the steps of one statement together: all of them or none.
class AtomicSteps {
  public:
    // `temporary`: nothing but temporary tables is written, for which nobody needs to wait.
    explicit AtomicSteps(Sqlite& sqlite, bool temporary = false);
    ~AtomicSteps();
    void commit();

  private:
    Sqlite& sqlite_;
    bool own_;  // a transaction of our own, otherwise a savepoint
    bool finished_ = false;
};

// What an error ends: its statement alone, the scope (module or batch) it stands in, or the batch.
enum class ErrorReach { Statement, Scope, Batch };
ErrorReach reachOf(const DbError& e);

// A plan's statement while it runs: it goes back to its plan, rewound, however the run ends.
class BorrowedStatement {
  public:
    BorrowedStatement(Plan& plan, SqliteStatement statement)
        : plan_(plan), statement_(std::move(statement)) {}
    ~BorrowedStatement() {
        statement_.rewind();
        plan_.idle.push_back(std::move(statement_));
    }
    SqliteStatement& operator*() { return statement_; }
    SqliteStatement* operator->() { return &statement_; }

  private:
    Plan& plan_;
    SqliteStatement statement_;
};

class Executor final : public FunctionHost {
  public:
    Executor(std::unique_ptr<Sqlite> sqlite, std::string hostName);

    BatchResult run(std::string_view batch);
    void begin();
    void commit();
    void rollback();
    void setCommandTimeout(int seconds);
    void cancel();
    void backup(const std::string& path);
    std::vector<std::string> checkIntegrity();

    // --- FunctionHost ---
    Value callFunction(int id, SqliteArguments arguments) override;
    Value liveVariable(int index) override;
    void setVariable(int index, Value value) override;
    void applyRows(ApplyPlan& plan, SqliteArguments arguments, AppliedRows& rows) override;
    Value systemValue(const std::string& name) override;
    DateTime statementTime() override;
    Value objectId(const std::string& name, const std::string& kind) override;
    Value columnLength(const std::string& table, const std::string& column) override;
    int64_t nextIdentity() override;
    Value identityOf(const std::string& table) override;
    Value applicationLock(const std::string& principal, const std::string& resource,
                          const std::optional<std::string>& mode,
                          const std::string& owner) override;

  private:
    enum class Flow { Next, Break, Continue, Return, Goto };

    // --- batches (executor_batches.cpp) ---
    std::shared_ptr<CompiledBatch> findOrCompile(std::string_view batch);
    std::shared_ptr<CompiledBatch> findShape(std::string_view batch);
    void checkAhead(Frame& frame, const std::vector<StatementPtr>& statements);
    void runBatch(std::string_view batch);
    void noteError(const DbError& e);

    // --- statements (executor.cpp) ---
    Flow runStatements(Frame& frame, const std::vector<StatementPtr>& statements);
    Flow runStatement(Frame& frame, const Statement& s);
    Flow runGuarded(Frame& frame, const Statement& s);
    Flow runControl(Frame& frame, const Statement& s);
    Flow runTryCatch(Frame& frame, const Statement& s);
    void tellCount();
    void waitFor(Frame& frame, const Statement& s);
    void define(const Statement& s);
    void lookAround();
    bool wasOutrun(const DbError& e);
    // Does the work, again while others change the catalog under it.
    template <typename Work>
    void upToDate(Work work) {
        for (int tries = 0;; ++tries) {
            try {
                return work();
            } catch (const DbError& e) {
                if (tries == 10 || !wasOutrun(e)) throw;
            }
        }
    }
    void raiseError(Frame& frame, const Statement& s);
    void throwStatement(Frame& frame, const Statement& s);

    // --- options (executor_session.cpp) ---
    void setOption(Frame& frame, const Statement& s);

    // --- care of the file (executor_care.cpp) ---
    void checkCatalog(std::vector<std::string>& problems);

    // --- statements on data (executor_data.cpp) ---
    // The plan kept under the key, or one that `make(Planner&)` makes.
    template <typename Make>
    Plan& plan(Frame& frame, const void* key, Make make) {
        std::unique_ptr<Plan>& slot = frame.code->plans[key];
        if (!fresh_ && (!slot || slot->readsFile)) {
            lookAround();
            fresh_ = true;
        }
        // A trigger's tables are new each time it fires.
        if (!slot || frame.pseudoTables || !stillGood(*slot)) {
            BindContext context = bindContext(frame);
            Planner planner(context);
            std::unique_ptr<Plan> made = make(planner);
            made->checkedVersion = catalog_.version();
            slot = std::move(made);
        }
        return *slot;
    }
    bool stillGood(Plan& plan) {
        return plan.checkedVersion == catalog_.version() || dependenciesHold(plan);
    }
    bool dependenciesHold(Plan& plan);
    BindContext bindContext(Frame& frame);
    SqliteStatement acquire(Frame& frame, Plan& plan);
    void bindParameters(SqliteStatement& statement, Frame& frame,
                        const std::vector<PlanParameter>& parameters,
                        const SqliteArguments* outer = nullptr);
    void runQuery(Frame& frame, const Statement& s);
    void runInto(Frame& frame, Plan& plan);
    void runWrite(Frame& frame, const Statement& s);
    void runPlanned(Frame& frame, const Statement& s, Plan& plan);
    void runWithTriggers(Frame& frame, const Statement& s, Plan& plan);
    void runOutput(Frame& frame, const Statement& s, const Plan& plan,
                   const std::map<std::string, CatalogTablePtr>& rows);
    void insertRows(Frame& frame, const Name& target, const std::vector<std::string>& columns,
                    const ResultSet& set, int line);
    void replaceRows(Frame& frame, Plan& plan);
    int64_t replaceCollected(Plan& plan, const std::string& rows);
    void collectRows(Frame& frame, Plan& plan, const std::string& rows);
    void insertExecuted(Frame& frame, const Statement& s);
    void fireTriggers(Plan& plan, const std::map<std::string, CatalogTablePtr>& pseudoTables);
    Value evaluate(Frame& frame, const Expr& e, const SqlType* target = nullptr);
    bool condition(Frame& frame, const Expr& e);
    int64_t runPrepared(Frame& frame, Plan& plan, const std::string& sql);
    const Value& parameterValue(Frame& frame, const PlanParameter& p);
    void fillTables(Frame& frame, Plan& plan);
    void runTableFunction(CatalogModule& module, std::vector<Value> arguments,
                          const std::string& sqlName, bool inStatement);
    void readApplied(SqliteStatement& statement, AppliedRows& rows);
    // `rows`: a WITH clause that names the rows on their way in "src"; "" when not known.
    [[noreturn]] void constraintFailure(const DbError& e, const CatalogTable& table,
                                        StatementKind writes, const std::string& rows = "",
                                        Frame* frame = nullptr, Plan* p = nullptr);
    std::string duplicateKey(const CatalogTable& table, const CatalogKey& key,
                             const std::string& rows, Frame* frame, Plan* p);
    void loadIdentity(const CatalogTable& table);
    void storeIdentity(const CatalogTable& table);
    void assignVariable(Frame& frame, const std::string& name, Value value, int line);

    // --- cursors (executor_cursors.cpp) ---
    void runCursor(Frame& frame, const Statement& s);
    std::shared_ptr<Cursor> findCursor(Frame& frame, const std::string& name);
    void openCursor(Frame& frame, Cursor& cursor);
    void fetchCursor(Frame& frame, Cursor& cursor, const Statement& s);

    // --- definitions (executor_definitions.cpp) ---
    void createTable(const Statement& s);
    void createTable(CatalogTable table, int line);
    CatalogTable describeTable(const std::string& name,
                               const std::vector<ColumnDefinition>& columns,
                               const std::vector<ConstraintDefinition>& constraints);
    std::string tableDdl(const CatalogTable& table, const std::string& sqlName);
    void storeConstraints(const CatalogTable& table);
    void createKeyIndex(const CatalogTable& table, const CatalogKey& key, bool unique);
    void rebuildTable(const CatalogTable& before, CatalogTable after);
    void alterTable(const Statement& s);
    void alterTable(const CatalogTable& table, const AlterAction& action, int line);
    void addColumn(const CatalogTable& table, const ColumnDefinition& column, int line);
    void addConstraint(const CatalogTable& table, const ConstraintDefinition& c, int line);
    void dropConstraint(const CatalogTable& table, const std::string& name, int line);
    void dropColumn(const CatalogTable& table, const std::string& name, int line);
    void alterColumn(const CatalogTable& table, const ColumnDefinition& column, int line);
    void createIndex(const Statement& s);
    void defineModule(Frame& frame);
    void createModule(Frame& frame, const Statement& s);
    std::string checkText(const CatalogTable& table, const std::string& source);

    // --- DROP (executor_drop.cpp) ---
    void drop(const Statement& s);
    void dropOne(const Statement& s, const Name& name);

    // --- calls (executor_calls.cpp) ---
    void execute(Frame& frame, const Statement& s);
    void call(Frame& frame, const Statement& s);
    bool isSystemPlace(const Name& name) const;
    void executeText(const std::string& text);
    void executeSql(Frame& frame, const Statement& s);
    std::vector<size_t> argumentPlaces(const Statement& s, const std::string& procedure,
                                       const std::vector<std::string>& names) const;

    // --- application locks (executor_locks.cpp) ---
    std::vector<std::optional<Value>> namedArguments(Frame& frame, const Statement& s,
                                                     const std::string& procedure,
                                                     const std::vector<std::string>& names);
    void lockProcedure(Frame& frame, const Statement& s, const std::string& procedure);
    int awaitLock(const std::string& name, AppLocks::Mode mode, AppLocks::Owner owner,
                  int64_t timeout);

    // --- system procedures (system_procedures.cpp) ---
    bool systemProcedure(Frame& frame, const Statement& s, const std::string& name);
    CatalogTablePtr tableNamed(const std::string& text);  // a name that came as a text
    CatalogModulePtr moduleNamed(const std::string& text);
    void helpAll();
    void help(const std::string& object, int line);
    void helpColumns(const std::vector<CatalogColumn>& columns);
    void helpIndexes(const CatalogTable& table);
    void helpConstraints(const CatalogTable& table, const std::string& object);
    void helpParameters(CatalogModule& module);
    void helpText(const std::string& object, int line);
    void helpTrigger(const std::string& object, int line);
    // Of a view; with a number of arguments, all NULL, of a function of rows.
    std::vector<CatalogColumn> viewColumns(const CatalogModule& view, size_t arguments = 0);

    // --- calls of modules (executor_calls.cpp) ---
    Frame moduleFrame(CatalogModule& module);
    const std::shared_ptr<CompiledBatch>& moduleCode(CatalogModule& module);
    void runScope(Frame& callee);

    // --- transactions (executor_transactions.cpp) ---
    void runTransaction(Frame& frame, const Statement& s);
    void beginTransaction(const std::string& name = "");
    void commitTransaction();
    void rollbackTransaction(const std::string& name = "");
    void saveTransaction(const std::string& name);
    void rollbackFile(const std::string& sql);
    void endBatchTransaction();
    void requireSoundTransaction() const;
    ErrorReach reach(const DbError& e) const;
    bool abortsTransaction(const DbError& e) const;

    std::unique_ptr<Sqlite> sqlite_;
    Catalog catalog_;
    AppLocks appLocks_;
    std::string hostName_;
    std::unordered_map<std::string, std::vector<std::shared_ptr<CompiledBatch>>> batches_;
    std::array<std::shared_ptr<CompiledBatch>, 512> recentTexts_;  // by hash of the text
    std::unordered_map<std::string, std::shared_ptr<CompiledBatch>> moduleCodes_;  // by name
    size_t keptTokens_ = 0;
    std::string shape_;

    struct FunctionSlot {
        std::string name;
        CatalogModulePtr module;  // null when there is no such function
        std::shared_ptr<CompiledBatch> code;
        uint64_t version = 0;
    };
    std::vector<FunctionSlot> functions_;
    std::unordered_map<std::string, Value> memo_;  // results of functions in this statement
    std::string memoKey_;

    Frame* frame_ = nullptr;  // the innermost one that runs
    BatchResult* result_ = nullptr;
    int depth_ = 0;          // of calls
    int functionDepth_ = 0;  // of functions: nothing is written in there
    int tryDepth_ = 0;
    int commandTimeout_ = 600;
    int64_t lockTimeout_ = -1;  // of SET LOCK_TIMEOUT, in milliseconds; -1: the command's
    int transactions_ = 0;      // T-SQL's own level
    std::string transactionName_;
    std::vector<std::string> savepoints_;
    bool doomed_ = false;                // the open transaction can only be rolled back
    bool statementTransaction_ = false;  // the level is that of a statement whose triggers run
    std::map<std::string, std::shared_ptr<Cursor>> cursors_;
    int fetchStatus_ = 0;
    std::string goto_;    // label on the way to
    int insertExec_ = 0;  // INSERT ... EXEC under way
    // What SET changes until the procedure or text that says so ends.
    struct Options {
        bool xactAbort = false;
        int64_t rowCount = 0;  // most rows of a statement, 0 for no limit
    } options_;
    bool inTransaction_ = false;     // for the system view
    bool catalogUnchecked_ = false;  // a SELECT runs alone, the catalog not looked at yet
    bool fresh_ = false;             // the catalog was looked at for the statement that runs
    int64_t rowCount_ = 0;
    bool noCount_ = false;  // SET NOCOUNT ON
    int lastError_ = 0;
    std::optional<DbError> caught_;  // in a CATCH block
    Value lastIdentity_;
    Value scopeIdentity_;  // of the scope that runs
    int64_t identityNext_ = 0, identityStep_ = 1;
    bool identityUsed_ = false;
    std::string identityInsert_;  // table of SET IDENTITY_INSERT ON
    DateTime statementTime_;
    int workTable_ = 0;
    std::vector<std::string> activeTriggers_;
    std::vector<std::string> updatedColumns_;  // by the statement whose trigger runs
};

}  // namespace owb::tsql
