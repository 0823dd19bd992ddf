#include "db/embedded/embedded_driver.h"

#include "tsql/engine.h"

namespace owb {

namespace {

class EmbeddedDriver final : public Driver {
  public:
    explicit EmbeddedDriver(std::unique_ptr<tsql::Engine> engine) : engine_(std::move(engine)) {}

    BatchResult run(std::string_view batch) override {
        BatchResult result = engine_->run(batch);
        if (!result.errors.empty()) throw result.errors.front();
        return result;
    }
    BatchResult runCollecting(std::string_view batch) override { return engine_->run(batch); }

    void begin() override { engine_->begin(); }
    void commit() override { engine_->commit(); }
    void rollback() override { engine_->rollback(); }
    void setCommandTimeout(int seconds) override { engine_->setCommandTimeout(seconds); }
    void cancel() override { engine_->cancel(); }
    std::vector<std::string> checkIntegrity() override { return engine_->checkIntegrity(); }

  private:
    std::unique_ptr<tsql::Engine> engine_;
};

}  // namespace

std::unique_ptr<Driver> openEmbedded(const std::string& path, int busySeconds) {
    if (path.empty())
        throw DbError(-2147467259, 16, 1, 0,
                      "The connection string names no database file (Data Source).");
    tsql::OpenOptions options;
    options.busySeconds = busySeconds;
    return std::make_unique<EmbeddedDriver>(tsql::Engine::open(path, options));
}

void backupEmbedded(const std::string& path, const std::string& copy) {
    tsql::Engine::open(path, {})->backup(copy);
}

void createEmbedded(const std::string& path) {
    tsql::OpenOptions options;
    options.create = true;
    tsql::Engine::open(path, options);
}

}  // namespace owb
