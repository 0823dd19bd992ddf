// The embedded T-SQL engine: opens one database file and runs T-SQL batches on it.
//
// Kept true throughout:
//  1. A statement does all of its work or none, its triggers included, also when the process is
//     killed.
//  2. Each statement is a transaction of its own, unless one is open: a batch holds nothing
//     together. What stood before a failed statement stays done.
//  3. The errors of a batch stand in its result, those of the other calls are thrown: as DbError,
//     with SQL Server's numbers or a negative one of our own. No other exception leaves.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/result_set.h"

namespace owb::tsql {

struct OpenOptions {
    bool create = false;  // make the file; an existing one is refused
    bool readOnly = false;
    int busySeconds = 600;  // how long a lock of another process is waited for
    std::string hostName;   // what HOST_NAME() gives; "" asks the system
};

class Executor;

class Engine {
  public:
    // Throws DbError: no such file, not a database, made by a newer engine, not readable.
    static std::unique_ptr<Engine> open(const std::string& path, const OpenOptions& options);
    ~Engine();

    // Runs one batch. Errors stand in the result, in order.
    BatchResult run(std::string_view batch);

    void begin();
    void commit();
    void rollback();
    void setCommandTimeout(int seconds);  // 0 waits for ever
    void cancel();                        // thread-safe; ends the running batch

    // Copies what is committed now to a new file, whoever else works on this one. A failure leaves
    // no file behind. Throws DbError.
    void backup(const std::string& path);

    // What is wrong with the file and its catalog, one line each; empty when sound.
    std::vector<std::string> checkIntegrity();

  private:
    explicit Engine(std::unique_ptr<Executor> executor);
    std::unique_ptr<Executor> executor_;
};

}  // namespace owb::tsql
