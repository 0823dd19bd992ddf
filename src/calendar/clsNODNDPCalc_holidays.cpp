// Holidays in the days-payable engine: the days of a span that may be off are listed by one query
// for each kind, and only a listed day is then asked for what it counts.
#include "calendar/clsNODNDPCalc.h"
#include "db/sql_text.h"
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
    const std::string ofOwner = Sql() << column << " = " << owner;
    return Sql() << " FROM ATT_HOLIDAY AH WHERE (" << column << " IS NULL OR " << column
                 << " = 0 OR " << ofOwner
                 << ") AND (HOLIDAYID NOT IN (SELECT HOLIDAYID FROM ATT_HOLEX WHERE (" << ofOwner
                 << ") AND (HOLIDAYID = AH.HOLIDAYID)))";
}

}  // namespace

// The ends of a span may be a version's dates or an employee's, which other programs write.
std::string clsNODNDPCalc::Between(const char* column, DateTime dteFrom, DateTime dteTo) {
    return Sql() << " AND " << column << " >= " << FnStrIsoLiteral(dteFrom) << " AND " << column
                 << " <= " << FnStrIsoLiteral(dteTo);
}

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
    strList += RuleValue(Sql() << "DECLARE @tmp AS varchar(MAX) SET @tmp ='' SELECT @tmp=@tmp+',' "
                                  "+CAST(DAY(HOLIDAYDATE) AS VARCHAR(2))"
                               << holidaysOf("ATTHEADID", lngAttHeadId)
                               << Between("HOLIDAYDATE", dteFrom, dteTo) << " SELECT @tmp ",
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
    const std::string onDate = "HOLIDAYDATE = " + FnStrIsoLiteral(dteDate);
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
        RuleValue(Sql() << "SELECT MONTHYEAR FROM MAS_MONTHYEAR WHERE CALCSTARTDATE <= " << date
                        << " AND CALCENDDATE >= " << date,
                  FnLngMonthYearOfDate(dteDate))
            .toInt());
}

clsNODNDPCalc::WeeklySource clsNODNDPCalc::WeeklySourceOf(int64_t lngEmpId, int32_t lngAttHeadId,
                                                          DateTime dteDate, int32_t lngMonthYear) {
    const std::string head = std::to_string(lngAttHeadId);
    if (session_.gOpt.ROTWHYN && lngEmpId != 0) {
        for (const std::string& owner :
             {"EMPID = " + std::to_string(lngEmpId), "ATTHEADID = " + head + " AND EMPID = 0",
              std::string("ATTHEADID = 0 AND EMPID = 0")}) {
            if (RuleValue(Sql() << "SELECT COUNT(*) FROM ATT_WKLYROT WHERE WEEKDATE BETWEEN "
                                   "[dbo].FnDteGetFirstDate("
                                << lngMonthYear << ") AND [dbo].FnDteGetLastDate(" << lngMonthYear
                                << ") AND (ISNULL(FIRSTHALFYN,0) + ISNULL(SECONDHALFYN,0))>0 AND "
                                << owner,
                          0)
                    .toBool())
                return {lngMonthYear, "ATT_WKLYROT", owner};
        }
        double branch = 0;
        FnIntBranchID(lngEmpId, dteDate, branch);
        const std::string owner = "BRANCHID=" + std::to_string(static_cast<int64_t>(branch));
        if (RuleValue(Sql() << "select COUNT(WHID) from LEV_WEEKLYHLDBRANCH WHERE EFFFROM <= "
                            << lngMonthYear << " AND " << owner,
                      0)
                .toBool())
            return {lngMonthYear, "LEV_WEEKLYHLDBRANCH", owner};
    }
    return {lngMonthYear, "LEV_WEEKLYHLD", "ATTHEADID =" + head};
}

// Of a weekday's versions, the one in force in the month.
std::string clsNODNDPCalc::WeeklySource::InForce(const std::string& weekday) const {
    return Sql() << " AND EFFFROM=(SELECT MAX(EFFFROM) FROM " << strTable
                 << " WHERE WEEKID = " << weekday << " AND " << strOwner
                 << " AND EFFFROM <= " << lngMonthYear << ")";
}

// ",<day>" for each day of the span on which some half is off.
std::string clsNODNDPCalc::ListWeekly(const WeeklySource& source, DateTime dteFrom,
                                      DateTime dteTo) {
    if (source.rotating())
        return RuleValue(Sql() << "DECLARE @tmp AS varchar(MAX) SET @tmp ='' SELECT @tmp=@tmp+',' "
                                  "+CAST(DAY(WEEKDATE) AS VARCHAR(2)) FROM ATT_WKLYROT WHERE "
                               << source.strOwner
                               << " AND (ISNULL(FIRSTHALFYN,0) + ISNULL(SECONDHALFYN,0))>0"
                               << Between("WEEKDATE", dteFrom, dteTo) << " SELECT @tmp ",
                         "")
            .toText();

    // A code is weekday * 10 + week, with week 0 where the weekday is not off in that week.
    Sql codes;
    for (int week = 1; week <= 5; ++week)
        codes << "+','+CAST(WEEKID*10+CASE WHEN FH" << week << "YN = 1 OR SH" << week
              << "YN = 1 THEN " << week << " ELSE 0 END AS VARCHAR(2))";
    const std::string strCodes =
        RuleValue(Sql() << "DECLARE @tmp AS varchar(MAX) SET @tmp ='0' SELECT @tmp=@tmp" << codes
                        << " FROM " << source.strTable << " WH WHERE " << source.strOwner
                        << source.InForce("WH.WEEKID") << " SELECT @tmp ",
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
        rest = Sql() << " FROM ATT_WKLYROT WHERE WEEKDATE=" << FnStrIsoLiteral(dteDate) << " AND "
                     << source.strOwner;
    } else {
        const std::string week = std::to_string(weekOfMonth(dteDate));
        const std::string day = std::to_string(dteDate.weekday());
        first = "FH" + week + "YN";
        second = "SH" + week + "YN";
        rest = Sql() << " FROM " << source.strTable << " WHERE " << source.strOwner
                     << " AND WEEKID=" << day << source.InForce(day);
    }
    const int64_t halves = RuleValue(Sql() << "SELECT CASE WHEN ISNULL(" << first
                                           << ",0) <> 0 THEN 2 ELSE 0 END + CASE WHEN ISNULL("
                                           << second << ",0) <> 0 THEN 1 ELSE 0 END" << rest,
                                     0)
                               .toInt();
    blnFirstHalf = halves >= 2;
    blnSecondHalf = halves % 2 == 1;
    return ((blnFirstHalf ? 1 : 0) + (blnSecondHalf ? 1 : 0)) / 2.0;
}

}  // namespace owb
