#include "tsql/engine.h"

#include <malloc.h>

#include "tsql/run/executor.h"

namespace owb::tsql {

std::unique_ptr<Engine> Engine::open(const std::string& path, const OpenOptions& options) {
    // Statements allocate and free in bursts; giving every burst back to the system costs more
    // than the statements.
    mallopt(M_TRIM_THRESHOLD, 64 << 20);
    mallopt(M_TOP_PAD, 4 << 20);
    auto sqlite =
        std::make_unique<Sqlite>(path, options.create, options.readOnly, options.busySeconds);
    auto executor = std::make_unique<Executor>(std::move(sqlite), options.hostName);
    return std::unique_ptr<Engine>(new Engine(std::move(executor)));
}

Engine::Engine(std::unique_ptr<Executor> executor) : executor_(std::move(executor)) {}
Engine::~Engine() = default;

BatchResult Engine::run(std::string_view batch) {
    return executor_->run(batch);
}
void Engine::begin() {
    executor_->begin();
}
void Engine::commit() {
    executor_->commit();
}
void Engine::rollback() {
    executor_->rollback();
}
void Engine::setCommandTimeout(int seconds) {
    executor_->setCommandTimeout(seconds);
}
void Engine::cancel() {
    executor_->cancel();
}
void Engine::backup(const std::string& path) {
    executor_->backup(path);
}
std::vector<std::string> Engine::checkIntegrity() {
    return executor_->checkIntegrity();
}

}  // namespace owb::tsql
