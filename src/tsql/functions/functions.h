// The functions that lowered SQL calls: T-SQL's semantics where SQLite's own differ. Their names
// begin with "t_". An error inside one ends the statement with the DbError that it means.
#pragma once

#include <string>
#include <string_view>

#include "tsql/sqlite/sqlite.h"

namespace owb::tsql {

struct ApplyPlan;
using AppliedRows = std::vector<std::vector<KeptValue>>;

// What functions ask of the running session.
class FunctionHost {
  public:
    virtual ~FunctionHost() = default;
    virtual Value callFunction(int id, SqliteArguments arguments) = 0;
    virtual Value liveVariable(int index) = 0;
    virtual void setVariable(int index, Value value) = 0;
    virtual void applyRows(ApplyPlan& plan, SqliteArguments arguments, AppliedRows& rows) = 0;
    virtual Value systemValue(const std::string& name) = 0;
    virtual DateTime statementTime() = 0;
    virtual Value objectId(const std::string& name, const std::string& kind) = 0;
    virtual Value columnLength(const std::string& table, const std::string& column) = 0;
    virtual int64_t nextIdentity() = 0;
    virtual Value identityOf(const std::string& table) = 0;
    // APPLOCK_TEST; APPLOCK_MODE without a mode.
    virtual Value applicationLock(const std::string& principal, const std::string& resource,
                                  const std::optional<std::string>& mode,
                                  const std::string& owner) = 0;
};

void addFunctions(Sqlite& sqlite, FunctionHost& host);
// By duty; called by addFunctions.
void addConversionFunctions(Sqlite& sqlite);
void addNumberFunctions(Sqlite& sqlite);
void addTextFunctions(Sqlite& sqlite);
void addDateFunctions(Sqlite& sqlite);
void addDateTime2Functions(Sqlite& sqlite);
void addFormatFunction(Sqlite& sqlite);
void addAggregates(Sqlite& sqlite);
void addRowLimitFunctions(Sqlite& sqlite);
void addSessionFunctions(Sqlite& sqlite, FunctionHost& host);
void addApply(Sqlite& sqlite, FunctionHost& host);

// t_apply, the table that an APPLY is lowered to: most columns, and most arguments.
constexpr int kMostApplied = 64;
// The kind of the pointer to an ApplyPlan that is its first argument.
constexpr const char* kApplyPlan = "ApplyPlan";

}  // namespace owb::tsql
