// How a value of one type becomes one of another.
#include <charconv>
#include <cmath>

#include "base/db_error.h"
#include "base/number_text.h"
#include "base/utf8.h"
#include "tsql/types/datetime2.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

struct IntRange {
    int64_t low, high;
};

IntRange rangeOf(SqlKind kind) {
    switch (kind) {
        case SqlKind::TinyInt:
            return {0, 255};
        case SqlKind::SmallInt:
            return {-32768, 32767};
        case SqlKind::Int:
            return {INT32_MIN, INT32_MAX};
        default:
            return {INT64_MIN, INT64_MAX};
    }
}

// A text without a type of its own is a varchar.
const char* textName(const SqlType& from) {
    return from.isText() ? from.name() : "varchar";
}

DbError withState(DbError error, int state) {
    error.state = state;
    return error;
}

[[noreturn]] void textFailure(const std::string& text, const SqlType& from, const SqlType& to) {
    if (to.isDate() || to.isClock()) throw makeDbError(241);
    if (to.isMoney()) throw makeDbError(235);
    if (to.isInteger() && to.kind != SqlKind::BigInt)
        throw makeDbError(245, {textName(from), text, to.name()});
    throw makeDbError(8114, {textName(from), to.name()});
}

[[noreturn]] void outOfRange(const SqlType& from, const SqlType& to) {
    throw makeDbError(242, {from.kind == SqlKind::Null ? "varchar" : from.name(), to.name()});
}

// --- to whole numbers ---

Value toWhole(int128 v, const SqlType& from, const SqlType& to) {
    if (to.kind == SqlKind::Bit) return Value(int64_t(v != 0));
    const IntRange range = rangeOf(to.kind);
    if (v < range.low || v > range.high) {
        if (from.isInteger() && (to.kind == SqlKind::TinyInt || to.kind == SqlKind::SmallInt))
            throw withState(makeDbError(220, {to.name(), Decimal(v, 0).toText()}),
                            to.kind == SqlKind::TinyInt ? 2 : 1);
        throw overflowError("expression", to.name());
    }
    return Value(static_cast<int64_t>(v));
}

Value floatToWhole(double v, const SqlType& to) {
    if (to.kind == SqlKind::Bit) return Value(int64_t(v != 0));
    const double whole = std::trunc(v);
    const IntRange range = rangeOf(to.kind);
    if (to.kind == SqlKind::BigInt) {
        if (!(std::fabs(whole) < 9223372036854775808.0))
            throw overflowError("expression", "bigint");
    } else if (!(whole >= static_cast<double>(range.low) &&
                 whole <= static_cast<double>(range.high))) {
        const std::string text = numberText(v, std::chars_format::fixed, 6);
        throw withState(makeDbError(232, {to.name(), text}), to.kind == SqlKind::TinyInt    ? 1
                                                             : to.kind == SqlKind::SmallInt ? 2
                                                                                            : 3);
    }
    return Value(static_cast<int64_t>(whole));
}

Value textToWhole(const std::string& text, const SqlType& from, const SqlType& to) {
    const std::string t = trim(text);
    if (to.kind == SqlKind::Bit) {
        if (equalsIgnoreCaseAscii(t, "true")) return Value(int64_t(1));
        if (equalsIgnoreCaseAscii(t, "false")) return Value(int64_t(0));
    }
    // Nothing, and a sign alone, are zero.
    int128 v = 0;
    for (size_t i = !t.empty() && (t[0] == '-' || t[0] == '+') ? 1 : 0; i < t.size(); ++i) {
        if (t[i] < '0' || t[i] > '9') textFailure(text, from, to);
        if (v <= int128(INT64_MAX) + 1) v = v * 10 + (t[i] - '0');
    }
    if (!t.empty() && t[0] == '-') v = -v;
    const IntRange range = rangeOf(to.kind);
    if (to.kind != SqlKind::Bit && (v < range.low || v > range.high)) {
        if (to.kind == SqlKind::BigInt) throw overflowError("expression", "bigint");
        if (to.kind == SqlKind::Int) throw makeDbError(248, {textName(from), text});
        const bool tiny = to.kind == SqlKind::TinyInt;
        throw withState(makeDbError(244, {textName(from), text, tiny ? "INT1" : "INT2"}),
                        tiny ? 1 : 2);
    }
    return toWhole(v, from, to);
}

