// Leave in the days-payable engine: what was taken in a span, and what is given back where leave
// fell on a holiday.
#include <algorithm>
#include <array>

#include "calendar/clsNODNDPCalc.h"
#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "session/Session.h"
#include "session/months.h"

namespace owb {

namespace {

// A half that is not known was not taken.
constexpr const char* kDays =
    "CASE WHEN LEVMONTHLY = 0 OR LEVMONTHLY IS NULL THEN CONVERT(NUMERIC, (CASE WHEN "
    "ISNULL(FIRSTHALFYN,0) = 0 THEN 0 ELSE 1 END + CASE WHEN ISNULL(SECONDHALFYN,0) = 0 THEN 0 "
    "ELSE 1 END))/ 2 ELSE LEVMONTHLY END";

std::string ofVersions(int32_t intAttHeadId) {
    if (intAttHeadId == 0) return "";
    return Sql() << " AND EXISTS (SELECT * FROM MAS_EMPLOYEEDET ME WHERE ME.EMPID = LD.EMPID AND "
                    "ME.EMPDETID = LD.EMPDETID AND ME.ATTHEADID = "
                 << intAttHeadId << ")";
}
std::string ofHead(int32_t intAttHeadId) {
    return intAttHeadId == 0 ? "" : " AND ATTHEADID = " + std::to_string(intAttHeadId);
}

}  // namespace

const std::vector<int>& clsNODNDPCalc::LeavesOfGroup(int intGroup) {
    static constexpr std::array<const char*, 9> kGroups = {
        nullptr,
        "Select LEVID From ATT_DEFINITION Where LEVID Not In (2,3) And LEAVEYN = 1",
        "Select LEVID From ATT_DEFINITION Where AFFECTSALARYYN = 1",
        "Select LEVID From ATT_DEFINITION Where LEVID = 1",
        "SELECT LEVID FROM ATT_DEFINITION WHERE LEAVEYN=1",
        "SELECT LEVID FROM ATT_DEFINITION WHERE LEAVEYN<>1",
        "SELECT LEVID FROM ATT_DEFINITION",
        "SELECT LEVID FROM ATT_DEFINITION WHERE LEVID = 2",
        "SELECT LEVID FROM ATT_DEFINITION WHERE LEVID = 3",
    };
    const auto kept = groups_.find(intGroup);
    if (kept != groups_.end() && intKeeping_ > 0) return kept->second;
    std::vector<int> leaves;
    if (intGroup >= 1 && intGroup < static_cast<int>(kGroups.size()))
        for (Recordset rs(session_.gConn, kGroups[static_cast<size_t>(intGroup)]); !rs.IsEOF();
             rs.MoveNext())
            leaves.push_back(static_cast<int>(rs.Fields(0).toInt()));
    return groups_[intGroup] = std::move(leaves);
}

double clsNODNDPCalc::LeavesOf(const std::map<int, double>& taken, int intGroup) {
    double sum = 0;
    for (const int lngLevId : LeavesOfGroup(intGroup)) {
        const auto found = taken.find(lngLevId);
        if (found != taken.end()) sum += found->second;
    }
    return sum;
}

// Days of every leave in the span under its head, with what adjustments took.
std::map<int, double> clsNODNDPCalc::TakenByLeave(const Span& span) {
    const DateTime dteTo = LastDayTaken(span.lngEmpId, span.dteTo);
    const std::string emp = " WHERE EMPID = " + std::to_string(span.lngEmpId);
    std::map<int, double> taken;
    for (Recordset rs(
             session_.gConn,
             Sql() << "SELECT LEVID, SUM(TAKEN) FROM (SELECT LEVID, TAKEN FROM LEV_ADJUSTMENT"
                   << emp << ofHead(span.lngAttHeadId) << Between("ASONDATE", span.dteFrom, dteTo)
                   << " UNION ALL SELECT LEVID, " << kDays << " FROM LEV_DETAILS LD" << emp
                   << Between("LEAVEDATE", span.dteFrom, dteTo) << ofVersions(span.lngAttHeadId)
                   << ") T GROUP BY LEVID");
         !rs.IsEOF(); rs.MoveNext())
        taken[static_cast<int>(rs.Fields(0).toInt())] = rs.Fields(1).toDouble();
    return taken;
}

// Under a monthly head a figure is dated anywhere in its version's span.
DateTime clsNODNDPCalc::LastDayTaken(int64_t lngEmpId, DateTime dteTo) {
    if (session_.gAtt.ATTNTYPE != 4) return dteTo;
    const std::string to = FnStrIsoLiteral(dteTo);
    DateTime monthStart, monthEnd;
    GetMonthPeriod(session_, MonthOfDate(dteTo), monthStart, monthEnd);
    dteTo = FirstValue(Sql() << "SELECT ISNULL(EFFTODATE," << to
                             << ") FROM MAS_EMPLOYEEDET  WHERE EFFFROMDATE <= " << to
                             << " AND ISNULL(EFFTODATE,'2099/12/31')  >= " << to
                             << "  AND EMPID = " << lngEmpId,
                       dteTo)
                .toDate();
    return std::min(dteTo, monthEnd);
}

void clsNODNDPCalc::FnDblLeaveAvailed(int64_t lngEmpId, int lngLevId, DateTime dteFrom,
                                      DateTime dteTo, int32_t intAttHeadId, bool blnWithAdjustment,
                                      double& dblResult) {
    dteTo = LastDayTaken(lngEmpId, dteTo);
    const std::string of = Sql() << " WHERE EMPID = " << lngEmpId << " AND LEVID = " << lngLevId;
    Sql sql;
    sql << "SELECT ";
    if (blnWithAdjustment)
        sql << "ISNULL((SELECT SUM(TAKEN) FROM LEV_ADJUSTMENT" << of << ofHead(intAttHeadId)
            << Between("ASONDATE", dteFrom, dteTo) << "), 0) + ";
    sql << "ISNULL((SELECT SUM(" << kDays << ") FROM LEV_DETAILS LD" << of
        << Between("LEAVEDATE", dteFrom, dteTo) << ofVersions(intAttHeadId) << "), 0)";
    dblResult = FirstValue(sql, 0).toDouble();
}

// Leave that fell on a holiday has been taken off twice, once as leave and once as holiday; it is
// given back here, one day at most for each row of LEV_DETAILS.
void clsNODNDPCalc::AddBackLeaveOnHolidays(const Span& span, int intBasis, double& dblNOD,
                                           double& dblNDP) {
    if (intBasis < 1 || intBasis > 6) return;
    const bool blnHolPriority = session_.gOpt.HOLPRIORITY;
    Recordset rs(session_.gConn, Sql()
                                     << "SELECT * FROM  LEV_DETAILS DET,ATT_DEFINITION DEF WHERE "
                                        "DET.LEVID = DEF.LEVID AND LEAVEYN = 1 AND EMPID = "
                                     << span.lngEmpId << " AND EMPDETID = " << span.lngEmpDetId
                                     << " AND LEAVEDATE BETWEEN  " << FnStrIsoLiteral(span.dteFrom)
                                     << " AND " << FnStrIsoLiteral(span.dteTo));
    for (; !rs.IsEOF(); rs.MoveNext()) {
        const int64_t lngLevId = rs.Fields("LEVID").toInt();
        if (lngLevId <= 3 && lngLevId != 1) continue;
        const DateTime dteLeave = rs.Fields("LEAVEDATE").toDate();
        const double first = rs.Fields("FIRSTHALFYN").toInt() == 1 ? 0.5 : 0;
        const double second = rs.Fields("SECONDHALFYN").toInt() == 1 ? 0.5 : 0;
        const bool blnAffects = rs.Fields("AFFECTSALARYYN").toInt() == 1;

        bool blnFirst = false, blnSecond = false, blnGeneral = false;
        double weekly = 0;
        FnDblWeeklyHoliday(span.lngEmpId, span.lngAttHeadId, dteLeave, blnFirst, blnSecond, weekly);
        FnBlnGenHoliday(span.lngAttHeadId, dteLeave, span.lngEmpId, blnGeneral);
        const double half = first + second;
        const double halfOff = (blnFirst ? first : 0) + (blnSecond ? second : 0);

        double accNOD = 0, accNDP = 0;
        if (intBasis != 4 && intBasis != 6 && (weekly > 0 || blnGeneral)) {
            accNDP += halfOff;
            if (intBasis == 5 && blnGeneral) {
                accNDP += half;
                if (blnAffects && !(weekly > 0 && !blnHolPriority)) accNOD += half;
            }
        }
        if (intBasis != 4 && intBasis != 5 && blnGeneral) accNDP += half;
        if (intBasis == 6 && weekly > 0) {
            accNDP += halfOff;
            if (blnAffects && !(blnHolPriority && blnGeneral)) accNOD += halfOff;
        }
        if (intBasis == 4) {
            const double both = (blnGeneral ? half : 0) + (weekly > 0 ? halfOff : 0);
            accNDP += both;
            if (blnAffects) accNOD += both;
        }
        dblNDP += std::min(accNDP, 1.0);
        dblNOD += std::min(accNOD, 1.0);
    }
}

}  // namespace owb
