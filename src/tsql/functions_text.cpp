// Text functions: characters are code points, comparison is without case.
#include <cmath>

#include "base/number_text.h"
#include "base/utf8.h"
#include "tsql/functions.h"
#include "tsql/types.h"

namespace owb::tsql {

namespace {

std::u32string decoded(std::string_view text) {
    std::u32string out;
    out.reserve(text.size());
    for (size_t at = 0; at < text.size();) out += nextCodePoint(text, at);
    return out;
}

std::string encoded(std::u32string_view text) {
    std::string out;
    for (char32_t c : text) appendCodePoint(out, c);
    return out;
}

std::u32string foldedText(std::string_view text) {
    return decoded(lowerCase(text));
}

void upper(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(1, a)) return sqlite3_result_null(c);
    resultText(c, upperCase(argumentText(a[0])));
}

void lower(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(1, a)) return sqlite3_result_null(c);
    resultText(c, lowerCase(argumentText(a[0])));
}

template <bool kRight>
void leftRight(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(2, a)) return sqlite3_result_null(c);
    const int64_t n = sqlite3_value_int64(a[1]);
    if (n < 0) {
        if (!kRight) throw makeDbError(537);
        throw DbError(536, 16, 1, 0, "Invalid length parameter passed to the RIGHT function.");
    }
    const std::string_view text = argumentText(a[0]);
    const size_t length = utf8Length(text);
    const size_t count = std::min<size_t>(n, length);
    resultText(c, utf8Substr(text, kRight ? length - count : 0, count));
}

void substring(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(3, a)) return sqlite3_result_null(c);
    int64_t start = sqlite3_value_int64(a[1]), count = sqlite3_value_int64(a[2]);
    if (count < 0) throw makeDbError(537);
    if (start < 1) {  // places before the text use up the length
        count += start - 1;
        start = 1;
    }
    resultText(c, count <= 0 ? std::string() : utf8Substr(argumentText(a[0]), start - 1, count));
}

void charIndex(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(3, a)) return sqlite3_result_null(c);
    const std::u32string what = foldedText(argumentText(a[0]));
    const std::u32string text = foldedText(argumentText(a[1]));
    const int64_t from = std::max<int64_t>(sqlite3_value_int64(a[2]) - 1, 0);
    if (what.empty()) return sqlite3_result_int(c, 0);
    const size_t at = text.find(what, from);
    sqlite3_result_int64(c, at == std::u32string::npos ? 0 : static_cast<int64_t>(at) + 1);
}

void replace(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(3, a)) return sqlite3_result_null(c);
    const std::u32string what = foldedText(argumentText(a[1]));
    const std::u32string text = decoded(argumentText(a[0]));
    const std::u32string folded = foldedText(argumentText(a[0]));
    if (what.empty()) return sqlite3_result_value(c, a[0]);
    std::string out;
    size_t at = 0;
    while (true) {
        const size_t found = folded.find(what, at);
        out += encoded(std::u32string_view(text).substr(
            at, found == std::u32string::npos ? std::u32string::npos : found - at));
        if (found == std::u32string::npos) break;
        out += argumentText(a[2]);
        at = found + what.size();
    }
    resultText(c, out);
}

void stuff(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(3, a)) return sqlite3_result_null(c);
    const std::u32string text = decoded(argumentText(a[0]));
    const int64_t start = sqlite3_value_int64(a[1]), count = sqlite3_value_int64(a[2]);
    if (start < 1 || start > static_cast<int64_t>(text.size()) || count < 0)
        return sqlite3_result_null(c);
    std::string out = encoded(std::u32string_view(text).substr(0, start - 1));
    out += argumentText(a[3]);
    const size_t after = start - 1 + count;
    if (after < text.size()) out += encoded(std::u32string_view(text).substr(after));
    resultText(c, out);
}

