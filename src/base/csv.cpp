#include "base/csv.h"

#include <charconv>
#include <cmath>

#include "base/number_text.h"

namespace owb {

namespace {

std::string floatText(double v) {
    const double size = std::fabs(v);
    if (v == 0 || (size < 1e15 && size >= 1e-6)) return numberText(v);
    char buffer[40];
    return std::string(buffer, std::to_chars(buffer, buffer + sizeof buffer, v).ptr);
}

}  // namespace

std::string csvField(std::string_view text) {
    if (!text.empty() && text.find_first_of(",\"\r\n") == std::string_view::npos)
        return std::string(text);
    std::string out = "\"";
    for (char c : text) {
        if (c == '"') out += '"';
        out += c;
    }
    return out + "\"";
}

std::string csvCell(const Value& value) {
    if (value.isNull()) return "";
    if (value.isInt()) return std::to_string(value.asInt());
    if (value.isDouble()) return floatText(value.asDouble());
    if (value.isDecimal()) return value.asDecimal().toText();
    if (value.isDate()) return isoText(value.asDate());
    return csvField(value.asText());
}

std::string csvText(const ResultSet& set) {
    std::string out;
    for (size_t c = 0; c < set.columns.size(); ++c) {
        if (c) out += ',';
        if (!set.columns[c].name.empty()) out += csvField(set.columns[c].name);
    }
    out += '\n';
    for (size_t r = 0; r < set.rows; ++r) {
        for (size_t c = 0; c < set.columns.size(); ++c) {
            if (c) out += ',';
            out += csvCell(set.at(r, c));
        }
        out += '\n';
    }
    return out;
}

}  // namespace owb