// --- to numeric and money ---

Value toDecimal(const Decimal& d, const SqlType& from, const SqlType& to) {
    try {
        const Decimal r = d.rescaled(to.scale);
        if (to.isMoney()) {
            const IntRange range =
                rangeOf(to.kind == SqlKind::Money ? SqlKind::BigInt : SqlKind::Int);
            if (r.unscaled() >= range.low && r.unscaled() <= range.high) return Value(r);
        } else if (r.digits() <= to.precision) {
            return Value(r);
        }
    } catch (const DecimalOverflow&) {
    }
    throw overflowError(from.kind == SqlKind::Null ? "numeric" : from.name(), to.name());
}

// Money may be written with a currency sign, commas and a sign in front; parts may be missing.
Value textToMoney(const std::string& text, const SqlType& from, const SqlType& to) {
    std::string digits;
    bool sign = false, currency = false, point = false;
    for (char c : trim(text)) {
        if ((c == '-' || c == '+') && !sign && digits.empty()) {
            sign = true;
            if (c == '-') digits = "-";
        } else if (c == '$' && !currency && (digits.empty() || digits == "-")) {
            currency = true;
        } else if (c == '.' && !point) {
            point = true;
            digits += c;
        } else if (c >= '0' && c <= '9') {
            digits += c;
        } else if (!(c == ',' && !point) && !(c == ' ' && (digits.empty() || digits == "-"))) {
            textFailure(text, from, to);
        }
    }
    if (digits.find_first_of("0123456789") == std::string::npos) digits = "0";
    Decimal d;
    try {
        Decimal::parse(digits, d);
    } catch (const DecimalOverflow&) {
        throw overflowError(textName(from), to.name());
    }
    return toDecimal(d, from, to);
}

Value textToDecimal(const std::string& text, const SqlType& from, const SqlType& to) {
    if (to.isMoney()) return textToMoney(text, from, to);
    Decimal d;
    bool ok = false;
    try {
        ok = Decimal::parse(trim(text), d);
    } catch (const DecimalOverflow&) {
        throw overflowError(textName(from), "numeric");
    }
    if (!ok) textFailure(text, from, to);
    return toDecimal(d, from, to);
}

// --- to floating numbers ---

Value toFloating(double v, const SqlType& to) {
    if (to.kind == SqlKind::Float) return Value(v);
    if (std::fabs(v) > 3.4028234663852886e38) {
        const std::string text = numberText(v, std::chars_format::fixed, 6);
        throw withState(makeDbError(232, {"real", text}), 2);
    }
    return Value(static_cast<double>(static_cast<float>(v)));
}

Value textToFloating(const std::string& text, const SqlType& from, const SqlType& to) {
    const std::string t = trim(text);
    if (t.empty()) return Value(0.0);
    const std::optional<double> v = parseNumber(t);
    if (!v || !std::isfinite(*v)) textFailure(text, from, to);
    return toFloating(*v, to);
}

// --- to text ---

Value fitText(std::string text, const SqlType& to) {
    if (to.length != SqlType::kMax) {
        const auto length = static_cast<int32_t>(utf8Length(text));
        if (length > to.length) text = utf8Substr(text, 0, to.length);
        if (to.isFixedText() && length < to.length) text.append(to.length - length, ' ');
    }
    return Value(std::move(text));
}

