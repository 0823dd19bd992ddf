// The other data of a formula: leave, holidays, reimbursements and the three day counts.
#include <algorithm>

#include "calendar/clsNODNDPCalc.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "formula/clsEvalFormula_task.h"
#include "session/modAttSetting.h"
#include "session/months.h"

namespace owb {

void clsEvalFormula::FillOtherData(KeywordTable& vOther, int64_t lngEmpId, int32_t lngAttHeadId,
                                   int32_t lngEmpDetId, int32_t lngMonthYear, DateTime dteFrom,
                                   DateTime dteTo, double dblSalCalDays, double dblNOD,
                                   double dblNDP, bool blnVerify) {
    const std::string slice = Sql()
                              << " EMPID = " << lngEmpId << " AND MONTHYEAR = " << lngMonthYear;
    const auto put = [&](const std::string& keyword, double value) {
        vOther.push_back({keyword, exprPlainText(value)});
    };
    // The counts below rest on the head's records.
    LoadAttHead(session_, lngAttHeadId);
    LoadAttOptions(session_, lngAttHeadId);
    const bool blnMonthly =
        !blnVerify && !AdvancedLeave(lngMonthYear) &&
        FirstNumber(Sql() << "Select ATTHEADID From MAS_ATTHEAD Where ATTNTYPE = 4 And ATTHEADID = "
                          << lngAttHeadId) > 0;
    for (Recordset rs(session_.gConn, "Select * From ATT_DEFINITION ORDER BY LEVSHORT");
         !rs.IsEOF(); rs.MoveNext()) {
        const int lngLevId = static_cast<int>(rs.Fields("LEVID").toInt());
        put("Leave{" + upperCase(rs.Fields("LEVSHORT").toText()) + "}",
            blnVerify ? 1
                      : LeaveTaken(lngEmpId, lngEmpDetId, lngAttHeadId, blnMonthly, lngMonthYear,
                                   dteFrom, dteTo, lngLevId));
    }
    put("(AdjHours)", FirstNumber(Sql() << "SELECT ADJHRS FROM LEV_MONTHDET  WHERE EMPID  = "
                                        << lngEmpId << " AND EMPDETID = " << lngEmpDetId
                                        << " AND MONTHYEAR= " << lngMonthYear));

    DateTime dteMonthFrom, dteMonthTo;
    GetMonthPeriod(session_, lngMonthYear, dteMonthFrom, dteMonthTo);
    const struct {
        const char* keyword;
        int kind;
        DateTime from, to;
    } holidays[] = {
        {"(GenHoliday)", 3, dteFrom, dteTo},
        {"(TotalGenHoliday)", 3, dteMonthFrom, dteMonthTo},
        {"(WeekHoliday)", 2, dteFrom, dteTo},
        {"(TotalWeekHoliday)", 2, dteMonthFrom, dteMonthTo},
    };
    for (const auto& holiday : holidays) {
        if (!StructureUses(holiday.keyword, lngEmpId, lngEmpDetId)) continue;
        int kind = holiday.kind;
        double count = 0;
        FnNodNdp(session_).FnDblGetHolAndLeave(lngAttHeadId, FnStrIsoDate(holiday.from),
                                               FnStrIsoDate(holiday.to), lngEmpId, kind, 0, count);
        put(holiday.keyword, count);
    }
    FillReimbursements(vOther, lngEmpId, lngMonthYear);
    put("Days{Salary Calendar Days}", dblSalCalDays);
    put("Days{Pay Days}", dblNOD);
    put("Days{Present Days}", dblNDP);
    put("Days{Total Pay Days}",
        FirstNumber("SELECT SUM(NOD) FROM SLC_SALARYCALC_E WHERE NOT EMPDETID IS NULL  AND" +
                    slice));
    put("Days{Total Present Days}",
        FirstNumber("SELECT SUM(NDP) FROM SLC_SALARYCALC_E WHERE NOT EMPDETID IS NULL  AND" +
                    slice));
}

// Days of one leave in the span; with the older tables monthly heads keep a figure for the month.
double clsEvalFormula::LeaveTaken(int64_t lngEmpId, int32_t lngEmpDetId, int32_t lngAttHeadId,
                                  bool blnMonthly, int32_t lngMonthYear, DateTime dteFrom,
                                  DateTime dteTo, int lngLevId) {
    if (AdvancedLeave(lngMonthYear)) {
        double taken = 0;
        FnNodNdp(session_).FnDblLeaveAvailed(lngEmpId, lngLevId, dteFrom, dteTo, lngAttHeadId, true,
                                             taken);
        return taken;
    }
    if (blnMonthly)
        return FirstNumber(Sql() << "Select Sum(ML.LEVVALUE) AS NOOFLEAVE From ATT_MONTH M, "
                                    "ATT_MONTHLEV ML Where M.ATTSLNO = ML.ATTSLNO And M.EMPID = "
                                 << lngEmpId << " And M.EMPDETID = " << lngEmpDetId
                                 << " And M.MONTHYEAR = " << lngMonthYear
                                 << " And ML.LEVID = " << lngLevId);
    return FirstNumber(Sql() << "Select Sum(FIRSTHALFYN)/2.0 + Sum(SECONDHALFYN)/2.0 AS NOOFLEAVE "
                                "From ATT_DETAIL Where EMPID = "
                             << lngEmpId << " And LEVDATE Between '" << FnStrSqlDate(dteFrom)
                             << "' And '" << FnStrSqlDate(dteTo) << "' And LEVID = " << lngLevId);
}

// Does a formula of the employee's salary structure use the word?
bool clsEvalFormula::StructureUses(const std::string& word, int64_t lngEmpId, int32_t lngEmpDetId) {
    return !FirstValue(Sql() << "SELECT FORMULAID FROM MAS_FORMULA WHERE CHARINDEX("
                             << literal(word)
                             << ",FORMULA) > 0  AND FORMULAID IN (SELECT FORMULAID FROM "
                                "SLC_SALSTRUCTDET WHERE FORMULAID>=1 AND  STRUCTID IN (SELECT "
                                "STRUCTID FROM MAS_EMPLOYEEDET    WHERE EMPDETID = "
                             << lngEmpDetId << " AND EMPID= " << lngEmpId << "))",
                       Value())
                .isNull();
}

void clsEvalFormula::FillReimbursements(KeywordTable& vOther, int64_t lngEmpId,
                                        int32_t lngMonthYear) {
    for (Recordset rs(session_.gConn, "Select RMBID, RMBNAME From RMB_MASTER Order By RMBNAME");
         !rs.IsEOF(); rs.MoveNext()) {
        const std::string id = rs.Fields("RMBID").toText();
        const std::string name = upperCase(rs.Fields("RMBNAME").toText());
        const double allotted = FirstNumber(
            Sql() << "Select AD.ALLOTAMT From RMB_ALLOT A, RMB_ALLOTDET AD Where A.RMBALLOTID = "
                     "AD.RMBALLOTID And A.EMPID = "
                  << lngEmpId << " And AD.MONTHYEAR = " << lngMonthYear << " And A.RMBID = " << id);
        // Claims that are tied to no salary month yet count in the month of their date.
        const auto claims = [&](const std::string& ofMonth) {
            return FirstNumber(Sql()
                               << "Select SUM(CLAIMAMT) From RMB_CLAIM A Where A.EMPID = "
                               << lngEmpId << ofMonth << lngMonthYear << " And A.RMBID = " << id);
        };
        const double claimed =
            claims(" And A.SALARYMONTH = ") +
            claims(" And A.SALARYMONTH = 0  AND (YEAR(CLAIMDATE)*12) + MONTH(CLAIMDATE)= ");
        vOther.push_back({"ReimAllot{" + name + "}", exprPlainText(allotted)});
        vOther.push_back({"ReimClaim{" + name + "}", exprPlainText(claimed)});
        vOther.push_back(
            {"ReimUnclaim{" + name + "}", exprPlainText(std::max(0.0, allotted - claimed))});
    }
}

}  // namespace owb
