#include "tsql/sqlite/sql_text.h"

#include "base/number_text.h"
#include "tsql/sqlite/sqlite.h"

namespace owb::tsql {

std::string sqliteLiteral(const Value& v) {
    if (v.isNull()) return "NULL";
    if (v.isText()) return sqliteText(v.asText());
    std::string out;
    if (v.isDouble() || (v.isDate() && v.asDate().hasTime())) {
        out = numberText(v.isDouble() ? v.asDouble() : v.asDate().toDays(),
                         std::chars_format::scientific, 17);
    } else if (v.isDate()) {
        out = std::to_string(v.asDate().day);
    } else if (v.isInt()) {
        out = std::to_string(v.asInt());
    } else {
        const int128 n = v.asDecimal().unscaled();
        if (n < INT64_MIN || n > INT64_MAX) {
            unsigned char bytes[16];
            packWide(n, bytes);
            out = "x'";
            for (const unsigned char b : bytes) {
                char code[3];
                std::snprintf(code, sizeof code, "%02X", b);
                out += code;
            }
            return out + "'";
        }
        out = std::to_string(static_cast<int64_t>(n));
    }
    return out[0] == '-' ? "(" + out + ")" : out;
}

std::string sqliteText(std::string_view text) {
    std::string out = "'";
    for (char c : text) {
        out += c;
        if (c == '\'') out += c;
    }
    return out + "'";
}

std::string sqliteName(std::string_view name) {
    std::string out = "\"";
    for (char c : name) {
        out += c;
        if (c == '"') out += c;
    }
    return out + "\"";
}

std::string schemaOf(const std::string& sqlName) {
    return sqlName.substr(0, sqlName.find('.') + 1);
}

std::string withoutSchema(const std::string& sqlName) {
    return sqlName.substr(sqlName.find('.') + 1);
}

}  // namespace owb::tsql
