// What a database below the Connection must do. One text is one T-SQL batch.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/db_error.h"
#include "base/result_set.h"

namespace owb {

class Driver {
  public:
    virtual ~Driver() = default;
    // Runs the batch. Throws the first DbError; everything that the batch did before it stays,
    // and what stands behind a statement-ending error has been run too, as the server does it.
    virtual BatchResult run(std::string_view batch) = 0;
    // The same, with all errors left in the result instead of thrown.
    virtual BatchResult runCollecting(std::string_view batch) = 0;
    virtual void begin() = 0;
    virtual void commit() = 0;
    virtual void rollback() = 0;
    virtual void setCommandTimeout(int seconds) = 0;  // 0 waits for ever
    virtual void cancel() = 0;  // from another thread or a handler: ends the running batch
    // What is wrong with the file and its catalog, one line each; empty when sound. A server
    // keeps its own integrity: nothing to say.
    virtual std::vector<std::string> checkIntegrity() { return {}; }
};

}  // namespace owb
