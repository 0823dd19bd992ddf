// Text functions. Positions and lengths count characters from 1.
#include <cmath>

#include "base/decimal.h"
#include "base/utf8.h"
#include "formula/ExprFunctions.h"

namespace owb {

namespace {

using Arguments = ExprArguments;

[[noreturn]] void invalidCall() {
    throw ExprError{ExprError::InvalidCall};
}

void checkLength(size_t bytes) {
    if (bytes > kExprTextLimit) throw ExprError{ExprError::OutOfMemory};
}

size_t countOf(const ExprValue& v) {
    const int64_t n = v.toLong();
    if (n < 0) invalidCall();
    return static_cast<size_t>(n);
}

// Null stays Null in the functions that go through here.
ExprValue ofText(const ExprValue& v, std::string (*change)(std::string_view)) {
    return v.isNull() ? v : ExprValue::text(change(v.toText()));
}

std::string trimLeft(std::string_view text) {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    return std::string(text);
}

std::string reversed(std::string_view text) {
    std::string result(text.size(), ' ');
    size_t back = text.size();
    for (size_t at = 0; at < text.size();) {
        const size_t from = at;
        nextCodePoint(text, at);
        back -= at - from;
        text.copy(result.data() + back, at - from, from);
    }
    return result;
}

ExprValue left(const Arguments& a) {
    if (a[0].isNull()) return a[0];
    return ExprValue::text(utf8Substr(a[0].toText(), 0, countOf(a[1])));
}

ExprValue right(const Arguments& a) {
    if (a[0].isNull()) return a[0];
    const std::string text = a[0].toText();
    const size_t length = utf8Length(text), count = std::min(countOf(a[1]), length);
    return ExprValue::text(utf8Substr(text, length - count, count));
}

ExprValue middle(const Arguments& a) {
    if (a[0].isNull()) return a[0];
    const size_t start = countOf(a[1]);
    if (start == 0) invalidCall();
    const size_t count = a.has(2) ? countOf(a[2]) : std::string::npos;
    return ExprValue::text(utf8Substr(a[0].toText(), start - 1, count));
}

// 0 compares characters, 1 in any case.
bool anyCase(const Arguments& a, size_t i) {
    const int64_t mode = a.longOr(i, 0);
    if (mode != 0 && mode != 1) invalidCall();
    return mode == 1;
}

std::string searchable(const ExprValue& v, bool ignoreCase) {
    const std::string text = v.toText();
    return ignoreCase ? lowerCase(text) : text;
}

// Byte offset of a character counted from 0; the text's size behind its end.
size_t offsetOf(std::string_view text, size_t character) {
    size_t at = 0;
    while (character-- > 0 && at < text.size()) nextCodePoint(text, at);
    return at;
}

ExprValue inStr(const Arguments& a) {
    const size_t first = a.count() > 2 ? 1 : 0;
    if (first == 1 && a[0].isNull()) throw ExprError{ExprError::InvalidNull};
    const int64_t start = first == 1 ? a.longOr(0, 1) : 1;
    const bool ignoreCase = anyCase(a, 3);
    if (a[first].isNull() || a[first + 1].isNull()) return ExprValue::null();
    if (start < 1) invalidCall();
    const std::string text = searchable(a[first], ignoreCase);
    const std::string key = searchable(a[first + 1], ignoreCase);
    if (text.empty() || static_cast<size_t>(start) > utf8Length(text)) return ExprValue::longInt(0);
    if (key.empty()) return ExprValue::longInt(start);
    const size_t found = findExprText(text, key, offsetOf(text, static_cast<size_t>(start) - 1));
    return ExprValue::longInt(found == std::string::npos
                                  ? 0
                                  : static_cast<int64_t>(utf8Length(text.substr(0, found))) + 1);
}

ExprValue inStrRev(const Arguments& a) {
    const bool ignoreCase = anyCase(a, 3);
    if (a[0].isNull() || a[1].isNull()) return ExprValue::null();
    int64_t start = a.longOr(2, -1);
    if (start == 0 || start < -1) invalidCall();
    std::string text = searchable(a[0], ignoreCase);
    const std::string key = searchable(a[1], ignoreCase);
    const auto length = static_cast<int64_t>(utf8Length(text));
    if (start == -1) start = length;
    if (text.empty() || start > length) return ExprValue::longInt(0);
    if (key.empty()) return ExprValue::longInt(start);
    text.resize(offsetOf(text, static_cast<size_t>(start)));
    const std::string backText = reversed(text), backKey = reversed(key);
    const size_t found = findExprText(backText, backKey, 0);
    if (found == std::string::npos) return ExprValue::longInt(0);
    const size_t at = text.size() - found - key.size();
    return ExprValue::longInt(static_cast<int64_t>(utf8Length(text.substr(0, at))) + 1);
}

ExprValue strComp(const Arguments& a) {
    const bool ignoreCase = anyCase(a, 2);
    if (a[0].isNull() || a[1].isNull()) return ExprValue::null();
    const int order = searchable(a[0], ignoreCase).compare(searchable(a[1], ignoreCase));
    return ExprValue::integer(order < 0 ? -1 : order > 0);
}

ExprValue replaced(const Arguments& a) {
    const std::string whole = a[0].toText(), key = a[1].toText(), with = a[2].toText();
    const int64_t start = a.longOr(3, 1);
    int64_t count = a.longOr(4, -1);
    const bool ignoreCase = anyCase(a, 5);
    if (start < 1 || count < -1) invalidCall();
    const std::string text = whole.substr(offsetOf(whole, static_cast<size_t>(start) - 1));
    if (key.empty()) return ExprValue::text(text);
    // A letter whose other case has more bytes would shift the places: then cases must match.
    std::string searched = ignoreCase ? lowerCase(text) : text;
    if (searched.size() != text.size()) searched = text;
    const std::string wanted = ignoreCase ? lowerCase(key) : key;
    std::string result;
    size_t at = 0;
    for (; count != 0; --count) {
        const size_t found = findExprText(searched, wanted, at);
        if (found == std::string::npos) break;
        result.append(text, at, found - at).append(with);
        checkLength(result.size() + text.size() - found);
        at = found + wanted.size();
    }
    return ExprValue::text(result.append(text, std::min(at, text.size())));
}

ExprValue repeated(const Arguments& a) {
    const size_t count = countOf(a[0]);
    std::string character;
    if (a[1].isNull()) return a[1];
    if (a[1].isText()) {
        if (a[1].textValue().empty()) invalidCall();
        character = utf8Substr(a[1].textValue(), 0, 1);
    } else {
        appendCodePoint(character, ansiCodePoint(static_cast<uint8_t>(a[1].toLong() & 0xFF)));
    }
    checkLength(count * character.size());
    std::string text;
    text.reserve(count * character.size());
    for (size_t i = 0; i < count; ++i) text += character;
    return ExprValue::text(std::move(text));
}

ExprValue spaces(const Arguments& a) {
    const size_t count = countOf(a[0]);
    checkLength(count);
    return ExprValue::text(std::string(count, ' '));
}

char32_t firstCharacter(const ExprValue& v) {
    const std::string text = v.toText();
    if (text.empty()) invalidCall();
    size_t at = 0;
    return nextCodePoint(text, at);
}

ExprValue ansiCode(const Arguments& a) {
    const int byte = ansiByte(firstCharacter(a[0]));
    return ExprValue::integer(byte < 0 ? '?' : byte);
}

ExprValue ansiCharacter(const Arguments& a) {
    const int64_t code = a[0].toLong();
    if (code < 0 || code > 255) invalidCall();
    std::string text;
    appendCodePoint(text, ansiCodePoint(static_cast<uint8_t>(code)));
    return ExprValue::text(text);
}

ExprValue wideCharacter(const Arguments& a) {
    const int64_t code = a[0].toWhole(INT16_MIN, UINT16_MAX) & UINT16_MAX;
    if (code >= 0xD800 && code < 0xE000) invalidCall();  // half of a character
    std::string text;
    appendCodePoint(text, static_cast<char32_t>(code));
    return ExprValue::text(text);
}

// --- numbers as text ---

// A number without its sign, with so many places: halves away from zero, judged on the 15 digits
// that a number shows.
std::string fixedText(double value, size_t places) {
    std::string text = std::fabs(value) < 1e-20 ? "0" : exprPlainText(std::fabs(value));
    size_t point = text.find('.');
    Decimal exact;  // at most 34 digits, where there is a point
    if (point != std::string::npos && Decimal::parse(text, exact) &&
        exact.scale() > static_cast<int>(places)) {
        text = exact.rescaled(static_cast<int>(places)).toText();
        point = text.find('.');
    }
    const size_t there = point == std::string::npos ? 0 : text.size() - point - 1;
    if (point == std::string::npos && places > 0) text += '.';
    if (there < places) text.append(places - there, '0');
    return text;
}

// The arguments from the second on: places (-1: two), and whether there is a zero before the point,
// parentheses for a negative number, groups of thousands (-1 yes, 0 no, -2 the usual way).
std::string formatted(const Arguments& a, double value, int64_t usualParentheses = 0) {
    const int64_t places = a.longOr(1, -1);
    if (places < -1 || places > 255) invalidCall();
    const auto choice = [&](size_t i, int64_t usual) {
        const int64_t chosen = a.longOr(i, -2);
        if (chosen < -2 || chosen > 0) invalidCall();
        return (chosen == -2 ? usual : chosen) != 0;
    };
    const bool leadingZero = choice(2, -1), parentheses = choice(3, usualParentheses),
               grouped = choice(4, -1);
    std::string text = fixedText(value, places == -1 ? 2 : static_cast<size_t>(places));
    const bool negative = value < 0 && text.find_first_of("123456789") != std::string::npos;
    if (grouped)
        for (auto at = static_cast<int64_t>(std::min(text.find('.'), text.size())) - 3; at > 0;
             at -= 3)
            text.insert(static_cast<size_t>(at), ",");
    if (!leadingZero && text.size() > 1 && text[0] == '0') text.erase(0, 1);
    if (!negative) return text;
    return parentheses ? "(" + text + ")" : "-" + text;
}

std::string behindSign(std::string text, const std::string& mark) {
    text.insert(text[0] == '-' || text[0] == '(' ? 1 : 0, mark);
    return text;
}

constexpr ExprFunction kTextFunctions[] = {
    {"LEN", 1, 1,
     [](const Arguments& a) {
         return a[0].isNull() ? a[0]
                              : ExprValue::longInt(static_cast<int64_t>(utf8Length(a[0].toText())));
     }},
    {"LEFT", 2, 2, left},
    {"RIGHT", 2, 2, right},
    {"MID", 2, 3, middle},
    {"INSTR", 2, 4, inStr},
    {"INSTRREV", 2, 4, inStrRev},
    {"UCASE", 1, 1, [](const Arguments& a) { return ofText(a[0], upperCase); }},
    {"LCASE", 1, 1, [](const Arguments& a) { return ofText(a[0], lowerCase); }},
    {"TRIM", 1, 1, [](const Arguments& a) { return ofText(a[0], trim); }},
    {"LTRIM", 1, 1, [](const Arguments& a) { return ofText(a[0], trimLeft); }},
    {"RTRIM", 1, 1,
     [](const Arguments& a) {
         return ofText(a[0], [](std::string_view t) { return std::string(trimRight(t)); });
     }},
    {"REPLACE", 3, 6, replaced},
    {"SPACE", 1, 1, spaces},
    {"STRING", 2, 2, repeated},
    {"STRREVERSE", 1, 1,
     [](const Arguments& a) { return ExprValue::text(reversed(a[0].toText())); }},
    {"STRCOMP", 2, 3, strComp},
    {"ASC", 1, 1, ansiCode},
    {"ASCW", 1, 1,
     [](const Arguments& a) {
         return ExprValue::integer(static_cast<int16_t>(firstCharacter(a[0])));
     }},
    {"CHR", 1, 1, ansiCharacter},
    {"CHRW", 1, 1, wideCharacter},
    {"FORMATNUMBER", 1, 5,
     [](const Arguments& a) { return ExprValue::text(formatted(a, a[0].toNumber())); }},
    {"FORMATCURRENCY", 1, 5,
     [](const Arguments& a) {
         const std::string text = formatted(a, a[0].toNumber(), -1);
         return ExprValue::text(behindSign(text, "$"));
     }},
    {"FORMATPERCENT", 1, 5,
     [](const Arguments& a) {
         std::string text = formatted(a, a[0].toNumber() * 100);
         text.insert(text.back() == ')' ? text.size() - 1 : text.size(), "%");
         return ExprValue::text(text);
     }},
};

}  // namespace

std::span<const ExprFunction> exprTextFunctions() {
    return kTextFunctions;
}

}  // namespace owb
