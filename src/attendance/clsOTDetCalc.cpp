#include "attendance/clsOTDetCalc.h"

#include <algorithm>
#include <cmath>

#include "base/number_text.h"
#include "calendar/clsNODNDPCalc.h"
#include "db/numbered_column.h"
#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "session/Session.h"
#include "session/modAttSetting.h"
#include "session/queries.h"

namespace owb {

namespace {

// Whole part and the two digits after the point, which stand for sixtieths or for hundredths.
double convertFraction(double value, double from, double to) {
    const std::string digits = formatNumber(std::fabs(value), "0.00");
    const double whole = textToNumber(digits.substr(0, digits.size() - 3));
    const double part = textToNumber(digits.substr(digits.size() - 3));
    const double result = whole + part * to / from;
    return value < 0 ? -result : result;
}

std::string versionKey(Recordset& rs) {
    return Sql() << "EMPID = " << rs.Fields("EMPID").toInt()
                 << " AND EMPDETID = " << rs.Fields("EMPDETID").toInt();
}

}  // namespace

std::string clsOTDetCalc::FnStrRegisterRow(int64_t lngAttTranNo) {
    return Sql()
           << "SELECT [dbo].FnDteGetFirstDate(AD.MONTHYEAR) AS FIRSTDATE, "
              "[dbo].FnDteGetLastDate(AD.MONTHYEAR) AS LASTDATE, [dbo].FnDteFromDate(EMPID, "
              "EMPDETID, MONTHYEAR) AS FROMDATE, [dbo].FnDteToDate(EMPID, EMPDETID, MONTHYEAR) AS "
              "TODATE, AD.EMPID, AD.EMPDETID, AD.ATTHEADID, AD.MONTHYEAR, MA.OT1YN, MA.OT2YN, "
              "MA.ATTNTYPE, AO.*, AT.FULLDAYOT2, AT.SPLOTYN, AT.WHOT2YN, AT.GHOT2YN, "
              "ISNULL(MA.CUTOFFHALFDAY,0) As HALFDAYCUTOFF  FROM ATT_OVERTIME AO, ATT_DAYTODAY AD, "
              "MAS_ATTHEAD MA, ATT_OPTSETTINGS AT WHERE AO.ATTTRANNO = AD.ATTTRANNO AND "
              "MA.ATTHEADID = AD.ATTHEADID AND AT.ATTHEADID = AD.ATTHEADID AND AD.ATTTRANNO = "
           << lngAttTranNo;
}

void clsOTDetCalc::ComputeDays(Recordset& rs, const DayWriter& write) {
    const auto head = static_cast<int32_t>(rs.Fields("ATTHEADID").toInt());
    LoadAttHead(session_, head);
    LoadAttOptions(session_, head);
    const DateTime first = rs.Fields("FIRSTDATE").toDate(), last = rs.Fields("LASTDATE").toDate();
    const DateTime from = FnVarNz(rs.Fields("FROMDATE").value(), first).toDate();
    const DateTime to = FnVarNz(rs.Fields("TODATE").value(), last).toDate();
    const bool hourly = rs.Fields("ATTNTYPE").toInt() == 3;
    const bool overtime = rs.Fields("OT1YN").toInt() == 1 || rs.Fields("OT2YN").toInt() == 1;

    // OT2 and ADJHRS live on from day to day; only a day that meets the overtime step sets them.
    Figures figures;
    for (int d = 0; d <= last.day - first.day; ++d) {
        const DateTime date = first.plusDays(d);
        if (date < from || date > to) continue;
        const double raw = rs.Fields(numberedColumn("OTDAY", d + 1)).toDouble();
        figures.OT1 = raw;
        if (overtime && raw > 0) {
            if (hourly) {
                bool firstLeave = false, secondLeave = false;
                GetLeaveDet(rs.Fields("EMPID").toInt(), date, firstLeave, secondLeave);
                HourlyOTDet(raw, figures.OT1, figures.OT2, figures.ADJHRS, firstLeave, secondLeave);
            }
            if (rs.Fields("SPLOTYN").toInt() == 1 && rs.Fields("OT2YN").toInt() == 1)
                SpecialOvertime(rs, date, raw, figures);
            if (hourly) figures.OT2 = FnDblToDecimal(figures.OT2);
        }
        write(date, figures);
    }
}

// Sends the hours of a special day or holiday to the kind of overtime that the head's options say.
void clsOTDetCalc::SpecialOvertime(Recordset& rs, DateTime dteDate, double raw, Figures& figures) {
    const int64_t employee = rs.Fields("EMPID").toInt();
    const auto head = static_cast<int32_t>(rs.Fields("ATTHEADID").toInt());
    bool special = false;
    FnBlnSplOT(head, dteDate, special);
    if (special) {
        figures.OT2 = rs.Fields("FULLDAYOT2").toInt() == 1 ? raw : figures.OT1;
        return;
    }
    bool firstOff = false, secondOff = false;
    double weekly = 0;
    clsNODNDPCalc& nodNdp = FnNodNdp(session_);
    nodNdp.FnDblWeeklyHoliday(employee, head, dteDate, firstOff, secondOff, weekly);
    if (weekly > 0) {
        const double cutOff = firstOff && secondOff ? 0 : rs.Fields("HALFDAYCUTOFF").toDouble();
        const bool toSpecial = rs.Fields("WHOT2YN").toInt() == 1;
        figures.OT1 = toSpecial ? 0 : raw - cutOff;
        figures.OT2 = toSpecial ? raw - cutOff : 0;
        return;
    }
    bool general = false;
    nodNdp.FnBlnGenHoliday(head, dteDate, employee, general);
    if (general) (rs.Fields("GHOT2YN").toInt() == 1 ? figures.OT2 : figures.OT1) = raw;
}

void clsOTDetCalc::WriteDays(Recordset& rs, std::string& strQuery) {
    const std::string id = std::to_string(rs.Fields("EMPID").toInt());
    const std::string det = std::to_string(rs.Fields("EMPDETID").toInt());
    Sql batch;
    batch << strQuery;
    ComputeDays(rs, [&](DateTime dteDate, const Figures& f) {
        const std::string date = FnStrIsoLiteral(dteDate);
        // With the columns' two places always: texts that differ in digits alone share a plan.
        const std::string ot1 = formatNumber(f.OT1, "0.00"), ot2 = formatNumber(f.OT2, "0.00"),
                          adj = formatNumber(f.ADJHRS, "0.00");
        batch << " IF EXISTS(SELECT EMPID FROM LEV_OTDETAILS WHERE EMPID = " << id
              << " AND EMPDETID = " << det << " AND OTDATE = " << date
              << ") BEGIN UPDATE LEV_OTDETAILS SET OT1=" << ot1 << ",OT2=" << ot2
              << ",ADJHRS=" << adj << "  WHERE EMPID=" << id << " AND EMPDETID=" << det
              << " AND OTDATE = " << date << " END  ELSE BEGIN INSERT INTO LEV_OTDETAILS VALUES("
              << id << "," << det << "," << date << "," << ot1 << "," << ot2 << "," << adj
              << ") END";
    });
    if (!batch.text().empty()) session_.gConn.ExecuteAtomic(batch);
    strQuery.clear();
}

void clsOTDetCalc::MarkMonth(Recordset& rs, bool recalcNow) {
    session_.gConn.Execute(
        Sql() << " UPDATE LEV_MONTHDET SET EDITMODEYN = 1 WHERE " << versionKey(rs)
              << " AND MONTHYEAR = " << rs.Fields("MONTHYEAR").toInt()
              << " AND MONTHYEAR NOT IN (SELECT MONTHYEAR FROM MAS_MONTHYEAR WHERE TDSPORTYN = 1)");
    if (!recalcNow) return;
    updateMonthDays_(rs.Fields("EMPID").toInt());
    session_.gConn.Execute(Sql() << "UPDATE ATT_DAYTODAY SET EDITMODEYN=0 where ATTTRANNO= "
                                 << rs.Fields("ATTTRANNO").toInt());
}

void clsOTDetCalc::UpdateOTDailyHourlyNew(Recordset& rs, std::string& strQuery, bool recalcNow) {
    WriteDays(rs, strQuery);
    MarkMonth(rs, recalcNow);
}

void clsOTDetCalc::UpdateOTDailyHourly(Recordset& rs, bool recalcNow) {
    const std::string days = " FROM LEV_OTDETAILS WHERE " + versionKey(rs);
    Recordset details;
    details.Open("SELECT *" + days + " AND 1 = 0", session_.gConn, adOpenKeyset, adLockOptimistic);
    ComputeDays(rs, [&](DateTime dteDate, const Figures& f) {
        session_.gConn.Execute("DELETE" + days + " AND OTDATE = " + FnStrIsoLiteral(dteDate));
        details.AddNew();
        details.Fields("EMPID") = rs.Fields("EMPID");
        details.Fields("EMPDETID") = rs.Fields("EMPDETID");
        details.Fields("OTDATE") = dteDate;
        details.Fields("OT1") = f.OT1;
        details.Fields("OT2") = f.OT2;
        details.Fields("ADJHRS") = f.ADJHRS;
        details.Update();
    });
    MarkMonth(rs, recalcNow);
    session_.gConn.Execute("exec [dbo].ClearLeaveRecords");
}

void clsOTDetCalc::FnBlnSplOT(int32_t lngAttHeadId, DateTime dteDate, bool& blnResult) {
    blnResult = FnVarValueOrThrow(
                    session_,
                    Sql() << "SELECT COUNT(*) FROM ATT_EXTRAOT WHERE ATTHEADID=" << lngAttHeadId
                          << " AND WEEKDATE=" << FnStrIsoLiteral(dteDate),
                    0)
                    .toBool();
}

void clsOTDetCalc::GetLeaveDet(int64_t lngEmpId, DateTime dteDate, bool& blnFirstHalf,
                               bool& blnSecondHalf) {
    const std::string onLeave = Sql()
                                << "SELECT COUNT(EMPID) FROM LEV_DETAILS WHERE EMPID = " << lngEmpId
                                << " AND LEVID <> 0 AND LEAVEDATE = " << FnStrIsoLiteral(dteDate);
    blnFirstHalf = FnVarValueOrThrow(session_, onLeave + " AND FIRSTHALFYN = 1", 0).toBool();
    blnSecondHalf = FnVarValueOrThrow(session_, onLeave + " AND SECONDHALFYN = 1", 0).toBool();
}

void clsOTDetCalc::HourlyOTDet(double dblHours, double& dblOT1, double& dblOT2, double& dblAdj,
                               bool blnFirstLeave, bool blnSecondLeave) {
    const AttHeadRecord& att = session_.gAtt;
    const bool full = dblHours >= att.MINFULLDAY;
    const bool half = !full && dblHours >= att.MINHALFDAY && dblHours <= att.MAXHALFDAY;

    double credit = 0;
    if (blnFirstLeave && blnSecondLeave)
        credit = att.CUTOFFFULLDAY;
    else if (blnFirstLeave || blnSecondLeave)
        credit = att.CUTOFFHALFDAY;
    // Below the half day the credit is added as it stands, in decimal hours.
    dblHours += full || half ? FnDblToHoursMinutes(credit) : credit;

    double diff = FnDblToDecimal(dblHours) - att.CUTOFFFULLDAY;
    if (full) diff = roundHalfEven(diff, 2);

    bool allowed = att.NOATTOTYN, affects = att.NOSAL, deduct = true;
    if (full) {
        allowed = att.FULLDAYOTYN;
        affects = att.FULLSAL;
        deduct = att.FULLDAYDEDYN;
    } else if (half) {
        allowed = att.HALFDAYOTYN;
        affects = att.HALFSAL;
        deduct = att.HALFDAYDEDYN;
    }
    double overtime = 0;
    dblAdj = 0;
    dblOT2 = 0;
    if (allowed && diff >= 0)
        overtime = diff;
    else if (affects)
        dblAdj = diff;
    else if (allowed && deduct)
        overtime = diff;
    if (overtime > 0 && overtime * 60 <= att.OTHOURMIN) overtime = 0;
    dblOT1 = overtime;
}

void clsOTDetCalc::PortOTDetail(int64_t lngEmpId, int64_t lngEmpDetId, int32_t lngMonthYear) {
    const std::string ofVersion = Sql() << " WHERE EMPID = " << lngEmpId
                                        << " AND EMPDETID = " << lngEmpDetId;
    Recordset hours(
        session_.gConn,
        Sql() << "SELECT ISNULL(OT1, 0), ISNULL(OT2, 0) FROM LEV_MONTHDET WHERE EMPID = "
              << lngEmpId << " AND EMPDETID=" << lngEmpDetId << " AND MONTHYEAR=" << lngMonthYear);
    if (hours.IsEOF()) return;
    const int64_t structure =
        FnVarValueOrThrow(session_, "SELECT STRUCTID FROM MAS_EMPLOYEEDET" + ofVersion, 0).toInt();
    for (size_t kind = 0; kind < 2; ++kind) {
        const std::string head = kind == 0 ? "100" : "101",
                          unit = numberText(hours.Fields(kind).toDouble());
        Recordset ofStructure(session_.gConn,
                              Sql() << "SELECT PAYTYPEYN FROM SLC_SALSTRUCTDET WHERE STRUCTID = "
                                    << structure << " AND SALHEADROWID = " << head);
        if (ofStructure.IsEOF()) continue;
        const std::string key =
            Sql() << " WHERE EMPID = " << lngEmpId << " AND MONTHYEAR = " << lngMonthYear
                  << " AND STRUCTID = " << structure << " AND SALHEADROWID = " << head;
        if (!Recordset(session_.gConn, "SELECT SLNO FROM SLC_COMPCALCDET" + key).IsEOF()) {
            session_.gConn.Execute("UPDATE SLC_COMPCALCDET SET UNIT = " + unit + key);
            continue;
        }
        const std::string column = kind == 0 ? "OT1" : "OT2";
        const std::string rate = numberText(
            FnVarValueOrThrow(session_,
                              Sql() << "SELECT TOP 1 " << column << " FROM SLC_SALARYRATE_E"
                                    << ofVersion << " AND MONTHYEAR <= " << lngMonthYear
                                    << " ORDER BY MONTHYEAR DESC",
                              0)
                .toDouble());
        session_.gConn.Execute(
            Sql() << "INSERT INTO SLC_COMPCALCDET(SLNO, EMPID, MONTHYEAR, STRUCTID, PAYTYPEYN, "
                     "SALHEADROWID, UNIT, RATE) SELECT ISNULL(MAX(SLNO), 0) + 1, "
                  << lngEmpId << ", " << lngMonthYear << ", " << structure << ", "
                  << ofStructure.Fields(0).toInt() << ", " << head << ", " << unit << ", " << rate
                  << " FROM SLC_COMPCALCDET");
    }
}

double clsOTDetCalc::FnDblToDecimal(double dblHours) {
    return convertFraction(dblHours, 60, 100);
}

double clsOTDetCalc::FnDblToHoursMinutes(double dblDecimal) {
    return convertFraction(dblDecimal, 100, 60);
}

}  // namespace owb
