// Checked whole-number arithmetic, exact numeric arithmetic, rounding and mathematics.
#include <cmath>
#include <random>

#include "base/number_text.h"
#include "tsql/functions/functions.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

void checkedInt(SqliteResult context, SqliteArguments a) {
    if (a[0].isNull()) return context.giveNull();
    const auto kind = static_cast<SqlKind>(a[1].int32());
    const bool real = a[0].kind() == SqliteValue::Real;
    const int64_t v = a[0].integer();
    int64_t low = INT32_MIN, high = INT32_MAX;
    if (kind == SqlKind::TinyInt) low = 0, high = 255;
    if (kind == SqlKind::SmallInt) low = -32768, high = 32767;
    if (kind == SqlKind::BigInt) low = INT64_MIN, high = INT64_MAX;
    if (real || v < low || v > high)
        throw makeDbError(8115, {"expression", SqlType::of(kind).name()});
    context.giveInteger(v);
}

void bigArithmetic(SqliteResult context, SqliteArguments a) {
    if (a.from(1).anyNull(2)) return context.giveNull();
    const int64_t x = a[1].integer(), y = a[2].integer();
    int64_t r = 0;
    bool overflow = false;
    switch (a[0].text()[0]) {
        case '+':
            overflow = __builtin_add_overflow(x, y, &r);
            break;
        case '-':
            overflow = __builtin_sub_overflow(x, y, &r);
            break;
        default:
            overflow = __builtin_mul_overflow(x, y, &r);
            break;
    }
    if (overflow) throw makeDbError(8115, {"expression", "bigint"});
    context.giveInteger(r);
}

template <bool kModulo>
void intDivision(SqliteResult context, SqliteArguments a) {
    if (a.anyNull(2)) return context.giveNull();
    const int64_t x = a[0].integer(), y = a[1].integer();
    if (y == 0) throw makeDbError(8134);
    if (y == -1) {
        if (kModulo) return context.giveInteger(0);
        if (x == INT64_MIN) throw makeDbError(8115, {"expression", "bigint"});
        return context.giveInteger(-x);
    }
    context.giveInteger(kModulo ? x % y : x / y);
}

void floatDivision(SqliteResult context, SqliteArguments a) {
    if (a.anyNull(2)) return context.giveNull();
    const double y = a[1].real();
    if (y == 0) throw makeDbError(8134);
    context.giveReal(a[0].real() / y);
}

// t_float: no sum or product may leave the range.
void checkedFloat(SqliteResult context, SqliteArguments a) {
    if (a.anyNull(1)) return context.giveNull();
    const double v = a[0].real();
    if (!std::isfinite(v)) throw makeDbError(8115, {"expression", "float"});
    context.giveReal(v);
}

// t_money(op, a, b, kind): all with four places; a product rounds, a quotient is cut.
void moneyArithmetic(SqliteResult context, SqliteArguments a) {
    if (a.from(1).anyNull(2)) return context.giveNull();
    const int128 x = a[1].integer(), y = a[2].integer();
    const char op = a[0].text()[0];
    if ((op == '/' || op == '%') && y == 0) throw makeDbError(8134);
    const int128 r = op == '+'   ? x + y
                     : op == '-' ? x - y
                     : op == '*' ? shiftDecimal(x * y, -4)
                     : op == '/' ? x * 10000 / y
                                 : x % y;
    const auto kind = static_cast<SqlKind>(a[3].int32());
    const int64_t low = kind == SqlKind::Money ? INT64_MIN : INT32_MIN;
    const int64_t high = kind == SqlKind::Money ? INT64_MAX : INT32_MAX;
    if (r < low || r > high) throw makeDbError(8115, {"expression", SqlType::of(kind).name()});
    context.giveInteger(static_cast<int64_t>(r));
}

// t_num(op, a, scale of a, b, scale of b, scale of the result): * / %
void numericArithmetic(SqliteResult context, SqliteArguments a) {
    if (a[1].isNull() || a[3].isNull()) return context.giveNull();
    const Decimal x(a[1].wide(), a[2].int32());
    const Decimal y(a[3].wide(), a[4].int32());
    const int scale = a[5].int32();
    Decimal r;
    switch (a[0].text()[0]) {
        case '*':
            r = Decimal::multiply(x, y, scale);
            break;
        case '/':
            if (y.unscaled() == 0) throw makeDbError(8134);
            r = Decimal::divide(x, y, scale);
            break;
        default: {
            if (y.unscaled() == 0) throw makeDbError(8134);
            const int s = std::max(x.scale(), y.scale());
            r = Decimal(x.rescaled(s).unscaled() % y.rescaled(s).unscaled(), s);
        }
    }
    context.giveWide(r.rescaled(scale).unscaled());
}

