// What the parts of a session share while statements run: which frame runs, where its answers go,
// what SET has changed, and what the session's functions tell (@@ROWCOUNT, @@ERROR).
//
// Frames lie on the stack of whoever runs them; `frame` is the innermost. Whoever changes it, or
// `result`, puts it back however the work ends (Restored).
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/result_set.h"
#include "tsql/bind/binder.h"
#include "tsql/run/compiled_batch.h"
#include "tsql/run/travelling_error.h"

namespace owb::tsql {

struct Cursor;
// Tables that names lead to before the catalog is asked: inserted and deleted in a trigger, the
// variable of a table function.
using PseudoTables = std::map<std::string, CatalogTablePtr>;

// One activation of a batch or module.
struct Frame {
    Frame() = default;
    explicit Frame(std::shared_ptr<CompiledBatch> c)
        : code(std::move(c)), variables(code->parsed->variables.size()) {}

    // The place of a variable. Throws 137.
    size_t variable(const std::string& name, int line) const;
    const SqlType& typeOf(size_t at) const { return code->parsed->variables[at].type; }

    std::shared_ptr<CompiledBatch> code;
    std::vector<Value> variables;
    const PseudoTables* pseudoTables = nullptr;
    bool inFunction = false;
    std::string procedure;  // name, for errors
    Value returned;
    std::map<std::string, std::shared_ptr<Cursor>> cursors;  // LOCAL ones
};

// What SET changes until the procedure or text that says so ends.
struct ScopeOptions {
    bool xactAbort = false;
    int64_t rowCount = 0;  // most rows of a statement, 0 for no limit
};

struct Session {
    Session(Sqlite& s, Catalog& c) : sqlite(s), catalog(c) {}

    Sqlite& sqlite;
    Catalog& catalog;

    Frame* frame = nullptr;         // the innermost one that runs
    BatchResult* result = nullptr;  // null where nobody takes answers
    int depth = 0;                  // of calls
    int functionDepth = 0;          // of functions: nothing is written in there
    int tryDepth = 0;
    int insertExecs = 0;  // INSERT ... EXEC under way

    ScopeOptions options;
    bool noCount = false;      // SET NOCOUNT ON
    int64_t lockTimeout = -1;  // of SET LOCK_TIMEOUT, in milliseconds; -1: the command's

    int64_t rowCount = 0;
    int lastError = 0;
    std::optional<TravellingError> caught;  // in a CATCH block

    void noteError(const DbError& e);
    void tellCount() {
        if (result && !noCount) result->counts.push_back(rowCount);
    }
    void tell(ResultSet&& set) {
        if (result) result->sets.push_back(std::move(set));
    }
    void tell(std::string message) {
        if (result) result->messages.push_back(std::move(message));
    }

    // The time that all of a statement goes by.
    DateTime statementTime();
    void forgetStatementTime() { statementTime_ = {}; }

    // A name of its own for a table of rows on their way: temp."rows~12".
    std::string workTable(const char* what);
    // The number by which t_udf knows a scalar function.
    int functionId(const std::string& name);
    const std::string& functionName(int id) const {
        return functionNames_[static_cast<size_t>(id)];
    }

    BindContext bindContext(Frame& frame);

  private:
    DateTime statementTime_;
    int workTables_ = 0;
    std::vector<std::string> functionNames_;
};

// Whoever runs the statements of routines and texts, for those whose work makes them run.
class StatementRunner {
  public:
    virtual ~StatementRunner() = default;
    // A module's body or a text's statements as a scope of its own: temporary tables made in it go
    // with it, and an error of scope reach ends it and no more.
    virtual void runScope(Frame& callee) = 0;
    virtual void runFunction(Frame& callee) = 0;
};

// A nested call; throws 217 when it is one too deep.
class CallDepth {
  public:
    explicit CallDepth(Session& session);
    ~CallDepth() { --session_.depth; }
    CallDepth(const CallDepth&) = delete;
    CallDepth& operator=(const CallDepth&) = delete;

  private:
    Session& session_;
};

// Sets a variable for the time of a block.
template <class T>
class Restored {
  public:
    explicit Restored(T& variable) : variable_(variable), before_(variable) {}
    Restored(T& variable, T now) : variable_(variable), before_(std::move(variable)) {
        variable_ = std::move(now);
    }
    ~Restored() { variable_ = std::move(before_); }
    Restored(const Restored&) = delete;
    Restored& operator=(const Restored&) = delete;

  private:
    T& variable_;
    T before_;
};

}  // namespace owb::tsql
