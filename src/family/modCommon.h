// The routines that every other module calls and that need no database: amount rounding, months as
// numbers and texts, dates as statements take them. A month is one number, year * 12 + month, 0
// none.
#pragma once

#include <cstdint>
#include <string>

#include "base/date_time.h"
#include "base/value.h"

namespace owb {

// The default when the value is NULL, or a zero number while `zeroIsNull`.
Value FnVarNz(const Value& value, const Value& defaultValue, bool zeroIsNull = false);

// --- amounts (modCommon_amounts.cpp) ---

// Rounds an amount by ROUNDTYPE: 1 nearest rupee, 2 higher rupee, 3 nearest ten, 4 higher ten,
// 5 two decimals, 6 up to the next five paise; any other type gives 0.
double FnDblRoundAmount(int roundType, double value);
// Rounds days by RNDTYPE as the installed function FnDblRndOff does, for use inside loops; differs
// from it in code 8, which here is the nearest half day.
double FnDblRndOffLocal(int roundType, double value);

// --- texts for statements ---

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

// --- months and dates as users write them (modCommon_dates.cpp) ---

int32_t FnLngMonthYearOfDate(const DateTime& date);
int32_t FnLngMonthYearOfDate(const std::string& dateText);   // 0 when it is no date
int32_t FnLngMonthYearOfText(const std::string& monthText);  // "Jan/2014"; 0 when it is no month
std::string FnStrMonthYearText(int32_t lngMonthYear);        // "Jan/2014"; "" for 0 and below
// First of the calendar month. Throws DbError 13 for a key that is no month.
DateTime FnDteFirstOfMonth(int32_t lngMonthYear);
// A typed date (parseTypedDate) as "dd/MM/yyyy"; "" when it is none. The second adds 2000 to a year
// below 1900.
std::string FnStrCleanDate(const std::string& text);
std::string FnStrCleanDateCentury(const std::string& text);

}  // namespace owb
