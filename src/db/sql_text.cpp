#include "db/sql_text.h"

#include <charconv>
#include <cmath>

#include "base/number_text.h"

namespace owb {

namespace {

// Plain digits read as an exact numeric, which holds 38 of them: very large and very small
// numbers go in exponent form and read as float.
std::string doubleLiteral(double v) {
    const double size = std::fabs(v);
    if (v == 0 || (size < 1e15 && size >= 1e-6)) return numberText(v);
    char buffer[40];
    const auto end =
        std::to_chars(buffer, buffer + sizeof buffer, v, std::chars_format::scientific).ptr;
    return std::string(buffer, end);
}

std::string quoted(std::string_view text) {
    std::string out = "'";
    bool beyondAscii = false;
    for (char c : text) {
        if (c == '\'') out += '\'';
        if (static_cast<unsigned char>(c) >= 0x80) beyondAscii = true;
        out += c;
    }
    out += '\'';
    return beyondAscii ? "N" + out : out;
}

}  // namespace

std::string sqlLiteral(const Value& v) {
    if (v.isNull()) return "NULL";
    if (v.isInt()) return std::to_string(v.asInt());
    if (v.isDouble()) return doubleLiteral(v.asDouble());
    if (v.isDecimal()) return v.asDecimal().toText();
    if (v.isDate()) return "'" + isoText(v.asDate()) + "'";
    return quoted(v.asText());
}

std::string sqlName(std::string_view name) {
    std::string out = "[";
    for (char c : name) {
        if (c == ']') out += ']';
        out += c;
    }
    return out + "]";
}

}  // namespace owb
