// The days-payable engine: turns a span of one employee under one attendance head into the three
// day counts of LEV_MONTHDET. All counts are doubles in steps of half a day:
//   NODCALC  salary calendar days, the divisor of the month's salary (shown as NWD)
//   NOD      Pay Days
//   NDP      Present Days
// Nothing is kept between calls, but for rules in a pass that says so (KeepRules); each call reads
// the database afresh and writes no figure.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/date_time.h"
#include "base/value.h"
#include "session/Session.h"

namespace owb {

class clsNODNDPCalc {
  public:
    explicit clsNODNDPCalc(Session& session);

    // While it lives, answers about rules (heads, options, months, holidays, weekly offs) are kept:
    // for a pass over many rows, which looks whether they have changed and then calls ForgetRules.
    class KeepRules {
      public:
        explicit KeepRules(clsNODNDPCalc& calc) : calc_(calc) { ++calc_.intKeeping_; }
        ~KeepRules() {
            if (--calc_.intKeeping_ == 0) calc_.ForgetRules();
        }
        KeepRules(const KeepRules&) = delete;

      private:
        clsNODNDPCalc& calc_;
    };

    void ForgetRules();

    // The three counts of a span (dteFrom to dteTo, one EMPDETID inside the month). Loads the
    // head's records into gAtt and gOpt.
    //   blnWorkingDaysOnly  looks at no leave and at no joining or leaving inside the span
    //   blnProrate(Alt)     a basis of fixed days pays no more than the days of the span
    //   intDaysBasis        0: the head's NODFORCALC; 4 to 9: NODFORCALC 1 to 6 instead. Changed in
    //                       place to the value used (less 3).
    // An error is shown in a critical box and gives false; the outputs stay as they were.
    bool SetNODNDP(double& dblNODCalc, double& dblNOD, double& dblNDP, int64_t lngEmpId,
                   int64_t lngEmpDetId, int32_t lngMonthYear, int32_t lngAttHeadId,
                   DateTime dteFrom, DateTime dteTo, bool& blnWorkingDaysOnly, bool& blnProrateAlt,
                   bool& blnProrate, int& intDaysBasis);
    // The same for engines: an error is thrown (DbError), the outputs stay as they were.
    void CountDays(double& dblNODCalc, double& dblNOD, double& dblNDP, int64_t lngEmpId,
                   int64_t lngEmpDetId, int32_t lngMonthYear, int32_t lngAttHeadId,
                   DateTime dteFrom, DateTime dteTo, bool blnWorkingDaysOnly, bool blnProrateAlt,
                   bool blnProrate, int& intDaysBasis);
    // NODCALC of the whole month for gAtt as it stands; unchanged for an unknown NODFORCALC.
    void FnDblGetNWD(int64_t lngEmpId, int32_t lngMonthYear, int32_t lngAttHeadId,
                     double& dblResult);
    // intMode 1 days that are a weekly or general holiday, 2 weekly, 3 general; 4 leaves of
    // intGroup (1 to 8; 0 gives 0). Date texts are "yyyy-MM-dd"; the span lies in one month.
    void FnDblGetHolAndLeave(int32_t lngAttHeadId, const std::string& strFrom,
                             const std::string& strTo, int64_t& lngEmpId, int& intMode,
                             int intGroup, double& dblResult);
    // "0" and ",<day of month>" for each holiday of the span; intType 1 weekly holidays, any other
    // general holidays. Days stand in the order in which the database gives them.
    void ListHoliday(int64_t lngEmpId, int32_t lngAttHeadId, DateTime& dteFrom, DateTime dteTo,
                     int intType, std::string& strList);
    // FnDblGetNWD after loading the head's records.
    void FnDblNODLimit(int64_t lngEmpId, int32_t lngMonthYear, int32_t lngAttHeadId,
                       double& dblResult);
    // 0, 0.5 or 1, and which halves are off. lngEmpId 0 asks for nobody's rotating rows.
    void FnDblWeeklyHoliday(int64_t lngEmpId, int32_t lngAttHeadId, DateTime dteDate,
                            bool& blnFirstHalf, bool& blnSecondHalf, double& dblValue);
    void FnBlnGenHoliday(int32_t lngAttHeadId, DateTime dteDate, int64_t lngEmpId, bool& blnResult);
    // "Jan/2024" of a month key; "" for 0.
    void FnStrExplodeMonth(int32_t lngMonthYear, std::string& strResult);
    // Is the date within the employee's service?
    void FnBlnEmpExist(int64_t lngEmpId, DateTime dteDate, bool& blnResult);
    // The month's period cut to joining and leaving.
    void SetValidPeriod(int32_t lngMonthYear, int64_t lngEmpId, DateTime& dteFrom, DateTime& dteTo);
    // Days of one leave between two dates. intAttHeadId 0: under any head. With adjustments, what
    // LEV_ADJUSTMENT took in the span counts as well.
    void FnDblLeaveAvailed(int64_t lngEmpId, int lngLevId, DateTime dteFrom, DateTime dteTo,
                           int32_t intAttHeadId, bool blnWithAdjustment, double& dblResult);
    // Calendar month key of a date text; 0 when it is no date.
    void FnLngMonthYear(const std::string& strDate, int32_t& lngResult);
    // Completes MAS_MONTHYEAR's dates and the user-editable days SLC_ATTHEADNOD of every month and
    // head.
    void Update_MonthYear();
    // Head and branch of the version in force on the date; a branch that is not found falls back
    // to the first version's of all.
    void FnIntAttHeadID(int64_t lngEmpId, DateTime dteDate, double& dblResult);
    void FnIntBranchID(int64_t lngEmpId, DateTime dteDate, double& dblResult);

