#include "tsql/types.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "base/db_error.h"
#include "base/number_text.h"
#include "base/utf8.h"

namespace owb::tsql {

namespace {

int precedenceOf(SqlKind kind) {
    switch (kind) {
        case SqlKind::Null:
            return 0;
        case SqlKind::Char:
            return 1;
        case SqlKind::VarChar:
            return 2;
        case SqlKind::NChar:
            return 3;
        case SqlKind::NVarChar:
            return 4;
        case SqlKind::Bit:
            return 5;
        case SqlKind::TinyInt:
            return 6;
        case SqlKind::SmallInt:
            return 7;
        case SqlKind::Int:
            return 8;
        case SqlKind::BigInt:
            return 9;
        case SqlKind::Numeric:
            return 10;
        case SqlKind::Float:
            return 11;
        case SqlKind::Date:
            return 12;
        case SqlKind::DateTime:
            return 13;
    }
    return 0;
}

// Caps a computed precision at 38, giving up places down to `keep`.
SqlType cappedNumeric(int precision, int scale, int keep) {
    if (precision > 38) {
        const int whole = precision - scale;
        scale = std::max(std::min(scale, 38 - whole), std::min(scale, keep));
        precision = 38;
    }
    return SqlType::numeric(precision, scale);
}

const char* messageName(const SqlType& t) {
    if (t.kind == SqlKind::Null) return "NULL";
    return t.name();
}

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

[[noreturn]] void textFailure(const std::string& text, const SqlType& from, const SqlType& to) {
    if (to.isInteger())
        throw makeDbError(245, {from.isText() ? from.name() : "varchar", text, to.name()});
    if (to.isDate()) throw makeDbError(241);
    throw makeDbError(8114, {from.isText() ? from.name() : "varchar", to.name()});
}

Value toWhole(int128 v, const SqlType& from, const SqlType& to) {
    if (to.kind == SqlKind::Bit) return Value(int64_t(v != 0));
    const IntRange range = rangeOf(to.kind);
    if (v < range.low || v > range.high) {
        if (from.isInteger() && (to.kind == SqlKind::TinyInt || to.kind == SqlKind::SmallInt))
            throw makeDbError(220, {to.name(), Decimal(v, 0).toText()});
        throw makeDbError(
            8115, {from.isInteger() || from.kind == SqlKind::Float || from.kind == SqlKind::Numeric
                       ? std::string("expression")
                       : std::string(from.name()),
                   to.name()});
    }
    return Value(static_cast<int64_t>(v));
}

Value toNumeric(const Decimal& d, const SqlType& from, const SqlType& to) {
    try {
        const Decimal r = d.rescaled(to.scale);
        if (r.digits() <= to.precision) return Value(r);
    } catch (const DecimalOverflow&) {
    }
    throw makeDbError(8115, {from.kind == SqlKind::Numeric || from.kind == SqlKind::Null
                                 ? std::string("numeric")
                                 : std::string(from.name()),
                             "numeric"});
}

std::string floatText(double v) {
    // As the server prints a float: six significant digits, or an exponent.
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, "%.6g", v);
    std::string text = buffer;
    const size_t e = text.find('e');
    if (e == std::string::npos) return text;
    std::string exponent = text.substr(e + 2);
    while (exponent.size() < 3) exponent.insert(exponent.begin(), '0');
    return text.substr(0, e) + "e" + text[e + 1] + exponent;
}

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
        throw makeDbError(8115, {from.name(), to.name()});
    }
    return fitText(std::move(text), to);
}

Value dateFromDays(double days, const SqlType& to) {
    if (days < DateTime::kMinDay || days >= DateTime::kMaxDay + 1.0)
        throw makeDbError(8115, {"expression", to.name()});
    DateTime d = DateTime::fromDays(days);
    if (to.kind == SqlKind::Date) d.tick = 0;
    return Value(d);
}

