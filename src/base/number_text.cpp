#include "base/number_text.h"

#include <cmath>

#include "base/decimal.h"

namespace owb {

namespace {

// The number with `places` decimals; numbers beyond 38 digits are taken as they are.
bool exactDecimal(double value, Decimal& out) {
    if (!std::isfinite(value) || std::fabs(value) >= 1e30) return false;
    return Decimal::parse(numberText(value), out);
}

}  // namespace

double textToNumber(std::string_view text) {
    size_t from = 0;
    while (from < text.size() && (text[from] == ' ' || text[from] == '\t')) ++from;
    size_t at = from;
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;
    bool point = false, digits = false;
    for (; at < text.size(); ++at) {
        if (text[at] >= '0' && text[at] <= '9') {
            digits = true;
        } else if (text[at] == '.' && !point) {
            point = true;
        } else {
            break;
        }
    }
    if (!digits) return 0;
    if (at < text.size() &&
        (text[at] == 'e' || text[at] == 'E' || text[at] == 'd' || text[at] == 'D')) {
        size_t e = at + 1;
        if (e < text.size() && (text[e] == '-' || text[e] == '+')) ++e;
        size_t digitsFrom = e;
        while (e < text.size() && text[e] >= '0' && text[e] <= '9') ++e;
        if (e > digitsFrom) at = e;
    }
    std::string number(text.substr(from, at - from));
    for (char& c : number)
        if (c == 'd' || c == 'D') c = 'e';
    return parseNumber(number).value_or(0);
}

std::optional<double> parseNumber(std::string_view text) {
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    if (text.find_first_not_of("0123456789+-.eE") != std::string_view::npos) return std::nullopt;
    double result = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), result);
    if (end != text.data() + text.size()) return std::nullopt;
    if (error == std::errc()) return result;
    if (error != std::errc::result_out_of_range) return std::nullopt;
    // Too small or too big: the exponent tells, and the whole part where there is none.
    const size_t e = text.find_first_of("eE");
    const bool small =
        e != std::string_view::npos
            ? text[e + 1] == '-'
            : text.substr(0, text.find('.')).find_first_of("123456789") == std::string_view::npos;
    return std::copysign(small ? 0.0 : HUGE_VAL, text[0] == '-' ? -1.0 : 1.0);
}

std::string numberText(double value) {
    if (value == 0) return "0";
    char buffer[400];
    auto [end, error] =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed);
    return std::string(buffer, end);
}

std::string numberText(double value, std::chars_format form, int places) {
    char buffer[500];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, form, places).ptr;
    return std::string(buffer, end);
}

double roundHalfAway(double value, int places) {
    Decimal d;
    if (!exactDecimal(value, d)) return value;
    return d.scale() <= places ? value : d.rescaled(places).toDouble();
}

double roundHalfEven(double value, int places) {
    Decimal d;
    if (!exactDecimal(value, d) || d.scale() <= places) return value;
    const int128 unit = powerOfTen(d.scale() - places);
    const int128 size = d.negative() ? -d.unscaled() : d.unscaled();
    int128 quotient = size / unit;
    const int128 twice = 2 * (size % unit);
    if (twice > unit || (twice == unit && quotient % 2 != 0)) ++quotient;
    return Decimal(d.negative() ? -quotient : quotient, places).toDouble();
}

std::string formatNumber(double value, std::string_view format) {
    const size_t pointAt = format.find('.');
    const std::string_view wholeFormat = format.substr(0, pointAt);
    const std::string_view placesFormat =
        pointAt == std::string_view::npos ? std::string_view() : format.substr(pointAt + 1);
    const bool grouped = wholeFormat.find(',') != std::string_view::npos;
    size_t wholeMinimum = 0;
    for (char c : wholeFormat) wholeMinimum += c == '0';
    size_t placesMinimum = 0;
    for (size_t i = 0; i < placesFormat.size(); ++i)
        if (placesFormat[i] == '0') placesMinimum = i + 1;

    Decimal d;
    if (!exactDecimal(value, d)) return numberText(value);
    const Decimal rounded = d.rescaled(static_cast<int>(placesFormat.size()));
    std::string digits =
        Decimal(rounded.negative() ? -rounded.unscaled() : rounded.unscaled(), rounded.scale())
            .toText();
    std::string whole = digits.substr(0, digits.find('.'));
    std::string places = placesFormat.empty() ? "" : digits.substr(digits.find('.') + 1);
    while (places.size() > placesMinimum && places.back() == '0') places.pop_back();
    if (whole == "0") whole.clear();
    while (whole.size() < wholeMinimum) whole.insert(whole.begin(), '0');
    if (grouped)
        for (int at = static_cast<int>(whole.size()) - 3; at > 0; at -= 3) whole.insert(at, ",");
    std::string text = whole;
    if (pointAt != std::string_view::npos) text += "." + places;
    return rounded.negative() ? "-" + text : text;
}

std::string groupIndian(std::string_view number) {
    std::string text(number);
    const size_t from = !text.empty() && text[0] == '-' ? 1 : 0;
    size_t end = text.find('.');
    if (end == std::string::npos) end = text.size();
    for (int at = static_cast<int>(end) - 3; at > static_cast<int>(from); at -= 2)
        text.insert(at, ",");
    return text;
}

}  // namespace owb
