// Text functions: characters are code points, comparison is without case.
#include <cmath>
#include <vector>

#include "base/number_text.h"
#include "base/utf8.h"
#include "tsql/functions/functions.h"
#include "tsql/types/types.h"

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
        throw DbError(536, 16, 2, 0, "Invalid length parameter passed to the RIGHT function.");
    }
    const std::string_view text = argumentText(a[0]);
    const size_t length = utf8Length(text);
    const size_t count = std::min<size_t>(n, length);
    resultText(c, utf8Substr(text, kRight ? length - count : 0, count));
}

void substring(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(3, a)) return sqlite3_result_null(c);
    int64_t start = sqlite3_value_int64(a[1]), count = sqlite3_value_int64(a[2]);
    if (count < 0) {
        DbError error = makeDbError(537);
        error.state = 3;
        throw error;
    }
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

// t_replicate(text, count, limit): the result ends at the limit, -1 being none.
void replicate(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(2, a)) return sqlite3_result_null(c);
    const int64_t n = sqlite3_value_int64(a[1]);
    if (n < 0) return sqlite3_result_null(c);
    const std::string_view text = argumentText(a[0]);
    const auto length = static_cast<int64_t>(utf8Length(text));
    const int64_t limit = sqlite3_value_int64(a[2]);
    if (length == 0) return resultText(c, "");
    const int64_t wanted = limit < 0 || n <= limit / length ? n * length : limit;
    if (n > 100'000'000 / length && limit < 0) throw makeDbError(8623);
    std::string out;
    out.reserve(static_cast<size_t>(wanted / length + 1) * text.size());
    for (int64_t i = 0; i < wanted / length; ++i) out += text;
    resultText(c, out + utf8Substr(text, 0, static_cast<size_t>(wanted % length)));
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

void concatWithSeparator(sqlite3_context* c, int n, sqlite3_value** a) {
    std::string out;
    bool first = true;
    for (int i = 1; i < n; ++i) {
        if (sqlite3_value_type(a[i]) == SQLITE_NULL) continue;
        if (!first) out += argumentText(a[0]);
        first = false;
        out += argumentText(a[i]);
    }
    resultText(c, out);
}

void translate(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(3, a)) return sqlite3_result_null(c);
    const std::u32string from = foldedText(argumentText(a[1]));
    const std::u32string to = decoded(argumentText(a[2]));
    if (from.size() != to.size()) throw makeDbError(9828);
    std::u32string text = decoded(argumentText(a[0]));
    const std::u32string folded = foldedText(argumentText(a[0]));
    for (size_t i = 0; i < text.size(); ++i) {
        const size_t at = from.find(folded[i]);
        if (at != std::u32string::npos) text[i] = to[at];
    }
    resultText(c, encoded(text));
}

void quoteName(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(2, a)) return sqlite3_result_null(c);
    const std::string_view text = argumentText(a[0]), mark = argumentText(a[1]);
    static constexpr std::string_view opening = "[(<{'\"`", closing = "])>}'\"`";
    size_t at = opening.find(mark.empty() ? '[' : mark[0]);
    if (at == std::string_view::npos && !mark.empty()) at = closing.find(mark[0]);
    if (at == std::string_view::npos || utf8Length(text) > 128) return sqlite3_result_null(c);
    std::string out(1, opening[at]);
    for (char ch : text) out += ch == closing[at] ? std::string(2, ch) : std::string(1, ch);
    resultText(c, out + closing[at]);
}

// PARSENAME: parts are counted from the right; a name has at most four.
void parseName(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(2, a)) return sqlite3_result_null(c);
    std::vector<std::string> parts(1);
    char close = 0;
    for (char ch : argumentText(a[0])) {
        if (close) {
            if (ch == close)
                close = 0;
            else
                parts.back() += ch;
        } else if (ch == '[' || ch == '"') {
            close = ch == '[' ? ']' : '"';
        } else if (ch == '.') {
            parts.emplace_back();
        } else {
            parts.back() += ch;
        }
    }
    const int64_t n = sqlite3_value_int64(a[1]);
    if (close || parts.size() > 4 || n < 1 || n > static_cast<int64_t>(parts.size()))
        return sqlite3_result_null(c);
    const std::string& part = parts[parts.size() - static_cast<size_t>(n)];
    if (part.empty()) return sqlite3_result_null(c);
    resultText(c, part);
}

// One letter and three digits; vowels part equal codes, H and W do not.
std::string soundexOf(std::string_view text) {
    static constexpr std::string_view codes = "01230120022455012623010202";
    std::string out;
    char last = 0;
    for (char ch : upperCase(text)) {
        if (ch < 'A' || ch > 'Z') {
            if (out.empty()) break;
            last = 0;
            continue;
        }
        const char code = codes[ch - 'A'];
        if (out.empty())
            out += ch;
        else if (code != '0' && code != last)
            out += code;
        if (ch != 'H' && ch != 'W') last = code;
        if (out.size() == 4) break;
    }
    out.resize(4, '0');
    return out;
}

void soundex(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(1, a)) return sqlite3_result_null(c);
    resultText(c, soundexOf(argumentText(a[0])));
}

void difference(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(2, a)) return sqlite3_result_null(c);
    const std::string x = soundexOf(argumentText(a[0])), y = soundexOf(argumentText(a[1]));
    int same = 0;
    for (int i = 0; i < 4; ++i) same += x[i] == y[i];
    sqlite3_result_int(c, same);
}

// Whatever becomes a float, money or a numeric; so even a sign or a comma alone.
void isNumeric(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(1, a)) return sqlite3_result_int(c, 0);
    std::string text = trim(argumentText(a[0]));
    if (text.empty()) return sqlite3_result_int(c, 0);
    const SqlType varchar = SqlType::text(SqlKind::VarChar, 8000);
    for (SqlKind kind : {SqlKind::Money, SqlKind::Float}) {
        try {
            convertValue(Value(text), varchar, SqlType::of(kind));
            return sqlite3_result_int(c, 1);
        } catch (const DbError&) {
        }
        for (char& ch : text)  // an exponent may be a D here
            if (ch == 'd' || ch == 'D') ch = 'e';
    }
    sqlite3_result_int(c, 0);
}

void isDate(sqlite3_context* c, int, sqlite3_value** a) {
    if (anyNull(1, a)) return sqlite3_result_int(c, 0);
    const std::string text = trim(argumentText(a[0]));
    const auto date = parseDate(text);
    sqlite3_result_int(c, !text.empty() && date && date->day >= DateTime::kMinDay);
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
    registerFunction(sqlite, "t_replicate", 3, replicate);
    registerFunction(sqlite, "t_reverse", 1, reverse);
    registerFunction(sqlite, "t_ascii", 1, ascii);
    registerFunction(sqlite, "t_unicode", 1, unicode);
    registerFunction(sqlite, "t_char", 1, character<false>);
    registerFunction(sqlite, "t_nchar", 1, character<true>);
    registerFunction(sqlite, "t_like", 2, like);
    registerFunction(sqlite, "t_like", 3, like);
    registerFunction(sqlite, "t_concatws", -1, concatWithSeparator);
    registerFunction(sqlite, "t_translate", 3, translate);
    registerFunction(sqlite, "t_quotename", 2, quoteName);
    registerFunction(sqlite, "t_parsename", 2, parseName);
    registerFunction(sqlite, "t_soundex", 1, soundex);
    registerFunction(sqlite, "t_difference", 2, difference);
    registerFunction(sqlite, "t_isnumeric", 1, isNumeric);
    registerFunction(sqlite, "t_isdate", 1, isDate);
}

}  // namespace owb::tsql
