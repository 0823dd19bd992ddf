// The payroll's months. A month runs from the 1st to the last day, or from CALCSTARTDATE to
// CALCENDDATE of its MAS_MONTHYEAR row while CALCINMIDYN is on.
#pragma once

#include <cstdint>
#include <string>

#include "base/date_time.h"

namespace owb {

struct Session;

// The month whose period holds the date. Both outputs stay as they are when none does.
void GetMonthOfDate(Session& session, const DateTime& date, int32_t& lngMonthYear,
                    std::string& monthName);
// First and last day. An error, and a key that is no month, throws DbError.
void GetMonthPeriod(Session& session, int32_t lngMonthYear, DateTime& dteFrom, DateTime& dteTo);
// False when the date lies before the payroll's first month.
bool FnBlnInPayrollPeriod(Session& session, const DateTime& date);
// Tax years (named by the year in which they begin) of two months, within what ITSETTING holds.
void GetTaxYearRange(Session& session, int32_t lngFrom, int32_t lngTo, int32_t& fromYear,
                     int32_t& toYear);

}  // namespace owb