Value fromText(const std::string& text, const SqlType& from, const SqlType& to, int style) {
    const std::string t = trim(text);
    if (to.isDate()) {
        const bool dayFirst = style == 3 || style == 4 || style == 5 || style == 103 ||
                              style == 104 || style == 105 || style == 131;
        const auto d = parseDate(t, dayFirst ? DateOrder::DayFirst : DateOrder::MonthFirst);
        if (!d) {
            // A date in numbers alone that the calendar lacks is out of range; others are no dates.
            if (t.find_first_not_of("0123456789/-. :") == std::string::npos &&
                std::count_if(t.begin(), t.end(),
                              [](char c) { return c == '/' || c == '-' || c == '.'; }) >= 2)
                throw makeDbError(242, {from.isText() ? from.name() : "varchar", to.name()});
            textFailure(text, from, to);
        }
        if (d->day < DateTime::kMinDay && to.kind == SqlKind::DateTime)
            throw makeDbError(242, {from.isText() ? from.name() : "varchar", "datetime"});
        DateTime v = *d;
        if (to.kind == SqlKind::Date) v.tick = 0;
        return Value(v);
    }
    if (to.kind == SqlKind::Bit) {
        if (equalsIgnoreCaseAscii(t, "true")) return Value(int64_t(1));
        if (equalsIgnoreCaseAscii(t, "false")) return Value(int64_t(0));
    }
    if (to.isInteger()) {
        if (t.empty()) return Value(int64_t(0));
        size_t i = t[0] == '-' || t[0] == '+' ? 1 : 0;
        if (i == t.size()) textFailure(text, from, to);
        int128 v = 0;
        for (; i < t.size(); ++i) {
            if (t[i] < '0' || t[i] > '9') textFailure(text, from, to);
            v = v * 10 + (t[i] - '0');
            if (v > int128(INT64_MAX) + 1) break;
        }
        if (t[0] == '-') v = -v;
        const IntRange range = rangeOf(to.kind);
        if (to.kind != SqlKind::Bit && (v < range.low || v > range.high)) {
            if (to.kind == SqlKind::Int || to.kind == SqlKind::BigInt)
                throw makeDbError(
                    to.kind == SqlKind::Int ? 248 : 8115,
                    to.kind == SqlKind::Int
                        ? std::initializer_list<std::string_view>{"varchar", text}
                        : std::initializer_list<std::string_view>{"expression", "bigint"});
            throw makeDbError(244,
                              {"varchar", text, to.kind == SqlKind::TinyInt ? "INT1" : "INT2"});
        }
        return toWhole(v, from, to);
    }
    if (to.kind == SqlKind::Numeric) {
        Decimal d;
        bool ok = false;
        try {
            ok = Decimal::parse(t, d);
        } catch (const DecimalOverflow&) {
            throw makeDbError(8115, {"varchar", "numeric"});
        }
        if (!ok) textFailure(text, from, to);
        return toNumeric(d, from, to);
    }
    // float
    if (t.empty()) return Value(0.0);
    char* end = nullptr;
    const bool plain = t.find_first_not_of("0123456789+-.eE") == std::string::npos;
    const double v = std::strtod(t.c_str(), &end);
    if (!plain || end != t.c_str() + t.size() || !std::isfinite(v)) textFailure(text, from, to);
    return Value(v);
}

}  // namespace

int64_t packType(const SqlType& t) {
    return static_cast<int64_t>(t.kind) | (static_cast<int64_t>(t.precision) << 8) |
           (static_cast<int64_t>(t.scale) << 16) | (static_cast<int64_t>(t.length + 1) << 24);
}

SqlType unpackType(int64_t p) {
    SqlType t;
    t.kind = static_cast<SqlKind>(p & 0xFF);
    t.precision = static_cast<uint8_t>((p >> 8) & 0xFF);
    t.scale = static_cast<uint8_t>((p >> 16) & 0xFF);
    t.length = static_cast<int32_t>(p >> 24) - 1;
    return t;
}

