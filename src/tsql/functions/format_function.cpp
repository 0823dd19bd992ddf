// FORMAT: numbers and dates by a pattern, standard ("N2", "d") or put together ("#,##0.00").
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>
#include <vector>

#include "base/number_text.h"
#include "tsql/functions/functions.h"
#include "tsql/types/datetime2.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

// Digits of the number without its sign, with that many places, halves away from zero.
std::string fixedDigits(const Decimal& size, int places, bool grouped) {
    std::string text = size.rescaled(std::min(places, size.scale())).toText();
    if (places > size.scale()) {  // digits that are all zero need no number
        if (size.scale() == 0) text += '.';
        text.append(places - size.scale(), '0');
    }
    if (grouped)
        for (size_t at = std::min(text.find('.'), text.size()); at > 3; at -= 3)
            text.insert(at - 3, ",");
    return text;
}

std::string exponentText(double v, int places, char e, size_t exponentDigits) {
    const std::string text = numberText(v, std::chars_format::scientific, places);
    const size_t at = text.find('e');
    std::string digits = std::to_string(std::abs(std::atoi(text.c_str() + at + 1)));
    while (digits.size() < exponentDigits) digits.insert(digits.begin(), '0');
    return text.substr(0, at) + e + text[at + 1] + digits;
}

std::string standardNumber(const Decimal& d, bool whole, char letter, int places) {
    const Decimal size = d.negative() ? -d : d;
    const char upper = static_cast<char>(letter & ~0x20);
    const auto signedText = [&](const std::string& text) {
        const bool zero = text.find_first_of("123456789") == std::string::npos;
        return d.negative() && !zero ? "-" + text : text;
    };
    switch (upper) {
        case 'N':
            return signedText(fixedDigits(size, places < 0 ? 2 : places, true));
        case 'F':
            return signedText(fixedDigits(size, places < 0 ? 2 : places, false));
        case 'C': {
            const std::string text = "$" + fixedDigits(size, places < 0 ? 2 : places, true);
            return d.negative() ? "(" + text + ")" : text;
        }
        case 'P':
            return signedText(
                fixedDigits(Decimal(multiplyChecked(size.unscaled(), 100), size.scale()),
                            places < 0 ? 2 : places, true) +
                "%");
        case 'E':
            return exponentText(d.toDouble(), places < 0 ? 6 : places, letter, 3);
        case 'D': {
            std::string text = size.rescaled(0).toText();
            while (static_cast<int>(text.size()) < places) text.insert(text.begin(), '0');
            return signedText(text);
        }
        case 'X': {
            char b[40];
            std::snprintf(b, sizeof b, letter == 'X' ? "%0*llX" : "%0*llx", std::max(places, 1),
                          static_cast<unsigned long long>(d.rescaled(0).unscaled()));
            return b;
        }
        default:  // G
            return whole ? d.toText() : numberText(d.toDouble());
    }
}

// What a section of a pattern of 0 # , . % and literal text asks for.
struct NumberPattern {
    size_t before = 0, after = 0;              // places for digits
    size_t beforeNeeded = 0, afterNeeded = 0;  // those that are filled with zeros
    bool grouped = false;
    int percents = 0;
};

NumberPattern readPattern(const std::string& pattern) {
    NumberPattern p;
    bool point = false;
    char quote = 0;
    for (size_t i = 0; i < pattern.size(); ++i) {
        const char c = pattern[i];
        if (quote) {
            if (c == quote) quote = 0;
        } else if (c == '\'' || c == '"') {
            quote = c;
        } else if (c == '\\') {
            ++i;
        } else if (c == '0' || c == '#') {
            if (!point) {
                ++p.before;
                if (c == '0' || p.beforeNeeded) ++p.beforeNeeded;
            } else {
                ++p.after;
                if (c == '0') p.afterNeeded = p.after;
            }
        } else if (c == '.') {
            point = true;
        } else if (c == ',' && p.before > 0 && !point) {
            p.grouped = true;
        } else if (c == '%') {
            ++p.percents;
        }
    }
    return p;
}