  private:
    // What the days of a span are counted against.
    struct Span {
        int64_t lngEmpId;
        int64_t lngEmpDetId;
        int32_t lngAttHeadId;
        DateTime dteFrom, dteTo;
    };
    // Where the weekly holidays of a month come from: dated rows (ATT_WKLYROT), or one of the two
    // tables of weeks. The first source that knows the month counts for all of it.
    struct WeeklySource {
        int32_t lngMonthYear;
        std::string strTable;
        std::string strOwner;  // condition that picks the employee's, head's or branch's rows
        bool rotating() const { return strTable == "ATT_WKLYROT"; }
        // Condition on the rows of a weekday in a table of weeks.
        std::string InForce(const std::string& weekday) const;
    };

    Value FirstValue(const std::string& sql, const Value& defaultValue = {});
    // The same for a query about rules, whose answer may be kept.
    Value RuleValue(const std::string& sql, const Value& defaultValue);
    // " AND <column> >= '...' AND <column> <= '...'".
    static std::string Between(const char* column, DateTime dteFrom, DateTime dteTo);
    void ReadBranchHolidayFrom();
    void LoadHead(int32_t lngAttHeadId);
    double FnDblAttHeadNOD(int32_t lngAttHeadId, int32_t lngMonthYear);
    double HolidaysOf(const Span& span, int intMode);
    // Days of a group of leaves; taken is what TakenByLeave gave for the span.
    double LeavesOf(const std::map<int, double>& taken, int intGroup);
    std::map<int, double> TakenByLeave(const Span& span);
    const std::vector<int>& LeavesOfGroup(int intGroup);
    DateTime LastDayTaken(int64_t lngEmpId, DateTime dteTo);
    bool MonthDays(int intBasis, const Span& month, int32_t lngMonthYear, double& dblResult);
    void AddBackLeaveOnHolidays(const Span& span, int intBasis, double& dblNOD, double& dblNDP);
    int32_t MonthOfDate(DateTime dteDate);
    WeeklySource WeeklySourceOf(int64_t lngEmpId, int32_t lngAttHeadId, DateTime dteDate,
                                int32_t lngMonthYear);
    std::string ListWeekly(const WeeklySource& source, DateTime dteFrom, DateTime dteTo);
    double WeeklyValue(const WeeklySource& source, DateTime dteDate, bool& blnFirstHalf,
                       bool& blnSecondHalf);

    Session& session_;
    std::string strBranchHolidayFrom;  // "dd/mmm/yy"; from then on holidays are kept by branch

    int intKeeping_ = 0;                           // KeepRules alive
    std::unordered_map<std::string, Value> kept_;  // answers by their query
    std::map<int, std::vector<int>> groups_;       // leaves of each group
    bool blnMonthsComplete_ = false;               // Update_MonthYear has run while keeping
    std::unordered_map<int32_t, std::pair<AttHeadRecord, AttOptionsRecord>> heads_;  // kept
};

// The session's shared instance, made on first use.
clsNODNDPCalc& FnNodNdp(Session& session);

}  // namespace owb
