// Date texts by CONVERT style, the Islamic calendar's of 130 and 131 among them.
#include <array>
#include <cstdio>

#include "base/db_error.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

constexpr std::array kHijriMonths = {"محرم",         "صفر",           "ربيع الاول", "ربيع الثاني",
                                     "جمادى الاولى", "جمادى الثانية", "رجب",        "شعبان",
                                     "رمضان",        "شوال",          "ذو القعدة",  "ذو الحجة"};

// The calendar by calculation: cycles of 30 years with 11 leap years, months of 30 and 29 days.
CivilDate hijri(int32_t day) {
    constexpr int kFirstDay = -466582;  // 1 Muharram 1: 622-07-18
    constexpr int kCycle = 10631;
    const int since = day - kFirstDay;
    const int cycle = (since >= 0 ? since : since - kCycle + 1) / kCycle;
    int rest = since - cycle * kCycle;
    CivilDate h{cycle * 30 + 1, 1, 1};
    const auto yearDays = [](int yearOfCycle) { return 354 + ((11 * yearOfCycle + 14) % 30 < 11); };
    for (int y = 1; rest >= yearDays(y); ++y, ++h.year) rest -= yearDays(y);
    for (int days = 30; rest >= days && h.month < 12; ++h.month, days = h.month % 2 ? 30 : 29)
        rest -= days;
    h.day = rest + 1;
    return h;
}

}  // namespace

std::string dateByStyle(const DateTime& value, const SqlType& type, int style) {
    if (style < 0) style = type.kind == SqlKind::Date ? 23 : 0;
    const CivilDate c = value.civil();
    const int ms = value.milliseconds();
    const int hour = ms / 3600000, minute = ms / 60000 % 60, second = ms / 1000 % 60,
              milli = ms % 1000;
    const char* month = monthAbbreviation(c.month);
    const int hour12 = hour % 12 == 0 ? 12 : hour % 12;
    const char* half = hour < 12 ? "AM" : "PM";
    const int yy = c.year % 100;
    const bool dateOnly = type.kind == SqlKind::Date;
    char b[64];
    const auto out = [&](const char* format, auto... args) {
        std::snprintf(b, sizeof b, format, args...);
        return std::string(b);
    };
    switch (style) {
        case 0:
        case 100:
            if (dateOnly) return out("%s %2d %04d", month, c.day, c.year);
            return out("%s %2d %04d %2d:%02d%s", month, c.day, c.year, hour12, minute, half);
        case 1:
            return out("%02d/%02d/%02d", c.month, c.day, yy);
        case 101:
            return out("%02d/%02d/%04d", c.month, c.day, c.year);
        case 2:
            return out("%02d.%02d.%02d", yy, c.month, c.day);
        case 102:
            return out("%04d.%02d.%02d", c.year, c.month, c.day);
        case 3:
            return out("%02d/%02d/%02d", c.day, c.month, yy);
        case 103:
            return out("%02d/%02d/%04d", c.day, c.month, c.year);
        case 4:
            return out("%02d.%02d.%02d", c.day, c.month, yy);
        case 104:
            return out("%02d.%02d.%04d", c.day, c.month, c.year);
        case 5:
            return out("%02d-%02d-%02d", c.day, c.month, yy);
        case 105:
            return out("%02d-%02d-%04d", c.day, c.month, c.year);
        case 6:
            return out("%02d %s %02d", c.day, month, yy);
        case 106:
            return out("%02d %s %04d", c.day, month, c.year);
        case 7:
            return out("%s %02d, %02d", month, c.day, yy);
        case 107:
            return out("%s %02d, %04d", month, c.day, c.year);
        case 8:
        case 24:
        case 108:
            return out("%02d:%02d:%02d", hour, minute, second);
        case 9:
        case 109:
            if (dateOnly) return out("%s %2d %04d", month, c.day, c.year);
            return out("%s %2d %04d %2d:%02d:%02d:%03d%s", month, c.day, c.year, hour12, minute,
                       second, milli, half);
        case 10:
            return out("%02d-%02d-%02d", c.month, c.day, yy);
        case 110:
            return out("%02d-%02d-%04d", c.month, c.day, c.year);
        case 11:
            return out("%02d/%02d/%02d", yy, c.month, c.day);
        case 111:
            return out("%04d/%02d/%02d", c.year, c.month, c.day);
        case 12:
            return out("%02d%02d%02d", yy, c.month, c.day);
        case 112:
            return out("%04d%02d%02d", c.year, c.month, c.day);
        case 13:
        case 113:
            if (dateOnly) return out("%02d %s %04d", c.day, month, c.year);
            return out("%02d %s %04d %02d:%02d:%02d:%03d", c.day, month, c.year, hour, minute,
                       second, milli);
        case 14:
        case 114:
            return out("%02d:%02d:%02d:%03d", hour, minute, second, milli);
        case 20:
        case 120:
            if (dateOnly) return out("%04d-%02d-%02d", c.year, c.month, c.day);
            return out("%04d-%02d-%02d %02d:%02d:%02d", c.year, c.month, c.day, hour, minute,
                       second);
        case 21:
        case 25:
        case 121:
            if (dateOnly) return out("%04d-%02d-%02d", c.year, c.month, c.day);
            return out("%04d-%02d-%02d %02d:%02d:%02d.%03d", c.year, c.month, c.day, hour, minute,
                       second, milli);
        case 22:
            return out("%02d/%02d/%02d %2d:%02d:%02d %s", c.month, c.day, yy, hour12, minute,
                       second, half);
        case 23:
            return out("%04d-%02d-%02d", c.year, c.month, c.day);
        case 126:
        case 127:
            if (dateOnly) return out("%04d-%02d-%02d", c.year, c.month, c.day);
            if (milli == 0)
                return out("%04d-%02d-%02dT%02d:%02d:%02d", c.year, c.month, c.day, hour, minute,
                           second);
            return out("%04d-%02d-%02dT%02d:%02d:%02d.%03d", c.year, c.month, c.day, hour, minute,
                       second, milli);
        case 130:
        case 131: {
            const CivilDate h = hijri(value.day);
            const std::string date = style == 131 ? out("%2d/%02d/%04d", h.day, h.month, h.year)
                                                  : out("%2d ", h.day) + kHijriMonths[h.month - 1] +
                                                        out(" %04d", h.year);
            if (dateOnly) return date;
            return date + out(" %2d:%02d:%02d:%03d%s", hour12, minute, second, milli, half);
        }
        default:
            throw makeDbError(281, {std::to_string(style), type.name()});
    }
}

}  // namespace owb::tsql