// The number by one section of a pattern.
std::string patternNumber(Decimal size, bool negative, const std::string& pattern) {
    const NumberPattern p = readPattern(pattern);
    for (int i = 0; i < p.percents; ++i)
        size = Decimal(multiplyChecked(size.unscaled(), 100), size.scale());
    char quote = 0;
    std::string text = size.rescaled(static_cast<int>(p.after)).toText();
    std::string whole = text.substr(0, text.find('.'));
    std::string places = p.after ? text.substr(text.find('.') + 1) : "";
    if (whole == "0") whole.clear();
    while (whole.size() < p.beforeNeeded) whole.insert(whole.begin(), '0');
    while (places.size() > p.afterNeeded && places.back() == '0') places.pop_back();
    if (whole.find_first_not_of('0') == std::string::npos &&
        places.find_first_not_of('0') == std::string::npos)
        negative = false;
    // Digits go to their places from the left; those that the pattern has no place for go first.
    std::string out;
    size_t seen = 0, next = 0, place = 0;
    bool point = false;
    const auto putWhole = [&](size_t upTo) {
        for (; next < upTo; ++next) {
            out += whole[next];
            const size_t left = whole.size() - next - 1;
            if (p.grouped && left > 0 && left % 3 == 0) out += ',';
        }
    };
    for (size_t i = 0; i < pattern.size(); ++i) {
        const char c = pattern[i];
        if (quote) {
            if (c == quote)
                quote = 0;
            else
                out += c;
        } else if (c == '\'' || c == '"') {
            quote = c;
        } else if (c == '\\' && i + 1 < pattern.size()) {
            out += pattern[++i];
        } else if (c == '0' || c == '#') {
            if (!point) {
                ++seen;
                const size_t left = p.before - seen;
                putWhole(whole.size() > left ? whole.size() - left : 0);
            } else if (place < places.size()) {
                out += places[place++];
            }
        } else if (c == '.') {
            if (!point && !places.empty()) out += '.';
            point = true;
        } else if (c != ',') {
            out += c;
        }
    }
    return negative ? "-" + out : out;
}

std::string formatNumberBy(const Decimal& d, bool whole, const std::string& format) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (format.empty()) return standardNumber(d, whole, 'G', -1);
    if (std::string_view("NFCPEDXGnfcpedxg").find(format[0]) != std::string_view::npos &&
        format.size() <= 3 && std::all_of(format.begin() + 1, format.end(), isDigit))
        return standardNumber(d, whole, format[0],
                              format.size() > 1 ? std::stoi(format.substr(1)) : -1);
    // Sections: positive; negative; zero.
    std::vector<std::string> sections(1);
    char quote = 0;
    for (char c : format) {
        if (c == ';' && !quote) {
            sections.emplace_back();
            continue;
        }
        if (quote ? c == quote : (c == '\'' || c == '"')) quote = quote ? 0 : c;
        sections.back() += c;
    }
    const Decimal size = d.negative() ? -d : d;
    if (d.unscaled() == 0 && sections.size() > 2) return patternNumber(size, false, sections[2]);
    if (d.negative() && sections.size() > 1) return patternNumber(size, false, sections[1]);
    return patternNumber(size, d.negative(), sections[0]);
}

std::string standardDatePattern(char letter) {
    switch (letter) {
        case 'd':
            return "M/d/yyyy";
        case 'D':
            return "dddd, MMMM d, yyyy";
        case 'f':
            return "dddd, MMMM d, yyyy h:mm tt";
        case 'F':
            return "dddd, MMMM d, yyyy h:mm:ss tt";
        case 'g':
            return "M/d/yyyy h:mm tt";
        case 'G':
            return "M/d/yyyy h:mm:ss tt";
        case 'm':
        case 'M':
            return "MMMM d";
        case 's':
            return "yyyy-MM-ddTHH:mm:ss";
        case 't':
            return "h:mm tt";
        case 'T':
            return "h:mm:ss tt";
        case 'u':
            return "yyyy-MM-dd HH:mm:ssZ";
        case 'y':
        case 'Y':
            return "MMMM yyyy";
        case 'O':
        case 'o':
            return "yyyy-MM-ddTHH:mm:ss.fffffff";
        default:
            return "";
    }
}

