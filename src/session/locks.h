// Locks of months and employees, and the words in which they refuse. What cannot be asked throws
// DbError: a lock that is not known is a lock.
#pragma once

#include <cstdint>
#include <string>

namespace owb {

struct Session;

constexpr int32_t kForEver = 99999;  // month key beyond all

bool FnBlnMonthLocked(Session& session, int32_t lngMonthYear);
// True when a month of the range is locked, or (`testEmployee`) the employee in a month of it;
// employee 0 stands for any.
bool FnBlnMonthRangeLocked(Session& session, int32_t lngFrom, int32_t lngTo, bool testEmployee,
                           int64_t lngEmpId);
// The same as a condition for a batch that writes: true while nothing is locked.
std::string FnStrMonthRangeOpenSql(int32_t lngFrom, int32_t lngTo, bool testEmployee,
                                   int64_t lngEmpId);

}  // namespace owb