Value numberToText(std::string text, const SqlType& from, const SqlType& to) {
    if (to.length != SqlType::kMax && static_cast<int32_t>(text.size()) > to.length) {
        if (from.isInteger() && !to.isUnicode()) return fitText("*", to);
        if (from.isMoney()) throw withState(makeDbError(234, {to.name()}), 2);
        throw overflowError(from.isDecimal() ? from.name() : "expression", to.name());
    }
    return fitText(std::move(text), to);
}

// Six significant digits; by style 1 eight, by style 2 sixteen, by style 3 all, with an exponent.
std::string floatText(double v, int style) {
    if (v == 0) v = 0;  // without a sign
    const std::string text = style < 1 || style > 3 ? numberText(v, std::chars_format::general, 6)
                                                    : numberText(v, std::chars_format::scientific,
                                                                 style == 1 ? 7 : 13 + style);
    const size_t e = text.find('e');
    if (e == std::string::npos) return text;
    std::string power = text.substr(e + 2);
    while (power.size() < 3) power.insert(power.begin(), '0');
    return text.substr(0, e) + "e" + text[e + 1] + power;
}

// Two places; by style 1 with commas, by style 2 four places.
std::string moneyText(const Decimal& d, int style) {
    std::string text = d.rescaled(style == 2 || style == 126 ? 4 : 2).toText();
    if (style != 1) return text;
    const size_t first = text[0] == '-' ? 1 : 0;
    for (size_t at = text.find('.'); at > first + 3; at -= 3) text.insert(at - 3, ",");
    return text;
}

// --- to dates and times ---

// A date into one of the three types that are held as such.
Value toDate(const DateTime& d, const SqlType& from, const SqlType& to) {
    if (to.kind == SqlKind::Date) return Value(DateTime{d.day, 0});
    if (to.kind == SqlKind::DateTime) {
        if (d.day < DateTime::kMinDay || d.day > DateTime::kMaxDay) outOfRange(from, to);
        return Value(d);
    }
    // smalldatetime: whole minutes from 1900 to the middle of 2079, 29.998 seconds round down
    constexpr int32_t kMinute = 60 * 300;
    DateTime minute{d.day, (d.tick + kMinute / 2) / kMinute * kMinute};
    if (minute.tick == DateTime::kTicksPerDay) minute = {d.day + 1, 0};
    if (minute.day < 0 || minute.day > 65535) outOfRange(from, to);
    return Value(minute);
}

Value toClock(int32_t day, int64_t units, const SqlType& to) {
    if (to.kind == SqlKind::Time) return Value(roundToPlaces(units, to));
    return Value(roundToPlaces(datetime2Of(day, units), to));
}

Value daysToDate(double days, const SqlType& to) {
    if (!(days >= DateTime::kMinDay && days < DateTime::kMaxDay + 1.0))
        throw overflowError("expression", to.name());
    return toDate(DateTime::fromDays(days), SqlType::of(SqlKind::DateTime), to);
}

Value textToDate(const std::string& text, const SqlType& from, const SqlType& to, int style) {
    const bool dayFirst = style == 3 || style == 4 || style == 5 || style == 103 || style == 104 ||
                          style == 105 || style == 131;
    ReadDate read;
    const DateReading reading =
        readDate(text, dayFirst ? DateOrder::DayFirst : DateOrder::MonthFirst, read);
    const bool old = to.kind == SqlKind::DateTime || to.kind == SqlKind::SmallDateTime;
    if (reading == DateReading::OutOfRange && old) outOfRange(from, to);
    if (reading != DateReading::Good || (old && read.places > 3)) textFailure(text, from, to);
    if (to.isClock()) return toClock(read.day, read.units, to);
    if (to.kind == SqlKind::Date) return Value(DateTime{read.day, 0});
    return toDate(toTicks(read),
                  from.kind == SqlKind::Null ? SqlType::text(SqlKind::VarChar, 1) : from, to);
}

