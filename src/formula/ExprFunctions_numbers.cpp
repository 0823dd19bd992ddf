// Arithmetic functions, conversions between types, and what a value is.
#include <charconv>
#include <cmath>

#include "formula/ExprDates.h"
#include "formula/ExprFunctions.h"
#include "formula/ExprOperators.h"

namespace owb {

namespace {

using Arguments = ExprArguments;
using Type = ExprValue::Type;

double positive(double v, bool zeroToo) {
    if (v < 0 || (v == 0 && !zeroToo)) throw ExprError{ExprError::InvalidCall};
    return v;
}

// The whole part, below the value (Int) or towards zero (Fix), of the value's own type.
ExprValue wholePart(const ExprValue& v, bool towardsZero) {
    const auto part = [&](double d) { return towardsZero ? std::trunc(d) : std::floor(d); };
    switch (v.type()) {
        case Type::Empty:
        case Type::Boolean:
            return ExprValue::integer(v.isEmpty() ? 0 : v.wholeValue());
        case Type::Null:
        case Type::Byte:
        case Type::Integer:
        case Type::Long:
            return v;
        case Type::Currency: {
            const int64_t places = v.wholeValue() % kCurrencyUnit;
            const int64_t cut = v.wholeValue() - places;
            if (towardsZero || places >= 0) return ExprValue::currency(cut);
            if (cut < INT64_MIN + kCurrencyUnit) throw ExprError{ExprError::Overflow};
            return ExprValue::currency(cut - kCurrencyUnit);
        }
        case Type::Single:
            return ExprValue::single(part(v.numberValue()));
        case Type::Date:
            return ExprValue::date(part(v.numberValue()));
        default:
            return ExprValue::number(part(v.toNumber()));
    }
}

ExprValue absolute(const ExprValue& v) {
    if (v.isNull()) return v;
    const ExprValue signless = v.isText() ? ExprValue::number(v.toNumber()) : v;
    if (signless.toNumber() < 0) return applyOperator(ExprOperator::Negate, signless);
    return v.isEmpty() || v.type() == Type::Boolean ? ExprValue::integer(0) : signless;
}

// Halves to the even neighbour.
ExprValue rounded(const Arguments& a) {
    const int64_t places = a.longOr(1, 0);
    if (places < 0) throw ExprError{ExprError::InvalidCall};
    if (a[0].isNull() || (a[0].isWhole() && a[0].type() != Type::Currency)) {
        return a[0].type() == Type::Boolean ? ExprValue::integer(a[0].wholeValue()) : a[0];
    }
    if (a[0].isEmpty()) return ExprValue::integer(0);
    const double value = a[0].toNumber();
    const double unit = std::pow(10.0, static_cast<double>(places));
    const double scaled = value * unit;
    // Beyond 2^53 there are no decimals to round.
    const double result = places > 22 || std::fabs(scaled) > 9007199254740992.0
                              ? value
                              : std::nearbyint(scaled) / unit;
    switch (a[0].type()) {
        case Type::Single:
            return ExprValue::single(result);
        case Type::Currency:
            return ExprValue::currency(ExprValue::number(result).toCurrency());
        case Type::Date:
            return ExprValue::date(result);
        default:
            return ExprValue::number(result);
    }
}

ExprValue radixText(const ExprValue& v, int base) {
    if (v.isNull()) return v;
    const bool narrow = v.type() <= Type::Integer;
    const uint32_t bits = narrow ? static_cast<uint16_t>(v.isEmpty() ? 0 : v.wholeValue())
                                 : static_cast<uint32_t>(v.toLong());
    char buffer[16];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, bits, base);
    for (char* c = buffer; c != end; ++c)
        if (*c >= 'a') *c = static_cast<char>(*c - 32);
    return ExprValue::text(std::string(buffer, end));
}

ExprValue color(const Arguments& a) {
    int64_t result = 0;
    for (size_t i = 3; i-- > 0;) {
        const int64_t part = a[i].toWhole(INT16_MIN, INT16_MAX);
        if (part < 0) throw ExprError{ExprError::InvalidCall};
        result = result * 256 + std::min<int64_t>(part, 255);
    }
    return ExprValue::longInt(result);
}

int typeNumber(const ExprValue& v) {
    static constexpr int kNumbers[] = {0, 1, 10, 11, 17, 2, 3, 4, 5, 6, 7, 8};
    return kNumbers[static_cast<size_t>(v.type())];
}

bool isNumeric(const ExprValue& v) {
    double number = 0;
    if (v.isText()) return exprNumber(v.textValue(), number) && std::isfinite(number);
    return !v.isNull() && !v.isDate() && !v.isMissing();
}

bool isDate(const ExprValue& v) {
    double days = 0;
    return v.isDate() || (v.isText() && readExprDate(v.textValue(), days));
}

template <double (*function)(double)>
ExprValue real(const Arguments& a) {
    if (a[0].isNull()) throw ExprError{ExprError::InvalidNull};
    return ExprValue::number(function(a[0].toNumber()));
}

constexpr ExprFunction kNumberFunctions[] = {
    {"ABS", 1, 1, [](const Arguments& a) { return absolute(a[0]); }},
    {"SGN", 1, 1,
     [](const Arguments& a) {
         const double v = a[0].toNumber();
         return ExprValue::integer(v > 0 ? 1 : v < 0 ? -1 : 0);
     }},
    {"SQR", 1, 1,
     [](const Arguments& a) {
         return ExprValue::number(std::sqrt(positive(a[0].toNumber(), true)));
     }},
    {"LOG", 1, 1,
     [](const Arguments& a) {
         return ExprValue::number(std::log(positive(a[0].toNumber(), false)));
     }},
    {"EXP", 1, 1, real<std::exp>},
    {"SIN", 1, 1, real<std::sin>},
    {"COS", 1, 1, real<std::cos>},
    {"TAN", 1, 1, real<std::tan>},
    {"ATN", 1, 1, real<std::atan>},
    {"INT", 1, 1, [](const Arguments& a) { return wholePart(a[0], false); }},
    {"FIX", 1, 1, [](const Arguments& a) { return wholePart(a[0], true); }},
    {"ROUND", 1, 2, rounded},
    {"HEX", 1, 1, [](const Arguments& a) { return radixText(a[0], 16); }},
    {"OCT", 1, 1, [](const Arguments& a) { return radixText(a[0], 8); }},
    {"RGB", 3, 3, color},
    // A figure of the pay must come out the same twice.
    {"RND", 0, 255,
     [](const Arguments&) -> ExprValue {
         throw ExprError{ExprError::InvalidFunction, "RND"};
     }},
};

constexpr ExprFunction kConversions[] = {
    {"CBOOL", 1, 1, [](const Arguments& a) { return ExprValue::boolean(a[0].toBoolean()); }},
    {"CBYTE", 1, 1,
     [](const Arguments& a) {
         return ExprValue::wholeOf(Type::Byte, a[0].type() == Type::Boolean
                                                   ? a[0].wholeValue() & UINT8_MAX
                                                   : a[0].toWhole(0, UINT8_MAX));
     }},
    {"CINT", 1, 1,
     [](const Arguments& a) { return ExprValue::integer(a[0].toWhole(INT16_MIN, INT16_MAX)); }},
    {"CLNG", 1, 1, [](const Arguments& a) { return ExprValue::longInt(a[0].toLong()); }},
    {"CSNG", 1, 1,
     [](const Arguments& a) {
         const ExprValue result = ExprValue::single(a[0].toNumber());
         if (result.type() != Type::Single) throw ExprError{ExprError::Overflow};
         return result;
     }},
    {"CDBL", 1, 1, [](const Arguments& a) { return ExprValue::number(a[0].toNumber()); }},
    {"CCUR", 1, 1, [](const Arguments& a) { return ExprValue::currency(a[0].toCurrency()); }},
    {"CDATE", 1, 1, [](const Arguments& a) { return ExprValue::date(a[0].toDate()); }},
    {"CSTR", 1, 1, [](const Arguments& a) { return ExprValue::text(a[0].toText()); }},
    {"ISNUMERIC", 1, 1, [](const Arguments& a) { return ExprValue::boolean(isNumeric(a[0])); }},
    {"ISDATE", 1, 1, [](const Arguments& a) { return ExprValue::boolean(isDate(a[0])); }},
    {"ISNULL", 1, 1, [](const Arguments& a) { return ExprValue::boolean(a[0].isNull()); }},
    {"ISEMPTY", 1, 1, [](const Arguments& a) { return ExprValue::boolean(a[0].isEmpty()); }},
    {"ISOBJECT", 1, 1, [](const Arguments&) { return ExprValue::boolean(false); }},
    {"ISARRAY", 1, 1, [](const Arguments&) { return ExprValue::boolean(false); }},
    {"TYPENAME", 1, 1, [](const Arguments& a) { return ExprValue::text(a[0].typeName()); }},
    {"VARTYPE", 1, 1, [](const Arguments& a) { return ExprValue::integer(typeNumber(a[0])); }},
};

}  // namespace

std::span<const ExprFunction> exprNumberFunctions() {
    return kNumberFunctions;
}
std::span<const ExprFunction> exprConversions() {
    return kConversions;
}

}  // namespace owb
