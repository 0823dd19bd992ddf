#include "formula/ExprValue.h"

#include <string.h>

#include <charconv>
#include <cmath>

#include "base/utf8.h"
#include "formula/ExprDates.h"

namespace owb {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool fits(ExprValue::Type type, int64_t v) {
    switch (type) {
        case ExprValue::Type::Byte:
            return v >= 0 && v <= UINT8_MAX;
        case ExprValue::Type::Integer:
            return v >= INT16_MIN && v <= INT16_MAX;
        default:
            return v >= INT32_MIN && v <= INT32_MAX;
    }
}

// "&HFF" and "&O17": the digits behind the letter.
bool radixNumber(std::string_view digits, int base, double& out) {
    uint32_t bits = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), bits, base);
    if (error != std::errc() || end != digits.data() + digits.size()) return false;
    out = bits <= UINT16_MAX ? static_cast<int16_t>(bits) : static_cast<int32_t>(bits);
    return true;
}

}  // namespace

const char* ExprValue::typeName() const {
    static constexpr const char* kNames[] = {"Empty",  "Null",     "Error", "Boolean",
                                             "Byte",   "Integer",  "Long",  "Single",
                                             "Double", "Currency", "Date",  "String"};
    return kNames[static_cast<size_t>(type_)];
}

ExprValue ExprValue::whole(int64_t v) {
    return wholeOf(Type::Integer, v);
}

ExprValue ExprValue::wholeOf(Type atLeast, int64_t v) {
    for (Type type : {Type::Byte, Type::Integer, Type::Long})
        if (type >= atLeast && fits(type, v)) return ExprValue(type, v);
    return ExprValue(Type::Double, static_cast<double>(v));
}

ExprValue ExprValue::single(double v) {
    const float narrow = static_cast<float>(v);
    if (!std::isfinite(narrow)) return number(v);
    return ExprValue(Type::Single, static_cast<double>(narrow));
}

ExprValue ExprValue::number(double v) {
    if (!std::isfinite(v)) throw ExprError{ExprError::Overflow};
    return ExprValue(Type::Double, v);
}

ExprValue ExprValue::date(double days) {
    if (!(days >= kFirstExprDay && days < kLastExprDay + 1)) return number(days);
    return ExprValue(Type::Date, days);
}

double ExprValue::toNumber() const {
    switch (type_) {
        case Type::Empty:
            return 0;
        case Type::Null:
            throw ExprError{ExprError::InvalidNull};
        case Type::Boolean:
        case Type::Byte:
        case Type::Integer:
        case Type::Long:
            return static_cast<double>(whole_);
        case Type::Currency:
            return static_cast<double>(whole_) / kCurrencyUnit;
        case Type::Single:
        case Type::Double:
        case Type::Date:
            return number_;
        case Type::String: {
            double result = 0;
            if (!exprNumber(text_, result)) throw ExprError{ExprError::TypeMismatch};
            if (!std::isfinite(result)) throw ExprError{ExprError::Overflow};
            return result;
        }
        case Type::Missing:
            break;
    }
    throw ExprError{ExprError::TypeMismatch};
}

int64_t ExprValue::toWhole(int64_t low, int64_t high) const {
    if (isWhole() && type_ != Type::Currency) {
        if (whole_ < low || whole_ > high) throw ExprError{ExprError::Overflow};
        return whole_;
    }
    const double rounded = std::nearbyint(toNumber());
    if (!(rounded >= static_cast<double>(low) && rounded <= static_cast<double>(high)))
        throw ExprError{ExprError::Overflow};
    return static_cast<int64_t>(rounded);
}

int64_t ExprValue::toCurrency() const {
    if (type_ == Type::Currency) return whole_;
    const double scaled = std::nearbyint(toNumber() * kCurrencyUnit);
    if (!(std::fabs(scaled) < 9223372036854775807.0)) throw ExprError{ExprError::Overflow};
    return static_cast<int64_t>(scaled);
}

bool ExprValue::toBoolean() const {
    if (type_ == Type::String) {
        if (equalsIgnoreCaseAscii(text_, "TRUE")) return true;
        if (equalsIgnoreCaseAscii(text_, "FALSE")) return false;
    }
    return toNumber() != 0;
}

