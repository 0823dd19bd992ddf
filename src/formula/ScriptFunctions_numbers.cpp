// Arithmetic functions, conversions between types, and what a value is.
#include <charconv>
#include <cmath>

#include "formula/ScriptDates.h"
#include "formula/ScriptFunctions.h"
#include "formula/ScriptOperators.h"

namespace owb {

namespace {

using Arguments = ScriptArguments;
using Type = ScriptValue::Type;

double positive(double v, bool zeroToo) {
    if (v < 0 || (v == 0 && !zeroToo)) throw ScriptError{ScriptError::InvalidCall};
    return v;
}

// Applies a rounding that keeps the value's type.
ScriptValue roundedBy(const ScriptValue& v, double (*round)(double)) {
    switch (v.type()) {
        case Type::Empty:
        case Type::Boolean:
            return ScriptValue::integer(v.isEmpty() ? 0 : v.wholeValue());
        case Type::Null:
        case Type::Byte:
        case Type::Integer:
        case Type::Long:
            return v;
        case Type::Currency:
            return ScriptValue::currency(
                static_cast<int64_t>(round(static_cast<double>(v.wholeValue()) / kCurrencyUnit)) *
                kCurrencyUnit);
        case Type::Single:
            return ScriptValue::single(round(v.numberValue()));
        case Type::Date:
            return ScriptValue::date(round(v.numberValue()));
        default:
            return ScriptValue::number(round(v.toNumber()));
    }
}

ScriptValue absolute(const ScriptValue& v) {
    if (v.isNull()) return v;
    const ScriptValue signless = v.isText() ? ScriptValue::number(v.toNumber()) : v;
    if (signless.toNumber() < 0) return applyOperator(ScriptOperator::Negate, signless);
    return v.isEmpty() || v.type() == Type::Boolean ? ScriptValue::integer(0) : signless;
}

// Halves to the even neighbour.
ScriptValue rounded(const Arguments& a) {
    const int64_t places = a.longOr(1, 0);
    if (places < 0) throw ScriptError{ScriptError::InvalidCall};
    if (a[0].isNull() || (a[0].isWhole() && a[0].type() != Type::Currency)) {
        return a[0].type() == Type::Boolean ? ScriptValue::integer(a[0].wholeValue()) : a[0];
    }
    if (a[0].isEmpty()) return ScriptValue::integer(0);
    const double value = a[0].toNumber();
    const double unit = std::pow(10.0, static_cast<double>(places));
    const double scaled = value * unit;
    // Beyond 2^53 there are no decimals to round.
    const double result = places > 22 || std::fabs(scaled) > 9007199254740992.0
                              ? value
                              : std::nearbyint(scaled) / unit;
    switch (a[0].type()) {
        case Type::Single:
            return ScriptValue::single(result);
        case Type::Currency:
            return ScriptValue::currency(ScriptValue::number(result).toCurrency());
        case Type::Date:
            return ScriptValue::date(result);
        default:
            return ScriptValue::number(result);
    }
}

ScriptValue radixText(const ScriptValue& v, int base) {
    if (v.isNull()) return v;
    const bool narrow = v.type() <= Type::Integer;
    const uint32_t bits = narrow ? static_cast<uint16_t>(v.isEmpty() ? 0 : v.wholeValue())
                                 : static_cast<uint32_t>(v.toLong());
    char buffer[16];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, bits, base);
    for (char* c = buffer; c != end; ++c)
        if (*c >= 'a') *c = static_cast<char>(*c - 32);
    return ScriptValue::text(std::string(buffer, end));
}

ScriptValue color(const Arguments& a) {
    int64_t result = 0;
    for (size_t i = 3; i-- > 0;) {
        const int64_t part = a[i].toWhole(INT16_MIN, INT16_MAX);
        if (part < 0) throw ScriptError{ScriptError::InvalidCall};
        result = result * 256 + std::min<int64_t>(part, 255);
    }
    return ScriptValue::longInt(result);
}

const char* typeName(const ScriptValue& v) {
    static constexpr const char* kNames[] = {"Empty",  "Null",     "Error", "Boolean",
                                             "Byte",   "Integer",  "Long",  "Single",
                                             "Double", "Currency", "Date",  "String"};
    return kNames[static_cast<size_t>(v.type())];
}

int typeNumber(const ScriptValue& v) {
    static constexpr int kNumbers[] = {0, 1, 10, 11, 17, 2, 3, 4, 5, 6, 7, 8};
    return kNumbers[static_cast<size_t>(v.type())];
}

bool isNumeric(const ScriptValue& v) {
    double number = 0;
    if (v.isText()) return scriptNumber(v.textValue(), number) && std::isfinite(number);
    return !v.isNull() && !v.isDate() && !v.isMissing();
}

bool isDate(const ScriptValue& v) {
    double days = 0;
    return v.isDate() || (v.isText() && readScriptDate(v.textValue(), days));
}

template <double (*function)(double)>
ScriptValue real(const Arguments& a) {
    if (a[0].isNull()) throw ScriptError{ScriptError::InvalidNull};
    return ScriptValue::number(function(a[0].toNumber()));
}

constexpr ScriptFunction kNumberFunctions[] = {
    {"ABS", 1, 1, [](const Arguments& a) { return absolute(a[0]); }},
    {"SGN", 1, 1,
     [](const Arguments& a) {
         const double v = a[0].toNumber();
         return ScriptValue::integer(v > 0 ? 1 : v < 0 ? -1 : 0);
     }},
    {"SQR", 1, 1,
     [](const Arguments& a) {
         return ScriptValue::number(std::sqrt(positive(a[0].toNumber(), true)));
     }},
    {"LOG", 1, 1,
     [](const Arguments& a) {
         return ScriptValue::number(std::log(positive(a[0].toNumber(), false)));
     }},
    {"EXP", 1, 1, real<std::exp>},
    {"SIN", 1, 1, real<std::sin>},
    {"COS", 1, 1, real<std::cos>},
    {"TAN", 1, 1, real<std::tan>},
    {"ATN", 1, 1, real<std::atan>},
    {"INT", 1, 1, [](const Arguments& a) { return roundedBy(a[0], std::floor); }},
    {"FIX", 1, 1, [](const Arguments& a) { return roundedBy(a[0], std::trunc); }},
    {"ROUND", 1, 2, rounded},
    {"HEX", 1, 1, [](const Arguments& a) { return radixText(a[0], 16); }},
    {"OCT", 1, 1, [](const Arguments& a) { return radixText(a[0], 8); }},
    {"RGB", 3, 3, color},
    // A figure of the pay must come out the same twice.
    {"RND", 0, 255,
     [](const Arguments&) -> ScriptValue {
         throw ScriptError{ScriptError::InvalidFunction, "RND"};
     }},
};

constexpr ScriptFunction kConversions[] = {
    {"CBOOL", 1, 1, [](const Arguments& a) { return ScriptValue::boolean(a[0].toBoolean()); }},
    {"CBYTE", 1, 1,
     [](const Arguments& a) {
         return ScriptValue::wholeOf(Type::Byte, a[0].toWhole(0, UINT8_MAX));
     }},
    {"CINT", 1, 1,
     [](const Arguments& a) { return ScriptValue::integer(a[0].toWhole(INT16_MIN, INT16_MAX)); }},
    {"CLNG", 1, 1, [](const Arguments& a) { return ScriptValue::longInt(a[0].toLong()); }},
    {"CSNG", 1, 1,
     [](const Arguments& a) {
         const ScriptValue result = ScriptValue::single(a[0].toNumber());
         if (result.type() != Type::Single) throw ScriptError{ScriptError::Overflow};
         return result;
     }},
    {"CDBL", 1, 1, [](const Arguments& a) { return ScriptValue::number(a[0].toNumber()); }},
    {"CCUR", 1, 1, [](const Arguments& a) { return ScriptValue::currency(a[0].toCurrency()); }},
    {"CDATE", 1, 1, [](const Arguments& a) { return ScriptValue::date(a[0].toDate()); }},
    {"CSTR", 1, 1, [](const Arguments& a) { return ScriptValue::text(a[0].toText()); }},
    {"ISNUMERIC", 1, 1, [](const Arguments& a) { return ScriptValue::boolean(isNumeric(a[0])); }},
    {"ISDATE", 1, 1, [](const Arguments& a) { return ScriptValue::boolean(isDate(a[0])); }},
    {"ISNULL", 1, 1, [](const Arguments& a) { return ScriptValue::boolean(a[0].isNull()); }},
    {"ISEMPTY", 1, 1, [](const Arguments& a) { return ScriptValue::boolean(a[0].isEmpty()); }},
    {"ISOBJECT", 1, 1, [](const Arguments&) { return ScriptValue::boolean(false); }},
    {"ISARRAY", 1, 1, [](const Arguments&) { return ScriptValue::boolean(false); }},
    {"TYPENAME", 1, 1, [](const Arguments& a) { return ScriptValue::text(typeName(a[0])); }},
    {"VARTYPE", 1, 1, [](const Arguments& a) { return ScriptValue::integer(typeNumber(a[0])); }},
};

}  // namespace

std::span<const ScriptFunction> scriptNumberFunctions() {
    return kNumberFunctions;
}
std::span<const ScriptFunction> scriptConversions() {
    return kConversions;
}

}  // namespace owb
