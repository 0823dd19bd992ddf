// An error on its way out of a statement, with what happens to the statements that it passes.
#pragma once

#include "base/db_error.h"

namespace owb::tsql {

struct TravellingError : DbError {
    explicit TravellingError(const DbError& e);  // with what it already says, if it travels

    bool raised = false;     // by RAISERROR: ends nothing by itself
    bool endsBatch = false;  // by THROW, or because a trigger ended the transaction
    bool undoes = false;     // it left a trigger: the batch ends, its transaction is undone
    bool left = false;       // it left the scope in which it happened
};

// What an error ends: its statement alone, the scope (module or batch) it stands in, or the batch.
// It goes by the number, as long as the error does not say otherwise.
enum class ErrorReach { Statement, Scope, Batch };
ErrorReach reachOf(const DbError& e);

}  // namespace owb::tsql
