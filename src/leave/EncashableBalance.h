// How much of a leave can be encashed on a date.
#pragma once

#include <cstdint>

#include "base/date_time.h"

namespace owb {

struct Session;

// dblMinBalance is what the leave's settings keep back (ENCASHMINBAL), intAttHeadId the head of the
// date. dblAvailable is the balance less that, whole on retirement and for a full and final
// settlement, and with what has lapsed in the slice that holds the date. Throws DbError.
void GetEncashableBalance(Session& session, int64_t lngEmpId, double& dblAvailable,
                          double& dblMinBalance, int32_t& intAttHeadId, DateTime dteDate,
                          int32_t intLevId, bool blnOnRetirement, bool blnFullAndFinal);

}  // namespace owb
