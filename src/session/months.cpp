#include "session/months.h"

#include <algorithm>

#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "session/Session.h"
#include "session/queries.h"

namespace owb {

namespace {

DateTime monthBound(Session& session, int32_t lngMonthYear, const char* column,
                    DateTime calendarDate) {
    if (!session.gFeature.CALCINMIDYN) return calendarDate;
    return FnVarValueOrThrow(session,
                             Sql() << "SELECT " << column
                                   << " FROM MAS_MONTHYEAR WHERE MONTHYEAR = " << lngMonthYear,
                             calendarDate)
        .toDate();
}

}  // namespace

void GetMonthOfDate(Session& session, const DateTime& date, int32_t& lngMonthYear,
                    std::string& monthName) {
    const std::string day = FnStrIsoLiteral(date);
    Recordset rs(session.gConn, Sql() << "SELECT MONTHYEAR, [dbo].FnStrMonthName(MONTHYEAR) AS "
                                         "MONTHNAME FROM MAS_MONTHYEAR WHERE CALCSTARTDATE <= "
                                      << day << " AND CALCENDDATE >= " << day);
    if (rs.IsEOF()) return;
    lngMonthYear = static_cast<int32_t>(rs.Fields("MONTHYEAR").toInt());
    monthName = rs.Fields("MONTHNAME").toText();
}

void GetMonthPeriod(Session& session, int32_t lngMonthYear, DateTime& dteFrom, DateTime& dteTo) {
    const DateTime first = FnDteFirstOfMonth(lngMonthYear);
    dteFrom = monthBound(session, lngMonthYear, "CALCSTARTDATE", first);
    dteTo = monthBound(session, lngMonthYear, "CALCENDDATE", first.plusMonths(1).plusDays(-1));
}

bool FnBlnInPayrollPeriod(Session& session, const DateTime& date) {
    return FnLngMonthYearOfDate(date) >= session.gOptSet.STARTMONTHYEAR;
}

void GetTaxYearRange(Session& session, int32_t lngFrom, int32_t lngTo, int32_t& fromYear,
                     int32_t& toYear) {
    const int lastMonth = session.gOptSet.TDSMAR2FEB ? 2 : 3;
    auto taxYear = [lastMonth](int32_t key) {
        const int32_t year = (key - 1) / 12, month = (key - 1) % 12 + 1;
        return month <= lastMonth ? year - 1 : year;
    };
    fromYear = taxYear(lngFrom);
    toYear = taxYear(lngTo);
    const auto first = static_cast<int32_t>(
        FnVarValueOrThrow(session, "Select MIN(ASSYEAR) From ITSETTING", 0).toInt());
    const auto last = static_cast<int32_t>(
        FnVarValueOrThrow(session, "Select MAX(ASSYEAR) From ITSETTING", 0).toInt());
    if (first == 0) return;
    fromYear = std::clamp(fromYear, first - 1, last - 1);
    toYear = std::clamp(toYear, first - 1, last - 1);
}

}  // namespace owb
