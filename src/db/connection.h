// The one connection of a session, in the vocabulary of the family's code.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "db/driver/driver.h"

namespace owb {

class Connection {
  public:
    int ConnectionTimeout = 600;  // seconds

    // Throws DbError. Opening an open connection is an error: Close first.
    void Open(const std::string& connectionString);
    void Close();                                  // nothing when it is closed
    int State() const { return driver_ ? 1 : 0; }  // 1 open, 0 closed
    const std::string& ConnectionString() const { return connectionString_; }
    void setCommandTimeout(int seconds);
    int CommandTimeout() const { return commandTimeout_; }

    // Runs one batch, which may hold several statements; result sets are thrown away.
    void Execute(const std::string& sql);
    // Runs statements that belong together as one transaction: all of them are done, or none. An
    // error undoes them and, as the server does it, a transaction that the caller holds; one that
    // is found before anything runs (a syntax error, an unknown column) leaves the caller's. The
    // text ends no transaction itself and does not RETURN; what it RAISERRORs undoes nothing.
    BatchResult ExecuteAtomic(const std::string& sql);
    // Runs one batch and gives all that came back.
    BatchResult Run(const std::string& sql);
    // As Run, with errors left in the result instead of thrown.
    BatchResult RunCollecting(const std::string& sql);

    // One level, no nesting: beginning while a transaction is open is an error and leaves it, and
    // so is ending when none is open.
    void BeginTrans();
    void CommitTrans();
    void RollbackTrans();

    void Cancel();
    // What is wrong with the database, one line each (see Driver::checkIntegrity).
    std::vector<std::string> CheckIntegrity();
    // Puts a layer around the open driver: benches count its batches, tests break them off.
    void Wrap(const std::function<std::unique_ptr<Driver>(std::unique_ptr<Driver>)>& layer);

  private:
    Driver& driver() const;  // throws when closed

    std::unique_ptr<Driver> driver_;
    std::string connectionString_;
    int commandTimeout_ = 600;
};

// Reads one "Key=Value" entry of a connection string, whatever the key's case; "" when absent.
std::string connectionEntry(const std::string& connectionString, std::string_view key);

}  // namespace owb
