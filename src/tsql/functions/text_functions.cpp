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

void upper(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(1)) return c.giveNull();
    c.giveText(upperCase(a[0].text()));
}

void lower(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(1)) return c.giveNull();
    c.giveText(lowerCase(a[0].text()));
}

template <bool kRight>
void leftRight(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(2)) return c.giveNull();
    const int64_t n = a[1].integer();
    if (n < 0) {
        if (!kRight) throw makeDbError(537);
        throw DbError(536, 16, 2, 0, "Invalid length parameter passed to the RIGHT function.");
    }
    const std::string_view text = a[0].text();
    const size_t length = utf8Length(text);
    const size_t count = std::min<size_t>(n, length);
    c.giveText(utf8Substr(text, kRight ? length - count : 0, count));
}

void substring(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(3)) return c.giveNull();
    int64_t start = a[1].integer(), count = a[2].integer();
    if (count < 0) {
        DbError error = makeDbError(537);
        error.state = 3;
        throw error;
    }
    if (start < 1) {  // places before the text use up the length
        count += start - 1;
        start = 1;
    }
    c.giveText(count <= 0 ? std::string() : utf8Substr(a[0].text(), start - 1, count));
}

void charIndex(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(3)) return c.giveNull();
    const std::u32string what = foldedText(a[0].text());
    const std::u32string text = foldedText(a[1].text());
    const int64_t from = std::max<int64_t>(a[2].integer() - 1, 0);
    if (what.empty()) return c.giveInteger(0);
    const size_t at = text.find(what, from);
    c.giveInteger(at == std::u32string::npos ? 0 : static_cast<int64_t>(at) + 1);
}

void replace(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(3)) return c.giveNull();
    const std::u32string what = foldedText(a[1].text());
    const std::u32string text = decoded(a[0].text());
    const std::u32string folded = foldedText(a[0].text());
    if (what.empty()) return c.giveCopy(a[0]);
    std::string out;
    size_t at = 0;
    while (true) {
        const size_t found = folded.find(what, at);
        out += encoded(std::u32string_view(text).substr(
            at, found == std::u32string::npos ? std::u32string::npos : found - at));
        if (found == std::u32string::npos) break;
        out += a[2].text();
        at = found + what.size();
    }
    c.giveText(out);
}

void stuff(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(3)) return c.giveNull();
    const std::u32string text = decoded(a[0].text());
    const int64_t start = a[1].integer(), count = a[2].integer();
    if (start < 1 || start > static_cast<int64_t>(text.size()) || count < 0) return c.giveNull();
    std::string out = encoded(std::u32string_view(text).substr(0, start - 1));
    out += a[3].text();
    const size_t after = start - 1 + count;
    if (after < text.size()) out += encoded(std::u32string_view(text).substr(after));
    c.giveText(out);
}

// STR(number, length, places): right-aligned; stars where the whole part does not fit.
void str(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(3)) return c.giveNull();
    const int length = a[1].int32();
    if (length <= 0 || length > 8000) return c.giveNull();
    int places = std::max(0, std::min(16, a[2].int32()));
    const double v = a[0].real();
    std::string text;
    while (true) {
        text = formatNumber(v, places == 0 ? "0" : "0." + std::string(places, '0'));
        if (static_cast<int>(text.size()) <= length || places == 0) break;
        --places;  // places give way to the whole part
    }
    if (static_cast<int>(text.size()) > length) text = std::string(length, '*');
    c.giveText(std::string(length - text.size(), ' ') + text);
}

// t_replicate(text, count, limit): the result ends at the limit, -1 being none.
void replicate(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(2)) return c.giveNull();
    const int64_t n = a[1].integer();
    if (n < 0) return c.giveNull();
    const std::string_view text = a[0].text();
    const auto length = static_cast<int64_t>(utf8Length(text));
    const int64_t limit = a[2].integer();
    if (length == 0) return c.giveText("");
    const int64_t wanted = limit < 0 || n <= limit / length ? n * length : limit;
    if (n > 100'000'000 / length && limit < 0) throw makeDbError(8623);
    std::string out;
    out.reserve(static_cast<size_t>(wanted / length + 1) * text.size());
    for (int64_t i = 0; i < wanted / length; ++i) out += text;
    c.giveText(out + utf8Substr(text, 0, static_cast<size_t>(wanted % length)));
}