Value fromDate(const DateTime& d, const SqlType& from, const SqlType& to, int style) {
    if (to.isDate()) return toDate(d, from, to);
    if (to.isClock()) return toClock(d.day, unitsOf(d), to);
    if (to.isText()) return fitText(dateByStyle(d, from, style), to);
    const double days = d.toDays();
    if (to.isInteger()) return toWhole(static_cast<int128>(std::floor(days + 0.5)), from, to);
    if (to.isDecimal()) return toDecimal(Decimal::fromDouble(days, 10), from, to);
    return toFloating(days, to);
}

Value fromClock(int64_t clock, const SqlType& from, const SqlType& to, int style) {
    const bool timeOnly = from.kind == SqlKind::Time;
    const int64_t units = clock % kUnitsPerDay;
    if (to.isText()) return fitText(datetime2ByStyle(clock, from, style), to);
    // A time of day falls on 1900-01-01.
    if (to.isClock()) return toClock(timeOnly ? 0 : dayOfDatetime2(clock), units, to);
    ReadDate date;
    date.day = timeOnly ? 0 : dayOfDatetime2(clock);
    date.units = to.kind == SqlKind::Date ? 0 : units;
    return toDate(toTicks(date), from, to);
}

}  // namespace

DbError overflowError(std::string_view from, std::string_view to) {
    DbError error = makeDbError(8115, {from, to});
    if (to == "numeric")
        error.state = from == "float" || from == "real" ? 6 : from == "expression" ? 2 : 8;
    else if (from == "numeric" && to.ends_with("char"))
        error.state = 5;
    return error;
}

Value clientValue(const Value& v, const SqlType& type) {
    if (type.isClock() && v.isInt()) return Value(datetime2Text(v.asInt(), type));
    if (!v.isDouble()) return v;
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, static_cast<float>(v.asDouble())).ptr;
    double shown = 0;
    std::from_chars(text, end, shown);
    return Value(shown);
}

Value convertValue(const Value& v, const SqlType& from, const SqlType& to, int style) {
    if (v.isNull()) return v;
    if (v.isText()) {
        const std::string& text = v.asText();
        if (to.isText()) return fitText(text, to);
        if (to.isDate() || to.isClock()) return textToDate(text, from, to, style);
        if (to.isInteger()) return textToWhole(text, from, to);
        if (to.isDecimal()) return textToDecimal(text, from, to);
        return textToFloating(text, from, to);
    }
    if (v.isDate()) return fromDate(v.asDate(), from, to, style);
    if (from.isClock()) return fromClock(v.asInt(), from, to, style);
    if (to.isDate()) return daysToDate(v.toDouble(), to);
    if (v.isInt()) {
        if (to.isInteger()) return toWhole(v.asInt(), from, to);
        if (to.isDecimal()) return toDecimal(Decimal::fromInt(v.asInt()), from, to);
        if (to.isFloating()) return toFloating(static_cast<double>(v.asInt()), to);
        return numberToText(std::to_string(v.asInt()), from, to);
    }
    if (v.isDecimal()) {
        const Decimal& d = v.asDecimal();
        if (to.kind == SqlKind::Bit) return Value(int64_t(d.unscaled() != 0));
        // Money rounds, numeric is cut.
        if (to.isInteger())
            return toWhole((from.isMoney() ? d.rescaled(0) : d.truncated(0)).unscaled(), from, to);
        if (to.isDecimal()) return toDecimal(d, from, to);
        if (to.isFloating()) return toFloating(d.toDouble(), to);
        return numberToText(from.isMoney() ? moneyText(d, style) : d.toText(), from, to);
    }
    const double f = v.asDouble();
    if (to.isInteger()) return floatToWhole(f, to);
    if (to.isDecimal()) {
        try {
            return toDecimal(Decimal::fromDouble(f, to.scale), from, to);
        } catch (const DecimalOverflow&) {
            throw overflowError("float", to.name());
        }
    }
    if (to.isFloating()) return toFloating(f, to);
    return numberToText(floatText(f, style), from, to);
}

}  // namespace owb::tsql
