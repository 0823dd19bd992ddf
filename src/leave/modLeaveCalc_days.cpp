// What days count for a row's credit: of its own slice, of the service in its period, of the month
// or the period before.
#include "base/number_text.h"
#include "calendar/clsNODNDPCalc.h"
#include "db/recordset.h"
#include "family/modCommon.h"
#include "leave/modLeaveCalc.h"
#include "session/Session.h"
#include "session/queries.h"

namespace owb {

namespace {

std::string text(int64_t number) {
    return std::to_string(number);
}

}  // namespace

LeaveCalc::Days LeaveCalc::CountDays(int64_t lngEmpId, int lngEmpDetId, int32_t lngMonthYear,
                                     int intAttHeadId, DateTime dteFrom, DateTime dteTo,
                                     int intDaysBasis) {
    if (lngEmpId != lngCountedEmpId_) counted_.clear();
    lngCountedEmpId_ = lngEmpId;
    const auto key =
        std::tuple(lngEmpDetId, lngMonthYear, intAttHeadId, dteFrom.day, dteTo.day, intDaysBasis);
    const auto found = counted_.find(key);
    if (found != counted_.end()) return found->second;
    Days days;
    FnNodNdp(session_).CountDays(days.NODCALC, days.NOD, days.NDP, lngEmpId, lngEmpDetId,
                                 lngMonthYear, intAttHeadId, dteFrom, dteTo, false, false, true,
                                 intDaysBasis);
    return counted_[key] = days;
}

LeaveCalc::Days LeaveCalc::RowDays(const Task& task, int intDaysBasis) {
    const AllotRow& row = task.row;
    Days days;
    if (task.blnUseStored) {
        const std::string ofRow = " FROM LEV_MONTHDET WHERE EMPDETID=" + text(row.lngEmpDetId) +
                                  " AND EMPID =" + text(row.lngEmpId) +
                                  " AND MONTHYEAR=" + text(row.lngMonthYear);
        days.NODCALC = FnVarValueOrThrow(session_, "SELECT NODCALC" + ofRow, 0).toDouble();
        days.NOD = FnVarValueOrThrow(session_, "SELECT NOD" + ofRow, 0).toDouble();
        days.NDP = FnVarValueOrThrow(session_, "SELECT NDP" + ofRow, 0).toDouble();
    } else {
        days = CountDays(row.lngEmpId, row.lngEmpDetId, row.lngMonthYear, row.intAttHeadId,
                         row.dteFrom, row.dteTo, intDaysBasis);
    }
    tell("days", [&] {
        return "Pay Days " + numberText(days.NOD) + ", Present Days " + numberText(days.NDP) +
               ", salary calendar days " + numberText(days.NODCALC);
    });
    return days;
}

// Versions of an employee in a span of one payroll month, each cut to it, and their days.
void LeaveCalc::ForEachVersion(int64_t lngEmpId, int32_t lngMonthYear, DateTime dteFrom,
                               DateTime dteTo,
                               const std::function<void(DateTime, DateTime, const Days&)>& take) {
    Recordset rs(session_.gConn,
                 "SELECT EMPDETID, ATTHEADID, EFFFROMDATE, EFFTODATE FROM MAS_EMPLOYEEDET WHERE "
                 "EMPID = " +
                     text(lngEmpId) + " AND EFFFROMDATE <= " + FnStrIsoLiteral(dteTo) +
                     " AND (EFFTODATE IS NULL OR EFFTODATE >= " + FnStrIsoLiteral(dteFrom) +
                     ") ORDER BY EMPDETID");
    for (; !rs.IsEOF(); rs.MoveNext()) {
        const DateTime from = std::max(dteFrom, rs.Fields(2).toDate());
        const DateTime to = rs.Fields(3).isNull() ? dteTo : std::min(dteTo, rs.Fields(3).toDate());
        if (from > to) continue;
        take(from, to,
             CountDays(lngEmpId, static_cast<int>(rs.Fields(0).toInt()), lngMonthYear,
                       static_cast<int>(rs.Fields(1).toInt()), from, to, 0));
    }
}

void LeaveCalc::SumPrevMonthDays(int64_t lngEmpId, int32_t lngMonthYear, Days& days,
                                 DateTime& dteFrom, DateTime& dteTo) {
    DateTime first, last;
    periods.GetMonthBounds(lngMonthYear, first, last);
    const Value left =
        FnVarValueOrThrow(session_, "SELECT DOL FROM MAS_EMPLOYEE WHERE EMPID = " + text(lngEmpId));
    ForEachVersion(lngEmpId, lngMonthYear, first, last,
                   [&](DateTime from, DateTime to, const Days& part) {
                       dteFrom = from;
                       dteTo = left.isNull() ? to : std::min(to, left.toDate());
                       days = {part.NODCALC, days.NOD + part.NOD, days.NDP + part.NDP};
                   });
    tell("days", [&] {
        return "month before: Pay Days " + numberText(days.NOD) + ", Present Days " +
               numberText(days.NDP) + ", salary calendar days " + numberText(days.NODCALC);
    });
}

void LeaveCalc::SumPeriodDays(int64_t lngEmpId, DateTime dteFrom, DateTime dteTo, Days& days) {
    const int32_t last = periods.MonthHolding(dteTo);
    for (int32_t month = periods.MonthHolding(dteFrom); month <= last; ++month) {
        DateTime from, to;
        periods.GetOwnDays(month, from, to);
        from = std::max(from, dteFrom);
        to = std::min(to, dteTo);
        if (from > to) continue;
        ForEachVersion(lngEmpId, month, from, to, [&](DateTime, DateTime, const Days& part) {
            days = {days.NODCALC + part.NODCALC, days.NOD + part.NOD, days.NDP + part.NDP};
        });
    }
}

void LeaveCalc::GetServiceDays(const Task& task, double& dblPeriodDays, double& dblServiceDays) {
    const AllotRow& row = task.row;
    DateTime from, to;
    periods.GetBounds(task.settings.ALLOTTYPE, task.settings.ALLOTON, row.lngMonthYear, from, to);
    dblPeriodDays = FnDblDays(from, to);

    const std::string emp = text(row.lngEmpId), det = text(row.lngEmpDetId),
                      lev = text(row.intLevId);
    auto readDate = [&](const std::string& sql, const DateTime& otherwise) {
        return FnVarValueOrThrow(session_, sql, otherwise).toDate();
    };
    from = readDate("SELECT MIN(ALLOTFROM) FROM LEV_ALLOTMENT WHERE EMPID = " + emp +
                        " AND EMPDETID = " + det + " AND LEVID = " + lev +
                        " AND ALLOTFROM >= " + FnStrIsoLiteral(from),
                    from);
    const std::string withSettings =
        " FROM LEV_ALLOTMENT A,LEV_SETTINGS B Where A.LEVID = b.LEVID And A.ATTHEADID = "
        "b.ATTHEADID  AND b.MONTHYEAR =(SELECT MAX(Monthyear) FROM LEV_SETTINGS WHERE "
        "levid=b.levid AND attheadid=b.attheadid AND Monthyear<= dbo.FnLngMonthYear(A.ALLOTFROM,"
        "a.ALLOTTO))  And A.LEVID = " +
        lev + " And A.EMPID = " + emp;
    from = readDate("SELECT MIN(ALLOTFROM)" + withSettings + "  And A.EMPDETID = " + det +
                        " AND A.ALLOTFROM >= " + FnStrIsoLiteral(from) +
                        " AND MONTHYEAR=" + text(task.settings.MONTHYEAR),
                    from);
    // A later setting ends the service under this one, whichever version it comes with.
    to = readDate("SELECT MIN(ALLOTFROM)-1" + withSettings + "   AND A.ALLOTFROM > " +
                      FnStrIsoLiteral(from) + " AND A.ALLOTFROM -1 < " + FnStrIsoLiteral(to) +
                      " AND MONTHYEAR>" + text(row.lngMonthYear),
                  to);
    if (!task.settings.EXCLDOLYN)
        to = readDate("SELECT DOL FROM MAS_EMPLOYEE WHERE EMPID = " + emp +
                          " AND DOL <= " + FnStrIsoLiteral(to),
                      to);
    if (task.settings.EXCLDOJYN) {
        DateTime first, last;
        periods.GetMonthBounds(row.lngMonthYear, first, last);
        from = readDate("SELECT CAST(" + FnStrIsoLiteral(first) +
                            " AS datetime)   FROM MAS_EMPLOYEE WHERE "
                            "EMPID = " +
                            emp + " AND DOJ > " + FnStrIsoLiteral(first) +
                            " AND  DOJ <= " + FnStrIsoLiteral(to) + "  ",
                        from);
    }
    to = readDate("SELECT (SELECT CASE WHEN ISNULL(MIN(EFFFROMDATE) - 1, " + FnStrIsoLiteral(to) +
                      ") >= " + FnStrIsoLiteral(to) + " THEN CAST(" + FnStrIsoLiteral(to) +
                      " AS datetime) ELSE Min (EFFFROMDATE) - 1 END FROM MAS_EMPLOYEEDET WHERE "
                      "EMPID = MT.EMPID AND ATTHEADID <> MT.ATTHEADID AND EFFFROMDATE >= "
                      "DATEADD(DAY, 1, MT.EFFTODATE)) FROM MAS_EMPLOYEEDET MT WHERE MT.EMPID = " +
                      emp + " AND MT.EMPDETID = " + det,
                  to);
    dblServiceDays = FnDblDays(from, to);
    tell("days", [&] {
        return "service from " + FnStrIsoDate(from) + " to " + FnStrIsoDate(to) + ": " +
               numberText(dblServiceDays) + " of " + numberText(dblPeriodDays);
    });
}

}  // namespace owb
