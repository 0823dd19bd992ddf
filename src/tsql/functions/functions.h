// The functions that lowered SQL calls: T-SQL's semantics where SQLite's own differ. Their names
// begin with "t_". An error inside one ends the statement with the DbError that it means.
#pragma once

#include <string>
#include <string_view>

#include "tsql/sqlite/sqlite.h"

namespace owb::tsql {

struct ApplyPlan;
struct ValueDeleter {
    void operator()(sqlite3_value* v) const { sqlite3_value_free(v); }
};
using AppliedRows = std::vector<std::vector<std::unique_ptr<sqlite3_value, ValueDeleter>>>;

// What functions ask of the running session.
class FunctionHost {
  public:
    virtual ~FunctionHost() = default;
    virtual Value callFunction(int id, int count, sqlite3_value** arguments) = 0;
    virtual Value liveVariable(int index) = 0;
    virtual void setVariable(int index, Value value) = 0;
    virtual void applyRows(ApplyPlan& plan, int count, sqlite3_value** arguments,
                           AppliedRows& rows) = 0;
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

void registerFunctions(Sqlite& sqlite, FunctionHost& host);
// By duty; called by registerFunctions.
void registerNumberFunctions(Sqlite& sqlite);
void registerTextFunctions(Sqlite& sqlite);
void registerDateFunctions(Sqlite& sqlite);
void registerClockFunctions(Sqlite& sqlite);
void registerFormatFunction(Sqlite& sqlite);
void registerAggregates(Sqlite& sqlite);
void registerRowFunctions(Sqlite& sqlite);

// Registers `body(context, count, arguments)` under a name. Throwing DbError ends the statement.
using FunctionBody = void (*)(sqlite3_context*, int, sqlite3_value**);
void registerFunction(Sqlite& sqlite, const char* name, int count, FunctionBody body,
                      bool deterministic = true);
// What every body begins with where NULL in gives NULL out.
bool anyNull(int count, sqlite3_value** arguments);
std::string_view argumentText(sqlite3_value* value);
void resultText(sqlite3_context* context, std::string_view text);

bool likeMatches(std::string_view pattern, std::string_view text, char32_t escape);

}  // namespace owb::tsql
