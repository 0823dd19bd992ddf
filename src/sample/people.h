// Who works in the sample company: names, dates, and the versions of each assignment. Every seventh
// joins, every ninth leaves, every eighth changes head and every tenth changes branch, all in
// mid-month, so that forty employees already show each case.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/date_time.h"
#include "sample/sample.h"

namespace owb::sample {

// Heads: one of each register type, and two more daily ones, since six ways of counting a month's
// days need six heads.
enum SampleHead { kOffice = 1, kPlant, kWorkshop, kSales, kStores, kSecurity };
constexpr int kHeads = 6;
enum SampleBranch { kPune = 1, kBengaluru };

struct SampleVersion {
    int detId;
    DateTime from;
    std::optional<DateTime> to;  // none: the current version
    int head, branch;
};

struct SampleEmployee {
    int id;
    std::string name;
    bool female;
    DateTime joined, born;
    std::optional<DateTime> left;
    std::vector<SampleVersion> versions;
    int basic;  // rupees a month

    DateTime lastDay(const DateTime& otherwise) const {
        return left && *left < otherwise ? *left : otherwise;
    }
};

SampleEmployee makeEmployee(int id, const SampleOptions& options);

DateTime firstDayOf(int32_t monthKey);
DateTime lastDayOf(int32_t monthKey);

}  // namespace owb::sample
