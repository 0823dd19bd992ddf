// Checked whole-number arithmetic, exact numeric arithmetic, rounding and mathematics.
#include <cmath>
#include <random>

#include "base/number_text.h"
#include "tsql/functions/functions.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

void checkedInt(sqlite3_context* context, int, sqlite3_value** a) {
    if (sqlite3_value_type(a[0]) == SQLITE_NULL) return sqlite3_result_null(context);
    const auto kind = static_cast<SqlKind>(sqlite3_value_int(a[1]));
    const bool real = sqlite3_value_type(a[0]) == SQLITE_FLOAT;
    const int64_t v = sqlite3_value_int64(a[0]);
    int64_t low = INT32_MIN, high = INT32_MAX;
    if (kind == SqlKind::TinyInt) low = 0, high = 255;
    if (kind == SqlKind::SmallInt) low = -32768, high = 32767;
    if (kind == SqlKind::BigInt) low = INT64_MIN, high = INT64_MAX;
    if (real || v < low || v > high)
        throw makeDbError(8115, {"expression", SqlType::of(kind).name()});
    sqlite3_result_int64(context, v);
}

void bigArithmetic(sqlite3_context* context, int, sqlite3_value** a) {
    if (anyNull(2, a + 1)) return sqlite3_result_null(context);
    const int64_t x = sqlite3_value_int64(a[1]), y = sqlite3_value_int64(a[2]);
    int64_t r = 0;
    bool overflow = false;
    switch (argumentText(a[0])[0]) {
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
    sqlite3_result_int64(context, r);
}

template <bool kModulo>
void intDivision(sqlite3_context* context, int, sqlite3_value** a) {
    if (anyNull(2, a)) return sqlite3_result_null(context);
    const int64_t x = sqlite3_value_int64(a[0]), y = sqlite3_value_int64(a[1]);
    if (y == 0) throw makeDbError(8134);
    if (y == -1) {
        if (kModulo) return sqlite3_result_int64(context, 0);
        if (x == INT64_MIN) throw makeDbError(8115, {"expression", "bigint"});
        return sqlite3_result_int64(context, -x);
    }
    sqlite3_result_int64(context, kModulo ? x % y : x / y);
}

void floatDivision(sqlite3_context* context, int, sqlite3_value** a) {
    if (anyNull(2, a)) return sqlite3_result_null(context);
    const double y = sqlite3_value_double(a[1]);
    if (y == 0) throw makeDbError(8134);
    sqlite3_result_double(context, sqlite3_value_double(a[0]) / y);
}

// t_float: no sum or product may leave the range.
void checkedFloat(sqlite3_context* context, int, sqlite3_value** a) {
    if (anyNull(1, a)) return sqlite3_result_null(context);
    const double v = sqlite3_value_double(a[0]);
    if (!std::isfinite(v)) throw makeDbError(8115, {"expression", "float"});
    sqlite3_result_double(context, v);
}

// t_money(op, a, b, kind): all with four places; a product rounds, a quotient is cut.
void moneyArithmetic(sqlite3_context* context, int, sqlite3_value** a) {
    if (anyNull(2, a + 1)) return sqlite3_result_null(context);
    const int128 x = sqlite3_value_int64(a[1]), y = sqlite3_value_int64(a[2]);
    const char op = argumentText(a[0])[0];
    if ((op == '/' || op == '%') && y == 0) throw makeDbError(8134);
    const int128 r = op == '+'   ? x + y
                     : op == '-' ? x - y
                     : op == '*' ? shiftDecimal(x * y, -4)
                     : op == '/' ? x * 10000 / y
                                 : x % y;
    const auto kind = static_cast<SqlKind>(sqlite3_value_int(a[3]));
    const int64_t low = kind == SqlKind::Money ? INT64_MIN : INT32_MIN;
    const int64_t high = kind == SqlKind::Money ? INT64_MAX : INT32_MAX;
    if (r < low || r > high) throw makeDbError(8115, {"expression", SqlType::of(kind).name()});
    sqlite3_result_int64(context, static_cast<int64_t>(r));
}

// t_num(op, a, scale of a, b, scale of b, scale of the result): * / %
void numericArithmetic(sqlite3_context* context, int, sqlite3_value** a) {
    if (sqlite3_value_type(a[1]) == SQLITE_NULL || sqlite3_value_type(a[3]) == SQLITE_NULL)
        return sqlite3_result_null(context);
    const Decimal x(wideNumber(a[1]), sqlite3_value_int(a[2]));
    const Decimal y(wideNumber(a[3]), sqlite3_value_int(a[4]));
    const int scale = sqlite3_value_int(a[5]);
    Decimal r;
    switch (argumentText(a[0])[0]) {
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
    resultWide(context, r.rescaled(scale).unscaled());
}

// t_total(scale of the result, value, scale, sign, value, scale, sign, ...)
void numericTotal(sqlite3_context* context, int n, sqlite3_value** a) {
    if (anyNull(n, a)) return sqlite3_result_null(context);
    const int scale = sqlite3_value_int(a[0]);
    Decimal total(0, scale);
    for (int i = 1; i + 2 < n; i += 3) {
        Decimal term(wideNumber(a[i]), sqlite3_value_int(a[i + 1]));
        if (sqlite3_value_int(a[i + 2]) < 0) term = -term;
        try {
            total = Decimal::add(total, term);
        } catch (const DecimalOverflow&) {  // too many digits for the finer places
            total = Decimal::add(total.rescaled(scale), term.rescaled(scale));
        }
    }
    resultWide(context, total.rescaled(scale).unscaled());
}

void numericCompare(sqlite3_context* context, int, sqlite3_value** a) {
    if (anyNull(2, a)) return sqlite3_result_null(context);
    const int128 x = wideNumber(a[0]), y = wideNumber(a[1]);
    sqlite3_result_int(context, x < y ? -1 : x > y ? 1 : 0);
}

void numericNegate(sqlite3_context* context, int, sqlite3_value** a) {
    if (anyNull(1, a)) return sqlite3_result_null(context);
    resultWide(context, -wideNumber(a[0]));
}

void numericAbsolute(sqlite3_context* context, int, sqlite3_value** a) {
    if (anyNull(1, a)) return sqlite3_result_null(context);
    const int128 v = wideNumber(a[0]);
    resultWide(context, v < 0 ? -v : v);
}

// FLOOR and CEILING: of a numeric the result has no places.
template <bool kCeiling>
void floorFunction(sqlite3_context* context, int, sqlite3_value** a) {
    if (sqlite3_value_type(a[0]) == SQLITE_NULL) return sqlite3_result_null(context);
    const SqlType t = unpackType(sqlite3_value_int64(a[1]));
    if (t.isFloating()) {
        const double v = sqlite3_value_double(a[0]);
        return sqlite3_result_double(context, kCeiling ? std::ceil(v) : std::floor(v));
    }
    const int128 unit = powerOfTen(t.scale);
    const int128 v = wideNumber(a[0]);
    int128 q = v / unit;
    if (v % unit != 0) {
        if (kCeiling && v > 0) ++q;
        if (!kCeiling && v < 0) --q;
    }
    resultWide(context, q);
}

// t_round(value, places, cut, type)
void roundFunction(sqlite3_context* context, int, sqlite3_value** a) {
    if (anyNull(3, a)) return sqlite3_result_null(context);
    const SqlType t = unpackType(sqlite3_value_int64(a[3]));
    const int places = std::max(-38, std::min(38, sqlite3_value_int(a[1])));
    const bool cut = sqlite3_value_int(a[2]) != 0;
    if (t.isFloating()) {
        const double v = sqlite3_value_double(a[0]);
        if (!cut) return sqlite3_result_double(context, roundHalfAway(v, places));
        const double unit = std::pow(10.0, places);
        return sqlite3_result_double(context, std::trunc(v * unit) / unit);
    }
    const int scale = t.scale;
    const int128 v = wideNumber(a[0]);
    if (places >= scale) return resultWide(context, v);
    const int drop = scale - places;
    if (drop > 38) return resultWide(context, 0);
    const int128 kept = cut ? v / powerOfTen(drop) : shiftDecimal(v, -drop);
    const int128 r = kept == 0 ? 0 : shiftDecimal(kept, drop);
    if (t.isInteger()) {
        const bool big = t.kind == SqlKind::BigInt;
        if ((!big && (r > INT32_MAX || r < INT32_MIN)) || r > INT64_MAX || r < INT64_MIN)
            throw makeDbError(8115, {"expression", t.name()});
    } else if (Decimal(r, scale).digits() > t.precision) {
        throw makeDbError(8115, {"expression", "numeric"});
    }
    resultWide(context, r);
}

void signFunction(sqlite3_context* context, int, sqlite3_value** a) {
    if (sqlite3_value_type(a[0]) == SQLITE_NULL) return sqlite3_result_null(context);
    const SqlType t = unpackType(sqlite3_value_int64(a[1]));
    const int128 v = wideNumber(a[0]);
    resultWide(context, (v > 0) - (v < 0) == 0 ? 0 : (v > 0 ? 1 : -1) * powerOfTen(t.scale));
}

void mathFunction(sqlite3_context* context, int n, sqlite3_value** a) {
    if (anyNull(n, a)) return sqlite3_result_null(context);
    const std::string_view name = argumentText(a[0]);
    const double x = n > 1 ? sqlite3_value_double(a[1]) : 0;
    const double y = n > 2 ? sqlite3_value_double(a[2]) : 0;
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
        r = n > 2 ? std::log(x) / std::log(y) : std::log(x);
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
    sqlite3_result_double(context, r);
}

// RAND: two multiplicative generators, the second of which always starts at the same place.
void randomFunction(sqlite3_context* context, int n, sqlite3_value** a) {
    static thread_local int64_t first = std::random_device{}() % 2147483562 + 1, second = 67890;
    if (n > 0) {
        if (anyNull(1, a)) return sqlite3_result_null(context);
        first = std::max<int64_t>(1, std::llabs(sqlite3_value_int64(a[0])) % 2147483563);
        second = 67890;
    }
    first = first * 40014 % 2147483563;
    second = second * 40692 % 2147483399;
    int64_t r = first - second;
    if (r < 1) r += 2147483562;
    sqlite3_result_double(context, static_cast<double>(r) * 4.656613e-10);
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
void wideStep(sqlite3_context* context, int, sqlite3_value** a) {
    if (sqlite3_value_type(a[0]) == SQLITE_NULL) return;
    auto* s = static_cast<WideState*>(sqlite3_aggregate_context(context, sizeof(WideState)));
    if (!s) return;
    const int128 v = wideNumber(a[0]);
    if (s->rows++ == 0)
        s->set(v);
    else if (kOp == '+')
        s->set(s->value() + v);
    else if (kOp == '<' ? v < s->value() : v > s->value())
        s->set(v);
}

// A row leaves the window of a sum.
void wideLeave(sqlite3_context* context, int, sqlite3_value** a) {
    if (sqlite3_value_type(a[0]) == SQLITE_NULL) return;
    auto* s = static_cast<WideState*>(sqlite3_aggregate_context(context, sizeof(WideState)));
    s->set(s->value() - wideNumber(a[0]));
    --s->rows;
}

void wideFinal(sqlite3_context* context) {
    auto* s = static_cast<WideState*>(sqlite3_aggregate_context(context, 0));
    if (s && s->rows > 0) resultWide(context, s->value());
}

}  // namespace

void registerNumberFunctions(Sqlite& sqlite) {
    registerFunction(sqlite, "t_int", 2, checkedInt);
    registerFunction(sqlite, "t_big", 3, bigArithmetic);
    registerFunction(sqlite, "t_idiv", 2, intDivision<false>);
    registerFunction(sqlite, "t_imod", 2, intDivision<true>);
    registerFunction(sqlite, "t_fdiv", 2, floatDivision);
    registerFunction(sqlite, "t_float", 1, checkedFloat);
    registerFunction(sqlite, "t_money", 4, moneyArithmetic);
    registerFunction(sqlite, "t_num", 6, numericArithmetic);
    registerFunction(sqlite, "t_total", -1, numericTotal);
    registerFunction(sqlite, "t_ncmp", 2, numericCompare);
    registerFunction(sqlite, "t_neg", 1, numericNegate);
    registerFunction(sqlite, "t_abs", 1, numericAbsolute);
    registerFunction(sqlite, "t_floor", 2, floorFunction<false>);
    registerFunction(sqlite, "t_ceiling", 2, floorFunction<true>);
    registerFunction(sqlite, "t_round", 4, roundFunction);
    registerFunction(sqlite, "t_sign", 2, signFunction);
    registerFunction(sqlite, "t_math", -1, mathFunction);
    registerFunction(sqlite, "t_rand", -1, randomFunction, false);
    sqlite3_create_window_function(sqlite.handle(), "t_nsum", 1, SQLITE_UTF8, nullptr,
                                   wideStep<'+'>, wideFinal, wideFinal, wideLeave, nullptr);
    sqlite3_create_function_v2(sqlite.handle(), "t_nmin", 1, SQLITE_UTF8, nullptr, nullptr,
                               wideStep<'<'>, wideFinal, nullptr);
    sqlite3_create_function_v2(sqlite.handle(), "t_nmax", 1, SQLITE_UTF8, nullptr, nullptr,
                               wideStep<'>'>, wideFinal, nullptr);
}

}  // namespace owb::tsql
