// What days count for a row's credit: of its own slice, of the service in its period, of the month
// or the period before.
#include "base/number_text.h"
#include "calendar/clsNODNDPCalc.h"
#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "leave/modLeaveCalc.h"
#include "session/Session.h"
#include "session/queries.h"

namespace owb {

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
        const std::string ofRow = Sql() << " FROM LEV_MONTHDET WHERE EMPDETID=" << row.lngEmpDetId
                                        << " AND EMPID =" << row.lngEmpId
                                        << " AND MONTHYEAR=" << row.lngMonthYear;
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
                 Sql() << "SELECT EMPDETID, ATTHEADID, EFFFROMDATE, EFFTODATE FROM MAS_EMPLOYEEDET "
                          "WHERE EMPID = "
                       << lngEmpId << " AND EFFFROMDATE <= " << FnStrIsoLiteral(dteTo)
                       << " AND (EFFTODATE IS NULL OR EFFTODATE >= " << FnStrIsoLiteral(dteFrom)
                       << ") ORDER BY EMPDETID");
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
    const Value left = FnVarValueOrThrow(
        session_, Sql() << "SELECT DOL FROM MAS_EMPLOYEE WHERE EMPID = " << lngEmpId);
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

    auto readDate = [&](const std::string& sql, const DateTime& otherwise) {
        return FnVarValueOrThrow(session_, sql, otherwise).toDate();
    };
    // Some of the dates are other programs' and may carry a time of day: all go in without it.
    from =
        readDate(Sql() << "SELECT MIN(ALLOTFROM) FROM LEV_ALLOTMENT WHERE EMPID = " << row.lngEmpId
                       << " AND EMPDETID = " << row.lngEmpDetId << " AND LEVID = " << row.intLevId
                       << " AND ALLOTFROM >= " << FnStrIsoLiteral(from),
                 from);
    const std::string withSettings =
        Sql() << " FROM LEV_ALLOTMENT A,LEV_SETTINGS B Where A.LEVID = b.LEVID And A.ATTHEADID = "
                 "b.ATTHEADID  AND b.MONTHYEAR =(SELECT MAX(Monthyear) FROM LEV_SETTINGS WHERE "
                 "levid=b.levid AND attheadid=b.attheadid AND Monthyear<= "
                 "dbo.FnLngMonthYear(A.ALLOTFROM,a.ALLOTTO))  And A.LEVID = "
              << row.intLevId << " And A.EMPID = " << row.lngEmpId;
    from = readDate(Sql() << "SELECT MIN(ALLOTFROM)" << withSettings << "  And A.EMPDETID = "
                          << row.lngEmpDetId << " AND A.ALLOTFROM >= " << FnStrIsoLiteral(from)
                          << " AND MONTHYEAR=" << task.settings.MONTHYEAR,
                    from);
    // A later setting ends the service under this one, whichever version it comes with.
    to = readDate(Sql() << "SELECT MIN(ALLOTFROM)-1" << withSettings << "   AND A.ALLOTFROM > "
                        << FnStrIsoLiteral(from) << " AND A.ALLOTFROM -1 < " << FnStrIsoLiteral(to)
                        << " AND MONTHYEAR>" << row.lngMonthYear,
                  to);
    if (!task.settings.EXCLDOLYN)
        to = readDate(Sql() << "SELECT DOL FROM MAS_EMPLOYEE WHERE EMPID = " << row.lngEmpId
                            << " AND DOL <= " << FnStrIsoLiteral(to),
                      to);
    if (task.settings.EXCLDOJYN) {
        DateTime first, last;
        periods.GetMonthBounds(row.lngMonthYear, first, last);
        from = readDate(Sql() << "SELECT CAST(" << first
                              << " AS datetime)   FROM MAS_EMPLOYEE WHERE EMPID = " << row.lngEmpId
                              << " AND DOJ > " << first << " AND  DOJ <= " << FnStrIsoLiteral(to)
                              << "  ",
                        from);
    }
    const std::string end = FnStrIsoLiteral(to);
    to =
        readDate(Sql() << "SELECT (SELECT CASE WHEN ISNULL(MIN(EFFFROMDATE) - 1, " << end
                       << ") >= " << end << " THEN CAST(" << end
                       << " AS datetime) ELSE Min (EFFFROMDATE) - 1 END FROM MAS_EMPLOYEEDET WHERE "
                          "EMPID = MT.EMPID AND ATTHEADID <> MT.ATTHEADID AND EFFFROMDATE >= "
                          "DATEADD(DAY, 1, MT.EFFTODATE)) FROM MAS_EMPLOYEEDET MT WHERE MT.EMPID = "
                       << row.lngEmpId << " AND MT.EMPDETID = " << row.lngEmpDetId,
                 to);
    dblServiceDays = FnDblDays(from, to);
    tell("days", [&] {
        return "service from " + FnStrIsoDate(from) + " to " + FnStrIsoDate(to) + ": " +
               numberText(dblServiceDays) + " of " + numberText(dblPeriodDays);
    });
}

}  // namespace owb
