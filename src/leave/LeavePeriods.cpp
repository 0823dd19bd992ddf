#include "leave/LeavePeriods.h"

#include <algorithm>

#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "schema/modSQLFunction.h"
#include "session/Session.h"
#include "session/queries.h"

namespace owb {

namespace {

int monthOf(int32_t key) {
    return (key - 1) % 12 + 1;
}
int yearOf(int32_t key) {
    return (key - 1) / 12;
}
std::string halfYearView(int intYearType) {
    return intYearType == 1 ? "vw_CalHalfYear" : "vw_FinHalfYear";
}
DateTime sameDay(const DateTime& month, int day) {
    const CivilDate c = month.civil();
    return DateTime::fromCivil(c.year, c.month, std::min(day, daysInMonth(c.year, c.month)));
}

}  // namespace

// Kept only when all of it has been read.
const LeavePeriods::Months& LeavePeriods::read(const std::string& name, const std::string& sql) {
    Months months;
    for (Recordset rs(session_.gConn, sql); !rs.IsEOF(); rs.MoveNext())
        months[static_cast<int32_t>(rs.Fields(0).toInt())] = {rs.Fields(1).toDate(),
                                                              rs.Fields(2).toDate()};
    return read_[name] = std::move(months);
}

const LeavePeriods::Months& LeavePeriods::months() {
    const auto kept = read_.find("");
    return kept != read_.end()
               ? kept->second
               : read("", "SELECT MONTHYEAR, CALCSTARTDATE, CALCENDDATE FROM MAS_MONTHYEAR");
}

const LeavePeriods::Months& LeavePeriods::view(const std::string& viewName) {
    const auto kept = read_.find(viewName);
    if (kept != read_.end()) return kept->second;
    const std::string name = session_.gHostPrefix + "_" + viewName;
    if (Recordset(session_.gConn, "Select * From Sys.Objects Where Name = " + literal(name))
            .IsEOF())
        CreatePeriodViews(session_);
    return read(viewName, "SELECT MONTHYEAR, STARTDATE, ENDDATE FROM [dbo].[" + name + "]");
}

int32_t LeavePeriods::MonthHolding(const DateTime& date) {
    const Months& all = months();
    for (auto month = all.rbegin(); month != all.rend(); ++month)
        if (month->second.from <= date && date <= month->second.to) return month->first;
    return FnLngMonthYearOfDate(date);
}

void LeavePeriods::GetMonthBounds(int32_t lngMonthYear, DateTime& dteFrom, DateTime& dteTo) {
    const auto month = months().find(lngMonthYear);
    if (month == months().end()) {
        dteFrom = DateTime::fromCivil(yearOf(lngMonthYear), monthOf(lngMonthYear), 1);
        dteTo = dteFrom.plusMonths(1).plusDays(-1);
        const auto before = months().find(lngMonthYear - 1),
                   after = months().find(lngMonthYear + 1);
        if (before != months().end()) dteFrom = before->second.to.plusDays(1);
        if (after != months().end()) dteTo = after->second.from.plusDays(-1);
    } else {
        dteFrom = month->second.from;
        dteTo = month->second.to;
    }
}

void LeavePeriods::GetOwnDays(int32_t lngMonthYear, DateTime& dteFrom, DateTime& dteTo) {
    GetMonthBounds(lngMonthYear, dteFrom, dteTo);
    if (months().count(lngMonthYear)) return;
    const auto before = months().find(lngMonthYear - 1), after = months().find(lngMonthYear + 1);
    if (before != months().end()) dteFrom = std::max(dteFrom, before->second.to.plusDays(1));
    if (after != months().end()) dteTo = std::min(dteTo, after->second.from.plusDays(-1));
}

DateTime LeavePeriods::LeaveStart() {
    DateTime from{DateTime::kMinDay}, to;
    if (session_.gFeature.LVSTARTMNYEAR > 0)
        GetMonthBounds(session_.gFeature.LVSTARTMNYEAR, from, to);
    return from;
}

// A period whose first month begins in mid-month begins and ends with that day.
void LeavePeriods::shift(DateTime& dteFrom, DateTime& dteTo) {
    if (!session_.gFeature.CALCINMIDYN) return;
    const auto month = months().find(FnLngMonthYearOfDate(dteFrom));
    if (month == months().end()) return;
    const Span& period = month->second;
    if (FnLngMonthYearOfDate(period.from) == month->first) return;
    dteFrom = sameDay(dteFrom.plusMonths(-1), period.from.civil().day);
    dteTo = sameDay(dteTo, period.to.civil().day);
}

void LeavePeriods::GetYearBounds(int intYearType, int32_t lngMonthYear, DateTime& dteFrom,
                                 DateTime& dteTo) {
    const int first = intYearType == 1 ? 1 : 4;
    const int year = yearOf(lngMonthYear) - (monthOf(lngMonthYear) < first ? 1 : 0);
    dteFrom = DateTime::fromCivil(year, first, 1);
    dteTo = dteFrom.plusMonths(12).plusDays(-1);
    shift(dteFrom, dteTo);
}

void LeavePeriods::GetPrevYearBounds(int64_t lngEmpId, int intYearType, int32_t lngMonthYear,
                                     DateTime& dteFrom, DateTime& dteTo, double& dblPeriodDays,
                                     double& dblServiceDays) {
    GetYearBounds(intYearType, lngMonthYear - 12, dteFrom, dteTo);
    countService(lngEmpId, dteFrom, dteTo, dblPeriodDays, dblServiceDays);
}

void LeavePeriods::lookUp(const std::string& viewName, int32_t lngMonthYear, bool before,
                          DateTime& dteFrom, DateTime& dteTo) {
    const Months& periods = view(viewName);
    const DateTime first = DateTime::fromCivil(yearOf(lngMonthYear), monthOf(lngMonthYear), 1);
    auto next = periods.upper_bound(MonthHolding(first));
    if (before && next != periods.begin()) --next;
    if (next == periods.begin()) {
        if (before) dteFrom = dteTo = DateTime::fromCivil(1950, 1, 1);
        return;
    }
    dteFrom = std::prev(next)->second.from;
    dteTo = std::prev(next)->second.to;
    shift(dteFrom, dteTo);
}

void LeavePeriods::GetHalfYearBounds(int intYearType, int32_t lngMonthYear, DateTime& dteFrom,
                                     DateTime& dteTo) {
    lookUp(halfYearView(intYearType), lngMonthYear, false, dteFrom, dteTo);
}

void LeavePeriods::GetPrevHalfYearBounds(int64_t lngEmpId, int intYearType, int32_t lngMonthYear,
                                         DateTime& dteFrom, DateTime& dteTo, double& dblPeriodDays,
                                         double& dblServiceDays) {
    lookUp(halfYearView(intYearType), lngMonthYear, true, dteFrom, dteTo);
    countService(lngEmpId, dteFrom, dteTo, dblPeriodDays, dblServiceDays);
}

void LeavePeriods::GetQuarterBounds(int32_t lngMonthYear, DateTime& dteFrom, DateTime& dteTo) {
    lookUp("vw_Quarterly", lngMonthYear, false, dteFrom, dteTo);
}

void LeavePeriods::GetPrevQuarterBounds(int64_t lngEmpId, int32_t lngMonthYear, DateTime& dteFrom,
                                        DateTime& dteTo, double& dblPeriodDays,
                                        double& dblServiceDays) {
    lookUp("vw_Quarterly", lngMonthYear, true, dteFrom, dteTo);
    countService(lngEmpId, dteFrom, dteTo, dblPeriodDays, dblServiceDays);
}

void LeavePeriods::GetBounds(int intAllotType, int intYearType, int32_t lngMonthYear,
                             DateTime& dteFrom, DateTime& dteTo) {
    if (intAllotType == 2)
        GetYearBounds(intYearType, lngMonthYear, dteFrom, dteTo);
    else if (intAllotType == 3)
        GetQuarterBounds(lngMonthYear, dteFrom, dteTo);
    else
        GetHalfYearBounds(intYearType, lngMonthYear, dteFrom, dteTo);
}

void LeavePeriods::GetPrevBounds(int64_t lngEmpId, int intAllotType, int intYearType,
                                 int32_t lngMonthYear, DateTime& dteFrom, DateTime& dteTo,
                                 double& dblPeriodDays, double& dblServiceDays) {
    if (intAllotType == 2)
        GetPrevYearBounds(lngEmpId, intYearType, lngMonthYear, dteFrom, dteTo, dblPeriodDays,
                          dblServiceDays);
    else if (intAllotType == 3)
        GetPrevQuarterBounds(lngEmpId, lngMonthYear, dteFrom, dteTo, dblPeriodDays, dblServiceDays);
    else
        GetPrevHalfYearBounds(lngEmpId, intYearType, lngMonthYear, dteFrom, dteTo, dblPeriodDays,
                              dblServiceDays);
}

void LeavePeriods::countService(int64_t lngEmpId, DateTime& dteFrom, const DateTime& dteTo,
                                double& dblPeriodDays, double& dblServiceDays) {
    dblPeriodDays = FnDblDays(dteFrom, dteTo);
    const std::string from = literal(dteFrom);
    dteFrom = FnVarValueOrThrow(
                  session_,
                  Sql() << "SELECT (CASE WHEN DOJ >= " << from << " THEN DOJ ELSE CAST(" << from
                        << " AS datetime) END) FROM MAS_EMPLOYEE WHERE EMPID = " << lngEmpId,
                  dteFrom)
                  .toDate();
    dblServiceDays = std::max(FnDblDays(dteFrom, dteTo), 0.0);
}

}  // namespace owb
