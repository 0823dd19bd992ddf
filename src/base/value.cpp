#include "base/value.h"

#include "base/number_text.h"

namespace owb {

double Value::toDouble() const {
    switch (v_.index()) {
        case 1:
            return static_cast<double>(asInt());
        case 2:
            return asDouble();
        case 3:
            return asDecimal().toDouble();
        case 4:
            return textToNumber(asText());
        case 5:
            return asDate().toDays();
        default:
            return 0;
    }
}

int64_t Value::toInt() const {
    if (isInt()) return asInt();
    const double v = roundHalfEven(toDouble());
    if (v >= 9.2e18) return INT64_MAX;
    if (v <= -9.2e18) return INT64_MIN;
    return static_cast<int64_t>(v);
}

DateTime Value::toDate() const {
    if (isDate()) return asDate();
    if (isText()) return parseDate(asText()).value_or(DateTime{});
    return DateTime::fromDays(toDouble());
}

std::string Value::toText() const {
    switch (v_.index()) {
        case 1:
            return std::to_string(asInt());
        case 2:
            return numberText(asDouble());
        case 3:
            return asDecimal().toText();
        case 4:
            return asText();
        case 5:
            return isoText(asDate());
        default:
            return "";
    }
}

}  // namespace owb
