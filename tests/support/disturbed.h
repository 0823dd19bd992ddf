// A driver layer that counts batches and lets a test act at one of them: end the work as a killed
// process would, make the batch fail, or let somebody else work before it.
#pragma once

#include <functional>
#include <memory>

#include "db/connection.h"
#include "support/driver_layer.h"

namespace owb::test {

// Ends the work: no handler traps it.
struct Killed {};

class Disturbed final : public DriverLayer {
  public:
    // Told the number of the batch (from 1) and whether the session holds a transaction. What it
    // throws takes the batch's place.
    using Before = std::function<void(size_t batch, bool inTransaction)>;
    // Told the same when the batch has been done; what it throws takes the answer's place.
    using After = std::function<void(size_t batch)>;

    Disturbed(std::unique_ptr<Driver> inner, Before before, After after = {})
        : DriverLayer(std::move(inner)), before_(std::move(before)), after_(std::move(after)) {}

    BatchResult run(std::string_view batch) override {
        comes();
        BatchResult result = inner_->run(batch);
        isDone();
        return result;
    }
    BatchResult runCollecting(std::string_view batch) override {
        comes();
        BatchResult result = inner_->runCollecting(batch);
        isDone();
        return result;
    }
    void begin() override {
        comes();
        inner_->begin();
        inTransaction_ = true;
        isDone();
    }
    void commit() override {
        comes();
        inner_->commit();
        inTransaction_ = false;
        isDone();
    }
    void rollback() override {
        inTransaction_ = false;
        inner_->rollback();
    }

  private:
    void comes() {
        ++batches_;
        try {
            if (before_) before_(batches_, inTransaction_);
        } catch (const DbError&) {
            if (inTransaction_) rollback();  // as the server does it for a deadlock's victim
            throw;
        }
    }
    void isDone() {
        if (after_) after_(batches_);
    }

    Before before_;
    After after_;
    size_t batches_ = 0;
    bool inTransaction_ = false;
};

inline void disturb(Connection& connection, Disturbed::Before before, Disturbed::After after = {}) {
    connection.Wrap([&](std::unique_ptr<Driver> inner) {
        return std::make_unique<Disturbed>(std::move(inner), std::move(before), std::move(after));
    });
}

// From here on batches are counted into `batches`, and the work ends before the given one (0
// never).
inline void breakOff(Connection& connection, size_t beforeBatch, size_t& batches) {
    batches = 0;
    disturb(connection, [beforeBatch, &batches](size_t batch, bool) {
        batches = batch;
        if (batch == beforeBatch) throw Killed{};
    });
}

}  // namespace owb::test
