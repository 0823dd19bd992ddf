// The built-in functions of dates and times.
#include "base/utf8.h"
#include "tsql/bind/function_call.h"

namespace owb::tsql {

namespace {

// The unit that a date-part word names, as the functions' first argument; "" when unknown.
std::string datePart(const std::string& word) {
    static const std::unordered_map<std::string, std::string> parts = {
        {"YEAR", "year"},       {"YY", "year"},
        {"YYYY", "year"},       {"QUARTER", "quarter"},
        {"QQ", "quarter"},      {"Q", "quarter"},
        {"MONTH", "month"},     {"MM", "month"},
        {"M", "month"},         {"DAYOFYEAR", "dayofyear"},
        {"DY", "dayofyear"},    {"Y", "dayofyear"},
        {"DAY", "day"},         {"DD", "day"},
        {"D", "day"},           {"WEEK", "week"},
        {"WK", "week"},         {"WW", "week"},
        {"WEEKDAY", "weekday"}, {"DW", "weekday"},
        {"W", "weekday"},       {"HOUR", "hour"},
        {"HH", "hour"},         {"MINUTE", "minute"},
        {"MI", "minute"},       {"N", "minute"},
        {"SECOND", "second"},   {"SS", "second"},
        {"S", "second"},        {"MILLISECOND", "millisecond"},
        {"MS", "millisecond"},  {"MICROSECOND", "microsecond"},
        {"MCS", "microsecond"}, {"NANOSECOND", "nanosecond"},
        {"NS", "nanosecond"},   {"ISO_WEEK", "isoweek"},
        {"ISOWK", "isoweek"},   {"ISOWW", "isoweek"}};
    const auto found = parts.find(upperCase(word));
    return found == parts.end() ? "" : found->second;
}

std::string partOf(FunctionCall& c) {
    const std::string& word = c.expr.args[0]->name.last();
    const std::string part = datePart(word);
    if (part.empty())
        throw DbError(155, 15, 1, c.expr.line,
                      "'" + word + "' is not a recognized " + lowerCase(c.name) + " option.");
    return part;
}

bool isTimePart(const std::string& part) {
    return part == "hour" || part == "minute" || part == "second" || part == "millisecond" ||
           part == "microsecond" || part == "nanosecond";
}

bool isFinePart(const std::string& part) {
    return part == "microsecond" || part == "nanosecond";
}

// A date has no hours, a time of day no days.
void requirePart(const FunctionCall& c, const std::string& part, const SqlType& type) {
    if (type.kind == SqlKind::Date ? isTimePart(part)
                                   : type.kind == SqlKind::Time && !isTimePart(part))
        throw makeDbError(9810,
                          {lowerCase(c.expr.args[0]->name.last()), lowerCase(c.name), type.name()});
}

BoundPtr makeDateAdd(FunctionCall& c) {
    const std::string part = partOf(c);
    BoundPtr n = c.binder.convert(c.binder.bindValue(*c.expr.args[1]), kInt);
    BoundPtr d = c.binder.bindValue(*c.expr.args[2]);
    if (!d->type.isDate() && !d->type.isClock()) d = c.binder.convert(std::move(d), kDateTime);
    const SqlType t = d->type;
    requirePart(c, part, t);
    if (t.isClock())
        return c.op("t_clockadd('" + part + "',$0,$1," + std::to_string(packType(t)) + ")", t,
                    list(std::move(n), std::move(d)));
    if (isFinePart(part)) throw makeDbError(9810, {part, "dateadd", t.name()});
    BoundPtr r = c.op("t_dateadd('" + part + "',$0,$1)", t.kind == SqlKind::Date ? t : kDateTime,
                      list(std::move(n), std::move(d)));
    return c.binder.convert(std::move(r), t);
}

BoundPtr makeDateDiff(FunctionCall& c) {
    const std::string part = partOf(c);
    BoundPtr a = c.binder.bindValue(*c.expr.args[1]), b = c.binder.bindValue(*c.expr.args[2]);
    const bool big = c.name == "DATEDIFF_BIG";
    const SqlType& x = a->type;
    const SqlType& y = b->type;
    // Texts alone, and the finer types, are compared by 100 nanoseconds; a text beside a datetime
    // is one, which lets it be read once.
    const bool fine = x.isClock() || y.isClock() || (x.isText() && y.isText()) || isFinePart(part);
    const std::string f = std::string(fine && isTimePart(part) ? "t_clockdiff" : "t_datediff") +
                          (big ? "big('" : "('");
    for (BoundPtr* d : {&a, &b}) {
        const SqlType& t = (*d)->type;
        if (fine) {
            if (!t.isText() && !t.isDate() && !t.isClock())
                *d = c.binder.convert(std::move(*d), kDateTime);
            if ((*d)->type.kind == SqlKind::Time) *d = c.binder.convert(std::move(*d), kDateTime2);
            *d = c.binder.convert(std::move(*d), isTimePart(part) ? kDateTime2 : kDate);
        } else if (!t.isDate()) {
            *d = c.binder.convert(std::move(*d), kDateTime);
        }
    }
    return c.op(f + part + "',$0,$1)", big ? kBigInt : kInt, list(std::move(a), std::move(b)));
}

// The part of a date, or its name.
BoundPtr partOfDate(FunctionCall& c, const std::string& part, BoundPtr d) {
    const bool name = c.name == "DATENAME";
    const SqlType result = name ? SqlType::text(SqlKind::NVarChar, 30) : kInt;
    const std::string suffix = (name ? "name('" : "part('") + part + "',$0)";
    requirePart(c, part, d->type);
    if (!d->type.isDate() && !d->type.isText() && !d->type.isClock())
        d = c.binder.convert(std::move(d), kDateTime);
    if (isTimePart(part) && (d->type.isText() || d->type.isClock() || isFinePart(part))) {
        if (!d->type.isClock()) d = c.binder.convert(std::move(d), kDateTime2);
        return c.op("t_clock" + suffix, result, list(std::move(d)));
    }
    if (!d->type.isDate()) d = c.binder.convert(std::move(d), kDate);
    return c.op("t_date" + suffix, result, list(std::move(d)));
}

BoundPtr makeDatePart(FunctionCall& c) {
    const std::string part = partOf(c);
    return partOfDate(c, part, c.binder.bindValue(*c.expr.args[1]));
}

BoundPtr makeDay(FunctionCall& c) {
    if (c.args[0]->type.kind == SqlKind::Time) c.refuse(0);
    return partOfDate(c, lowerCase(c.name), c.take(0));
}

BoundPtr makeNow(FunctionCall& c) {
    const bool universal = c.name == "GETUTCDATE" || c.name == "SYSUTCDATETIME";
    BoundPtr now = c.op(universal ? "t_utcnow()" : "t_now()", kDateTime, {});
    now->nullable = false;
    return c.binder.convert(std::move(now), c.name.starts_with("SYS") ? kDateTime2 : kDateTime);
}

BoundPtr makeEoMonth(FunctionCall& c) {
    BoundPtr n = c.args.size() > 1 ? c.take(1, kInt) : c.binder.constant(Value(0), kInt);
    return c.op("t_eomonth($0,ifnull($1,0))", kDate, list(c.take(0, kDate), std::move(n)));
}

// t_fromparts(type, year, month, day, hour, minute, second, 100 nanoseconds)
BoundPtr makeFromParts(FunctionCall& c) {
    SqlType type = c.name == "DATEFROMPARTS"            ? kDate
                   : c.name == "TIMEFROMPARTS"          ? SqlType::of(SqlKind::Time)
                   : c.name == "SMALLDATETIMEFROMPARTS" ? SqlType::of(SqlKind::SmallDateTime)
                   : c.name == "DATETIME2FROMPARTS"     ? kDateTime2
                                                        : kDateTime;
    size_t count = c.args.size();
    int64_t unit = 10'000;  // a millisecond
    if (type.isClock()) {
        const Value* places = c.binder.fixedLiteral(*c.expr.args[--count]);
        if (!places || places->toInt() < 0 || places->toInt() > 7)
            throw DbError(10760, 16, 1, c.expr.line,
                          "Scale argument is not valid. Valid expressions for data type " +
                              std::string(type.name()) +
                              " scale argument are integer constants "
                              "and integer constant expressions.");
        type.scale = static_cast<uint8_t>(places->toInt());
        unit = 1;
        for (int i = type.scale; i < 7; ++i) unit *= 10;
    }
    std::string pattern = "t_fromparts(" + std::to_string(packType(type));
    const size_t skipped = type.kind == SqlKind::Time ? 3 : 0;
    if (skipped) pattern += ",1900,1,1";
    Args args;
    for (size_t i = 0; i < count; ++i) {
        args.push_back(c.take(i, kInt));
        pattern += ",$" + std::to_string(i) + ";";
        if (i + skipped == 6) pattern += " * " + std::to_string(unit);
    }
    for (size_t i = count + skipped; i < 7; ++i) pattern += ",0";
    return c.op(pattern + ")", type, std::move(args));
}

}  // namespace

void addDateBuiltins(BuiltinFunctions& table) {
    table["DATEADD"] = {3, 3, makeDateAdd, true};
    table["DATEDIFF"] = {3, 3, makeDateDiff, true};
    table["DATEDIFF_BIG"] = {3, 3, makeDateDiff, true};
    table["DATEPART"] = {2, 2, makeDatePart, true};
    table["DATENAME"] = {2, 2, makeDatePart, true};
    table["DAY"] = {1, 1, makeDay};
    table["MONTH"] = {1, 1, makeDay};
    table["YEAR"] = {1, 1, makeDay};
    for (const char* now :
         {"GETDATE", "CURRENT_TIMESTAMP", "GETUTCDATE", "SYSDATETIME", "SYSUTCDATETIME"})
        table[now] = {0, 0, makeNow};
    table["EOMONTH"] = {1, 2, makeEoMonth};
    table["DATEFROMPARTS"] = {3, 3, makeFromParts};
    table["TIMEFROMPARTS"] = {5, 5, makeFromParts};
    table["SMALLDATETIMEFROMPARTS"] = {5, 5, makeFromParts};
    table["DATETIMEFROMPARTS"] = {7, 7, makeFromParts};
    table["DATETIME2FROMPARTS"] = {8, 8, makeFromParts};
}

}  // namespace owb::tsql