int digitsOf(const SqlType& type) {
    switch (type.kind) {
        case SqlKind::Bit:
            return 1;
        case SqlKind::TinyInt:
            return 3;
        case SqlKind::SmallInt:
            return 5;
        case SqlKind::BigInt:
            return 19;
        case SqlKind::Numeric:
            return type.precision;
        default:
            return 10;
    }
}

SqlType asNumeric(const SqlType& type) {
    return type.kind == SqlKind::Numeric ? type : SqlType::numeric(digitsOf(type), 0);
}

SqlType commonType(const SqlType& a, const SqlType& b) {
    if (a.kind == SqlKind::Null) return b;
    if (b.kind == SqlKind::Null) return a;
    const SqlType& high = precedenceOf(a.kind) >= precedenceOf(b.kind) ? a : b;
    const SqlType& low = &high == &a ? b : a;
    if (high.isText()) {
        SqlType t = high;
        if (a.isFixedText() != b.isFixedText() || (low.isUnicode() != high.isUnicode()))
            t.kind = high.isUnicode() ? SqlKind::NVarChar : SqlKind::VarChar;
        t.length = a.length == SqlType::kMax || b.length == SqlType::kMax
                       ? SqlType::kMax
                       : std::max(a.length, b.length);
        return t;
    }
    if (high.kind == SqlKind::Numeric && (low.isInteger() || low.kind == SqlKind::Numeric)) {
        const SqlType l = asNumeric(low);
        const int scale = std::max(high.scale, l.scale);
        const int whole = std::max(high.precision - high.scale, l.precision - l.scale);
        return cappedNumeric(whole + scale, scale, scale);
    }
    if (high.kind == SqlKind::Date && low.isNumber())
        throw makeDbError(206, {messageName(low), messageName(high)});
    return high;
}

SqlType arithmeticType(char op, const SqlType& a, const SqlType& b) {
    const auto invalid = [&]() -> SqlType {
        static const char* names[] = {"add", "subtract", "multiply", "divide", "modulo"};
        const std::string_view ops = "+-*/%";
        throw makeDbError(402, {messageName(a), messageName(b), names[ops.find(op)]});
    };
    if (a.kind == SqlKind::Null && b.kind == SqlKind::Null) return SqlType::of(SqlKind::Int);
    if (a.isDate() || b.isDate()) {
        if (op != '+' && op != '-') return invalid();
        if (a.kind == SqlKind::Date || b.kind == SqlKind::Date) {
            // date has no arithmetic of its own; beside a datetime or a text it becomes one
            const SqlType& other = a.kind == SqlKind::Date ? b : a;
            if (other.kind != SqlKind::DateTime && !other.isText())
                throw makeDbError(206, {messageName(other), "date"});
        }
        return SqlType::of(SqlKind::DateTime);
    }
    if (a.isText() && b.isText())
        throw makeDbError(8117, {messageName(a), op == '-'   ? "subtract"
                                                 : op == '*' ? "multiply"
                                                 : op == '/' ? "divide"
                                                             : "modulo"});
    if (a.kind == SqlKind::Bit && b.kind == SqlKind::Bit) return invalid();
    // NULL and text take the other side's type.
    const SqlType x = a.isNumber() ? a : b;
    const SqlType y = b.isNumber() ? b : a;
    const SqlType& high = precedenceOf(x.kind) >= precedenceOf(y.kind) ? x : y;
    if (high.kind == SqlKind::Float) {
        if (op == '%') return invalid();
        return high;
    }
    if (high.kind != SqlKind::Numeric) return high;
    const SqlType l = asNumeric(x), r = asNumeric(y);
    const int p1 = l.precision, s1 = l.scale, p2 = r.precision, s2 = r.scale;
    switch (op) {
        case '+':
        case '-': {
            const int scale = std::max(s1, s2);
            return cappedNumeric(std::max(p1 - s1, p2 - s2) + scale + 1, scale, scale);
        }
        case '*':
            return cappedNumeric(p1 + p2 + 1, s1 + s2, 6);
        case '/': {
            const int scale = std::max(6, s1 + p2 + 1);
            return cappedNumeric(p1 - s1 + s2 + scale, scale, 6);
        }
        default:
            return SqlType::numeric(std::min(38, std::min(p1 - s1, p2 - s2) + std::max(s1, s2)),
                                    std::max(s1, s2));
    }
}

