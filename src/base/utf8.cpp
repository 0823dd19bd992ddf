#include "base/utf8.h"

#include <utf8proc.h>

#include <array>

namespace owb {

namespace {

// Code points of the bytes 0x80 to 0x9F of code page 1252; 0 where it has none.
constexpr std::array<char16_t, 32> kAnsiUpper = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

char32_t foldCodePoint(char32_t c) {
    if (c < 0x80) return static_cast<char32_t>(c >= 'A' && c <= 'Z' ? c + 32 : c);
    return static_cast<char32_t>(utf8proc_tolower(static_cast<utf8proc_int32_t>(c)));
}

template <class Map>
std::string mapped(std::string_view text, Map map) {
    std::string out(text);
    size_t at = 0;
    for (; at < text.size(); ++at) {
        const auto byte = static_cast<unsigned char>(text[at]);
        if (byte >= 0x80) break;
        out[at] = static_cast<char>(map(byte));
    }
    out.resize(at);
    while (at < text.size()) appendCodePoint(out, map(nextCodePoint(text, at)));
    return out;
}

}  // namespace

char32_t nextCodePoint(std::string_view text, size_t& at) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(at);
    if (first < 0x80) {
        ++at;
        return first;
    }
    const int extra = first >= 0xF0 && first < 0xF5   ? 3
                      : first >= 0xE0 && first < 0xF0 ? 2
                      : first >= 0xC2 && first < 0xE0 ? 1
                                                      : 0;
    if (extra == 0 || at + extra >= text.size()) {
        ++at;
        return 0xFFFD;
    }
    char32_t c = first & (0x3F >> extra);
    for (int i = 1; i <= extra; ++i) {
        if ((byte(at + i) & 0xC0) != 0x80) {
            ++at;
            return 0xFFFD;
        }
        c = (c << 6) | (byte(at + i) & 0x3F);
    }
    const bool overlong = (extra == 2 && c < 0x800) || (extra == 3 && c < 0x10000);
    if (overlong || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) {
        ++at;
        return 0xFFFD;
    }
    at += extra + 1;
    return c;
}

void appendCodePoint(std::string& text, char32_t c) {
    if (c < 0x80) {
        text += static_cast<char>(c);
    } else if (c < 0x800) {
        text += static_cast<char>(0xC0 | (c >> 6));
        text += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        text += static_cast<char>(0xE0 | (c >> 12));
        text += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        text += static_cast<char>(0xF0 | (c >> 18));
        text += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        text += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (c & 0x3F));
    }
}

size_t utf8Length(std::string_view text) {
    size_t n = 0;
    for (size_t at = 0; at < text.size(); ++n) nextCodePoint(text, at);
    return n;
}

std::string utf8Substr(std::string_view text, size_t from, size_t count) {
    size_t at = 0;
    for (; from > 0 && at < text.size(); --from) nextCodePoint(text, at);
    const size_t begin = at;
    for (; count > 0 && at < text.size(); --count) nextCodePoint(text, at);
    return std::string(text.substr(begin, at - begin));
}

bool validUtf8(std::string_view text) {
    for (size_t at = 0; at < text.size();) {
        const size_t before = at;
        if (nextCodePoint(text, at) == 0xFFFD && at - before == 1) return false;
    }
    return true;
}

std::string upperCase(std::string_view text) {
    std::string ascii(text);
    unsigned char beyond = 0;
    for (char& c : ascii) {
        beyond |= static_cast<unsigned char>(c);
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
    }
    if (beyond < 0x80) return ascii;
    return mapped(text, [](char32_t c) {
        if (c < 0x80) return static_cast<char32_t>(c >= 'a' && c <= 'z' ? c - 32 : c);
        return static_cast<char32_t>(utf8proc_toupper(static_cast<utf8proc_int32_t>(c)));
    });
}

std::string lowerCase(std::string_view text) {
    return mapped(text, [](char32_t c) { return foldCodePoint(c); });
}

std::string_view trimRight(std::string_view text) {
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    return text;
}

std::vector<std::string> split(std::string_view text, char mark) {
    if (text.empty()) return {};
    std::vector<std::string> parts(1);
    for (const char c : text) {
        if (c == mark)
            parts.emplace_back();
        else
            parts.back() += c;
    }
    return parts;
}

std::string trim(std::string_view text) {
    text = trimRight(text);
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    return std::string(text);
}

bool equalsIgnoreCaseAscii(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        const auto low = [](char c) {
            return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
        };
        if (low(a[i]) != low(b[i])) return false;
    }
    return true;
}

int compareText(std::string_view a, std::string_view b) {
    a = trimRight(a);
    b = trimRight(b);
    size_t i = 0, j = 0;
    while (i < a.size() && j < b.size()) {
        const char32_t ca = foldCodePoint(nextCodePoint(a, i));
        const char32_t cb = foldCodePoint(nextCodePoint(b, j));
        if (ca != cb) return ca < cb ? -1 : 1;
    }
    if (i < a.size()) return 1;
    return j < b.size() ? -1 : 0;
}

std::string foldText(std::string_view text) {
    return mapped(trimRight(text), [](char32_t c) { return foldCodePoint(c); });
}

int ansiByte(char32_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<int>(c);
    for (size_t i = 0; i < kAnsiUpper.size(); ++i)
        if (kAnsiUpper[i] == c && c != 0) return static_cast<int>(0x80 + i);
    return c >= 0x80 && c < 0xA0 ? static_cast<int>(c) : -1;  // C1 controls stand for themselves
}

char32_t ansiCodePoint(uint8_t byte) {
    if (byte < 0x80 || byte >= 0xA0) return byte;
    const char16_t c = kAnsiUpper[byte - 0x80];
    return c != 0 ? c : byte;
}

}  // namespace owb
