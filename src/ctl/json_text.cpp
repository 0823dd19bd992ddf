#include "ctl/json_text.h"

#include <algorithm>
#include <ostream>

namespace owb::ctl {

namespace {

constexpr int kDoubleDigits = 15, kWholeDigits = 18;

std::vector<std::string> keysOf(const Columns& columns) {
    std::vector<std::string> keys;
    for (const Column& column : columns) {
        const bool taken = std::find(keys.begin(), keys.end(), column.name) != keys.end();
        const std::string place = std::to_string(keys.size() + 1);
        keys.push_back(column.name.empty() || taken ? column.name + "#" + place : column.name);
    }
    return keys;
}

std::string dumped(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

Json jsonOf(const Value& value) {
    if (value.isNull()) return nullptr;
    if (value.isInt()) return value.asInt();
    if (value.isDouble()) return value.asDouble();
    if (value.isDecimal()) {
        const Decimal& number = value.asDecimal();
        if (number.scale() == 0 && number.digits() <= kWholeDigits)
            return static_cast<int64_t>(number.unscaled());
        if (number.digits() <= kDoubleDigits) return number.toDouble();
    }
    return value.toText();
}

Json jsonOf(const ResultSet& set) {
    const std::vector<std::string> keys = keysOf(set.columns);
    Json rows = Json::array();
    for (size_t r = 0; r < set.rows; ++r) {
        Json row = Json::object();
        for (size_t c = 0; c < keys.size(); ++c) {
            const Value& value = set.at(r, c);
            const bool bit = set.columns[c].type.kind == SqlKind::Bit && !value.isNull();
            row[keys[c]] = bit ? Json(value.toBool()) : jsonOf(value);
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

void printJson(std::ostream& out, const Json& json) {
    if (!json.is_array()) {
        out << dumped(json) << '\n';
        return;
    }
    out << '[';
    const char* before = "\n";
    for (const Json& element : json) {
        out << before << dumped(element);
        before = ",\n";
    }
    out << (json.empty() ? "]\n" : "\n]\n");
}

}  // namespace owb::ctl
