// Turns the day values of one register row (ATT_OVERTIME) into LEV_OTDETAILS, a row for each day:
//   OT1     ordinary overtime, decimal hours
//   OT2     special overtime (special days, weekly and general holidays), decimal hours
//   ADJHRS  shortfall against the full day, negative decimal hours
// Hourly heads keep hours as hh.mm: 7.45 is seven hours and forty-five minutes.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "base/date_time.h"
#include "db/recordset.h"

namespace owb {

struct Session;

class clsOTDetCalc {
  public:
    // Recomputes the marked LEV_MONTHDET rows of one employee.
    using MonthUpdate = std::function<void(int64_t lngEmpId)>;

    clsOTDetCalc(Session& session, MonthUpdate updateMonthDays)
        : session_(session), updateMonthDays_(std::move(updateMonthDays)) {}

    // The record that the update operations take: one register row with its hours, its dates and
    // the overtime settings of its head.
    static std::string FnStrRegisterRow(int64_t lngAttTranNo);

    // Writes the days of the row (one batch, behind the statements that strQuery already holds),
    // and nothing else. strQuery is empty afterwards.
    void WriteDays(Recordset& rs, std::string& strQuery);
    // WriteDays, then marks the row's LEV_MONTHDET. With recalcNow the employee's months are
    // recomputed at once and the register row's mark is released.
    void UpdateOTDailyHourlyNew(Recordset& rs, std::string& strQuery, bool recalcNow);
    // The older form: takes the days out and adds them row by row, then sweeps the leave tables.
    void UpdateOTDailyHourly(Recordset& rs, bool recalcNow);

    // Is the date a special overtime day of the head?
    void FnBlnSplOT(int32_t lngAttHeadId, DateTime dteDate, bool& blnResult);
    // Which halves of the day are on leave.
    void GetLeaveDet(int64_t lngEmpId, DateTime dteDate, bool& blnFirstHalf, bool& blnSecondHalf);
    // Overtime and adjustment of one day of an hourly head by the bands of gAtt. dblHours is hh.mm,
    // the results are decimal; dblOT2 is only set to 0.
    void HourlyOTDet(double dblHours, double& dblOT1, double& dblOT2, double& dblAdj,
                     bool blnFirstLeave, bool blnSecondLeave);
    // Carries the month's OT1 and OT2 into the salary detail SLC_COMPCALCDET, for the overtime
    // heads that the version's structure has.
    void PortOTDetail(int64_t lngEmpId, int64_t lngEmpDetId, int32_t lngMonthYear);

    // hh.mm to decimal hours (7.45 -> 7.75) and back, judged on the text with two decimals.
    static double FnDblToDecimal(double dblHours);
    static double FnDblToHoursMinutes(double dblDecimal);

  private:
    struct Figures {
        double OT1 = 0, OT2 = 0, ADJHRS = 0;
    };
    using DayWriter = std::function<void(DateTime dteDate, const Figures& figures)>;

    void ComputeDays(Recordset& rs, const DayWriter& write);
    void SpecialOvertime(Recordset& rs, DateTime dteDate, double raw, Figures& figures);
    void MarkMonth(Recordset& rs, bool recalcNow);

    Session& session_;
    MonthUpdate updateMonthDays_;
};

}  // namespace owb
