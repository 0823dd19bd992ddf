// The second calendar of leave: the year, half year or quarter that a payroll month belongs to, and
// the one before. Where payroll months begin in mid-month, a period does so too: with months from
// the 26th to the 25th a calendar year runs from 26 December to 25 December.
//
// Year types: 1 calendar year (January to December; half years from January and July), any other
// the financial year of India (April to March; half years from April and October).
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "base/date_time.h"

namespace owb {

struct Session;

class LeavePeriods {
  public:
    explicit LeavePeriods(Session& session) : session_(session) {}

    void Forget() { read_.clear(); }  // what has been read of the calendar

    // First and last day of a payroll month; one that MAS_MONTHYEAR lacks is the calendar month.
    void GetMonthBounds(int32_t lngMonthYear, DateTime& dteFrom, DateTime& dteTo);
    // The same for sums over several months: of a calendar month without the days that the payroll
    // months beside it hold.
    void GetOwnDays(int32_t lngMonthYear, DateTime& dteFrom, DateTime& dteTo);
    // The payroll month that holds a day, or the calendar month.
    int32_t MonthHolding(const DateTime& date);
    // First day of LVSTARTMNYEAR; where none is set, a day before all others.
    DateTime LeaveStart();
    // First and last day of the period that the month (a key) lies in. Half years and quarters that
    // no row of MAS_MONTHYEAR touches leave the dates as they are.
    void GetYearBounds(int intYearType, int32_t lngMonthYear, DateTime& dteFrom, DateTime& dteTo);
    void GetHalfYearBounds(int intYearType, int32_t lngMonthYear, DateTime& dteFrom,
                           DateTime& dteTo);
    void GetQuarterBounds(int32_t lngMonthYear, DateTime& dteFrom, DateTime& dteTo);
    // The period before. dblPeriodDays counts all of it; dteFrom is then cut to the employee's
    // joining, and dblServiceDays counts what is left (0 when nothing is). A half year or quarter
    // that is not known is the day 01/01/1950.
    void GetPrevYearBounds(int64_t lngEmpId, int intYearType, int32_t lngMonthYear,
                           DateTime& dteFrom, DateTime& dteTo, double& dblPeriodDays,
                           double& dblServiceDays);
    void GetPrevHalfYearBounds(int64_t lngEmpId, int intYearType, int32_t lngMonthYear,
                               DateTime& dteFrom, DateTime& dteTo, double& dblPeriodDays,
                               double& dblServiceDays);
    void GetPrevQuarterBounds(int64_t lngEmpId, int32_t lngMonthYear, DateTime& dteFrom,
                              DateTime& dteTo, double& dblPeriodDays, double& dblServiceDays);

    // The period of an allotment type: 2 year, 3 quarter, 4 half year.
    void GetBounds(int intAllotType, int intYearType, int32_t lngMonthYear, DateTime& dteFrom,
                   DateTime& dteTo);
    void GetPrevBounds(int64_t lngEmpId, int intAllotType, int intYearType, int32_t lngMonthYear,
                       DateTime& dteFrom, DateTime& dteTo, double& dblPeriodDays,
                       double& dblServiceDays);

  private:
    struct Span {
        DateTime from, to;
    };
    using Months = std::map<int32_t, Span>;  // by the key of the (first) month

    const Months& read(const std::string& name, const std::string& sql);
    const Months& months();                           // MAS_MONTHYEAR
    const Months& view(const std::string& viewName);  // one of the period views
    // Of the view, the period that holds the month and, `before`, the one before it.
    void lookUp(const std::string& viewName, int32_t lngMonthYear, bool before, DateTime& dteFrom,
                DateTime& dteTo);
    void shift(DateTime& dteFrom, DateTime& dteTo);
    void countService(int64_t lngEmpId, DateTime& dteFrom, const DateTime& dteTo,
                      double& dblPeriodDays, double& dblServiceDays);

    Session& session_;
    std::map<std::string, Months> read_;  // by the view's name; "" MAS_MONTHYEAR
};

// Days from one date to another, both counted.
inline double FnDblDays(const DateTime& dteFrom, const DateTime& dteTo) {
    return dteTo.day - dteFrom.day + 1;
}

}  // namespace owb
