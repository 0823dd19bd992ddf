// The older days-payable calculator, over the tables of the time before advanced leave management
// (ATT_DETAIL, ATT_MONTH, ATT_MONTHLEV, ATT_WEEKLY). Formulas of months before LVSTARTMNYEAR still
// rest on it. Counts are those of clsNODNDPCalc.
#pragma once

#include <cstdint>
#include <string>

#include "base/date_time.h"
#include "base/value.h"

namespace owb {

struct Session;

class clsNODNDP {
  public:
    explicit clsNODNDP(Session& session) : session_(session) {}

    // As clsNODNDPCalc::SetNODNDP: an error is shown in a critical box and gives false.
    bool SetNODNDP(double& dblNWD, double& dblPay, double& dblPresent, int64_t lngEmpId,
                   int64_t lngEmpDetId, int32_t lngMonthYear, int32_t lngAttHeadId,
                   DateTime dteFrom, DateTime dteTo, bool& blnWorkingDaysOnly, bool& blnProrate);
    // Salary calendar days of the whole month by the head's NODFORCALC; unchanged for a value that
    // there is not.
    void FnDblGetNWD(int32_t lngMonthYear, int32_t lngAttHeadId, double& dblResult);
    // Holidays of the span: intMode 1 weekly or general, 2 weekly, 3 general. With an employee,
    // only those on which there is no leave row; lngEmpId 0 counts all.
    void FnDblGetHoliday(int32_t lngAttHeadId, DateTime dteFrom, DateTime dteTo, int64_t lngEmpId,
                         int intMode, double& dblResult);
    // Days of one leave: from daily rows between two dates, and from the month's figure.
    void FnDblGetLeave(int64_t lngEmpId, int lngLevId, DateTime dteFrom, DateTime dteTo,
                       double& dblResult);
    void FnDblGetLeaveMnthly(int64_t lngEmpId, int64_t lngEmpDetId, int32_t lngMonthYear,
                             int lngLevId, double& dblResult);
    void FnDblNODLimit(int32_t lngMonthYear, int32_t lngAttHeadId, double& dblResult);
    // First and last day of the payroll month.
    void SetMonthCalcDates(int32_t lngMonthYear, DateTime& dteFrom, DateTime& dteTo);
    // The same as "DD/MMM/YYYY".
    std::string FnStrGetMonthStartDate(int32_t lngMonthYear);
    std::string FnStrGetMonthEndDate(int32_t lngMonthYear);

  private:
    Value FirstValue(const std::string& sql, const Value& defaultValue);
    double HeadSetting(const char* column, int32_t lngAttHeadId, int defaultValue);
    double FnDblAttHeadNOD(int32_t lngAttHeadId, int32_t lngMonthYear);
    double WeeklyHoliday(int32_t lngAttHeadId, DateTime dteDate);
    bool GeneralHoliday(int32_t lngAttHeadId, DateTime dteDate);

    Session& session_;
};

}  // namespace owb
