#include "tsql/types/types.h"

#include <algorithm>

#include "base/db_error.h"

namespace owb::tsql {

namespace {

// The kinds stand in the order of precedence but for text, which everything else outranks.
int precedenceOf(SqlKind kind) {
    const int order = static_cast<int>(kind);
    const bool text = kind >= SqlKind::Char && kind <= SqlKind::NVarChar;
    return text ? order - 100 : kind == SqlKind::Null ? -200 : order;
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
        default:
            return type.isDecimal() ? type.precision : 10;
    }
}

SqlType asNumeric(const SqlType& type) {
    return SqlType::numeric(digitsOf(type), type.isDecimal() ? type.scale : 0);
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
    if (high.kind == SqlKind::Numeric && low.isNumber()) {
        const SqlType l = asNumeric(low);
        const int scale = std::max(high.scale, l.scale);
        const int whole = std::max(high.precision - high.scale, l.precision - l.scale);
        return cappedNumeric(whole + scale, scale, 0);
    }
    if (high.kind == low.kind && high.scale < low.scale) return low;
    // Only datetime and smalldatetime meet numbers, and no date meets a time of day.
    const auto plainDate = [](const SqlType& t) {
        return t.kind == SqlKind::SmallDateTime || t.kind == SqlKind::DateTime;
    };
    const bool clash = (low.isNumber() && !high.isNumber() && !plainDate(high)) ||
                       (high.kind == SqlKind::Date && low.kind == SqlKind::Time);
    if (clash) throw makeDbError(206, {high.name(), low.name()});
    return high;
}

SqlType arithmeticType(char op, const SqlType& a, const SqlType& b) {
    static const char* names[] = {"add", "subtract", "multiply", "divide", "modulo"};
    const char* name = names[std::string_view("+-*/%").find(op)];
    const auto invalid = [&](const SqlType& t) {
        return makeDbError(8117, {messageName(t), name});
    };
    const auto incompatible = [&] {
        return makeDbError(402, {messageName(a), messageName(b), name});
    };
    const auto temporal = [](const SqlType& t) { return t.isDate() || t.isClock(); };
    if (a.kind == SqlKind::Null && b.kind == SqlKind::Null) return SqlType::of(SqlKind::Int);
    if (temporal(a) || temporal(b)) {
        const SqlType& date = temporal(a) ? a : b;
        const SqlType& other = temporal(a) ? b : a;
        const auto plain = [](const SqlType& t) {
            return t.kind == SqlKind::SmallDateTime || t.kind == SqlKind::DateTime;
        };
        if (!plain(date) || (temporal(other) && !plain(other))) {
            if (a.kind == b.kind) throw invalid(a);
            if (other.isNumber()) throw makeDbError(206, {date.name(), other.name()});
            if (other.kind != SqlKind::Null) throw incompatible();
            throw invalid(date);
        }
        if (op != '+' && op != '-') throw invalid(date);
        return commonType(date, other);
    }
    if (a.isText() && b.isText()) throw invalid(a);
    if (a.kind == SqlKind::Bit && b.kind == SqlKind::Bit) throw incompatible();
    // NULL and text take the other side's type.
    const SqlType x = a.isNumber() ? a : b;
    const SqlType y = b.isNumber() ? b : a;
    const SqlType& high = precedenceOf(x.kind) >= precedenceOf(y.kind) ? x : y;
    if (high.isFloating() && op == '%') throw incompatible();
    if (high.kind != SqlKind::Numeric) return high;
    const SqlType l = asNumeric(x), r = asNumeric(y);
    const int p1 = l.precision, s1 = l.scale, p2 = r.precision, s2 = r.scale;
    switch (op) {
        case '+':
        case '-': {
            const int scale = std::max(s1, s2), whole = std::max(p1 - s1, p2 - s2);
            const int precision = std::min(38, whole + scale + 1);
            return SqlType::numeric(precision, std::min(scale, precision - whole));
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

void requireConversion(const SqlType& from, const SqlType& to, bool byCast) {
    if (from.kind == to.kind || from.kind == SqlKind::Null || from.isText()) return;
    const bool fromTime = from.isDate() || from.isClock(), toTime = to.isDate() || to.isClock();
    const auto plain = [](const SqlType& t) {
        return t.kind == SqlKind::SmallDateTime || t.kind == SqlKind::DateTime;
    };
    const bool never = (fromTime && to.isNumber() && !plain(from)) ||
                       (from.isNumber() && toTime && !plain(to)) ||
                       (from.kind == SqlKind::Date && to.kind == SqlKind::Time) ||
                       (from.kind == SqlKind::Time && to.kind == SqlKind::Date);
    if (never && byCast) throw makeDbError(529, {from.name(), to.name()});
    if (never) throw makeDbError(206, {from.name(), to.name()});
    if (!byCast && fromTime && to.isNumber()) throw makeDbError(257, {from.name(), to.name()});
}

}  // namespace owb::tsql
