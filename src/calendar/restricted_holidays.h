// Restricted holidays: days of which an employee may choose some as his own.
#pragma once

#include <cstdint>

#include "base/date_time.h"

namespace owb {

struct Session;

// Is the date on the restricted list for the company, the employee's head or branch? Throws
// DbError.
bool FnBlnIsRestrictedHoliday(Session& session, int64_t lngEmpId, const DateTime& date);

}  // namespace owb
