#include "leave/LeavePeriods.h"

#include <algorithm>

#include "data/Session.h"
#include "data/modCommon.h"
#include "schema/modSQLFunction.h"

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

const LeavePeriods::Months& LeavePeriods::months() {
    const auto [at, fresh] = read_.try_emplace("");
    if (fresh)
        for (Recordset rs(session_.gConn,
                          "SELECT MONTHYEAR, CALCSTARTDATE, CALCENDDATE FROM MAS_MONTHYEAR");
             !rs.IsEOF(); rs.MoveNext())
            at->second[static_cast<int32_t>(rs.Fields(0).toInt())] = {rs.Fields(1).toDate(),
                                                                      rs.Fields(2).toDate()};
    return at->second;
}

const LeavePeriods::Months& LeavePeriods::view(const std::string& viewName) {
    const auto [at, fresh] = read_.try_emplace(viewName);
    if (!fresh) return at->second;
    const std::string name = session_.gHostPrefix + "_" + viewName;
    if (!FnBlnRecordExists(session_, "Select * From Sys.Objects Where Name = '" +
                                         session_.gSpChar.FnStrSpSQL(name) + "'"))
        CreatePeriodViews(session_);
    for (Recordset rs(session_.gConn,
                      "SELECT MONTHYEAR, STARTDATE, ENDDATE FROM [dbo].[" + name + "]");
         !rs.IsEOF(); rs.MoveNext())
        at->second[static_cast<int32_t>(rs.Fields(0).toInt())] = {rs.Fields(1).toDate(),
                                                                  rs.Fields(2).toDate()};
    return at->second;
}

int32_t LeavePeriods::monthHolding(const DateTime& date) {
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
    } else {
        dteFrom = month->second.from;
        dteTo = month->second.to;
    }
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
    auto next = periods.upper_bound(monthHolding(first));
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
    const std::string from = FnStrIsoLiteral(dteFrom);
    dteFrom = FnVarReadValue(session_,
                             "SELECT (CASE WHEN DOJ >= " + from + " THEN DOJ ELSE CAST(" + from +
                                 " AS datetime) END) FROM MAS_EMPLOYEE WHERE EMPID = " +
                                 std::to_string(lngEmpId),
                             dteFrom)
                  .toDate();
    dblServiceDays = std::max(FnDblDays(dteFrom, dteTo), 0.0);
}

}  // namespace owb