Value convertValue(const Value& v, const SqlType& from, const SqlType& to, int style) {
    if (v.isNull()) return v;
    if (v.isText()) {
        if (to.isText()) return fitText(v.asText(), to);
        return fromText(v.asText(), from, to, style);
    }
    if (v.isDate()) {
        const DateTime& d = v.asDate();
        if (to.isDate()) return Value(DateTime{d.day, to.kind == SqlKind::Date ? 0 : d.tick});
        if (to.isText()) return fitText(dateByStyle(d, from, style < 0 ? 0 : style), to);
        if (from.kind == SqlKind::Date) throw makeDbError(529, {"date", to.name()});
        const double days = d.toDays();
        if (to.isInteger()) return toWhole(static_cast<int128>(std::floor(days + 0.5)), from, to);
        if (to.kind == SqlKind::Numeric) return toNumeric(Decimal::fromDouble(days, 10), from, to);
        return Value(days);
    }
    // numbers
    if (to.isDate()) {
        if (to.kind == SqlKind::Date) throw makeDbError(529, {from.name(), "date"});
        return dateFromDays(v.toDouble(), to);
    }
    if (v.isInt()) {
        if (to.isInteger()) return toWhole(v.asInt(), from, to);
        if (to.kind == SqlKind::Numeric) return toNumeric(Decimal::fromInt(v.asInt()), from, to);
        if (to.kind == SqlKind::Float) return Value(static_cast<double>(v.asInt()));
        return numberToText(std::to_string(v.asInt()), from, to);
    }
    if (v.isDecimal()) {
        const Decimal& d = v.asDecimal();
        if (to.isInteger()) {
            if (to.kind == SqlKind::Bit) return Value(int64_t(d.unscaled() != 0));
            return toWhole(d.truncated(0).unscaled(), from, to);
        }
        if (to.kind == SqlKind::Numeric) return toNumeric(d, from, to);
        if (to.kind == SqlKind::Float) return Value(d.toDouble());
        return numberToText(d.toText(), from, to);
    }
    const double f = v.asDouble();
    if (to.kind == SqlKind::Bit) return Value(int64_t(f != 0));
    if (to.isInteger()) {
        if (!(std::fabs(f) < 1e19)) throw makeDbError(8115, {"expression", to.name()});
        return toWhole(static_cast<int128>(std::trunc(f)), from, to);
    }
    if (to.kind == SqlKind::Numeric) {
        try {
            return toNumeric(Decimal::fromDouble(f, to.scale), from, to);
        } catch (const DecimalOverflow&) {
            throw makeDbError(8115, {"float", "numeric"});
        }
    }
    if (to.kind == SqlKind::Float) return v;
    return numberToText(floatText(f), from, to);
}

