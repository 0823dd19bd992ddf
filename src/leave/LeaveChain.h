// What a ledger row brings forward and what lapses on the row before, worked out row by row. Rows
// are chained by date alone: a row whose first day does not follow the last day of another of the
// same employee and leave opens from the opening balance.
//
// The rules of carrying over (LEV_SETTINGS of the row's month under the predecessor's head):
//   COYN, first row after LAPSEMONTH   keeps at most LAPSELIMIT, the rest lapses; a negative
//                                      balance lapses whole while LAPSENEGATIVE is set
//   COYN, any other row                carries all; below COLOWERLIMIT all lapses, from COLIMIT on
//                                      what is above lapses (each while its YN is set)
//   not COYN                           carries within the period (month, year, quarter, half year
//                                      of ALLOTTYPE), and lapses whole when it has ended
#pragma once

#include "leave/modLeaveCalc.h"

namespace owb {

class LeaveChain {
  public:
    LeaveChain(Session& session, const LeaveRules& rules, LeavePeriods& periods,
               AllotmentSteps* steps = nullptr)
        : session_(session), rules_(rules), periods_(periods), steps_(steps) {}

    struct Link {
        double COLEV = 0;      // brought forward into the row
        double dblLapsed = 0;  // on the row before
    };
    Link Chain(const AllotRow& row);

  private:
    double OpeningBalance(const AllotRow& row);
    // Rounded closing balance of the row before, before anything lapses.
    double Closing(const AllotRow& row, const LeaveSettingsRecord& settings);
    Link CarryOver(const AllotRow& row, const LeaveSettingsRecord& settings, double dblClosing);
    Link WithinPeriod(const AllotRow& row, const LeaveSettingsRecord& settings, double dblClosing);
    Link told(const char* finding, const Link& link) const;

    Session& session_;
    const LeaveRules& rules_;
    LeavePeriods& periods_;
    AllotmentSteps* steps_;
};

// Last day of the span in which a balance that is not carried over lives: of the period that a
// month belongs to by ALLOTTYPE and ALLOTON. False when the type has none: then it always carries.
bool FnBlnPeriodEnd(LeavePeriods& periods, int intAllotType, int intAllotOn, int32_t lngMonthYear,
                    DateTime& dteEnd);
// Does the month follow LAPSEMONTH (1 to 12; 0 never)?
bool FnBlnLapseDue(int intLapseMonth, int32_t lngMonthYear);

}  // namespace owb
