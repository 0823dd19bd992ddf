// The credit of a ledger row: how many leaves its slice of a month earns. Every combination of
// allotment type, basis of days and period lies here; what is carried over and what lapses is the
// passes' business (modLeaveFunctions.h).
//
//   ALLOTTYPE     credit falls in                     ALLOTON              ALLOTFOR
//   0 Period      every row                           basis of days        -
//   1 Monthly     every row of a month of ALLOTFOR    basis of days        0 every, 1 odd, 2 even
//   2 Yearly      the first row of the year           year type            basis of days 0 to 3
//   3 Quarterly   the first row of the quarter        -                    basis of days 0 to 3
//   4 Half Yearly the first row of the half year      year type            basis of days 0 to 3
//
// Basis of days: 0 actual, 1 Pay Days, 2 Present Days, 3 none, 4 to 9 NODFORCALC 1 to 6. Year type:
// 1 calendar, 2 financial. ALLOTASPER 1 counts the days of the period before.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <tuple>

#include "calendar/clsNODNDPCalc.h"
#include "leave/LeavePeriods.h"
#include "leave/LeaveRules.h"

namespace owb {

class Recordset;

// Is told what the engine finds while it works a row out, in words and numbers.
class AllotmentSteps {
  public:
    virtual ~AllotmentSteps() = default;
    virtual void step(const std::string& what, const std::string& finding) = 0;
};

// A row of LEV_ALLOTMENT as the calculation sees it, and the row of the same employee and leave
// that ends the day before.
struct AllotRow {
    int64_t lngAllotId = 0, lngEmpId = 0;
    int lngEmpDetId = 0, intAttHeadId = 0, intLevId = 0;
    DateTime dteFrom, dteTo;
    int32_t lngMonthYear = 0;
    bool blnCredited = false;  // a credit stands in it that is not 0

    int64_t lngPrevAllotId = 0;  // 0: there is none
    int intPrevHead = 0;
    DateTime dtePrevFrom, dtePrevTo;
    int32_t lngPrevMonthYear = 0;
};
// The query of such rows from a table alias LA ("LEV_ALLOTMENT LA"), with condition and order, and
// the reading of its current row.
std::string FnStrAllotRows(const std::string& strFrom, const std::string& strRest);
AllotRow FnReadAllotRow(Recordset& rs);

// Works rows out for one pass. Rules, periods and counted days are kept between rows, until the
// pass finds that they have changed.
class LeaveCalc {
  public:
    explicit LeaveCalc(Session& session, AllotmentSteps* steps = nullptr)
        : periods(session),
          rules(session),
          session_(session),
          steps_(steps),
          keep_(FnNodNdp(session)) {}

    // The unrounded credit; nothing for a leave without settings in the row's month. With
    // blnUseStoredDays the Monthly type reads the days of a row that begins at dteMonthStart from
    // LEV_MONTHDET. Throws DbError (11 "Division by zero" where PERIOD or the salary calendar days
    // are 0).
    std::optional<double> Credit(const AllotRow& row, bool blnUseStoredDays = false,
                                 DateTime dteMonthStart = {});
    // Writes a credit: ACTALLOTLEV as it is, ALLOTLEV rounded by ALLOTRNDTYPE.
    void WriteCredit(const AllotRow& row, double dblAllot);

    void ForgetRules();  // settings, figures and periods are read again
    void ForgetDays() { counted_.clear(); }

    LeavePeriods periods;
    LeaveRules rules;

  private:
    struct Days {
        double NODCALC = 0, NOD = 0, NDP = 0;
    };
    // Figures of one row on its way: the settings in force and the number of leaves.
    struct Task {
        const AllotRow& row;
        const LeaveSettingsRecord& settings;
        double dblNol, dblPeriod;
        bool blnUseStored;
    };

    double PeriodType(const Task& task);
    double Monthly(const Task& task);
    double MonthlyAsPrevious(const Task& task);
    double ByPeriod(const Task& task);  // yearly, quarterly, half yearly
    double AsPreviousPeriod(const Task& task);

    DateTime MonthStart(const AllotRow& row);
    double NumberOfLeaves(const AllotRow& row, const AllotFigure& figure);
    // Is the row the first under its head and setting since dteSince? Open, too, when no row ends
    // the day before.
    bool IsPeriodOpening(const Task& task, const DateTime& dteSince);
    void GetServiceDays(const Task& task, double& dblPeriodDays, double& dblServiceDays);
    void ForEachVersion(int64_t lngEmpId, int32_t lngMonthYear, DateTime dteFrom, DateTime dteTo,
                        const std::function<void(DateTime, DateTime, const Days&)>& take);
    void SumPeriodDays(int64_t lngEmpId, DateTime dteFrom, DateTime dteTo, Days& days);
    // Days of a whole month: Pay and Present Days summed over the employee's versions, NODCALC and
    // the dates of the last.
    void SumPrevMonthDays(int64_t lngEmpId, int32_t lngMonthYear, Days& days, DateTime& dteFrom,
                          DateTime& dteTo);
    Days RowDays(const Task& task, int intDaysBasis);
    Days CountDays(int64_t lngEmpId, int lngEmpDetId, int32_t lngMonthYear, int intAttHeadId,
                   DateTime dteFrom, DateTime dteTo, int intDaysBasis);

    double Share(double dblNol, double dblDays, double dblOf);
    void tell(const char* what, const std::function<std::string()>& finding) const {
        if (steps_) steps_->step(what, finding());
    }

    Session& session_;
    AllotmentSteps* steps_;
    clsNODNDPCalc::KeepRules keep_;
    // Days counted for the employee at hand, by version, month, head, span and basis.
    std::map<std::tuple<int, int32_t, int, int32_t, int32_t, int>, Days> counted_;
    int64_t lngCountedEmpId_ = 0;
};

// Works one row out and writes it. Nothing happens without settings in force.
void CalcLeaveAllotment(Session& session, int64_t lngAllotId, bool& blnUseStoredDays,
                        DateTime& dteMonthStart);

}  // namespace owb
