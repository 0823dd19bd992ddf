// Month days: the figures of LEV_MONTHDET for the marked rows, some hundred employees at a time,
// and for one row at once. Also what the passes share: the filter of employees and the overtime
// calculator.
#include "leave/modLeaveFunctions.h"

#include <algorithm>
#include <memory>

#include "attendance/clsOTDetCalc.h"
#include "base/number_text.h"
#include "calendar/clsNODNDPCalc.h"
#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "leave/BlockStamp.h"
#include "leave/EmployeeBlocks.h"
#include "leave/RecalculationLock.h"
#include "leave/RowFailures.h"
#include "marks/marks.h"
#include "session/Session.h"
#include "session/queries.h"

namespace owb {

namespace {

std::string rowKey(int64_t lngEmpId, int64_t lngEmpDetId, int32_t lngMonthYear) {
    return Sql() << "EMPID = " << lngEmpId << " And EMPDETID = " << lngEmpDetId
                 << " And MONTHYEAR = " << lngMonthYear;
}

}  // namespace

EmployeeFilter::EmployeeFilter(Session& session, int64_t lngEmpId)
    : session_(session), before_(std::exchange(session.gEmpFilter, std::to_string(lngEmpId))) {}

EmployeeFilter::~EmployeeFilter() {
    session_.gEmpFilter = before_;
}

std::string FnStrOfEmpFilter(const Session& session, const std::string& column) {
    if (session.gEmpFilter.empty() || session.gEmpFilter == "0") return "";
    return " AND " + column + " IN (" + session.gEmpFilter + ")";
}

clsOTDetCalc& FnOtDetCalc(Session& session) {
    if (!session.gOtDetCalc)
        session.gOtDetCalc = std::make_shared<clsOTDetCalc>(session, [&session](int64_t lngEmpId) {
            const EmployeeFilter only(session, lngEmpId);
            NoProgress hidden;
            UpdateMonthDays(session, hidden);
        });
    return *session.gOtDetCalc;
}

namespace {

// Days of one row by the engine; the head's basis, joining and leaving inside the span cut it.
struct MonthDays {
    double NODCALC = 0, NOD = 0, NDP = 0;
};
MonthDays countDays(Session& session, int64_t lngEmpId, int64_t lngEmpDetId, int32_t lngMonthYear,
                    int32_t intAttHeadId, DateTime dteFrom, DateTime dteTo) {
    MonthDays days;
    int basis = 0;
    FnNodNdp(session).CountDays(days.NODCALC, days.NOD, days.NDP, lngEmpId, lngEmpDetId,
                                lngMonthYear, intAttHeadId, dteFrom, dteTo, false, false, true,
                                basis);
    return days;
}

// Figures of one row and the salary marks; the row's own mark stays. Overtime of the days comes
// first because the row's sums are made of it; for the same reason it is written without marking
// the row again.
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
            FnVarValueOrThrow(session, "SELECT ATTTRANNO FROM ATT_DAYTODAY WHERE " + key, 0)
                .toInt();
        Recordset row(session.gConn, clsOTDetCalc::FnStrRegisterRow(attTranNo));
        std::string days;
        if (!row.IsEOF()) FnOtDetCalc(session).WriteDays(row, days);
    }

    const DateTime from = rs.Fields("FROMDATE").toDate(), to = rs.Fields("TODATE").toDate();
    const MonthDays days =
        countDays(session, employee, det, month,
                  static_cast<int32_t>(rs.Fields("ATTHEADID").toInt()), from, to);
    std::string overtime;
    if (type == 2 || type == 3) {
        // Hours after the day of leaving stay in the table and do not count.
        const DateTime last =
            rs.Fields("DOL").isNull() ? to : std::min(to, rs.Fields("DOL").toDate());
        Recordset sums(session.gConn,
                       Sql() << "SELECT SUM(OT1) AS VALUE01, SUM(OT2) AS VALUE02, SUM(ADJHRS) AS "
                                "VALUE03 FROM LEV_OTDETAILS WHERE EMPID = "
                             << employee << " AND EMPDETID = " << det
                             << " AND OTDATE >= " << FnStrIsoLiteral(from)
                             << " AND OTDATE <= " << FnStrIsoLiteral(last));
        overtime = ",OT1=" + numberText(sums.Fields("VALUE01").toDouble()) +
                   ",OT2=" + numberText(sums.Fields("VALUE02").toDouble()) +
                   ",ADJHRS=" + numberText(sums.Fields("VALUE03").toDouble());
    }
    session.gConn.ExecuteAtomic(MarkSalaryDirtySql(month, true, employee) +
                                " UPDATE LEV_MONTHDET SET NODCalc=" + numberText(days.NODCALC) +
                                ",NOD=" + numberText(days.NOD) + ",NDP=" + numberText(days.NDP) +
                                overtime + "  Where " + key);
}

}  // namespace