std::string dateByStyle(const DateTime& value, const SqlType& type, int style) {
    const CivilDate c = value.civil();
    const int ms = value.milliseconds();
    const int hour = ms / 3600000, minute = ms / 60000 % 60, second = ms / 1000 % 60,
              milli = ms % 1000;
    const char* month = monthAbbreviation(c.month);
    const int hour12 = hour % 12 == 0 ? 12 : hour % 12;
    const char* half = hour < 12 ? "AM" : "PM";
    const int yy = c.year % 100;
    const bool dateOnly = type.kind == SqlKind::Date;
    char b[64];
    const auto out = [&](const char* format, auto... args) {
        std::snprintf(b, sizeof b, format, args...);
        return std::string(b);
    };
    switch (style) {
        case 0:
        case 100:
            if (dateOnly && style == 0) return out("%04d-%02d-%02d", c.year, c.month, c.day);
            if (dateOnly) return out("%s %2d %04d", month, c.day, c.year);
            return out("%s %2d %04d %2d:%02d%s", month, c.day, c.year, hour12, minute, half);
        case 1:
            return out("%02d/%02d/%02d", c.month, c.day, yy);
        case 101:
            return out("%02d/%02d/%04d", c.month, c.day, c.year);
        case 2:
            return out("%02d.%02d.%02d", yy, c.month, c.day);
        case 102:
            return out("%04d.%02d.%02d", c.year, c.month, c.day);
        case 3:
            return out("%02d/%02d/%02d", c.day, c.month, yy);
        case 103:
            return out("%02d/%02d/%04d", c.day, c.month, c.year);
        case 4:
            return out("%02d.%02d.%02d", c.day, c.month, yy);
        case 104:
            return out("%02d.%02d.%04d", c.day, c.month, c.year);
        case 5:
            return out("%02d-%02d-%02d", c.day, c.month, yy);
        case 105:
            return out("%02d-%02d-%04d", c.day, c.month, c.year);
        case 6:
            return out("%02d %s %02d", c.day, month, yy);
        case 106:
            return out("%02d %s %04d", c.day, month, c.year);
        case 7:
            return out("%s %02d, %02d", month, c.day, yy);
        case 107:
            return out("%s %02d, %04d", month, c.day, c.year);
        case 8:
        case 24:
        case 108:
            return out("%02d:%02d:%02d", hour, minute, second);
        case 9:
        case 109:
            return out("%s %2d %04d %2d:%02d:%02d:%03d%s", month, c.day, c.year, hour12, minute,
                       second, milli, half);
        case 10:
            return out("%02d-%02d-%02d", c.month, c.day, yy);
        case 110:
            return out("%02d-%02d-%04d", c.month, c.day, c.year);
        case 11:
            return out("%02d/%02d/%02d", yy, c.month, c.day);
        case 111:
            return out("%04d/%02d/%02d", c.year, c.month, c.day);
        case 12:
            return out("%02d%02d%02d", yy, c.month, c.day);
        case 112:
            return out("%04d%02d%02d", c.year, c.month, c.day);
        case 13:
        case 113:
            return out("%02d %s %04d %02d:%02d:%02d:%03d", c.day, month, c.year, hour, minute,
                       second, milli);
        case 14:
        case 114:
            return out("%02d:%02d:%02d:%03d", hour, minute, second, milli);
        case 20:
        case 120:
            if (dateOnly) return out("%04d-%02d-%02d", c.year, c.month, c.day);
            return out("%04d-%02d-%02d %02d:%02d:%02d", c.year, c.month, c.day, hour, minute,
                       second);
        case 21:
        case 25:
        case 121:
            if (dateOnly) return out("%04d-%02d-%02d", c.year, c.month, c.day);
            return out("%04d-%02d-%02d %02d:%02d:%02d.%03d", c.year, c.month, c.day, hour, minute,
                       second, milli);
        case 23:
            return out("%04d-%02d-%02d", c.year, c.month, c.day);
        case 126:
        case 127:
            if (dateOnly) return out("%04d-%02d-%02d", c.year, c.month, c.day);
            if (milli == 0)
                return out("%04d-%02d-%02dT%02d:%02d:%02d", c.year, c.month, c.day, hour, minute,
                           second);
            return out("%04d-%02d-%02dT%02d:%02d:%02d.%03d", c.year, c.month, c.day, hour, minute,
                       second, milli);
        default:
            throw makeDbError(15281, {"CONVERT of a date with style " + std::to_string(style)});
    }
}

}  // namespace owb::tsql