// The part of a date that a run of one letter stands for; none for other characters.
std::optional<std::string> datePart(char letter, size_t run, const DateTime& date, int64_t units) {
    const auto number = [](int v, size_t width) {
        std::string text = std::to_string(v);
        while (text.size() < width) text.insert(text.begin(), '0');
        return text;
    };
    const CivilDate c = date.civil();
    const auto seconds = static_cast<int>(units / kUnitsPerSecond);
    const int hour = seconds / 3600;
    const size_t two = std::min<size_t>(run, 2);
    switch (letter) {
        case 'd':
            if (run <= 2) return number(c.day, run);
            return std::string(weekdayName(date.weekday())).substr(0, run == 3 ? 3 : 99);
        case 'M':
            if (run <= 2) return number(c.month, run);
            return run == 3 ? monthAbbreviation(c.month) : monthFullName(c.month);
        case 'y':
            return number(run <= 2 ? c.year % 100 : c.year, run);
        case 'H':
            return number(hour, two);
        case 'h':
            return number(hour % 12 == 0 ? 12 : hour % 12, two);
        case 'm':
            return number(seconds / 60 % 60, two);
        case 's':
            return number(seconds % 60, two);
        case 'f':
        case 'F':
            return number(static_cast<int>(units % kUnitsPerSecond), 7)
                .substr(0, std::min<size_t>(run, 7));
        case 't':
            return std::string(hour < 12 ? "AM" : "PM").substr(0, two);
        default:
            return std::nullopt;
    }
}

std::string formatDateBy(int32_t day, int64_t units, std::string pattern) {
    if (pattern.empty()) pattern = "M/d/yyyy h:mm:ss tt";
    if (pattern.size() == 1) pattern = standardDatePattern(pattern[0]);
    std::string out;
    for (size_t i = 0; i < pattern.size();) {
        const char letter = pattern[i];
        size_t run = 1;
        while (i + run < pattern.size() && pattern[i + run] == letter) ++run;
        if (const auto part = datePart(letter, run, {day, 0}, units)) {
            out += *part;
        } else if (letter == '\'' || letter == '"') {
            const size_t close = std::min(pattern.find(letter, i + 1), pattern.size());
            out += pattern.substr(i + 1, close - i - 1);
            run = close - i + 1;
        } else if (letter == '\\') {
            if (i + 1 < pattern.size()) out += pattern[i + 1];
            run = 2;
        } else {
            out += pattern.substr(i, run);
        }
        i += run;
    }
    return out;
}

// t_format(value, type, pattern)
void format(SqliteResult context, SqliteArguments a) {
    if (a.anyNull(3)) return context.giveNull();
    const SqlType type = unpackType(a[1].integer());
    const Value v = a[0].as(type);
    const std::string pattern(a[2].text());
    if (type.isDate()) {
        const int64_t units = static_cast<int64_t>(v.asDate().milliseconds()) * 10'000;
        return context.giveText(formatDateBy(v.asDate().day, units, pattern));
    }
    if (type.kind == SqlKind::DateTime2)
        return context.giveText(
            formatDateBy(dayOfDatetime2(v.asInt()), v.asInt() % kUnitsPerDay, pattern));
    if (type.kind == SqlKind::Time) throw makeDbError(15281, {"FORMAT of a time"});
    Decimal d;
    if (v.isInt())
        d = Decimal::fromInt(v.asInt());
    else if (v.isDecimal())
        d = v.asDecimal();
    else if (!Decimal::parse(numberText(v.asDouble()), d))
        throw DecimalOverflow();
    // A whole number's pattern is no use for places, and the other way round.
    const char letter = pattern.empty() ? 'G' : static_cast<char>(pattern[0] & ~0x20);
    if (!v.isInt() && pattern.size() <= 3 && (letter == 'D' || letter == 'X'))
        return context.giveNull();
    context.giveText(formatNumberBy(d, !v.isDouble(), pattern));
}

}  // namespace

void addFormatFunction(Sqlite& sqlite) {
    sqlite.addFunction("t_format", 3, format);
}

}  // namespace owb::tsql
