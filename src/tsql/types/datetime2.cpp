#include "tsql/types/datetime2.h"

#include <cstdio>

#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

int64_t unitOf(int places) {
    int64_t unit = 1;
    for (int i = places; i < 7; ++i) unit *= 10;
    return unit;
}

std::string timeText(int64_t units, int places, bool halves) {
    const auto seconds = static_cast<int>(units / kUnitsPerSecond);
    const int hour = seconds / 3600;
    char b[32];
    std::snprintf(b, sizeof b, halves ? "%2d:%02d:%02d" : "%02d:%02d:%02d",
                  !halves          ? hour
                  : hour % 12 == 0 ? 12
                                   : hour % 12,
                  seconds / 60 % 60, seconds % 60);
    std::string text = b;
    if (places > 0) {
        const auto fraction = static_cast<int>(units % kUnitsPerSecond);
        std::snprintf(b, sizeof b, ".%07d", fraction);
        text += std::string(b, 1 + places);
    }
    return halves ? text + (hour < 12 ? "AM" : "PM") : text;
}

}  // namespace

int64_t unitsOf(const DateTime& value) {
    return (static_cast<int64_t>(value.tick) * 100'000 + 1) / 3;
}

DateTime datetimeOfDatetime2(int64_t count) {
    ReadDate date;
    date.day = dayOfDatetime2(count);
    date.units = count % kUnitsPerDay;
    return toTicks(date);
}

int64_t roundToPlaces(int64_t count, const SqlType& type) {
    const int64_t unit = unitOf(type.scale);
    count = (count + unit / 2) / unit * unit;
    return type.kind == SqlKind::Time ? count % kUnitsPerDay : count;
}

std::string datetime2Text(int64_t count, const SqlType& type) {
    return datetime2ByStyle(count, type, 121);
}

std::string datetime2ByStyle(int64_t count, const SqlType& type, int style) {
    const int64_t units = count % kUnitsPerDay;
    const bool timeOnly = type.kind == SqlKind::Time;
    std::string time;
    switch (style) {
        case -1:
        case 21:
        case 25:
        case 121:
        case 126:
        case 127:
            time = timeText(units, type.scale, false);
            break;
        case 8:
        case 20:
        case 24:
        case 108:
        case 120:
            time = timeText(units, 0, false);
            break;
        case 14:
        case 114:
        case 13:
        case 113:
            time = timeText(units, type.scale, false);
            break;
        case 9:
        case 109:
            time = timeText(units, type.scale, true);
            break;
        case 0:
        case 100:
            time = timeText(units, 0, true);
            time.erase(5, 3);
            break;
        default:
            break;
    }
    const SqlType date = SqlType::of(SqlKind::Date);
    if (timeOnly) {
        if (time.empty()) throw makeDbError(281, {std::to_string(style), type.name()});
        return time[0] == ' ' ? time.substr(1) : time;
    }
    if (style == 8 || style == 24 || style == 108 || style == 14 || style == 114) return time;
    if (style == 22 || style > 127) return dateByStyle(datetimeOfDatetime2(count), type, style);
    const DateTime day{dayOfDatetime2(count), 0};
    const std::string text = dateByStyle(day, date, style < 0 ? 121 : style);
    if (time.empty()) return text;
    return text + (style == 126 || style == 127 ? "T" : " ") + time;
}

}  // namespace owb::tsql