// STR(number, length, places): right-aligned; stars where the whole part does not fit.
void str(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(3, a)) return sqlite3_result_null(c);
    const int length = sqlite3_value_int(a[1]);
    if (length <= 0 || length > 8000) return sqlite3_result_null(c);
    int places = std::max(0, std::min(16, sqlite3_value_int(a[2])));
    const double v = sqlite3_value_double(a[0]);
    std::string text;
    while (true) {
        text = formatNumber(v, places == 0 ? "0" : "0." + std::string(places, '0'));
        if (static_cast<int>(text.size()) <= length || places == 0) break;
        --places;  // places give way to the whole part
    }
    if (static_cast<int>(text.size()) > length) text = std::string(length, '*');
    resultText(c, std::string(length - text.size(), ' ') + text);
}

void replicate(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(2, a)) return sqlite3_result_null(c);
    const int64_t n = sqlite3_value_int64(a[1]);
    if (n < 0) return sqlite3_result_null(c);
    const std::string_view text = argumentText(a[0]);
    // The result ends at 8000 characters, as that of a text that is no (MAX) one does.
    std::string out;
    for (int64_t i = 0; i < n && out.size() < 8000; ++i) out += text;
    if (out.size() > 8000) out.resize(8000);
    resultText(c, out);
}

void reverse(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(1, a)) return sqlite3_result_null(c);
    std::u32string text = decoded(argumentText(a[0]));
    resultText(c, encoded(std::u32string(text.rbegin(), text.rend())));
}

void ascii(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(1, a)) return sqlite3_result_null(c);
    const std::u32string text = decoded(argumentText(a[0]));
    if (text.empty()) return sqlite3_result_null(c);
    const int code = ansiByte(text[0]);
    sqlite3_result_int(c, code < 0 ? '?' : code);
}

void unicode(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(1, a)) return sqlite3_result_null(c);
    const std::u32string text = decoded(argumentText(a[0]));
    if (text.empty()) return sqlite3_result_null(c);
    sqlite3_result_int64(c, text[0]);
}

template <bool kUnicode>
void character(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(1, a)) return sqlite3_result_null(c);
    const int64_t code = sqlite3_value_int64(a[0]);
    if (code < 0 || code > (kUnicode ? 65535 : 255) || code == 0) return sqlite3_result_null(c);
    std::string out;
    appendCodePoint(
        out, kUnicode ? static_cast<char32_t>(code) : ansiCodePoint(static_cast<uint8_t>(code)));
    resultText(c, out);
}

// One "[...]" set of a LIKE pattern at `at` (behind the bracket); moves behind its end.
bool inSet(std::u32string_view p, size_t& at, char32_t c, bool& closed) {
    bool negated = false, found = false;
    if (at < p.size() && p[at] == U'^') {
        negated = true;
        ++at;
    }
    closed = false;
    while (at < p.size()) {
        if (p[at] == U']') {
            ++at;
            closed = true;
            break;
        }
        if (at + 2 < p.size() && p[at + 1] == U'-' && p[at + 2] != U']') {
            found |= c >= p[at] && c <= p[at + 2];
            at += 3;
        } else {
            found |= c == p[at++];
        }
    }
    return found != negated;
}

bool matchHere(std::u32string_view p, std::u32string_view t, char32_t escape) {
    size_t pi = 0, ti = 0;
    size_t starP = std::u32string_view::npos, starT = 0;
    while (true) {
        if (pi < p.size() && p[pi] == U'%' && p[pi] != escape) {
            starP = ++pi;
            starT = ti;
            continue;
        }
        bool matched = false;
        size_t next = pi;
        if (ti < t.size() && pi < p.size()) {
            if (escape && p[pi] == escape && pi + 1 < p.size()) {
                matched = p[pi + 1] == t[ti];
                next = pi + 2;
            } else if (p[pi] == U'_') {
                matched = true;
                next = pi + 1;
            } else if (p[pi] == U'[') {
                bool closed = false;
                next = pi + 1;
                matched = inSet(p, next, t[ti], closed) && closed;
            } else {
                matched = p[pi] == t[ti];
                next = pi + 1;
            }
        } else if (ti == t.size() && pi == p.size()) {
            return true;
        }
        if (matched) {
            pi = next;
            ++ti;
        } else if (starP != std::u32string_view::npos && starT < t.size()) {
            pi = starP;
            ti = ++starT;
        } else {
            return false;
        }
    }
}

