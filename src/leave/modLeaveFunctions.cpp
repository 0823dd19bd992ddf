#include "leave/modLeaveFunctions.h"

#include <algorithm>
#include <memory>
#include <set>

#include "attendance/clsOTDetCalc.h"
#include "base/number_text.h"
#include "calendar/clsNODNDPCalc.h"
#include "data/Session.h"
#include "data/modCommon.h"

namespace owb {

namespace {

std::string text(int64_t number) {
    return std::to_string(number);
}

std::string rowKey(int64_t lngEmpId, int64_t lngEmpDetId, int32_t lngMonthYear) {
    return "EMPID = " + text(lngEmpId) + " And EMPDETID = " + text(lngEmpDetId) +
           " And MONTHYEAR = " + text(lngMonthYear);
}

// The list with leaves 2 and 3 brought in together, in ascending order.
std::string leavesTogether(const std::string& strLevIds) {
    std::set<int> ids;
    for (size_t at = 0; at < strLevIds.size();) {
        size_t end = strLevIds.find(',', at);
        if (end == std::string::npos) end = strLevIds.size();
        const std::string item = strLevIds.substr(at, end - at);
        if (!item.empty()) ids.insert(static_cast<int>(textToNumber(item)));
        at = end + 1;
    }
    if (ids.count(2) || ids.count(3)) ids.insert({2, 3});
    std::string list;
    for (const int id : ids) list += (list.empty() ? "" : ",") + text(id);
    return list;
}

}  // namespace

clsOTDetCalc& FnOtDetCalc(Session& session) {
    if (!session.gOtDetCalc)
        session.gOtDetCalc = std::make_shared<clsOTDetCalc>(session, [&session](int64_t lngEmpId) {
            const std::string filter = std::exchange(session.gEmpFilter, text(lngEmpId));
            NoProgress hidden;
            UpdateMonthDays(session, hidden);
            session.gEmpFilter = filter;
        });
    return *session.gOtDetCalc;
}

void MarkAllotmentDirty(Session& session, int32_t intAttHeadId, int64_t lngEmpId) {
    std::string sql = "UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1";
    if (intAttHeadId != 0) sql += " WHERE  ATTHEADID = " + text(intAttHeadId);
    if (lngEmpId != 0)
        sql += (intAttHeadId != 0 ? " AND EMPID = " : " WHERE EMPID = ") + text(lngEmpId);
    session.gConn.Execute(sql);
}

void MarkAllotmentDirtyFrom(Session& session, DateTime dteFrom, int32_t intAttHeadId,
                            const std::string& strEmpIds, const std::string& strLevIds) {
    const std::string date = FnStrIsoLiteral(dteFrom);
    std::string sql =
        "UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 WHERE dbo.FnLngMonthYear(ALLOTFROM, ALLOTFROM) "
        ">= dbo.FnLngMonthYear(" +
        date + ", " + date + ")";
    if (!strEmpIds.empty()) sql += " AND EMPID IN (" + strEmpIds + ")";
    if (intAttHeadId != 0) sql += " AND ATTHEADID = " + text(intAttHeadId);
    const std::string leaves = leavesTogether(strLevIds);
    if (!leaves.empty()) sql += " AND LEVID IN (" + leaves + ")";
    session.gConn.Execute(sql);
}

void MarkSalaryDirty(Session& session, int32_t lngMonthYear, bool blnOnlyThisMonth,
                     int64_t lngEmpId) {
    std::string sql = "UPDATE SLC_SALARYCALC_E SET EDITMODEYN = 1 WHERE MONTHYEAR " +
                      std::string(blnOnlyThisMonth ? "= " : ">= ") + text(lngMonthYear);
    if (lngEmpId != 0) sql += " AND EMPID = " + text(lngEmpId);
    session.gConn.Execute(sql);
    session.gConn.Execute("UPDATE RMB_MASTER SET EDITMODEYN =1");
}

namespace {

// Order of writes: overtime of the days, salary marks, then the figures together with the cleared
// mark. Overtime comes first because the row's own sums are made of it; for the same reason it is
// written without marking the row again.
void UpdateMonthRow(Session& session, Recordset& rs) {
    const int64_t employee = rs.Fields("EMPID").toInt(), det = rs.Fields("EMPDETID").toInt();
    const auto month = static_cast<int32_t>(rs.Fields("MONTHYEAR").toInt());
    const std::string key = rowKey(employee, det, month);
    // Another session may have done it meanwhile.
    if (Recordset(session.gConn,
                  "Select top 1 EMPID from LEV_MONTHDET Where EDITMODEYN=1 and " + key)
            .IsEOF())
        return;

    const int64_t type = rs.Fields("ATTNTYPE").toInt();
    if (type != 1) {
        const int64_t attTranNo =
            FnVarReadValue(session, "SELECT ATTTRANNO FROM ATT_DAYTODAY WHERE " + key, 0).toInt();
        Recordset row(session.gConn, clsOTDetCalc::FnStrRegisterRow(attTranNo));
        std::string days;
        if (!row.IsEOF()) FnOtDetCalc(session).WriteDays(row, days);
    }

    const DateTime from = rs.Fields("FROMDATE").toDate(), to = rs.Fields("TODATE").toDate();
    double calc = 0, nod = 0, ndp = 0;
    bool workingDaysOnly = false, prorateAlt = false, prorate = true;
    int basis = 0;
    // A row whose days cannot be worked out keeps its mark; the reason has been shown.
    if (!FnNodNdp(session).SetNODNDP(calc, nod, ndp, employee, det, month,
                                     static_cast<int32_t>(rs.Fields("ATTHEADID").toInt()), from, to,
                                     workingDaysOnly, prorateAlt, prorate, basis))
        return;
    std::string overtime;
    if (type == 2 || type == 3) {
        Recordset sums(session.gConn,
                       "SELECT SUM(OT1) AS VALUE01, SUM(OT2) AS VALUE02, SUM(ADJHRS) AS VALUE03 "
                       "FROM LEV_OTDETAILS WHERE EMPID = " +
                           text(employee) + " AND EMPDETID = " + text(det) + " AND OTDATE >= '" +
                           FnStrIsoDate(from) + "' AND OTDATE <= '" + FnStrIsoDate(to) + "'");
        overtime = ",OT1=" + numberText(sums.Fields("VALUE01").toDouble()) +
                   ",OT2=" + numberText(sums.Fields("VALUE02").toDouble()) +
                   ",ADJHRS=" + numberText(sums.Fields("VALUE03").toDouble());
    }
    MarkSalaryDirty(session, month, true, employee);
    session.gConn.Execute("UPDATE LEV_MONTHDET SET NODCalc=" + numberText(calc) +
                          ",NOD=" + numberText(nod) + ",NDP=" + numberText(ndp) + overtime +
                          ",EDITMODEYN=0  Where " + key);
}

}  // namespace

void UpdateMonthDays(Session& session, Progress& frm) {
    std::string rows =
        " FROM LEV_MONTHDET LM, MAS_EMPLOYEEDET MT, MAS_ATTHEAD MA, MAS_MONTHYEAR MM WHERE "
        "LM.EMPID = MT.EMPID AND MM.MONTHYEAR = LM.MONTHYEAR AND MA.ATTHEADID = MT.ATTHEADID AND "
        "LM.EMPDETID = MT.EMPDETID AND LM.EDITMODEYN = 1 AND ISNULL(MM.TDSPORTYN, 0) <> 1";
    if (!session.gEmpFilter.empty() && session.gEmpFilter != "0")
        rows += " AND LM.EMPID IN (" + session.gEmpFilter + ")";
    Recordset employees(
        session.gConn, "SELECT LM.EMPID, COUNT(*)" + rows + " GROUP BY LM.EMPID ORDER BY LM.EMPID");
    const clsNODNDPCalc::KeepRules keep(FnNodNdp(session));
    size_t done = 0, total = 0;
    for (; !employees.IsEOF(); employees.MoveNext())
        total += static_cast<size_t>(employees.Fields(1).toInt());

    // Rows are read for some hundred employees at a time, so that memory does not grow with the
    // company.
    constexpr size_t kEmployeesAtOnce = 200;
    for (size_t at = 0; at < employees.RecordCount() && !frm.cancelled(); at += kEmployeesAtOnce) {
        auto employeeAt = [&](size_t position) {
            employees.setAbsolutePosition(std::min(position, employees.RecordCount()));
            return text(employees.Fields(0).toInt());
        };
        const std::string block = " AND LM.EMPID BETWEEN " + employeeAt(at + 1) + " AND " +
                                  employeeAt(at + kEmployeesAtOnce);
        Recordset rs(session.gConn,
                     "SELECT LM.*, MT.ATTHEADID, MA.ATTNTYPE, (CASE WHEN MT.EFFFROMDATE >= "
                     "MM.CALCSTARTDATE THEN MT.EFFFROMDATE ELSE MM.CALCSTARTDATE END) AS "
                     "FROMDATE, (CASE WHEN MT.EFFTODATE IS NULL THEN MM.CALCENDDATE ELSE (CASE "
                     "WHEN MT.EFFTODATE >= MM.CALCENDDATE THEN MM.CALCENDDATE ELSE MT.EFFTODATE "
                     "END) END) AS TODATE" +
                         rows + block + " order by MT.EMPID");
        for (; !rs.IsEOF() && !frm.cancelled(); rs.MoveNext()) {
            frm.status("Updating Pay Days and Present Days ---" + text(rs.Fields("EMPID").toInt()) +
                       "-----");
            frm.step(++done, total);
            UpdateMonthRow(session, rs);
        }
    }
}

void SaveMonthDays(Session& session, double& dblNOD, double& dblNDP, int64_t lngEmpId,
                   int64_t lngEmpDetId, int32_t lngMonthYear, DateTime dteFrom, DateTime dteTo,
                   int32_t intAttHeadId) {
    double calc = 0;
    bool workingDaysOnly = false, prorateAlt = false, prorate = true;
    int basis = 0;
    if (!FnNodNdp(session).SetNODNDP(calc, dblNOD, dblNDP, lngEmpId, lngEmpDetId, lngMonthYear,
                                     intAttHeadId, dteFrom, dteTo, workingDaysOnly, prorateAlt,
                                     prorate, basis))
        return;
    session.gConn.Execute("UPDATE LEV_MONTHDET SET NODCALC = " + numberText(calc) +
                          ", NOD=" + numberText(dblNOD) + ", NDP=" + numberText(dblNDP) +
                          " WHERE " + rowKey(lngEmpId, lngEmpDetId, lngMonthYear));
    if (!session.gOpt.AUTOALLOTYN) return;
    MarkAllotmentDirty(session, intAttHeadId, lngEmpId);
    NoProgress hidden;
    ProcessAllotmentsOld(session, hidden, " AND LA.EMPID = " + text(lngEmpId) + " ");
}

void RefreshMonthRow(Session& session, double& dblNOD, double& dblNDP, Progress& frm,
                     int64_t lngEmpId, int64_t lngEmpDetId, int32_t lngMonthYear) {
    const std::string key = " WHERE " + rowKey(lngEmpId, lngEmpDetId, lngMonthYear);
    session.gConn.Execute("UPDATE LEV_MONTHDET SET EDITMODEYN = 1" + key);
    UpdateMonthDays(session, frm);
    dblNOD = FnVarReadValue(session, "SELECT NOD FROM LEV_MONTHDET" + key, 0).toDouble();
    dblNDP = FnVarReadValue(session, "SELECT NDP FROM LEV_MONTHDET" + key, 0).toDouble();
}

}  // namespace owb
