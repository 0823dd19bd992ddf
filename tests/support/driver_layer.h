// A driver that hands everything on to another: the base of layers that tests put around one.
#pragma once

#include <memory>

#include "db/driver/driver.h"

namespace owb::test {

class DriverLayer : public Driver {
  public:
    explicit DriverLayer(std::unique_ptr<Driver> inner) : inner_(std::move(inner)) {}

    BatchResult run(std::string_view batch) override { return inner_->run(batch); }
    BatchResult runCollecting(std::string_view batch) override {
        return inner_->runCollecting(batch);
    }
    void begin() override { inner_->begin(); }
    void commit() override { inner_->commit(); }
    void rollback() override { inner_->rollback(); }
    void setCommandTimeout(int seconds) override { inner_->setCommandTimeout(seconds); }
    void cancel() override { inner_->cancel(); }
    std::vector<std::string> checkIntegrity() override { return inner_->checkIntegrity(); }

  protected:
    std::unique_ptr<Driver> inner_;
};

}  // namespace owb::test