// t_total(scale of the result, value, scale, sign, value, scale, sign, ...)
void numericTotal(SqliteResult context, SqliteArguments a) {
    if (a.anyNull()) return context.giveNull();
    const int scale = a[0].int32();
    Decimal total(0, scale);
    for (int i = 1; i + 2 < a.count(); i += 3) {
        Decimal term(a[i].wide(), a[i + 1].int32());
        if (a[i + 2].int32() < 0) term = -term;
        try {
            total = Decimal::add(total, term);
        } catch (const DecimalOverflow&) {  // too many digits for the finer places
            total = Decimal::add(total.rescaled(scale), term.rescaled(scale));
        }
    }
    context.giveWide(total.rescaled(scale).unscaled());
}

void numericCompare(SqliteResult context, SqliteArguments a) {
    if (a.anyNull(2)) return context.giveNull();
    const int128 x = a[0].wide(), y = a[1].wide();
    context.giveInteger(x < y ? -1 : x > y ? 1 : 0);
}

void numericNegate(SqliteResult context, SqliteArguments a) {
    if (a.anyNull(1)) return context.giveNull();
    context.giveWide(-a[0].wide());
}

void numericAbsolute(SqliteResult context, SqliteArguments a) {
    if (a.anyNull(1)) return context.giveNull();
    const int128 v = a[0].wide();
    context.giveWide(v < 0 ? -v : v);
}

// FLOOR and CEILING: of a numeric the result has no places.
template <bool kCeiling>
void floorFunction(SqliteResult context, SqliteArguments a) {
    if (a[0].isNull()) return context.giveNull();
    const SqlType t = unpackType(a[1].integer());
    if (t.isFloating()) {
        const double v = a[0].real();
        return context.giveReal(kCeiling ? std::ceil(v) : std::floor(v));
    }
    const int128 unit = powerOfTen(t.scale);
    const int128 v = a[0].wide();
    int128 q = v / unit;
    if (v % unit != 0) {
        if (kCeiling && v > 0) ++q;
        if (!kCeiling && v < 0) --q;
    }
    context.giveWide(q);
}

// t_round(value, places, cut, type)
void roundFunction(SqliteResult context, SqliteArguments a) {
    if (a.anyNull(3)) return context.giveNull();
    const SqlType t = unpackType(a[3].integer());
    const int places = std::max(-38, std::min(38, a[1].int32()));
    const bool cut = a[2].int32() != 0;
    if (t.isFloating()) {
        const double v = a[0].real();
        if (!cut) return context.giveReal(roundHalfAway(v, places));
        const double unit = std::pow(10.0, places);
        return context.giveReal(std::trunc(v * unit) / unit);
    }
    const int scale = t.scale;
    const int128 v = a[0].wide();
    if (places >= scale) return context.giveWide(v);
    const int drop = scale - places;
    if (drop > 38) return context.giveWide(0);
    const int128 kept = cut ? v / powerOfTen(drop) : shiftDecimal(v, -drop);
    const int128 r = kept == 0 ? 0 : shiftDecimal(kept, drop);
    if (t.isInteger()) {
        const bool big = t.kind == SqlKind::BigInt;
        if ((!big && (r > INT32_MAX || r < INT32_MIN)) || r > INT64_MAX || r < INT64_MIN)
            throw makeDbError(8115, {"expression", t.name()});
    } else if (Decimal(r, scale).digits() > t.precision) {
        throw makeDbError(8115, {"expression", "numeric"});
    }
    context.giveWide(r);
}

void signFunction(SqliteResult context, SqliteArguments a) {
    if (a[0].isNull()) return context.giveNull();
    const SqlType t = unpackType(a[1].integer());
    const int128 v = a[0].wide();
    context.giveWide((v > 0) - (v < 0) == 0 ? 0 : (v > 0 ? 1 : -1) * powerOfTen(t.scale));
}

