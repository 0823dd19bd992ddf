#include <algorithm>

#include "base/utf8.h"
#include "data/Session.h"
#include "data/modCommon.h"

namespace owb {

namespace {

// First of the calendar month. Throws DbError for a key that is no month.
DateTime firstOfMonth(int32_t lngMonthYear) {
    if (lngMonthYear <= 0) throw DbError(13, 16, 1, 0, "Type mismatch");
    return DateTime::fromCivil((lngMonthYear - 1) / 12, (lngMonthYear - 1) % 12 + 1, 1);
}

DateTime monthBound(Session& session, int32_t lngMonthYear, const char* column,
                    DateTime calendarDate) {
    if (!session.gFeature.CALCINMIDYN) return calendarDate;
    return FnVarReadValue(
               session,
               std::string("SELECT ") + column +
                   " FROM MAS_MONTHYEAR WHERE MONTHYEAR = " + std::to_string(lngMonthYear),
               calendarDate)
        .toDate();
}

}  // namespace

int32_t FnLngMonthYearOfDate(const DateTime& date) {
    const CivilDate c = date.civil();
    return c.year * 12 + c.month;
}

int32_t FnLngMonthYearOfDate(const std::string& text) {
    const auto date = parseTypedDate(text);
    return date ? FnLngMonthYearOfDate(*date) : 0;
}

int32_t FnLngMonthYearOfText(const std::string& monthText) {
    return FnLngMonthYearOfDate("01/" + monthText);
}

std::string FnStrMonthYearText(int32_t lngMonthYear) {
    return lngMonthYear <= 0 ? "" : dateText(firstOfMonth(lngMonthYear), "MMM/yyyy");
}

void GetMonthOfDate(Session& session, const DateTime& date, int32_t& lngMonthYear,
                    std::string& monthName) {
    const std::string day = FnStrIsoDate(date);
    Recordset rs(
        session.gConn,
        "SELECT MONTHYEAR, [dbo].FnStrMonthName(MONTHYEAR) AS MONTHNAME FROM MAS_MONTHYEAR "
        "WHERE CALCSTARTDATE <= '" +
            day + "' AND CALCENDDATE >= '" + day + "'");
    if (rs.IsEOF()) return;
    lngMonthYear = static_cast<int32_t>(rs.Fields("MONTHYEAR").toInt());
    monthName = rs.Fields("MONTHNAME").toText();
}

void GetMonthPeriod(Session& session, int32_t lngMonthYear, DateTime& dteFrom, DateTime& dteTo) {
    const DateTime first = firstOfMonth(lngMonthYear);
    dteFrom = monthBound(session, lngMonthYear, "CALCSTARTDATE", first);
    dteTo = monthBound(session, lngMonthYear, "CALCENDDATE", first.plusMonths(1).plusDays(-1));
}

DateTime FnDteMonthStart(Session& session, int32_t lngMonthYear) {
    try {
        return monthBound(session, lngMonthYear, "CALCSTARTDATE", firstOfMonth(lngMonthYear));
    } catch (const DbError& e) {
        session.boxes.critical(e.what());
        return {};
    }
}

DateTime FnDteMonthEnd(Session& session, int32_t lngMonthYear) {
    try {
        return monthBound(session, lngMonthYear, "CALCENDDATE",
                          firstOfMonth(lngMonthYear).plusMonths(1).plusDays(-1));
    } catch (const DbError& e) {
        session.boxes.critical(e.what());
        return {};
    }
}

bool FnBlnMonthLocked(Session& session, int32_t lngMonthYear) {
    return FnVarReadValue(session,
                          "Select LOCKEDYN From MAS_MONTHYEAR Where MONTHYEAR = " +
                              std::to_string(lngMonthYear),
                          0)
        .toBool();
}

namespace {

std::string lockedMonths(int32_t lngFrom, int32_t lngTo) {
    return " From MAS_MONTHYEAR Where MONTHYEAR Between " + std::to_string(lngFrom) + " And " +
           std::to_string(lngTo) + " And LOCKEDYN = 1";
}

// True when the employee is held in the first month or in another month of the payroll's. The
// family's function is asked month by month.
std::string employeeHeld(int32_t lngFrom, int32_t lngTo, int64_t lngEmpId) {
    const std::string employee = "[dbo].udf_getEmpLock(" + std::to_string(lngEmpId) + ",";
    const std::string first = employee + std::to_string(lngFrom) + ",DEFAULT) = 1";
    if (lngFrom == lngTo) return first;
    return "(" + first + " OR EXISTS (SELECT * FROM MAS_MONTHYEAR WHERE MONTHYEAR BETWEEN " +
           std::to_string(lngFrom) + " AND " + std::to_string(lngTo) + " AND " + employee +
           "MONTHYEAR,DEFAULT) = 1))";
}

}  // namespace

bool FnBlnMonthRangeLocked(Session& session, int32_t lngFrom, int32_t lngTo, bool testEmployee,
                           int64_t lngEmpId) {
    if (FnVarReadValue(session, "Select COUNT(*)" + lockedMonths(lngFrom, lngTo), 0).toBool())
        return true;
    if (!testEmployee) return false;
    return FnVarReadValue(
               session,
               "SELECT CASE WHEN " + employeeHeld(lngFrom, lngTo, lngEmpId) + " THEN 1 ELSE 0 END",
               0)
        .toBool();
}

std::string FnStrMonthRangeOpenSql(int32_t lngFrom, int32_t lngTo, bool testEmployee,
                                   int64_t lngEmpId) {
    const std::string open = "NOT EXISTS (SELECT *" + lockedMonths(lngFrom, lngTo) + ")";
    return testEmployee ? open + " AND NOT " + employeeHeld(lngFrom, lngTo, lngEmpId) : open;
}

bool FnBlnInPayrollPeriod(Session& session, const DateTime& date) {
    return FnLngMonthYearOfDate(date) >= session.gOptSet.STARTMONTHYEAR;
}

std::string FnStrCleanDate(const std::string& text) {
    const auto date = parseTypedDate(text);
    return date ? dateText(*date, "dd/MM/yyyy") : "";
}

std::string FnStrCleanDateCentury(const std::string& text) {
    const auto date = parseTypedDate(text);
    if (!date) return "";
    const bool ancient = date->civil().year < 1900;
    return dateText(ancient ? date->plusMonths(2000 * 12) : *date, "dd/MM/yyyy");
}

void GetTaxYearRange(Session& session, int32_t lngFrom, int32_t lngTo, int32_t& fromYear,
                     int32_t& toYear) {
    const int lastMonth = session.gOptSet.TDSMAR2FEB ? 2 : 3;
    auto taxYear = [lastMonth](int32_t key) {
        const int32_t year = (key - 1) / 12, month = (key - 1) % 12 + 1;
        return month <= lastMonth ? year - 1 : year;
    };
    fromYear = taxYear(lngFrom);
    toYear = taxYear(lngTo);
    const auto first = static_cast<int32_t>(
        FnVarGetJetValue(session, "Select MIN(ASSYEAR) From ITSETTING", 0).toInt());
    const auto last = static_cast<int32_t>(
        FnVarGetJetValue(session, "Select MAX(ASSYEAR) From ITSETTING", 0).toInt());
    if (first == 0) return;
    fromYear = std::clamp(fromYear, first - 1, last - 1);
    toYear = std::clamp(toYear, first - 1, last - 1);
}

bool FnBlnIsRestrictedHoliday(Session& session, int64_t lngEmpId, const DateTime& date) {
    const std::string day = FnStrIsoLiteral(date);
    const std::string listed = "SELECT 1 FROM ATT_RESTRICTHOLIDAY WHERE HOLIDAYDATE=" + day;
    auto ofEmployee = [&](const std::string& column) {
        return listed + " AND " + column + " = ( SELECT " + column +
               " FROM MAS_EMPLOYEEDET WHERE EMPID=" + std::to_string(lngEmpId) +
               " AND EFFFROMDATE<=" + day + " AND (EFFTODATE>=" + day + " OR EFFTODATE IS NULL))";
    };
    return FnBlnReadRecordExists(session, listed + " AND ATTHEADID IS NULL AND BRANCHID IS NULL " +
                                              " UNION ALL " + ofEmployee("ATTHEADID") +
                                              " UNION ALL " + ofEmployee("BRANCHID"));
}

}  // namespace owb
