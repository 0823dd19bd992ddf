// The routines that every other module calls: the first-value query and its kin, amount rounding,
// and the calendar of payroll months. A month is one number, year * 12 + month, 0 none; a payroll
// month runs from the 1st to the last day, or from CALCSTARTDATE to CALCENDDATE of its
// MAS_MONTHYEAR row while CALCINMIDYN is on.
#pragma once

#include <cstdint>
#include <string>

#include "base/date_time.h"
#include "base/value.h"
#include "db/recordset.h"

namespace owb {

struct Session;

// --- database (modCommon_database.cpp) ---

// First column of the first row; the default when there is no row or it is NULL. A failing query
// shows "<description> : <number>" in a critical box and gives an empty value (0, ""), not the
// default.
Value FnVarGetValue(Session& session, const std::string& sql, const Value& defaultValue = {});
// The same without the trap, for engines, which must make no figure from half an answer: a failing
// query throws DbError.
Value FnVarReadValue(Session& session, const std::string& sql, const Value& defaultValue = {});
// FnVarGetValue for the small reference tables (ITSETTING).
Value FnVarGetJetValue(Session& session, const std::string& sql, const Value& defaultValue = {});
// True when the query finds a row; an error is false, silently. For captions and the like: what
// decides whether something may be done asks FnBlnReadRecordExists.
bool FnBlnRecordExists(Session& session, const std::string& sql);
// The same for guards, which refuse what they cannot find out: a failing query throws DbError.
bool FnBlnReadRecordExists(Session& session, const std::string& sql);
// Runs an optional statement; false on any failure, silently.
bool FnBlnExecute(Session& session, const std::string& sql);
// Is the value taken by another row of a master? `ownId` is the row's own key, 0 for a new row.
// Throws DbError.
bool FnBlnDuplicate(Session& session, const std::string& table, const std::string& keyColumn,
                    const std::string& idColumn, const std::string& value, int64_t ownId);
// The default when the value is NULL, or a zero number while `zeroIsNull`.
Value FnVarNz(const Value& value, const Value& defaultValue, bool zeroIsNull = false);
// "dd/Mmm/yyyy", which the server reads in any language. A text that is no date throws DbError 13:
// an empty literal would be 1900 to the server.
std::string FnStrSqlDate(const DateTime& date);
std::string FnStrSqlDate(const std::string& dateText);
// "yyyy-MM-dd".
std::string FnStrIsoDate(const DateTime& date);
// The same in the apostrophes of a statement.
std::string FnStrIsoLiteral(const DateTime& date);
// "CHARINDEX('<text>',<field>) ", on upper-cased text and field when `ignoreCase`.
std::string FnStrInStrSql(const std::string& field, const std::string& text, bool ignoreCase);
// Host name as the server gives it, followed in an extended session by the Windows user.
std::string FnStrHostPrefix(Session& session);

// --- amounts (modCommon_amounts.cpp) ---

// Rounds an amount by ROUNDTYPE: 1 nearest rupee, 2 higher rupee, 3 nearest ten, 4 higher ten,
// 5 two decimals, 6 up to the next five paise; any other type gives 0.
double FnDblRoundAmount(int roundType, double value);
// Rounds days by RNDTYPE as the installed function FnDblRndOff does, for use inside loops; differs
// from it in code 8, which here is the nearest half day.
double FnDblRndOffLocal(int roundType, double value);

// --- months (modCommon_calendar.cpp) ---

int32_t FnLngMonthYearOfDate(const DateTime& date);
int32_t FnLngMonthYearOfDate(const std::string& dateText);   // 0 when it is no date
int32_t FnLngMonthYearOfText(const std::string& monthText);  // "Jan/2014"; 0 when it is no month
std::string FnStrMonthYearText(int32_t lngMonthYear);        // "Jan/2014"; "" for 0 and below
// The month whose period holds the date. Both outputs stay as they are when none does.
void GetMonthOfDate(Session& session, const DateTime& date, int32_t& lngMonthYear,
                    std::string& monthName);
// First and last day of a payroll month, for screens: an error is shown and gives day 0.
DateTime FnDteMonthStart(Session& session, int32_t lngMonthYear);
DateTime FnDteMonthEnd(Session& session, int32_t lngMonthYear);
// Both for engines and whatever is written: an error, and a key that is no month, throws DbError.
void GetMonthPeriod(Session& session, int32_t lngMonthYear, DateTime& dteFrom, DateTime& dteTo);
// Locks. What cannot be asked throws DbError.
bool FnBlnMonthLocked(Session& session, int32_t lngMonthYear);
// True when a month of the range is locked, or (`testEmployee`) the employee in a month of it;
// employee 0 stands for any.
bool FnBlnMonthRangeLocked(Session& session, int32_t lngFrom, int32_t lngTo, bool testEmployee,
                           int64_t lngEmpId);
// The same as a condition for a batch that writes: true while nothing is locked.
std::string FnStrMonthRangeOpenSql(int32_t lngFrom, int32_t lngTo, bool testEmployee,
                                   int64_t lngEmpId);
// False when the date lies before the payroll's first month.
bool FnBlnInPayrollPeriod(Session& session, const DateTime& date);
// A typed date (parseTypedDate) as "dd/MM/yyyy"; "" when it is none. The second adds 2000 to a year
// below 1900.
std::string FnStrCleanDate(const std::string& text);
std::string FnStrCleanDateCentury(const std::string& text);
// Tax years (named by the year in which they begin) of two months, within what ITSETTING holds.
void GetTaxYearRange(Session& session, int32_t lngFrom, int32_t lngTo, int32_t& fromYear,
                     int32_t& toYear);
// Is the date on the restricted list for the company, the employee's head or branch?
bool FnBlnIsRestrictedHoliday(Session& session, int64_t lngEmpId, const DateTime& date);

}  // namespace owb