void mathFunction(SqliteResult context, SqliteArguments a) {
    if (a.anyNull()) return context.giveNull();
    const std::string_view name = a[0].text();
    const double x = a.count() > 1 ? a[1].real() : 0;
    const double y = a.count() > 2 ? a[2].real() : 0;
    constexpr double kPi = 3.14159265358979323846;
    double r = 0;
    if (name == "POWER")
        r = std::pow(x, y);
    else if (name == "SQRT")
        r = std::sqrt(x);
    else if (name == "SQUARE")
        r = x * x;
    else if (name == "EXP")
        r = std::exp(x);
    else if (name == "LOG")
        r = a.count() > 2 ? std::log(x) / std::log(y) : std::log(x);
    else if (name == "LOG10")
        r = std::log10(x);
    else if (name == "SIN")
        r = std::sin(x);
    else if (name == "COS")
        r = std::cos(x);
    else if (name == "TAN")
        r = std::tan(x);
    else if (name == "COT")
        r = 1 / std::tan(x);
    else if (name == "ASIN")
        r = std::asin(x);
    else if (name == "ACOS")
        r = std::acos(x);
    else if (name == "ATAN")
        r = std::atan(x);
    else if (name == "ATN2")
        r = std::atan2(x, y);
    else if (name == "PI")
        r = kPi;
    else if (name == "RADIANS")
        r = x * kPi / 180;
    else if (name == "DEGREES")
        r = x * 180 / kPi;
    if (std::isnan(r) || (std::isinf(r) && name.starts_with("LOG")))
        throw DbError(3623, 16, 1, 0, "An invalid floating point operation occurred.");
    if (std::isinf(r)) throw makeDbError(8115, {"expression", "float"});
    context.giveReal(r);
}

// RAND: two multiplicative generators, the second of which always starts at the same place.
void randomFunction(SqliteResult context, SqliteArguments a) {
    static thread_local int64_t first = std::random_device{}() % 2147483562 + 1, second = 67890;
    if (a.count() > 0) {
        if (a.anyNull(1)) return context.giveNull();
        first = std::max<int64_t>(1, std::llabs(a[0].integer()) % 2147483563);
        second = 67890;
    }
    first = first * 40014 % 2147483563;
    second = second * 40692 % 2147483399;
    int64_t r = first - second;
    if (r < 1) r += 2147483562;
    context.giveReal(static_cast<double>(r) * 4.656613e-10);
}

// --- aggregates over wide numbers ---

struct WideState {
    unsigned char bytes[16];
    int rows;

    int128 value() const {
        int128 v;
        __builtin_memcpy(&v, bytes, sizeof v);
        return v;
    }
    void set(int128 v) { __builtin_memcpy(bytes, &v, sizeof v); }
};

template <char kOp>
void wideStep(SqliteResult context, SqliteArguments a) {
    if (a[0].isNull()) return;
    auto* s = context.state<WideState>();
    if (!s) return;
    const int128 v = a[0].wide();
    if (s->rows++ == 0)
        s->set(v);
    else if (kOp == '+')
        s->set(s->value() + v);
    else if (kOp == '<' ? v < s->value() : v > s->value())
        s->set(v);
}

// A row leaves the window of a sum.
void wideLeave(SqliteResult context, SqliteArguments a) {
    if (a[0].isNull()) return;
    auto* s = context.state<WideState>();
    s->set(s->value() - a[0].wide());
    --s->rows;
}

void wideFinal(SqliteResult context) {
    auto* s = context.stateSoFar<WideState>();
    if (s && s->rows > 0) context.giveWide(s->value());
}

}  // namespace

void addNumberFunctions(Sqlite& sqlite) {
    sqlite.addFunction("t_int", 2, checkedInt);
    sqlite.addFunction("t_big", 3, bigArithmetic);
    sqlite.addFunction("t_idiv", 2, intDivision<false>);
    sqlite.addFunction("t_imod", 2, intDivision<true>);
    sqlite.addFunction("t_fdiv", 2, floatDivision);
    sqlite.addFunction("t_float", 1, checkedFloat);
    sqlite.addFunction("t_money", 4, moneyArithmetic);
    sqlite.addFunction("t_num", 6, numericArithmetic);
    sqlite.addFunction("t_total", -1, numericTotal);
    sqlite.addFunction("t_ncmp", 2, numericCompare);
    sqlite.addFunction("t_neg", 1, numericNegate);
    sqlite.addFunction("t_abs", 1, numericAbsolute);
    sqlite.addFunction("t_floor", 2, floorFunction<false>);
    sqlite.addFunction("t_ceiling", 2, floorFunction<true>);
    sqlite.addFunction("t_round", 4, roundFunction);
    sqlite.addFunction("t_sign", 2, signFunction);
    sqlite.addFunction("t_math", -1, mathFunction);
    sqlite.addFunction("t_rand", -1, randomFunction, false);
    sqlite.addAggregate("t_nsum", 1, {wideStep<'+'>, wideFinal, wideLeave});
    sqlite.addAggregate("t_nmin", 1, {wideStep<'<'>, wideFinal});
    sqlite.addAggregate("t_nmax", 1, {wideStep<'>'>, wideFinal});
}

}  // namespace owb::tsql