void reverse(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(1)) return c.giveNull();
    std::u32string text = decoded(a[0].text());
    c.giveText(encoded(std::u32string(text.rbegin(), text.rend())));
}

void ascii(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(1)) return c.giveNull();
    const std::u32string text = decoded(a[0].text());
    if (text.empty()) return c.giveNull();
    const int code = ansiByte(text[0]);
    c.giveInteger(code < 0 ? '?' : code);
}

void unicode(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(1)) return c.giveNull();
    const std::u32string text = decoded(a[0].text());
    if (text.empty()) return c.giveNull();
    c.giveInteger(text[0]);
}

template <bool kUnicode>
void character(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(1)) return c.giveNull();
    const int64_t code = a[0].integer();
    if (code < 0 || code > (kUnicode ? 65535 : 255) || code == 0) return c.giveNull();
    std::string out;
    appendCodePoint(
        out, kUnicode ? static_cast<char32_t>(code) : ansiCodePoint(static_cast<uint8_t>(code)));
    c.giveText(out);
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

bool likeMatches(std::string_view pattern, std::string_view text, char32_t escape) {
    const std::u32string p = foldedText(pattern);
    if (matchHere(p, foldedText(text), escape)) return true;
    // Trailing blanks of the text do not count.
    const std::string_view trimmed = trimRight(text);
    return trimmed.size() != text.size() && matchHere(p, foldedText(trimmed), escape);
}

void like(SqliteResult c, SqliteArguments a) {
    if (a.anyNull()) return c.giveNull();
    char32_t escape = 0;
    if (a.count() == 3) {
        const std::u32string e = foldedText(a[2].text());
        if (e.size() != 1)
            throw DbError(506, 16, 1, 0,
                          "The invalid escape character \"" + encoded(e) +
                              "\" was specified in a LIKE predicate.");
        escape = e[0];
    }
    c.giveInteger(likeMatches(a[0].text(), a[1].text(), escape));
}

void patIndex(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(2)) return c.giveNull();
    std::u32string pattern = foldedText(a[0].text());
    const std::u32string text = foldedText(a[1].text());
    const bool open = !pattern.empty() && pattern.front() == U'%';
    if (!open) return c.giveInteger(matchHere(pattern, text, 0) ? 1 : 0);
    const std::u32string rest = pattern.substr(1);
    for (size_t i = 0; i <= text.size(); ++i)
        if (matchHere(rest, std::u32string_view(text).substr(i), 0))
            return c.giveInteger(static_cast<int64_t>(i) + 1);
    c.giveInteger(0);
}

void concatWithSeparator(SqliteResult c, SqliteArguments a) {
    std::string out;
    bool first = true;
    for (int i = 1; i < a.count(); ++i) {
        if (a[i].isNull()) continue;
        if (!first) out += a[0].text();
        first = false;
        out += a[i].text();
    }
    c.giveText(out);
}

void translate(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(3)) return c.giveNull();
    const std::u32string from = foldedText(a[1].text());
    const std::u32string to = decoded(a[2].text());
    if (from.size() != to.size()) throw makeDbError(9828);
    std::u32string text = decoded(a[0].text());
    const std::u32string folded = foldedText(a[0].text());
    for (size_t i = 0; i < text.size(); ++i) {
        const size_t at = from.find(folded[i]);
        if (at != std::u32string::npos) text[i] = to[at];
    }
    c.giveText(encoded(text));
}

