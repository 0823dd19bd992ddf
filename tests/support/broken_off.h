// A driver that ends the work before its n-th batch, as a killed process would: what leaves is no
// error that any handler traps. It also counts, so that a test knows how many places there are.
#pragma once

#include <memory>

#include "db/connection.h"

namespace owb::test {

struct Killed {};

class BrokenOff final : public Driver {
  public:
    // 0 never breaks off.
    BrokenOff(std::unique_ptr<Driver> inner, size_t beforeBatch, size_t& batches)
        : inner_(std::move(inner)), beforeBatch_(beforeBatch), batches_(batches) {}

    BatchResult run(std::string_view batch) override {
        count();
        return inner_->run(batch);
    }
    BatchResult runCollecting(std::string_view batch) override {
        count();
        return inner_->runCollecting(batch);
    }
    void begin() override { inner_->begin(); }
    void commit() override { inner_->commit(); }
    void rollback() override { inner_->rollback(); }
    void setCommandTimeout(int seconds) override { inner_->setCommandTimeout(seconds); }
    void cancel() override { inner_->cancel(); }
    std::vector<std::string> checkIntegrity() override { return inner_->checkIntegrity(); }

  private:
    void count() {
        if (++batches_ == beforeBatch_) throw Killed{};
    }

    std::unique_ptr<Driver> inner_;
    size_t beforeBatch_;
    size_t& batches_;
};

// From here on batches are counted into `batches`, and the work ends before the given one.
inline void breakOff(Connection& connection, size_t beforeBatch, size_t& batches) {
    batches = 0;
    connection.Wrap([&](std::unique_ptr<Driver> inner) {
        return std::make_unique<BrokenOff>(std::move(inner), beforeBatch, batches);
    });
}

}  // namespace owb::test