bool UpdateMonthDays(Session& session, Progress& frm) {
    const RecalculationLock lock(session, frm);
    if (!lock.Held()) return false;
    const std::string marked = "LM.EDITMODEYN = 1" + FnStrOfEmpFilter(session, "LM.EMPID");
    const std::string rows =
        " FROM LEV_MONTHDET LM, MAS_EMPLOYEEDET MT, MAS_ATTHEAD MA, MAS_MONTHYEAR MM WHERE "
        "LM.EMPID = MT.EMPID AND MM.MONTHYEAR = LM.MONTHYEAR AND MA.ATTHEADID = MT.ATTHEADID AND "
        "LM.EMPDETID = MT.EMPDETID AND " +
        marked + " AND ISNULL(MM.TDSPORTYN, 0) <> 1";
    // Rows are worked out for some hundred employees at a time, so that memory does not grow with
    // the company.
    constexpr size_t kEmployeesAtOnce = 200;
    const EmployeeBlocks blocks(session, "LM.EMPID", rows, kEmployeesAtOnce);

    FnNodNdp(session).Update_MonthYear();
    const clsNODNDPCalc::KeepRules keep(FnNodNdp(session));
    BlockStamp stamp(session, [&] { FnNodNdp(session).ForgetRules(); });
    RowFailures failures(session);
    size_t done = 0;
    bool settled = true;
    for (const EmployeeBlock& block : blocks) {
        if (frm.cancelled()) break;
        const size_t before = done;
        EmployeeBlock finished = block;  // where the user cancels, the employees before
        std::string failed = "0";
        const auto work = [&] {
            done = before;
            finished = block;
            failed = "0";
            Recordset rs(session.gConn,
                         "SELECT LM.*, MT.ATTHEADID, MA.ATTNTYPE, (CASE WHEN MT.EFFFROMDATE >= "
                         "MM.CALCSTARTDATE THEN MT.EFFFROMDATE ELSE MM.CALCSTARTDATE END) AS "
                         "FROMDATE, (CASE WHEN MT.EFFTODATE IS NULL THEN MM.CALCENDDATE ELSE (CASE "
                         "WHEN MT.EFFTODATE >= MM.CALCENDDATE THEN MM.CALCENDDATE ELSE "
                         "MT.EFFTODATE END) END) AS TODATE, (SELECT DOL FROM MAS_EMPLOYEE ME WHERE "
                         "ME.EMPID = LM.EMPID) AS DOL" +
                             rows + block.Of("LM.EMPID") + " order by MT.EMPID");
            for (; !rs.IsEOF(); rs.MoveNext()) {
                const int64_t employee = rs.Fields("EMPID").toInt();
                if (frm.cancelled()) {
                    finished.lngLast = employee - 1;
                    break;
                }
                frm.status("Updating Pay Days and Present Days ---" + std::to_string(employee) +
                           "-----");
                frm.step(++done, std::max(done, blocks.RowCount()));
                if (failures.Has(employee) ||
                    !failures.Attempt(employee, employee, [&] { UpdateMonthRow(session, rs); }))
                    failed += "," + std::to_string(employee);
            }
        };
        const BlockStamp::Scope scope{
            block.Of("EMPID"), "",
            BlockStamp::SumSql("LEV_MONTHDET LM WITH (HOLDLOCK)", "EMPID EMPDETID MONTHYEAR",
                               " WHERE " + marked + block.Of("LM.EMPID")),
            true};
        settled &= stamp.WorkOut(scope, work, [&] {
            return "UPDATE LEV_MONTHDET SET EDITMODEYN = 0" + rows + finished.Of("LM.EMPID") +
                   " AND LM.EMPID NOT IN (" + failed + ")";
        });
    }
    return failures.Tell() && settled && !frm.cancelled();
}

void SaveMonthDays(Session& session, double& dblNOD, double& dblNDP, int64_t lngEmpId,
                   int64_t lngEmpDetId, int32_t lngMonthYear, DateTime dteFrom, DateTime dteTo,
                   int32_t intAttHeadId) {
    const MonthDays days =
        countDays(session, lngEmpId, lngEmpDetId, lngMonthYear, intAttHeadId, dteFrom, dteTo);
    dblNOD = days.NOD;
    dblNDP = days.NDP;
    session.gConn.Execute(Sql() << "UPDATE LEV_MONTHDET SET NODCALC = " << numberText(days.NODCALC)
                                << ", NOD=" << numberText(dblNOD) << ", NDP=" << numberText(dblNDP)
                                << " WHERE " << rowKey(lngEmpId, lngEmpDetId, lngMonthYear));
    if (!session.gOpt.AUTOALLOTYN) return;
    MarkAllotmentDirty(session, intAttHeadId, lngEmpId);
    NoProgress hidden;
    ProcessAllotmentsOld(session, hidden, Sql() << " AND LA.EMPID = " << lngEmpId << " ");
}

void RefreshMonthRow(Session& session, double& dblNOD, double& dblNDP, Progress& frm,
                     int64_t lngEmpId, int64_t lngEmpDetId, int32_t lngMonthYear) {
    const std::string key = " WHERE " + rowKey(lngEmpId, lngEmpDetId, lngMonthYear);
    session.gConn.Execute("UPDATE LEV_MONTHDET SET EDITMODEYN = 1" + key);
    UpdateMonthDays(session, frm);
    dblNOD = FnVarValueOrThrow(session, "SELECT NOD FROM LEV_MONTHDET" + key, 0).toDouble();
    dblNDP = FnVarValueOrThrow(session, "SELECT NDP FROM LEV_MONTHDET" + key, 0).toDouble();
}

}  // namespace owb