void like(sqlite3_context* c, int n, sqlite3_value** a) {
    if (anyNull(n, a)) return sqlite3_result_null(c);
    char32_t escape = 0;
    if (n == 3) {
        const std::u32string e = foldedText(argumentText(a[2]));
        if (e.size() != 1)
            throw DbError(506, 16, 1, 0,
                          "The invalid escape character \"" + encoded(e) +
                              "\" was specified in a LIKE predicate.");
        escape = e[0];
    }
    sqlite3_result_int(c, likeMatches(argumentText(a[0]), argumentText(a[1]), escape));
}

void patIndex(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(2, a)) return sqlite3_result_null(c);
    std::u32string pattern = foldedText(argumentText(a[0]));
    const std::u32string text = foldedText(argumentText(a[1]));
    const bool open = !pattern.empty() && pattern.front() == U'%';
    if (!open) return sqlite3_result_int(c, matchHere(pattern, text, 0) ? 1 : 0);
    const std::u32string rest = pattern.substr(1);
    for (size_t i = 0; i <= text.size(); ++i)
        if (matchHere(rest, std::u32string_view(text).substr(i), 0))
            return sqlite3_result_int64(c, static_cast<int64_t>(i) + 1);
    sqlite3_result_int(c, 0);
}

void isNumeric(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(1, a)) return sqlite3_result_int(c, 0);
    try {
        const std::string text(argumentText(a[0]));
        if (trim(text).empty()) return sqlite3_result_int(c, 0);
        convertValue(Value(text), SqlType::text(SqlKind::VarChar, 8000),
                     SqlType::of(SqlKind::Float));
        sqlite3_result_int(c, 1);
    } catch (const DbError&) {
        sqlite3_result_int(c, 0);
    }
}

void isDate(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(1, a)) return sqlite3_result_int(c, 0);
    const std::string text = trim(argumentText(a[0]));
    sqlite3_result_int(c, !text.empty() && parseDate(text).has_value());
}

}  // namespace

bool likeMatches(std::string_view pattern, std::string_view text, char32_t escape) {
    const std::u32string p = foldedText(pattern);
    if (matchHere(p, foldedText(text), escape)) return true;
    // Trailing blanks of the text do not count.
    const std::string_view trimmed = trimRight(text);
    return trimmed.size() != text.size() && matchHere(p, foldedText(trimmed), escape);
}

void registerTextFunctions(Sqlite& sqlite) {
    registerFunction(sqlite, "t_upper", 1, upper);
    registerFunction(sqlite, "t_lower", 1, lower);
    registerFunction(sqlite, "t_left", 2, leftRight<false>);
    registerFunction(sqlite, "t_right", 2, leftRight<true>);
    registerFunction(sqlite, "t_substring", 3, substring);
    registerFunction(sqlite, "t_charindex", 3, charIndex);
    registerFunction(sqlite, "t_patindex", 2, patIndex);
    registerFunction(sqlite, "t_replace", 3, replace);
    registerFunction(sqlite, "t_stuff", 4, stuff);
    registerFunction(sqlite, "t_str", 3, str);
    registerFunction(sqlite, "t_replicate", 2, replicate);
    registerFunction(sqlite, "t_reverse", 1, reverse);
    registerFunction(sqlite, "t_ascii", 1, ascii);
    registerFunction(sqlite, "t_unicode", 1, unicode);
    registerFunction(sqlite, "t_char", 1, character<false>);
    registerFunction(sqlite, "t_nchar", 1, character<true>);
    registerFunction(sqlite, "t_like", 2, like);
    registerFunction(sqlite, "t_like", 3, like);
    registerFunction(sqlite, "t_isnumeric", 1, isNumeric);
    registerFunction(sqlite, "t_isdate", 1, isDate);
}

}  // namespace owb::tsql
