// What the statements of a run cost, by how they begin.
#pragma once

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench.h"
#include "db/driver/driver.h"

namespace owb::bench {

// Counts statements and their time, told apart by how they begin before a value stands in them.
struct Spent {
    size_t batches = 0;
    double seconds = 0;
};
using Ledger = std::map<std::string, Spent>;

inline void tellDearest(const Ledger& ledger, size_t count) {
    double all = 0;
    std::vector<std::pair<std::string, Spent>> dear(ledger.begin(), ledger.end());
    for (const auto& [text, spent] : dear) all += spent.seconds;
    std::sort(dear.begin(), dear.end(),
              [](const auto& a, const auto& b) { return a.second.seconds > b.second.seconds; });
    std::printf("  in the database %.1f s, most of it in\n", all);
    for (size_t i = 0; i < std::min(dear.size(), count); ++i)
        std::printf("  %7.2f s %8zu x %s\n", dear[i].second.seconds, dear[i].second.batches,
                    dear[i].first.c_str());
}

class Counting final : public Driver {
  public:
    Counting(std::unique_ptr<Driver> inner, Ledger& ledger)
        : inner_(std::move(inner)), ledger_(ledger) {}
    BatchResult run(std::string_view batch) override {
        const std::string_view head = batch.substr(0, 60);
        const size_t value = head.find_first_of("0123456789-");
        Spent& spent = ledger_[std::string(head.substr(0, std::max<size_t>(value, 20)))];
        BatchResult result;
        spent.seconds += seconds([&] { result = inner_->run(batch); });
        ++spent.batches;
        return result;
    }
    BatchResult runCollecting(std::string_view batch) override { return run(batch); }
    void begin() override { inner_->begin(); }
    void commit() override { inner_->commit(); }
    void rollback() override { inner_->rollback(); }
    void setCommandTimeout(int seconds) override { inner_->setCommandTimeout(seconds); }
    void cancel() override { inner_->cancel(); }

  private:
    std::unique_ptr<Driver> inner_;
    Ledger& ledger_;
};

}  // namespace owb::bench
