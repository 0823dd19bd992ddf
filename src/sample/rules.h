// The sample company's masters and rules: company, options, months, heads, leaves with their
// settings, salary structure, tax slabs, users and rights.
#pragma once

#include "sample/sample.h"

namespace owb::sample {

// Leaves beside the reserved ones (1 loss of pay, 2 compensatory off, 3 compensatory work).
enum SampleLeave { kLossOfPay = 1, kCompOff, kCompWork, kCasual = 5, kSick, kEarned, kRestricted };
const char* leaveShort(int leave);

void writeSampleRules(Connection& connection, const SampleOptions& options);

}  // namespace owb::sample
