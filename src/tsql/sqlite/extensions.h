// What can be added to a connection: functions, aggregates and tables that are computed when they
// are read. SQLite's code may not be left by exceptions: one that a body throws becomes the
// failure of the statement that called it (Sqlite::step throws it there).
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tsql/sqlite/value.h"

namespace owb::tsql {

using FunctionBody = std::function<void(SqliteResult, SqliteArguments)>;

struct AggregateBody {
    void (*step)(SqliteResult, SqliteArguments);
    void (*finish)(SqliteResult);
    // A row leaves the window; null for an aggregate that has no windows.
    void (*leave)(SqliteResult, SqliteArguments) = nullptr;
};

class ComputedRows {
  public:
    virtual ~ComputedRows() = default;
    virtual size_t count() const = 0;
    virtual void give(SqliteResult result, size_t row, size_t column) const = 0;
};

struct ComputedTable {
    std::vector<std::string> columns;
    int arguments = 0;  // most that a call of it may have: name(argument, ...)
    int64_t expectedRows = 10;
    std::function<std::unique_ptr<ComputedRows>(SqliteArguments)> read;
};

}  // namespace owb::tsql
