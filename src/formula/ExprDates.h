// Dates of the formula language: days since 1899-12-30 with the time of day as fraction (before
// that day the fraction still counts forward from midnight). Texts are read and written in the
// order month, day, year; a month's name may stand anywhere.
#pragma once

#include <string>
#include <string_view>

#include "base/date_time.h"

namespace owb {

constexpr int kFirstExprDay = -657434;  // 100-01-01
constexpr int kLastExprDay = 2958465;   // 9999-12-31

struct ExprMoment {
    int day = 0;      // whole days since 1899-12-30
    int seconds = 0;  // since midnight
};
ExprMoment exprMoment(double days);  // to the nearest second
double exprDays(const ExprMoment& moment);
double exprDays(const DateTime& date);  // to the whole second
CivilDate exprCivil(int day);
// The day number; months and days may lie outside their bounds and count on. False when it
// leaves the calendar. Years 0 to 29 are 2000 to 2029, 30 to 99 are 1930 to 1999.
bool exprDayNumber(int64_t year, int64_t month, int64_t day, int& out);
int exprWeekday(int day);  // 1 Sunday to 7 Saturday

// False when the text is no date. `now` gives the year of a text that has none.
bool readExprDate(std::string_view text, double& days);
bool readExprTime(std::string_view text, double& fraction);
// "1/31/2021", "1/31/2021 2:05:00 PM", or the time alone on day 0.
std::string exprDateText(double days);
std::string exprTimeText(int seconds);  // "2:05:00 PM"

// Intervals "yyyy" "q" "m" "y" "d" "w" "ww" "h" "n" "s", in any case; others are InvalidCall.
// Months and years keep the day or take the last one of the month.
double exprDateAdd(std::string_view interval, double number, double days);
// Boundaries crossed from the first to the second date.
double exprDateDiff(std::string_view interval, double from, double to, int firstDayOfWeek);
// firstWeekOfYear: 1 the week of January 1, 2 the first of four days, 3 the first full week.
int exprDatePart(std::string_view interval, double days, int firstDayOfWeek, int firstWeekOfYear);

}  // namespace owb