std::string ExprValue::toText() const {
    switch (type_) {
        case Type::Empty:
            return "";
        case Type::Null:
            throw ExprError{ExprError::InvalidNull};
        case Type::Boolean:
            return whole_ ? "True" : "False";
        case Type::Byte:
        case Type::Integer:
        case Type::Long:
            return std::to_string(whole_);
        case Type::Currency: {
            const uint64_t size = whole_ < 0 ? 0 - static_cast<uint64_t>(whole_) : whole_;
            std::string places = std::to_string(kCurrencyUnit + size % kCurrencyUnit).substr(1);
            while (!places.empty() && places.back() == '0') places.pop_back();
            return (whole_ < 0 ? "-" : "") + std::to_string(size / kCurrencyUnit) +
                   (places.empty() ? "" : "." + places);
        }
        case Type::Single:
            return exprNumberText(number_, 7);
        case Type::Double:
            return exprNumberText(number_);
        case Type::Date:
            return exprDateText(number_);
        case Type::String:
            return text_;
        case Type::Missing:
            break;
    }
    throw ExprError{ExprError::TypeMismatch};
}

double ExprValue::toDate() const {
    double days = 0;
    if (type_ == Type::String && readExprDate(text_, days)) return days;
    days = toNumber();
    if (!(days >= kFirstExprDay && days < kLastExprDay + 1)) throw ExprError{ExprError::Overflow};
    return days;
}

bool exprNumber(std::string_view text, double& out) {
    const auto skipBlanks = [&text] {
        while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    };
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    skipBlanks();
    if (text.size() > 2 && text[0] == '&' && (text[1] == 'H' || text[1] == 'h'))
        return radixNumber(text.substr(2), 16, out);
    if (text.size() > 2 && text[0] == '&' && (text[1] == 'O' || text[1] == 'o'))
        return radixNumber(text.substr(2), 8, out);

    bool negative = false, sign = false, currency = false;
    if (text.size() > 1 && text.front() == '(' && text.back() == ')') {
        negative = sign = true;
        text = text.substr(1, text.size() - 2);
    }
    for (; !text.empty(); text.remove_prefix(1)) {
        const char c = text.front();
        if ((c == '-' || c == '+') && !sign) {
            sign = true;
            negative = c == '-';
        } else if (c == '$' && !currency) {
            currency = true;
        } else if (!isBlank(c)) {
            break;
        }
    }
    if (!text.empty() && (text.back() == '-' || text.back() == '+') && !sign) {
        negative = text.back() == '-';
        text.remove_suffix(1);
        while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    }

    std::string plain;
    bool digits = false, point = false;
    for (; !text.empty(); text.remove_prefix(1)) {
        const char c = text.front();
        if (isDigit(c)) {
            digits = true;
            plain += c;
        } else if (c == '.' && !point) {
            point = true;
            plain += c;
        } else if (c != ',' || !digits || point) {
            break;
        }
    }
    if (!digits) return false;
    if (text.size() > 1 && std::string_view("EeDd").find(text.front()) != std::string_view::npos) {
        plain += 'e';
        text.remove_prefix(1);
        if (text.front() == '+' || text.front() == '-') {
            if (text.front() == '-') plain += '-';
            text.remove_prefix(1);
        }
        if (text.empty()) return false;
        while (!text.empty() && isDigit(text.front())) {
            plain += text.front();
            text.remove_prefix(1);
        }
        if (!isDigit(plain.back())) return false;
    }
    if (!text.empty()) return false;
    const auto [end, error] = std::from_chars(plain.data(), plain.data() + plain.size(), out);
    if (error == std::errc::result_out_of_range)
        out = plain.find("e-") == std::string::npos ? HUGE_VAL : 0;
    if (negative) out = -out;
    return true;
}

size_t findExprText(std::string_view text, std::string_view key, size_t from) {
    if (from > text.size()) return std::string::npos;
    if (key.size() <= 64) return text.find(key, from);  // quicker, and bounded by so short a key
    const void* found = memmem(text.data() + from, text.size() - from, key.data(), key.size());
    return found ? static_cast<size_t>(static_cast<const char*>(found) - text.data())
                 : std::string::npos;
}

std::string exprNumberText(double value, int digits) {
    if (value == 0) return "0";
    char buffer[64];
    if (std::fabs(value) < 1e15 && digits == 15 && value == std::floor(value)) {
        const auto [end, error] =
            std::to_chars(buffer, buffer + sizeof buffer, static_cast<int64_t>(value));
        return std::string(buffer, end);
    }
    const auto [end, error] =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, digits);
    for (char* c = buffer; c != end; ++c)
        if (*c == 'e') *c = 'E';
    return std::string(buffer, end);
}

std::string exprPlainText(double value) {
    const std::string text = exprNumberText(value);
    const size_t mark = text.find('E');
    if (mark == std::string::npos) return text;
    const size_t exponent = std::stoul(text.substr(mark + 2));
    std::string digits;
    for (char c : text.substr(0, mark))
        if (isDigit(c)) digits += c;
    if (text[mark + 1] == '+')
        digits.append(exponent + 1 - digits.size(), '0');
    else
        digits = "0." + std::string(exponent - 1, '0') + digits;
    return (value < 0 ? "-" : "") + digits;
}

}  // namespace owb
