// Date functions. Weeks begin on Sunday; differences count the boundaries that lie between.
#include <cmath>

#include "base/date_time.h"
#include "tsql/functions/functions.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

const SqlType kDateTime = SqlType::of(SqlKind::DateTime);

DateTime dateOf(SqliteValue v) {
    return v.as(kDateTime).asDate();
}

void requireRange(int64_t day) {
    if (day < DateTime::kMinDay || day > DateTime::kMaxDay) throw makeDbError(517, {"datetime"});
}

// t_date: the sum or difference of days, brought to whole ticks.
void normalize(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(1)) return c.giveNull();
    if (a[0].kind() == SqliteValue::Integer) {
        const int64_t day = a[0].integer();
        if (day < DateTime::kMinDay || day > DateTime::kMaxDay)
            throw makeDbError(8115, {"expression", "datetime"});
        return c.giveInteger(day);
    }
    const double days = a[0].real();
    if (!(days >= DateTime::kMinDay && days < DateTime::kMaxDay + 1.0))
        throw makeDbError(8115, {"expression", "datetime"});
    c.give(Value(DateTime::fromDays(days)));
}

void dateAdd(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(3)) return c.giveNull();
    const std::string_view part = a[0].text();
    const int64_t n = a[1].integer();
    DateTime d = dateOf(a[2]);
    const auto addMonths = [&](int64_t months) {
        if (std::llabs(months) > 12 * 10000) throw makeDbError(517, {"datetime"});
        d = d.plusMonths(static_cast<int>(months));
    };
    if (part == "year")
        addMonths(n * 12);
    else if (part == "quarter")
        addMonths(n * 3);
    else if (part == "month")
        addMonths(n);
    else {
        int64_t ticks = 0;
        if (part == "week")
            ticks = n * 7 * DateTime::kTicksPerDay;
        else if (part == "hour")
            ticks = n * 3600 * 300;
        else if (part == "minute")
            ticks = n * 60 * 300;
        else if (part == "second")
            ticks = n * 300;
        else if (part == "millisecond")
            ticks = std::llround(static_cast<double>(n) * 0.3);
        else
            ticks = n * DateTime::kTicksPerDay;
        int64_t total = static_cast<int64_t>(d.day) * DateTime::kTicksPerDay + d.tick + ticks;
        int64_t day = total / DateTime::kTicksPerDay, tick = total % DateTime::kTicksPerDay;
        if (tick < 0) {
            tick += DateTime::kTicksPerDay;
            --day;
        }
        requireRange(day);
        d = {static_cast<int32_t>(day), static_cast<int32_t>(tick)};
    }
    requireRange(d.day);
    c.give(Value(d));
}

int64_t weekNumber(int32_t day) {                               // weeks from Sunday to Saturday
    const int64_t sinceSunday = static_cast<int64_t>(day) + 1;  // 1899-12-31 was a Sunday
    return sinceSunday >= 0 ? sinceSunday / 7 : (sinceSunday - 6) / 7;
}

template <bool kBig>
void dateDiff(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(3)) return c.giveNull();
    const std::string_view part = a[0].text();
    const DateTime x = dateOf(a[1]), y = dateOf(a[2]);
    const CivilDate cx = x.civil(), cy = y.civil();
    const int64_t days = static_cast<int64_t>(y.day) - x.day;
    const auto boundaries = [&](int64_t ticks) {
        return days * (DateTime::kTicksPerDay / ticks) + y.tick / ticks - x.tick / ticks;
    };
    int64_t r = 0;
    if (part == "year")
        r = cy.year - cx.year;
    else if (part == "quarter")
        r = (cy.year - cx.year) * 4 + (cy.month - 1) / 3 - (cx.month - 1) / 3;
    else if (part == "month")
        r = (cy.year - cx.year) * 12 + cy.month - cx.month;
    else if (part == "week")
        r = weekNumber(y.day) - weekNumber(x.day);
    else if (part == "hour")
        r = boundaries(3600 * 300);
    else if (part == "minute")
        r = boundaries(60 * 300);
    else if (part == "second")
        r = boundaries(300);
    else if (part == "millisecond")
        r = days * 86400000 + y.milliseconds() - x.milliseconds();
    else
        r = days;
    if (!kBig && (r > INT32_MAX || r < INT32_MIN)) throw makeDbError(535);
    c.giveInteger(r);
}

int dayOfYear(const DateTime& d) {
    return d.day - DateTime::dayNumber(d.civil().year, 1, 1) + 1;
}

int isoWeek(const DateTime& d) {
    // The week of the Thursday of this Monday-to-Sunday week.
    const int sinceMonday = ((d.day % 7) + 7) % 7;
    const DateTime thursday{d.day - sinceMonday + 3, 0};
    return (dayOfYear(thursday) - 1) / 7 + 1;
}

int partOf(std::string_view part, const DateTime& d) {
    const CivilDate c = d.civil();
    const int ms = d.milliseconds();
    if (part == "year") return c.year;
    if (part == "quarter") return (c.month - 1) / 3 + 1;
    if (part == "month") return c.month;
    if (part == "dayofyear") return dayOfYear(d);
    if (part == "week")
        return static_cast<int>(weekNumber(d.day) - weekNumber(DateTime::dayNumber(c.year, 1, 1))) +
               1;
    if (part == "isoweek") return isoWeek(d);
    if (part == "weekday") return d.weekday();
    if (part == "hour") return ms / 3600000;
    if (part == "minute") return ms / 60000 % 60;
    if (part == "second") return ms / 1000 % 60;
    if (part == "millisecond") return ms % 1000;
    return c.day;
}

void datePart(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(2)) return c.giveNull();
    c.giveInteger(partOf(a[0].text(), dateOf(a[1])));
}

void dateName(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(2)) return c.giveNull();
    const std::string_view part = a[0].text();
    const DateTime d = dateOf(a[1]);
    if (part == "month") return c.giveText(monthFullName(d.civil().month));
    if (part == "weekday") return c.giveText(weekdayName(d.weekday()));
    c.giveText(std::to_string(partOf(part, d)));
}

void endOfMonth(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(2)) return c.giveNull();
    const CivilDate d = dateOf(a[0]).plusMonths(a[1].int32()).civil();
    c.giveInteger(DateTime::dayNumber(d.year, d.month, daysInMonth(d.year, d.month)));
}

}  // namespace

void addDateFunctions(Sqlite& sqlite) {
    sqlite.addFunction("t_date", 1, normalize);
    sqlite.addFunction("t_dateadd", 3, dateAdd);
    sqlite.addFunction("t_datediff", 3, dateDiff<false>);
    sqlite.addFunction("t_datediffbig", 3, dateDiff<true>);
    sqlite.addFunction("t_datepart", 2, datePart);
    sqlite.addFunction("t_datename", 2, dateName);
    sqlite.addFunction("t_eomonth", 2, endOfMonth);
}

}  // namespace owb::tsql
