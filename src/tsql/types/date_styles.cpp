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

struct Parts {
    CivilDate c;
    int hour, minute, second, milli;
    const char* month;
    int hour12() const { return hour % 12 == 0 ? 12 : hour % 12; }
    const char* half() const { return hour < 12 ? "AM" : "PM"; }
};

template <class... A>
std::string out(const char* format, A... args) {
    char b[64];
    std::snprintf(b, sizeof b, format, args...);
    return b;
}

// The styles without a time of day, those of two digits for the year included; "" for the others.
std::string dateAlone(const Parts& p, int style) {
    const CivilDate& c = p.c;
    const int yy = c.year % 100;
    switch (style) {
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
            return out("%02d %s %02d", c.day, p.month, yy);
        case 106:
            return out("%02d %s %04d", c.day, p.month, c.year);
        case 7:
            return out("%s %02d, %02d", p.month, c.day, yy);
        case 107:
            return out("%s %02d, %04d", p.month, c.day, c.year);
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
        case 23:
            return out("%04d-%02d-%02d", c.year, c.month, c.day);
        default:
            return "";
    }
}

// The date of a style that has a time of day behind it; "" for one that has none.
std::string dateBefore(const Parts& p, const DateTime& value, int style) {
    const CivilDate& c = p.c;
    switch (style) {
        case 0:
        case 100:
        case 9:
        case 109:
            return out("%s %2d %04d", p.month, c.day, c.year);
        case 13:
        case 113:
            return out("%02d %s %04d", c.day, p.month, c.year);
        case 20:
        case 120:
        case 21:
        case 25:
        case 121:
        case 126:
        case 127:
            return out("%04d-%02d-%02d", c.year, c.month, c.day);
        case 130:
        case 131: {
            const CivilDate h = hijri(value.day);
            if (style == 131) return out("%2d/%02d/%04d", h.day, h.month, h.year);
            return out("%2d ", h.day) + kHijriMonths[h.month - 1] + out(" %04d", h.year);
        }
        default:
            return "";
    }
}

// The time of day behind that date.
std::string timeBehind(const Parts& p, int style) {
    switch (style) {
        case 0:
        case 100:
            return out(" %2d:%02d%s", p.hour12(), p.minute, p.half());
        case 9:
        case 109:
        case 130:
        case 131:
            return out(" %2d:%02d:%02d:%03d%s", p.hour12(), p.minute, p.second, p.milli, p.half());
        case 13:
        case 113:
            return out(" %02d:%02d:%02d:%03d", p.hour, p.minute, p.second, p.milli);
        case 20:
        case 120:
            return out(" %02d:%02d:%02d", p.hour, p.minute, p.second);
        case 126:
        case 127:
            return out("T%02d:%02d:%02d", p.hour, p.minute, p.second) +
                   (p.milli ? out(".%03d", p.milli) : "");
        default:
            return out(" %02d:%02d:%02d.%03d", p.hour, p.minute, p.second, p.milli);
    }
}

}  // namespace

std::string dateByStyle(const DateTime& value, const SqlType& type, int style) {
    if (style < 0) style = type.kind == SqlKind::Date ? 23 : 0;
    const CivilDate c = value.civil();
    const int ms = value.milliseconds();
    const Parts p{
        c, ms / 3600000, ms / 60000 % 60, ms / 1000 % 60, ms % 1000, monthAbbreviation(c.month)};
    std::string date = dateAlone(p, style);
    if (!date.empty()) return date;
    date = dateBefore(p, value, style);
    if (!date.empty()) return type.kind == SqlKind::Date ? date : date + timeBehind(p, style);
    if (style == 8 || style == 24 || style == 108)
        return out("%02d:%02d:%02d", p.hour, p.minute, p.second);
    if (style == 14 || style == 114)
        return out("%02d:%02d:%02d:%03d", p.hour, p.minute, p.second, p.milli);
    if (style == 22)
        return out("%02d/%02d/%02d %2d:%02d:%02d %s", c.month, c.day, c.year % 100, p.hour12(),
                   p.minute, p.second, p.half());
    throw makeDbError(281, {std::to_string(style), type.name()});
}

}  // namespace owb::tsql
