#include "db/connection.h"

#include "base/utf8.h"
#include "db/client_error.h"
#include "db/open_driver.h"

namespace owb {

void Connection::Open(const std::string& connectionString) {
    if (driver_) throw clientError(ClientError::Open);
    driver_ = openDriver(connectionString, ConnectionTimeout);
    driver_->setCommandTimeout(commandTimeout_);
    connectionString_ = connectionString;
}

void Connection::Close() {
    driver_.reset();
    connectionString_.clear();
}

void Connection::setCommandTimeout(int seconds) {
    commandTimeout_ = seconds;
    if (driver_) driver_->setCommandTimeout(seconds);
}

void Connection::Execute(const std::string& sql) {
    driver().run(sql);
}

BatchResult Connection::ExecuteAtomic(const std::string& sql) {
    // Not for the batches that follow: there an error ends its own statement alone.
    const std::string restore = "SET XACT_ABORT OFF";
    try {
        // On lines of its own only behind the text, whose lines are counted in errors.
        return driver().run("SET XACT_ABORT ON; BEGIN TRAN; " + sql + "\n; COMMIT; " + restore);
    } catch (const DbError&) {
        try {
            driver().run(restore);
        } catch (const DbError&) {  // the connection is lost, and the option with it
        }
        throw;
    }
}

BatchResult Connection::Run(const std::string& sql) {
    return driver().run(sql);
}

BatchResult Connection::RunCollecting(const std::string& sql) {
    return driver().runCollecting(sql);
}

void Connection::BeginTrans() {
    driver().begin();
}

void Connection::CommitTrans() {
    driver().commit();
}

void Connection::RollbackTrans() {
    driver().rollback();
}

void Connection::Cancel() {
    driver().cancel();
}

std::vector<std::string> Connection::CheckIntegrity() {
    return driver().checkIntegrity();
}

void Connection::Wrap(
    const std::function<std::unique_ptr<Driver>(std::unique_ptr<Driver>)>& layer) {
    driver();
    driver_ = layer(std::move(driver_));
}

Driver& Connection::driver() const {
    if (!driver_) throw clientError(ClientError::Closed);
    return *driver_;
}

std::string connectionEntry(const std::string& connectionString, std::string_view key) {
    std::string_view rest = connectionString;
    while (!rest.empty()) {
        const size_t end = std::min(rest.find(';'), rest.size());
        const std::string_view entry = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        const size_t equals = entry.find('=');
        if (equals == std::string_view::npos) continue;
        if (equalsIgnoreCaseAscii(trim(entry.substr(0, equals)), key))
            return trim(entry.substr(equals + 1));
    }
    return "";
}

}  // namespace owb
