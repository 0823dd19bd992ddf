// The sample company: a factory with two branches, heads of every register type, two financial
// years of attendance and leave. The same options give the same rows, and an employee's rows do not
// depend on how many employees there are.
#pragma once

#include <cstdint>
#include <string>

#include "screen/progress.h"

namespace owb {

class Connection;

namespace sample {

struct SampleOptions {
    int employees = 40;  // 1 to 20000
    int months = 24;
    int32_t fromMonth = 2024 * 12 + 4;  // month key
    uint64_t seed = 1;
    // Month key: the months before it are paid and locked.
    int32_t firstOpenMonth() const { return fromMonth + months - 2; }
};

// Fills a family database that has no employees yet, in one transaction; what the delivered rows
// say is replaced. Cancelling leaves the database as it was. Throws DbError.
void makeSample(Connection& connection, const SampleOptions& options, Progress& progress);
// The same in a new database file; a failure leaves none behind, and an existing one is refused.
void makeSampleFile(const std::string& file, const SampleOptions& options, Progress& progress);

}  // namespace sample
}  // namespace owb
