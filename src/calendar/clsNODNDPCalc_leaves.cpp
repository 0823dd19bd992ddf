#include <algorithm>
#include <array>

#include "calendar/clsNODNDPCalc.h"
#include "data/Session.h"
#include "data/modCommon.h"

namespace owb {

double clsNODNDPCalc::LeavesOf(const Span& span, int intGroup) {
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
    if (intGroup < 1 || intGroup >= static_cast<int>(kGroups.size())) return 0;
    return LeaveTaken(span.lngEmpId,
                      std::string("IN (") + kGroups[static_cast<size_t>(intGroup)] + ")",
                      span.dteFrom, span.dteTo, span.lngAttHeadId, true);
}

void clsNODNDPCalc::FnDblLeaveAvailed(int64_t lngEmpId, int lngLevId, DateTime dteFrom,
                                      DateTime dteTo, int32_t intAttHeadId, bool blnWithAdjustment,
                                      double& dblResult) {
    dblResult = LeaveTaken(lngEmpId, "= " + std::to_string(lngLevId), dteFrom, dteTo, intAttHeadId,
                           blnWithAdjustment);
}

double clsNODNDPCalc::LeaveTaken(int64_t lngEmpId, const std::string& strLeaves, DateTime dteFrom,
                                 DateTime dteTo, int32_t intAttHeadId, bool blnWithAdjustment) {
    const std::string emp = std::to_string(lngEmpId), head = std::to_string(intAttHeadId);
    if (session_.gAtt.ATTNTYPE == 4) {
        // A monthly figure is dated anywhere in its version's span.
        const std::string to = "'" + FnStrIsoDate(dteTo) + "'";
        const DateTime monthEnd = FnDteMonthEnd(session_, MonthOfDate(dteTo));
        dteTo =
            FirstValue("SELECT ISNULL(EFFTODATE," + to +
                           ") FROM MAS_EMPLOYEEDET  WHERE EFFFROMDATE <= " + to +
                           " AND ISNULL(EFFTODATE,'2099/12/31')  >= " + to + "  AND EMPID = " + emp,
                       dteTo)
                .toDate();
        dteTo = std::min(dteTo, monthEnd);
    }
    const std::string from = "'" + FnStrIsoDate(dteFrom) + "'",
                      to = "'" + FnStrIsoDate(dteTo) + "'";
    const bool ofHead = intAttHeadId != 0;
    const std::string of = " EMPID = " + emp + " AND LEVID " + strLeaves;
    const std::string adjustment =
        blnWithAdjustment ? "ISNULL((SELECT SUM(TAKEN) FROM LEV_ADJUSTMENT WHERE" + of +
                                (ofHead ? " AND ATTHEADID = " + head : "") +
                                " AND ASONDATE >= " + from + " AND ASONDATE <= " + to + "), 0) + "
                          : "";
    // A half that is not known was not taken.
    const std::string days =
        "ISNULL((SELECT SUM(CASE WHEN LEVMONTHLY = 0 OR LEVMONTHLY IS NULL THEN CONVERT(NUMERIC, "
        "(CASE WHEN ISNULL(FIRSTHALFYN,0) = 0 THEN 0 ELSE 1 END + CASE WHEN "
        "ISNULL(SECONDHALFYN,0) = 0 THEN 0 ELSE 1 END))/ 2 ELSE LEVMONTHLY END) FROM LEV_DETAILS "
        "LD WHERE" +
        of + " AND LEAVEDATE >= " + from + " AND LEAVEDATE <= " + to +
        (ofHead ? " AND EXISTS (SELECT * FROM MAS_EMPLOYEEDET ME WHERE ME.EMPID = LD.EMPID AND "
                  "ME.EMPDETID = LD.EMPDETID AND ME.ATTHEADID = " +
                      head + ")"
                : "") +
        "), 0)";
    return FirstValue("SELECT " + adjustment + days, 0).toDouble();
}

// Leave that fell on a holiday has been taken off twice, once as leave and once as holiday; it is
// given back here, one day at most for each row of LEV_DETAILS.
void clsNODNDPCalc::AddBackLeaveOnHolidays(const Span& span, int intBasis, double& dblNOD,
                                           double& dblNDP) {
    if (intBasis < 1 || intBasis > 6) return;
    const bool blnHolPriority = session_.gOpt.HOLPRIORITY;
    Recordset rs(
        session_.gConn,
        "SELECT * FROM  LEV_DETAILS DET,ATT_DEFINITION DEF WHERE DET.LEVID = DEF.LEVID AND "
        "LEAVEYN = 1 AND EMPID = " +
            std::to_string(span.lngEmpId) + " AND EMPDETID = " + std::to_string(span.lngEmpDetId) +
            " AND LEAVEDATE BETWEEN  '" + FnStrIsoDate(span.dteFrom) + "' AND '" +
            FnStrIsoDate(span.dteTo) + "'");
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
