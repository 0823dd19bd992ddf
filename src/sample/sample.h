// The sample company: a factory with two branches, heads of every register type, at least two
// financial years of attendance and leave. The same options give the same rows, and an employee's
// rows do not depend on how many employees there are. The last two months are open, and nothing
// there keeps anybody from work: holidays can be entered for the company, a head or a branch.
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
    // Holidays of branches from the first year on, as a company keeps them that has left holidays
    // by head behind: new ones are then for branches alone. Otherwise they begin after the last
    // month.
    bool branchHolidays = false;

    int32_t lastMonth() const { return fromMonth + months - 1; }
    // Month key: the months before it are paid and locked.
    int32_t firstOpenMonth() const { return lastMonth() - 1; }
};

// At least two years up to a month, from an April on: leave by the financial year begins whole.
SampleOptions optionsUpTo(int32_t lastMonth);

// Fills a family database that has no employees yet, in one transaction; what the delivered rows
// say is replaced. Cancelling leaves the database as it was. Throws DbError.
void makeSample(Connection& connection, const SampleOptions& options, Progress& progress);
// The same in a new database file; a failure leaves none behind, and an existing one is refused.
void makeSampleFile(const std::string& file, const SampleOptions& options, Progress& progress);

}  // namespace sample
}  // namespace owb
