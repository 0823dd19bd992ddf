// Date functions. Weeks begin on Sunday unless an argument says otherwise (1 Sunday to 7 Saturday,
// 0 as usual).
#include <cmath>

#include "formula/ExprDates.h"
#include "formula/ExprFunctions.h"

namespace owb {

namespace {

using Arguments = ExprArguments;

[[noreturn]] void invalidCall() {
    throw ExprError{ExprError::InvalidCall};
}

int firstDayOfWeek(const Arguments& a, size_t i) {
    const int64_t day = a.longOr(i, 1);
    if (day < 0 || day > 7) invalidCall();
    return day == 0 ? 1 : static_cast<int>(day);
}

int firstWeekOfYear(const Arguments& a, size_t i) {
    const int64_t week = a.longOr(i, 1);
    if (week < 0 || week > 3) invalidCall();
    return week == 0 ? 1 : static_cast<int>(week);
}

template <int (*part)(const ExprMoment&)>
ExprValue partOf(const Arguments& a) {
    if (a[0].isNull()) return a[0];
    return ExprValue::integer(part(exprMoment(a[0].toDate())));
}

ExprValue weekday(const Arguments& a) {
    if (a[0].isNull()) return a[0];
    return ExprValue::integer(exprDatePart("w", a[0].toDate(), firstDayOfWeek(a, 1), 1));
}

std::string nameOf(const char* full, bool abbreviated) {
    return std::string(full).substr(0, abbreviated ? 3 : std::string::npos);
}

ExprValue weekdayText(const Arguments& a) {
    const int64_t number = a[0].toLong();
    if (number < 1 || number > 7) invalidCall();
    const int64_t day = (firstDayOfWeek(a, 2) - 1 + number - 1) % 7 + 1;
    return ExprValue::text(
        nameOf(weekdayName(static_cast<int>(day)), a.has(1) && a[1].toBoolean()));
}

ExprValue monthText(const Arguments& a) {
    const int64_t month = a[0].toLong();
    if (month < 1 || month > 12) invalidCall();
    return ExprValue::text(
        nameOf(monthFullName(static_cast<int>(month)), a.has(1) && a[1].toBoolean()));
}

ExprValue dateAdd(const Arguments& a) {
    if (a[2].isNull()) return a[2];
    return ExprValue::date(exprDateAdd(a[0].toText(), a[1].toNumber(), a[2].toDate()));
}

ExprValue dateDiff(const Arguments& a) {
    if (a[1].isNull() || a[2].isNull()) return ExprValue::null();
    firstWeekOfYear(a, 4);
    const double count =
        exprDateDiff(a[0].toText(), a[1].toDate(), a[2].toDate(), firstDayOfWeek(a, 3));
    return ExprValue::longInt(ExprValue::number(count).toLong());
}

ExprValue datePart(const Arguments& a) {
    if (a[1].isNull()) return a[1];
    return ExprValue::integer(
        exprDatePart(a[0].toText(), a[1].toDate(), firstDayOfWeek(a, 2), firstWeekOfYear(a, 3)));
}

ExprValue dateSerial(const Arguments& a) {
    int day = 0;
    const auto part = [&](size_t i) { return a[i].toWhole(INT16_MIN, INT16_MAX); };
    if (!exprDayNumber(part(0), part(1), part(2), day)) invalidCall();
    return ExprValue::date(day);
}

ExprValue timeSerial(const Arguments& a) {
    const auto part = [&](size_t i) { return a[i].toWhole(INT16_MIN, INT16_MAX); };
    const int64_t seconds = (part(0) * 60 + part(1)) * 60 + part(2);
    const int64_t size = std::llabs(seconds);
    const double days =
        static_cast<double>(size / 86400) + static_cast<double>(size % 86400) / 86400;
    return ExprValue::date(seconds < 0 ? -days : days);
}

ExprValue dateOnly(const ExprValue& v) {
    return v.isNull() ? throw ExprError{ExprError::InvalidNull}
                      : ExprValue::date(exprMoment(v.toDate()).day);
}

ExprValue timeOnly(const ExprValue& v) {
    return ExprValue::date(exprDays(ExprMoment{0, exprMoment(v.toDate()).seconds}));
}

ExprValue formatDateTime(const Arguments& a) {
    const double days = a[0].toDate();
    const ExprMoment moment = exprMoment(days);
    const CivilDate civil = exprCivil(moment.day);
    switch (a.longOr(1, 0)) {
        case 0:
            return ExprValue::text(exprDateText(days));
        case 1:
            return ExprValue::text(std::string(weekdayName(exprWeekday(moment.day))) + ", " +
                                   monthFullName(civil.month) + " " + std::to_string(civil.day) +
                                   ", " + std::to_string(civil.year));
        case 2:
            return ExprValue::text(std::to_string(civil.month) + "/" + std::to_string(civil.day) +
                                   "/" + std::to_string(civil.year));
        case 3:
            return ExprValue::text(exprTimeText(moment.seconds));
        case 4:
            return ExprValue::text(dateText(DateTime{0, moment.seconds * 300}, "HH:mm"));
        default:
            invalidCall();
    }
}

ExprValue nowOf(const Arguments& a, bool day, bool time) {
    ExprMoment moment = exprMoment(exprDays(a.now()));
    if (!day) moment.day = 0;
    if (!time) moment.seconds = 0;
    return ExprValue::date(exprDays(moment));
}

constexpr ExprFunction kDateFunctions[] = {
    {"DATE", 0, 0, [](const Arguments& a) { return nowOf(a, true, false); }},
    {"TIME", 0, 0, [](const Arguments& a) { return nowOf(a, false, true); }},
    {"NOW", 0, 0, [](const Arguments& a) { return nowOf(a, true, true); }},
    {"TIMER", 0, 0,
     [](const Arguments& a) { return ExprValue::single(a.now().milliseconds() / 1000.0); }},
    {"YEAR", 1, 1, partOf<[](const ExprMoment& m) { return exprCivil(m.day).year; }>},
    {"MONTH", 1, 1, partOf<[](const ExprMoment& m) { return exprCivil(m.day).month; }>},
    {"DAY", 1, 1, partOf<[](const ExprMoment& m) { return exprCivil(m.day).day; }>},
    {"HOUR", 1, 1, partOf<[](const ExprMoment& m) { return m.seconds / 3600; }>},
    {"MINUTE", 1, 1, partOf<[](const ExprMoment& m) { return m.seconds / 60 % 60; }>},
    {"SECOND", 1, 1, partOf<[](const ExprMoment& m) { return m.seconds % 60; }>},
    {"WEEKDAY", 1, 2, weekday},
    {"WEEKDAYNAME", 1, 3, weekdayText},
    {"MONTHNAME", 1, 2, monthText},
    {"DATEADD", 3, 3, dateAdd},
    {"DATEDIFF", 3, 5, dateDiff},
    {"DATEPART", 2, 4, datePart},
    {"DATESERIAL", 3, 3, dateSerial},
    {"TIMESERIAL", 3, 3, timeSerial},
    {"DATEVALUE", 1, 1, [](const Arguments& a) { return dateOnly(a[0]); }},
    {"TIMEVALUE", 1, 1, [](const Arguments& a) { return timeOnly(a[0]); }},
    {"FORMATDATETIME", 1, 2, formatDateTime},
};

}  // namespace

std::span<const ExprFunction> exprDateFunctions() {
    return kDateFunctions;
}

}  // namespace owb
