#include "calendar/clsNODNDPCalc.h"
#include "family/modCommon.h"
#include "session/Session.h"

namespace owb {

namespace {

// Days 1 to 7 are week 1, 29 to 31 week 5.
int weekOfMonth(DateTime dteDate) {
    return (dteDate.civil().day + 6) / 7;
}

bool listed(const std::string& strList, DateTime dteDate) {
    return strList.find("," + std::to_string(dteDate.civil().day) + ",") != std::string::npos;
}

// Holidays that count for the owner: the company's but for its exceptions, and its own.
std::string holidaysOf(const char* column, int64_t owner) {
    const std::string id = std::to_string(owner), name = column;
    return " FROM ATT_HOLIDAY AH WHERE (" + name + " IS NULL OR " + name + " = 0 OR " + name +
           " = " + id + ") AND (HOLIDAYID NOT IN (SELECT HOLIDAYID FROM ATT_HOLEX WHERE (" + name +
           " = " + id + ") AND (HOLIDAYID = AH.HOLIDAYID)))";
}

std::string between(const std::string& column, DateTime dteFrom, DateTime dteTo) {
    return " AND " + column + " >= '" + FnStrIsoDate(dteFrom) + "' AND " + column + " <= '" +
           FnStrIsoDate(dteTo) + "'";
}

}  // namespace

double clsNODNDPCalc::HolidaysOf(const Span& span, int intMode) {
    if (intMode == 0) return 0;
    double result = 0;
    int64_t lngEmpId = span.lngEmpId;
    FnDblGetHolAndLeave(span.lngAttHeadId, FnStrIsoDate(span.dteFrom), FnStrIsoDate(span.dteTo),
                        lngEmpId, intMode, 0, result);
    return result;
}

void clsNODNDPCalc::FnDblGetHolAndLeave(int32_t lngAttHeadId, const std::string& strFrom,
                                        const std::string& strTo, int64_t& lngEmpId, int& intMode,
                                        int intGroup, double& dblResult) {
    Span span{lngEmpId, 0, lngAttHeadId, parseDate(strFrom).value(), parseDate(strTo).value()};
    dblResult = 0;
    if (intMode == 4) {
        dblResult = LeavesOf(TakenByLeave(span), intGroup);
        return;
    }
    const int32_t key = MonthOfDate(span.dteFrom);
    std::string strWeekly, strGeneral;
    if (intMode != 3)
        strWeekly = ListWeekly(WeeklySourceOf(lngEmpId, lngAttHeadId, span.dteFrom, key),
                               span.dteFrom, span.dteTo);
    if (intMode != 2) ListHoliday(lngEmpId, lngAttHeadId, span.dteFrom, span.dteTo, 2, strGeneral);
    const std::string strList = "," + strWeekly + "," + strGeneral + ",";

    // A day is asked only for what can still change its count. HOLPRIORITY gives a day that is both
    // to the general holiday; otherwise the weekly holiday has its part first.
    const bool blnHolPriority = session_.gOpt.HOLPRIORITY;
    for (DateTime day = span.dteFrom; day <= span.dteTo; day = day.plusDays(1)) {
        if (!listed(strList, day)) continue;
        auto weekly = [&] {
            bool blnFirst = false, blnSecond = false;
            return WeeklyValue(WeeklySourceOf(lngEmpId, lngAttHeadId, day, key), day, blnFirst,
                               blnSecond);
        };
        auto general = [&] {
            bool blnResult = false;
            FnBlnGenHoliday(lngAttHeadId, day, lngEmpId, blnResult);
            return blnResult;
        };
        if (intMode == 1) {
            const double value = weekly();
            dblResult += value < 1 && general() ? 1 : value;
        } else if (intMode == 2) {
            if (!blnHolPriority || !general()) dblResult += weekly();
        } else if (general()) {
            dblResult += blnHolPriority ? 1 : 1 - weekly();
        }
    }
}

void clsNODNDPCalc::ListHoliday(int64_t lngEmpId, int32_t lngAttHeadId, DateTime& dteFrom,
                                DateTime dteTo, int intType, std::string& strList) {
    strList = "0";
    if (intType == 1) {
        const int32_t key = MonthOfDate(dteFrom);
        strList += ListWeekly(WeeklySourceOf(lngEmpId, lngAttHeadId, dteFrom, key), dteFrom, dteTo);
        return;
    }
    if (lngAttHeadId == 0) {
        double head = 0;
        FnIntAttHeadID(lngEmpId, dteFrom, head);
        lngAttHeadId = static_cast<int32_t>(head);
    }
    strList += RuleValue(
                   "DECLARE @tmp AS varchar(MAX) SET @tmp ='' SELECT @tmp=@tmp+',' "
                   "+CAST(DAY(HOLIDAYDATE) AS VARCHAR(2))" +
                       holidaysOf("ATTHEADID", lngAttHeadId) +
                       between("HOLIDAYDATE", dteFrom, dteTo) + " SELECT @tmp ",
                   "")
                   .toText();
}

void clsNODNDPCalc::FnDblWeeklyHoliday(int64_t lngEmpId, int32_t lngAttHeadId, DateTime dteDate,
                                       bool& blnFirstHalf, bool& blnSecondHalf, double& dblValue) {
    dblValue = WeeklyValue(WeeklySourceOf(lngEmpId, lngAttHeadId, dteDate, MonthOfDate(dteDate)),
                           dteDate, blnFirstHalf, blnSecondHalf);
}

void clsNODNDPCalc::FnBlnGenHoliday(int32_t lngAttHeadId, DateTime dteDate, int64_t lngEmpId,
                                    bool& blnResult) {
    if (lngAttHeadId == 0 && lngEmpId != 0) {
        double head = 0;
        FnIntAttHeadID(lngEmpId, dteDate, head);
        lngAttHeadId = static_cast<int32_t>(head);
    }
    const std::string onDate = "HOLIDAYDATE = '" + FnStrIsoDate(dteDate) + "'";
    blnResult = RuleValue("SELECT COUNT(HOLIDAYID) FROM ATT_HOLIDAY WHERE " + onDate, 0).toBool();
    if (!blnResult) return;  // most days are nobody's holiday
    ReadBranchHolidayFrom();
    std::string holidays;
    if (strBranchHolidayFrom.empty() || parseDate(strBranchHolidayFrom).value() > dteDate) {
        holidays = holidaysOf("ATTHEADID", lngAttHeadId);
    } else {
        double branch = 0;
        FnIntBranchID(lngEmpId, dteDate, branch);
        holidays = holidaysOf("BRANCHID", static_cast<int64_t>(branch));
    }
    blnResult = RuleValue("SELECT COUNT(HOLIDAYID)" + holidays + " AND " + onDate, 0).toBool();
}

// The payroll month that holds the date, or the calendar month where none does.
int32_t clsNODNDPCalc::MonthOfDate(DateTime dteDate) {
    const std::string date = FnStrIsoLiteral(dteDate);
    return static_cast<int32_t>(
        RuleValue("SELECT MONTHYEAR FROM MAS_MONTHYEAR WHERE CALCSTARTDATE <= " + date +
                      " AND CALCENDDATE >= " + date,
                  FnLngMonthYearOfDate(dteDate))
            .toInt());
}

clsNODNDPCalc::WeeklySource clsNODNDPCalc::WeeklySourceOf(int64_t lngEmpId, int32_t lngAttHeadId,
                                                          DateTime dteDate, int32_t lngMonthYear) {
    const std::string head = std::to_string(lngAttHeadId), key = std::to_string(lngMonthYear);
    if (session_.gOpt.ROTWHYN && lngEmpId != 0) {
        for (const std::string& owner :
             {"EMPID = " + std::to_string(lngEmpId), "ATTHEADID = " + head + " AND EMPID = 0",
              std::string("ATTHEADID = 0 AND EMPID = 0")}) {
            if (RuleValue("SELECT COUNT(*) FROM ATT_WKLYROT WHERE WEEKDATE BETWEEN "
                          "[dbo].FnDteGetFirstDate(" +
                              key + ") AND [dbo].FnDteGetLastDate(" + key +
                              ") AND (ISNULL(FIRSTHALFYN,0) + ISNULL(SECONDHALFYN,0))>0 AND " +
                              owner,
                          0)
                    .toBool())
                return {lngMonthYear, "ATT_WKLYROT", owner};
        }
        double branch = 0;
        FnIntBranchID(lngEmpId, dteDate, branch);
        const std::string owner = "BRANCHID=" + std::to_string(static_cast<int64_t>(branch));
        if (RuleValue("select COUNT(WHID) from LEV_WEEKLYHLDBRANCH WHERE EFFFROM <= " + key +
                          " AND " + owner,
                      0)
                .toBool())
            return {lngMonthYear, "LEV_WEEKLYHLDBRANCH", owner};
    }
    return {lngMonthYear, "LEV_WEEKLYHLD", "ATTHEADID =" + head};
}

// ",<day>" for each day of the span on which some half is off.
std::string clsNODNDPCalc::ListWeekly(const WeeklySource& source, DateTime dteFrom,
                                      DateTime dteTo) {
    if (source.rotating())
        return RuleValue(
                   "DECLARE @tmp AS varchar(MAX) SET @tmp ='' SELECT @tmp=@tmp+',' "
                   "+CAST(DAY(WEEKDATE) AS VARCHAR(2)) FROM ATT_WKLYROT WHERE " +
                       source.strOwner + " AND (ISNULL(FIRSTHALFYN,0) + ISNULL(SECONDHALFYN,0))>0" +
                       between("WEEKDATE", dteFrom, dteTo) + " SELECT @tmp ",
                   "")
            .toText();

    // A code is weekday * 10 + week, with week 0 where the weekday is not off in that week.
    std::string codes;
    for (const std::string week : {"1", "2", "3", "4", "5"})
        codes += "+','+CAST(WEEKID*10+CASE WHEN FH" + week + "YN = 1 OR SH" + week +
                 "YN = 1 THEN " + week + " ELSE 0 END AS VARCHAR(2))";
    const std::string strCodes =
        RuleValue("DECLARE @tmp AS varchar(MAX) SET @tmp ='0' SELECT @tmp=@tmp" + codes + " FROM " +
                      source.strTable + " WH WHERE " + source.strOwner +
                      " AND EFFFROM=(SELECT MAX(EFFFROM) FROM " + source.strTable +
                      " WHERE WEEKID = WH.WEEKID AND " + source.strOwner +
                      " AND EFFFROM <= " + std::to_string(source.lngMonthYear) + ") SELECT @tmp ",
                  "0")
            .toText();
    std::string result;
    for (DateTime day = dteFrom; day <= dteTo; day = day.plusDays(1))
        if (strCodes.find(std::to_string(day.weekday() * 10 + weekOfMonth(day))) !=
            std::string::npos)
            result += "," + std::to_string(day.civil().day);
    return result;
}

double clsNODNDPCalc::WeeklyValue(const WeeklySource& source, DateTime dteDate, bool& blnFirstHalf,
                                  bool& blnSecondHalf) {
    std::string first = "FIRSTHALFYN", second = "SECONDHALFYN", rest;
    if (source.rotating()) {
        rest = " FROM ATT_WKLYROT WHERE WEEKDATE='" + FnStrIsoDate(dteDate) + "' AND " +
               source.strOwner;
    } else {
        const std::string week = std::to_string(weekOfMonth(dteDate));
        const std::string day = std::to_string(dteDate.weekday());
        first = "FH" + week + "YN";
        second = "SH" + week + "YN";
        rest = " FROM " + source.strTable + " WHERE " + source.strOwner + " AND WEEKID=" + day +
               " AND EFFFROM=(SELECT MAX(EFFFROM) FROM " + source.strTable +
               " WHERE WEEKID = " + day + " AND " + source.strOwner +
               " AND EFFFROM <= " + std::to_string(source.lngMonthYear) + ")";
    }
    const int64_t halves = RuleValue("SELECT CASE WHEN ISNULL(" + first +
                                         ",0) <> 0 THEN 2 ELSE 0 END + CASE WHEN ISNULL(" + second +
                                         ",0) <> 0 THEN 1 ELSE 0 END" + rest,
                                     0)
                               .toInt();
    blnFirstHalf = halves >= 2;
    blnSecondHalf = halves % 2 == 1;
    return ((blnFirstHalf ? 1 : 0) + (blnSecondHalf ? 1 : 0)) / 2.0;
}

}  // namespace owb
