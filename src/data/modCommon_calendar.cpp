#include <algorithm>
#include <cstdio>

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
    return FnVarGetValue(
               session,
               std::string("SELECT ") + column +
                   " FROM MAS_MONTHYEAR WHERE MONTHYEAR = " + std::to_string(lngMonthYear),
               calendarDate)
        .toDate();
}

// The numbers of a typed date, or nothing. Separators are brought to "/", runs of them collapse,
// everything else but digits goes.
struct TypedDate {
    int day = 0, month = 0, year = 0;
};

bool readTypedDate(const std::string& text, TypedDate& out) {
    std::string kept;
    for (const char c : text) {
        if (c >= '0' && c <= '9')
            kept += c;
        else if (std::string_view("/.-_\\ ,").find(c) != std::string_view::npos && !kept.empty() &&
                 kept.back() != '/')
            kept += '/';
    }
    int part[3] = {0, 0, 0};
    size_t digits[3] = {0, 0, 0};
    int n = 0;
    for (const char c : kept) {
        if (c == '/') {
            if (++n > 2) return false;
        } else if (++digits[n] > 4) {
            return false;
        } else {
            part[n] = part[n] * 10 + (c - '0');
        }
    }
    if (n != 2 || digits[2] == 0) return false;
    const int yearAt = digits[0] == 4 ? 0 : 2;  // 2014/2/1 is year, month, day
    out = {part[2 - yearAt], part[1], part[yearAt]};
    if (digits[yearAt] == 3 || digits[2 - yearAt] > 2 || digits[1] > 2) return false;
    if (digits[yearAt] <= 2) out.year += out.year < 50 ? 2000 : 1900;
    // What cannot be day/month is read month/day, as the platform does.
    if (out.month > 12 && out.day <= 12) std::swap(out.day, out.month);
    return out.year >= 1 && out.month >= 1 && out.month <= 12 && out.day >= 1 &&
           out.day <= daysInMonth(out.year, out.month);
}

std::string typedText(const TypedDate& d) {
    char buffer[48];
    std::snprintf(buffer, sizeof buffer, "%02d/%02d/%04d", d.day, d.month, d.year);
    return buffer;
}

}  // namespace

int32_t FnLngMonthYearOfDate(const DateTime& date) {
    const CivilDate c = date.civil();
    return c.year * 12 + c.month;
}

int32_t FnLngMonthYearOfDate(const std::string& text) {
    if (trim(text).empty()) return 0;
    const auto date = parseDate(text, DateOrder::DayFirst);
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

void GetMonthPeriod(Session& session, int32_t lngMonthYear, DateTime& dteFrom, DateTime& dteTo) {
    dteFrom = FnDteMonthStart(session, lngMonthYear);
    dteTo = FnDteMonthEnd(session, lngMonthYear);
}

bool FnBlnMonthLocked(Session& session, int32_t lngMonthYear) {
    return FnVarGetValue(session,
                         "Select LOCKEDYN From MAS_MONTHYEAR Where MONTHYEAR = " +
                             std::to_string(lngMonthYear),
                         0)
        .toBool();
}

bool FnBlnMonthRangeLocked(Session& session, int32_t lngFrom, int32_t lngTo, bool testEmployee,
                           int64_t lngEmpId) {
    const std::string from = std::to_string(lngFrom), to = std::to_string(lngTo);
    const Value locked =
        FnVarGetValue(session,
                      "Select COUNT(*) From MAS_MONTHYEAR Where MONTHYEAR Between " + from +
                          " And " + to + " And LOCKEDYN = 1",
                      0);
    if (locked.toBool()) return true;
    if (!testEmployee) return false;
    return FnVarGetValue(session,
                         "SELECT [dbo].udf_getEmpLock(" + std::to_string(lngEmpId) + "," + from +
                             "," + to + ")",
                         0)
        .toBool();
}

bool FnBlnInPayrollPeriod(Session& session, const DateTime& date) {
    return FnLngMonthYearOfDate(date) >= session.gOptSet.STARTMONTHYEAR;
}

std::string FnStrCleanDate(const std::string& text) {
    TypedDate d;
    return readTypedDate(text, d) ? typedText(d) : "";
}

std::string FnStrCleanDateCentury(const std::string& text) {
    TypedDate d;
    if (!readTypedDate(text, d)) return "";
    if (d.year < 1900) {
        d.year += 2000;
        d.day = std::min(d.day, daysInMonth(d.year, d.month));
    }
    return typedText(d);
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
    return FnBlnRecordExists(session, listed + " AND ATTHEADID IS NULL AND BRANCHID IS NULL " +
                                          " UNION ALL " + ofEmployee("ATTHEADID") + " UNION ALL " +
                                          ofEmployee("BRANCHID"));
}

}  // namespace owb