void quoteName(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(2)) return c.giveNull();
    const std::string_view text = a[0].text(), mark = a[1].text();
    static constexpr std::string_view opening = "[(<{'\"`", closing = "])>}'\"`";
    size_t at = opening.find(mark.empty() ? '[' : mark[0]);
    if (at == std::string_view::npos && !mark.empty()) at = closing.find(mark[0]);
    if (at == std::string_view::npos || utf8Length(text) > 128) return c.giveNull();
    std::string out(1, opening[at]);
    for (char ch : text) out += ch == closing[at] ? std::string(2, ch) : std::string(1, ch);
    c.giveText(out + closing[at]);
}

// PARSENAME: parts are counted from the right; a name has at most four.
void parseName(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(2)) return c.giveNull();
    std::vector<std::string> parts(1);
    char close = 0;
    for (char ch : a[0].text()) {
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
    const int64_t n = a[1].integer();
    if (close || parts.size() > 4 || n < 1 || n > static_cast<int64_t>(parts.size()))
        return c.giveNull();
    const std::string& part = parts[parts.size() - static_cast<size_t>(n)];
    if (part.empty()) return c.giveNull();
    c.giveText(part);
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

void soundex(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(1)) return c.giveNull();
    c.giveText(soundexOf(a[0].text()));
}

void difference(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(2)) return c.giveNull();
    const std::string x = soundexOf(a[0].text()), y = soundexOf(a[1].text());
    int same = 0;
    for (int i = 0; i < 4; ++i) same += x[i] == y[i];
    c.giveInteger(same);
}

// Whatever becomes a float, money or a numeric; so even a sign or a comma alone.
void isNumeric(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(1)) return c.giveInteger(0);
    std::string text = trim(a[0].text());
    if (text.empty()) return c.giveInteger(0);
    const SqlType varchar = SqlType::text(SqlKind::VarChar, 8000);
    for (SqlKind kind : {SqlKind::Money, SqlKind::Float}) {
        try {
            convertValue(Value(text), varchar, SqlType::of(kind));
            return c.giveInteger(1);
        } catch (const DbError&) {
        }
        for (char& ch : text)  // an exponent may be a D here
            if (ch == 'd' || ch == 'D') ch = 'e';
    }
    c.giveInteger(0);
}

void isDate(SqliteResult c, SqliteArguments a) {
    if (a.anyNull(1)) return c.giveInteger(0);
    const std::string text = trim(a[0].text());
    const auto date = parseDate(text);
    c.giveInteger(!text.empty() && date && date->day >= DateTime::kMinDay);
}

}  // namespace

void addTextFunctions(Sqlite& sqlite) {
    sqlite.addFunction("t_upper", 1, upper);
    sqlite.addFunction("t_lower", 1, lower);
    sqlite.addFunction("t_left", 2, leftRight<false>);
    sqlite.addFunction("t_right", 2, leftRight<true>);
    sqlite.addFunction("t_substring", 3, substring);
    sqlite.addFunction("t_charindex", 3, charIndex);
    sqlite.addFunction("t_patindex", 2, patIndex);
    sqlite.addFunction("t_replace", 3, replace);
    sqlite.addFunction("t_stuff", 4, stuff);
    sqlite.addFunction("t_str", 3, str);
    sqlite.addFunction("t_replicate", 3, replicate);
    sqlite.addFunction("t_reverse", 1, reverse);
    sqlite.addFunction("t_ascii", 1, ascii);
    sqlite.addFunction("t_unicode", 1, unicode);
    sqlite.addFunction("t_char", 1, character<false>);
    sqlite.addFunction("t_nchar", 1, character<true>);
    sqlite.addFunction("t_like", 2, like);
    sqlite.addFunction("t_like", 3, like);
    sqlite.addFunction("t_concatws", -1, concatWithSeparator);
    sqlite.addFunction("t_translate", 3, translate);
    sqlite.addFunction("t_quotename", 2, quoteName);
    sqlite.addFunction("t_parsename", 2, parseName);
    sqlite.addFunction("t_soundex", 1, soundex);
    sqlite.addFunction("t_difference", 2, difference);
    sqlite.addFunction("t_isnumeric", 1, isNumeric);
    sqlite.addFunction("t_isdate", 1, isDate);
}

}  // namespace owb::tsql
