#include "calendar/clsNODNDP.h"

#include <algorithm>

#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "session/Session.h"
#include "session/queries.h"

namespace owb {

namespace {

double daysInclusive(DateTime dteFrom, DateTime dteTo) {
    return dteTo.day - dteFrom.day + 1;
}

// As the family's older tables are asked for a date: '05/Jan/2014'.
std::string quoted(DateTime dteDate) {
    return "'" + FnStrSqlDate(dteDate) + "'";
}

}  // namespace

Value clsNODNDP::FirstValue(const std::string& sql, const Value& defaultValue) {
    return FnVarValueOrThrow(session_, sql, defaultValue);
}

double clsNODNDP::HeadSetting(const char* column, int32_t lngAttHeadId, int defaultValue) {
    return FirstValue(Sql() << "SELECT " << column
                            << " FROM MAS_ATTHEAD WHERE ATTHEADID = " << lngAttHeadId,
                      defaultValue)
        .toDouble();
}

bool clsNODNDP::SetNODNDP(double& dblNWD, double& dblPay, double& dblPresent, int64_t lngEmpId,
                          int64_t lngEmpDetId, int32_t lngMonthYear, int32_t lngAttHeadId,
                          DateTime dteFrom, DateTime dteTo, bool& blnWorkingDaysOnly,
                          bool& blnProrate) {
    try {
        double calc = dblNWD, pay = dblPay;
        const auto basis = static_cast<int>(HeadSetting("NODFORCALC", lngAttHeadId, 2));
        const bool monthly = HeadSetting("ATTNTYPE", lngAttHeadId, 1) == 4;
        const bool tight = HeadSetting("ATTNTIGHTYN", lngAttHeadId, 0) == 1;
        auto holidays = [&](int64_t employee, int mode) {
            double days = 0;
            FnDblGetHoliday(lngAttHeadId, dteFrom, dteTo, employee, mode, days);
            return days;
        };
        auto leaves = [&](const char* condition) {
            double sum = 0;
            Recordset rs(session_.gConn,
                         std::string("Select LEVID From ATT_DEFINITION Where ") + condition);
            for (; !rs.IsEOF(); rs.MoveNext()) {
                const auto leave = static_cast<int>(rs.Fields(0).toInt());
                double days = 0;
                if (monthly)
                    FnDblGetLeaveMnthly(lngEmpId, lngEmpDetId, lngMonthYear, leave, days);
                else
                    FnDblGetLeave(lngEmpId, leave, dteFrom, dteTo, days);
                sum += days;
            }
            return sum;
        };

        FnDblGetNWD(lngMonthYear, lngAttHeadId, calc);
        const double spanDays = daysInclusive(dteFrom, dteTo);
        switch (basis) {
            case 1:
            case 3:
                pay = blnProrate ? std::min(spanDays, calc) : calc;
                break;
            case 2:
                pay = spanDays;
                break;
            case 4:
                pay = spanDays - holidays(0, 1);
                break;
            case 5:
                pay = spanDays - holidays(0, 3);
                break;
            case 6:
                pay = spanDays - holidays(0, 2);
                break;
            default:
                break;
        }
        double present = pay;
        if (!blnWorkingDaysOnly) {
            if (!monthly && !blnProrate && !tight) {
                pay -= leaves("LEVID = 1");
                present = pay;
            } else {
                present = pay - leaves("LEVID Not In (2,3) And LEAVEYN = 1");
                pay -= leaves("AFFECTSALARYYN = 1");
            }
        }
        // Leave on a holiday has been taken off as leave; only the other holidays remain.
        if (basis < 4)
            present -= holidays(lngEmpId, 1);
        else if (basis == 5)
            present -= holidays(lngEmpId, 2);
        else if (basis == 6)
            present -= holidays(lngEmpId, 3);

        dblPay = std::max(pay, 0.0);
        dblPresent = std::max(present, 0.0);
        dblNWD = std::max(calc, 0.0);
        return true;
    } catch (const std::exception& e) {
        session_.boxes.critical(e.what());
        return false;
    }
}

void clsNODNDP::FnDblGetNWD(int32_t lngMonthYear, int32_t lngAttHeadId, double& dblResult) {
    DateTime dteFrom, dteTo;
    SetMonthCalcDates(lngMonthYear, dteFrom, dteTo);
    double off = 0;
    switch (static_cast<int>(HeadSetting("NODFORCALC", lngAttHeadId, 2))) {
        case 1:
            dblResult = 30;
            return;
        case 2:
            break;
        case 3:
            dblResult = FnDblAttHeadNOD(lngAttHeadId, lngMonthYear);
            return;
        case 4:
            FnDblGetHoliday(lngAttHeadId, dteFrom, dteTo, 0, 1, off);
            break;
        case 5:
            FnDblGetHoliday(lngAttHeadId, dteFrom, dteTo, 0, 3, off);
            break;
        case 6:
            FnDblGetHoliday(lngAttHeadId, dteFrom, dteTo, 0, 2, off);
            break;
        default:
            return;
    }
    dblResult = daysInclusive(dteFrom, dteTo) - off;
}

void clsNODNDP::FnDblNODLimit(int32_t lngMonthYear, int32_t lngAttHeadId, double& dblResult) {
    FnDblGetNWD(lngMonthYear, lngAttHeadId, dblResult);
}

void clsNODNDP::FnDblGetHoliday(int32_t lngAttHeadId, DateTime dteFrom, DateTime dteTo,
                                int64_t lngEmpId, int intMode, double& dblResult) {
    dblResult = 0;
    for (DateTime day = dteFrom; day <= dteTo; day = day.plusDays(1)) {
        const double weekly = intMode != 3 ? WeeklyHoliday(lngAttHeadId, day) : 0;
        const double general = intMode != 2 && GeneralHoliday(lngAttHeadId, day) ? 1 : 0;
        const double off = std::max(weekly, general);
        if (off == 0) continue;
        if (lngEmpId != 0 && FirstValue(Sql() << "Select Count(*) From ATT_DETAIL Where EMPID = "
                                              << lngEmpId << " And LEVDATE = " << quoted(day),
                                        0)
                                 .toBool())
            continue;
        dblResult += off;
    }
}

double clsNODNDP::WeeklyHoliday(int32_t lngAttHeadId, DateTime dteDate) {
    const Value dated = FirstValue(
        Sql() << "Select FIRSTHALFYN/2.0 + SECONDHALFYN/2.0 From ATT_WKLYROT Where ATTHEADID = "
              << lngAttHeadId << " And EMPID = 0 And WEEKDATE = " << quoted(dteDate),
        {});
    if (!dated.isNull()) return dated.toDouble();
    return FirstValue(Sql() << "Select FIRSTHALF/2.0 + SECONDHALF/2.0 From ATT_WEEKLY AW, "
                               "MAS_PULLDOWNVALUES PD Where PD.REFID = 16 And PD.PDLISTNAME = "
                               "AW.WEEKDAYNAME And PD.PDID = "
                            << dteDate.weekday() << " And AW.ATTHEADID = " << lngAttHeadId,
                      0)
        .toDouble();
}

bool clsNODNDP::GeneralHoliday(int32_t lngAttHeadId, DateTime dteDate) {
    return FirstValue(
               Sql() << "Select Count(HOLIDAYID) From ATT_HOLIDAY Where (ATTHEADID Is Null Or "
                        "ATTHEADID = 0 Or ATTHEADID = "
                     << lngAttHeadId
                     << ") And HOLIDAYID Not In (Select HOLIDAYID From ATT_HOLEX Where ATTHEADID = "
                     << lngAttHeadId << ") And HOLIDAYDATE = " << quoted(dteDate),
               0)
        .toBool();
}

void clsNODNDP::FnDblGetLeave(int64_t lngEmpId, int lngLevId, DateTime dteFrom, DateTime dteTo,
                              double& dblResult) {
    dblResult = FirstValue(Sql() << "Select Sum(FIRSTHALFYN)/2.0 + Sum(SECONDHALFYN)/2.0 AS "
                                    "NOOFLEAVE From ATT_DETAIL Where EMPID = "
                                 << lngEmpId << " And LEVDATE Between " << quoted(dteFrom)
                                 << " And " << quoted(dteTo) << " And LEVID = " << lngLevId,
                           0)
                    .toDouble();
}

void clsNODNDP::FnDblGetLeaveMnthly(int64_t lngEmpId, int64_t lngEmpDetId, int32_t lngMonthYear,
                                    int lngLevId, double& dblResult) {
    dblResult =
        FirstValue(Sql() << "Select LEVVALUE From ATT_MONTHLEV Where ATTSLNO = (Select "
                            "Max(ATTSLNO) From ATT_MONTH Where EMPID = "
                         << lngEmpId << " And EMPDETID = " << lngEmpDetId
                         << " And MONTHYEAR = " << lngMonthYear << ") And LEVID = " << lngLevId,
                   0)
            .toDouble();
}

double clsNODNDP::FnDblAttHeadNOD(int32_t lngAttHeadId, int32_t lngMonthYear) {
    return FirstValue(Sql() << "SELECT NOD FROM SLC_ATTHEADNOD WHERE ATTHEADID = " << lngAttHeadId
                            << " AND MONTHYEAR = " << lngMonthYear,
                      0)
        .toDouble();
}

void clsNODNDP::SetMonthCalcDates(int32_t lngMonthYear, DateTime& dteFrom, DateTime& dteTo) {
    dteFrom = parseDate(FnStrGetMonthStartDate(lngMonthYear)).value();
    dteTo = parseDate(FnStrGetMonthEndDate(lngMonthYear)).value();
}

std::string clsNODNDP::FnStrGetMonthStartDate(int32_t lngMonthYear) {
    const DateTime first = parseDate("1/" + FnStrMonthYearText(lngMonthYear)).value();
    return FnStrSqlDate(
        FirstValue(
            Sql() << "SELECT CALCSTARTDATE FROM MAS_MONTHYEAR WHERE MONTHYEAR = " << lngMonthYear,
            first)
            .toDate());
}

std::string clsNODNDP::FnStrGetMonthEndDate(int32_t lngMonthYear) {
    const DateTime first = parseDate("1/" + FnStrMonthYearText(lngMonthYear)).value();
    return FnStrSqlDate(FirstValue(Sql()
                                       << "SELECT CALCENDDATE FROM MAS_MONTHYEAR WHERE MONTHYEAR = "
                                       << lngMonthYear,
                                   first.plusMonths(1).plusDays(-1))
                            .toDate());
}

}  // namespace owb
