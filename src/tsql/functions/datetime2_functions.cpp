// The date functions on counts of 100 nanoseconds (time and datetime2), and those that build a
// date or time out of its parts.
#include "tsql/types/datetime2.h"

#include <array>
#include <cstdlib>

#include "tsql/functions/functions.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

// 100 nanoseconds in a part of fixed length; 0 for the others.
int64_t unitsIn(std::string_view part) {
    if (part == "microsecond") return 10;
    if (part == "millisecond") return 10'000;
    if (part == "second") return kUnitsPerSecond;
    if (part == "minute") return 60 * kUnitsPerSecond;
    if (part == "hour") return 3600 * kUnitsPerSecond;
    if (part == "week") return 7 * kUnitsPerDay;
    if (part == "year" || part == "quarter" || part == "month") return 0;
    return kUnitsPerDay;
}

// t_clockadd(part, count, value, type)
void clockAdd(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(3)) return c.giveNull();
    const std::string_view part = a[0].text();
    const int64_t n = a[1].integer();
    int64_t clock = a[2].integer();
    const SqlType type = unpackType(a[3].integer());
    const int64_t last = datetime2Of(DateTime::kMaxDay + 1, 0);
    int64_t sum = 0;
    if (part == "nanosecond") {
        sum = clock + (n + (n < 0 ? -50 : 50)) / 100;
    } else if (const int64_t unit = unitsIn(part)) {
        if (__builtin_mul_overflow(n, unit, &sum) || __builtin_add_overflow(sum, clock, &sum))
            throw makeDbError(517, {type.name()});
    } else {
        const int64_t months = n * (part == "year" ? 12 : part == "quarter" ? 3 : 1);
        if (std::llabs(months) > 12 * 10000) throw makeDbError(517, {type.name()});
        const DateTime day{dayOfDatetime2(clock), 0};
        const CivilDate civil = day.civil();
        const int64_t month = civil.year * 12 + civil.month - 1 + months;
        if (month < 12 || month >= 10000 * 12) throw makeDbError(517, {type.name()});
        sum = datetime2Of(day.plusMonths(static_cast<int>(months)).day, clock % kUnitsPerDay);
    }
    if (type.kind == SqlKind::Time)
        sum = (sum % kUnitsPerDay + kUnitsPerDay) % kUnitsPerDay;
    else if (sum < 0 || sum >= last)
        throw makeDbError(517, {type.name()});
    c.giveInteger(roundToPlaces(sum, type));
}

// t_clockdiff(part, from, to): the boundaries of that part in between.
template <bool kBig>
void clockDiff(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(3)) return c.giveNull();
    const std::string_view part = a[0].text();
    const int64_t from = a[1].integer(), to = a[2].integer();
    int64_t r = 0;
    if (part == "nanosecond") {
        if (__builtin_mul_overflow(to - from, 100, &r)) throw makeDbError(535);
    } else {
        const int64_t unit = unitsIn(part);
        r = to / unit - from / unit;
    }
    if (!kBig && (r > INT32_MAX || r < INT32_MIN)) throw makeDbError(535);
    c.giveInteger(r);
}

int64_t partOf(std::string_view part, int64_t clock) {
    const int64_t fraction = clock % kUnitsPerSecond;
    const int64_t seconds = clock % kUnitsPerDay / kUnitsPerSecond;
    if (part == "hour") return seconds / 3600;
    if (part == "minute") return seconds / 60 % 60;
    if (part == "second") return seconds % 60;
    if (part == "millisecond") return fraction / 10'000;
    if (part == "microsecond") return fraction / 10;
    return fraction * 100;
}

void clockPart(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(2)) return c.giveNull();
    c.giveInteger(partOf(a[0].text(), a[1].integer()));
}

void clockName(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(2)) return c.giveNull();
    c.giveText(std::to_string(partOf(a[0].text(), a[1].integer())));
}

// t_fromparts(type, year, month, day, hour, minute, second, 100 nanoseconds)
void fromParts(SqliteResult c, SqliteArguments a) {
    if (a.anyNull()) return c.giveNull();
    const SqlType type = unpackType(a[0].integer());
    std::array<int64_t, 7> p{};
    for (int i = 0; i < 7; ++i) p[i] = a[i + 1].integer();
    const auto within = [&](int i, int64_t low, int64_t high) {
        return p[i] >= low && p[i] <= high;
    };
    const bool old = type.kind == SqlKind::DateTime || type.kind == SqlKind::SmallDateTime;
    if (!within(0, old ? 1753 : 1, 9999) || !within(1, 1, 12) ||
        !within(2, 1, daysInMonth(static_cast<int>(p[0]), static_cast<int>(p[1]))) ||
        !within(3, 0, 23) || !within(4, 0, 59) || !within(5, 0, 59) ||
        !within(6, 0, kUnitsPerSecond - 1)) {
        DbError error = makeDbError(289, {type.name()});
        error.state = type.kind == SqlKind::Date            ? 1
                      : type.kind == SqlKind::Time          ? 2
                      : type.kind == SqlKind::DateTime      ? 3
                      : type.kind == SqlKind::SmallDateTime ? 4
                                                            : 5;
        throw error;
    }
    ReadDate read;
    read.day =
        DateTime::dayNumber(static_cast<int>(p[0]), static_cast<int>(p[1]), static_cast<int>(p[2]));
    read.units = ((p[3] * 60 + p[4]) * 60 + p[5]) * kUnitsPerSecond + p[6];
    if (type.isClock())
        return c.giveInteger(type.kind == SqlKind::Time ? read.units
                                                        : datetime2Of(read.day, read.units));
    c.give(Value(toTicks(read)));
}

}  // namespace

void addDateTime2Functions(Sqlite& sqlite) {
    sqlite.addFunction("t_clockadd", 4, clockAdd);
    sqlite.addFunction("t_clockdiff", 3, clockDiff<false>);
    sqlite.addFunction("t_clockdiffbig", 3, clockDiff<true>);
    sqlite.addFunction("t_clockpart", 2, clockPart);
    sqlite.addFunction("t_clockname", 2, clockName);
    sqlite.addFunction("t_fromparts", 8, fromParts);
}

}  // namespace owb::tsql
