#include "formula/ExprDates.h"

#include <cmath>
#include <optional>
#include <tuple>
#include <vector>

#include "base/utf8.h"
#include "formula/ExprValue.h"

namespace owb {

namespace {

constexpr int kSecondsPerDay = 24 * 60 * 60;
constexpr int kEpoch = 2;  // 1900-01-01, day 0 of DateTime

int floorDivide(int a, int b) {
    return a / b - (a % b != 0 && (a % b < 0) != (b < 0));
}

int64_t allSeconds(const ExprMoment& moment) {
    return int64_t{moment.day} * kSecondsPerDay + moment.seconds;
}

}  // namespace

ExprMoment exprMoment(double days) {
    const double whole = std::trunc(days);
    ExprMoment moment{static_cast<int>(whole),
                      static_cast<int>(std::lround(std::fabs(days - whole) * kSecondsPerDay))};
    if (moment.seconds == kSecondsPerDay) moment = {moment.day + 1, 0};
    return moment;
}

double exprDays(const ExprMoment& moment) {
    const double fraction = static_cast<double>(moment.seconds) / kSecondsPerDay;
    return moment.day < 0 ? moment.day - fraction : moment.day + fraction;
}

double exprDays(const DateTime& date) {
    return exprDays(ExprMoment{date.day + kEpoch, date.milliseconds() / 1000});
}

CivilDate exprCivil(int day) {
    return DateTime{day - kEpoch}.civil();
}

bool exprDayNumber(int64_t year, int64_t month, int64_t day, int& out) {
    if (year >= 0 && year < 100) year += year < 30 ? 2000 : 1900;
    const int64_t months = year * 12 + month - 1;
    if (months < 0 || months >= int64_t{10000} * 12 || std::llabs(day) > 4000000) return false;
    const int64_t number =
        DateTime::dayNumber(static_cast<int>(months / 12), static_cast<int>(months % 12) + 1, 1) +
        kEpoch + day - 1;
    if (number < kFirstExprDay || number > kLastExprDay) return false;
    out = static_cast<int>(number);
    return true;
}

int exprWeekday(int day) {
    return DateTime{day - kEpoch}.weekday();
}

// --- texts ---

namespace {

struct Piece {
    enum Kind { Number, Month, Colon, Point, HalfDay } kind;
    int value = 0;   // of a number; 1 to 12 of a month; 0 or 12 hours of AM and PM
    int digits = 0;  // of a number
};

std::optional<Piece> wordPiece(const std::string& word) {
    if (word == "AM" || word == "A") return Piece{Piece::HalfDay, 0};
    if (word == "PM" || word == "P") return Piece{Piece::HalfDay, 12};
    for (int month = 1; month <= 12; ++month)
        if (word == upperCase(monthAbbreviation(month)) || word == upperCase(monthFullName(month)))
            return Piece{Piece::Month, month};
    return std::nullopt;
}

bool isWeekday(const std::string& word) {
    for (int weekday = 1; weekday <= 7; ++weekday) {
        const std::string name = upperCase(weekdayName(weekday));
        if (word == name || word == name.substr(0, 3)) return true;
    }
    return false;
}

// The pieces of a date text; false when something else stands in it.
bool splitDate(std::string_view text, std::vector<Piece>& pieces) {
    for (size_t at = 0; at < text.size();) {
        const char c = text[at];
        if (c >= '0' && c <= '9') {
            Piece piece{Piece::Number};
            for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
                if (++piece.digits > 4) return false;
                piece.value = piece.value * 10 + (text[at] - '0');
            }
            pieces.push_back(piece);
        } else if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z')) {
            const size_t from = at;
            while (at < text.size() &&
                   ((text[at] >= 'A' && text[at] <= 'Z') || (text[at] >= 'a' && text[at] <= 'z')))
                ++at;
            const std::string word = upperCase(text.substr(from, at - from));
            if (const auto piece = wordPiece(word))
                pieces.push_back(*piece);
            else if (!isWeekday(word))
                return false;
        } else if (c == ':') {
            pieces.push_back({Piece::Colon});
            ++at;
        } else if (c == ' ' || c == '/' || c == '-' || c == ',') {
            ++at;
        } else {
            return false;
        }
    }
    return pieces.size() <= 12;
}

// Takes "h:m[:s] [AM]" or "h AM" out of the pieces. False when a time is there and is none.
bool takeTime(std::vector<Piece>& pieces, std::optional<int>& seconds) {
    for (size_t at = 0; at < pieces.size(); ++at) {
        const bool colon = at + 1 < pieces.size() && pieces[at + 1].kind == Piece::Colon;
        const bool half = at + 1 < pieces.size() && pieces[at + 1].kind == Piece::HalfDay;
        if (pieces[at].kind != Piece::Number || (!colon && !half)) continue;
        int parts[3] = {pieces[at].value, 0, 0};
        size_t end = at + 1;
        for (int part = 1;
             part < 3 && end + 1 < pieces.size() && pieces[end].kind == Piece::Colon &&
             pieces[end + 1].kind == Piece::Number;
             ++part, end += 2)
            parts[part] = pieces[end + 1].value;
        if (end < pieces.size() && pieces[end].kind == Piece::HalfDay) {
            if (parts[0] > 12) return false;
            parts[0] = parts[0] % 12 + pieces[end].value;
            ++end;
        } else if (end == at + 1) {
            return false;
        }
        if (parts[0] > 23 || parts[1] > 59 || parts[2] > 59) return false;
        seconds = (parts[0] * 60 + parts[1]) * 60 + parts[2];
        pieces.erase(pieces.begin() + static_cast<std::ptrdiff_t>(at),
                     pieces.begin() + static_cast<std::ptrdiff_t>(end));
        return true;
    }
    return true;
}

bool validDay(const Piece& year, int month, int day, int& out) {
    if (year.digits == 3 || month < 1 || month > 12) return false;
    if (!exprDayNumber(year.value, month, 1, out)) return false;
    if (day < 1 || day > daysInMonth(exprCivil(out).year, month)) return false;
    out += day - 1;
    return true;
}

bool dateOf(const std::vector<Piece>& pieces, int& day) {
    for (const Piece& piece : pieces)
        if (piece.kind != Piece::Number && piece.kind != Piece::Month) return false;
    std::vector<Piece> numbers;
    int month = 0;
    for (const Piece& piece : pieces) {
        if (piece.kind == Piece::Number)
            numbers.push_back(piece);
        else if (month != 0)
            return false;
        else
            month = piece.value;
    }
    if (month != 0 && numbers.size() == 1)
        return numbers[0].digits == 4 && validDay(numbers[0], month, 1, day);
    if (month != 0 && numbers.size() == 2) {
        if (numbers[0].digits <= 2 && validDay(numbers[1], month, numbers[0].value, day))
            return true;
        return numbers[1].digits <= 2 && validDay(numbers[0], month, numbers[1].value, day);
    }
    if (month == 0 && numbers.size() == 2)
        return numbers[1].digits == 4 && validDay(numbers[1], numbers[0].value, 1, day);
    if (month != 0 || numbers.size() != 3) return false;
    const auto& [a, b, c] = std::tie(numbers[0], numbers[1], numbers[2]);
    if (a.digits > 2)
        return validDay(a, b.value, c.value, day) || validDay(a, c.value, b.value, day);
    return validDay(c, a.value, b.value, day) || validDay(c, b.value, a.value, day) ||
           validDay(a, b.value, c.value, day);
}

}  // namespace

bool readExprDate(std::string_view text, double& days) {
    std::vector<Piece> pieces;
    std::optional<int> seconds;
    if (!splitDate(text, pieces) || pieces.empty() || !takeTime(pieces, seconds)) return false;
    ExprMoment moment{0, seconds.value_or(0)};
    if (!pieces.empty() || !seconds) {
        if (!dateOf(pieces, moment.day)) return false;
    }
    days = exprDays(moment);
    return true;
}

std::string exprTimeText(int seconds) {
    const int hour = seconds / 3600;
    const auto two = [](int n) { return std::string(n < 10 ? ":0" : ":") + std::to_string(n); };
    return std::to_string((hour + 11) % 12 + 1) + two(seconds / 60 % 60) + two(seconds % 60) +
           (hour < 12 ? " AM" : " PM");
}

std::string exprDateText(double days) {
    const ExprMoment moment = exprMoment(days);
    if (moment.day == 0) return exprTimeText(moment.seconds);
    const CivilDate civil = exprCivil(moment.day);
    const std::string date = std::to_string(civil.month) + "/" + std::to_string(civil.day) + "/" +
                             std::to_string(civil.year);
    return moment.seconds == 0 ? date : date + " " + exprTimeText(moment.seconds);
}

// --- intervals ---

namespace {

enum class Unit { Year, Quarter, Month, DayOfYear, Day, Weekday, Week, Hour, Minute, Second };

Unit unitOf(std::string_view interval) {
    static constexpr std::pair<std::string_view, Unit> kUnits[] = {
        {"yyyy", Unit::Year}, {"q", Unit::Quarter}, {"m", Unit::Month}, {"y", Unit::DayOfYear},
        {"d", Unit::Day},     {"w", Unit::Weekday}, {"ww", Unit::Week}, {"h", Unit::Hour},
        {"n", Unit::Minute},  {"s", Unit::Second},
    };
    for (const auto& [name, unit] : kUnits)
        if (equalsIgnoreCaseAscii(interval, name)) return unit;
    throw ExprError{ExprError::InvalidCall};
}

int weekIndex(int day, int firstDayOfWeek) {
    return floorDivide(day + exprWeekday(0) - firstDayOfWeek, 7);
}

int weekOfYear(int day, int firstDayOfWeek, int firstWeekOfYear) {
    const int year = exprCivil(day).year;
    // First day of week 1 of a year.
    const auto start = [&](int of) {
        int january1 = 0;
        exprDayNumber(of, 1, 1, january1);
        const int before = (exprWeekday(january1) - firstDayOfWeek + 7) % 7;
        const bool ownWeek =
            before == 0 || firstWeekOfYear == 1 || (firstWeekOfYear == 2 && before <= 3);
        return january1 - before + (ownWeek ? 0 : 7);
    };
    if (day < start(year)) return (day - start(year - 1)) / 7 + 1;
    if (firstWeekOfYear != 1 && year < 9999 && day >= start(year + 1)) return 1;
    return (day - start(year)) / 7 + 1;
}

}  // namespace

double exprDateAdd(std::string_view interval, double number, double days) {
    ExprMoment moment = exprMoment(days);
    const double count = std::nearbyint(number);
    const Unit unit = unitOf(interval);
    if (!(std::fabs(count) <= 400000000000.0)) throw ExprError{ExprError::Overflow};
    const int64_t n = static_cast<int64_t>(count);
    const auto movedBy = [&](int64_t months) {
        const CivilDate civil = exprCivil(moment.day);
        const int64_t target = int64_t{civil.year} * 12 + civil.month - 1 + months;
        if (target < 1200 || target >= 120000) throw ExprError{ExprError::InvalidCall};
        const int year = static_cast<int>(target / 12), month = static_cast<int>(target % 12) + 1;
        exprDayNumber(year, month, std::min(civil.day, daysInMonth(year, month)), moment.day);
        return exprDays(moment);
    };
    int64_t seconds = kSecondsPerDay;
    switch (unit) {
        case Unit::Year:
            return movedBy(n * 12);
        case Unit::Quarter:
            return movedBy(n * 3);
        case Unit::Month:
            return movedBy(n);
        case Unit::Week:
            seconds *= 7;
            break;
        case Unit::Hour:
            seconds = 3600;
            break;
        case Unit::Minute:
            seconds = 60;
            break;
        case Unit::Second:
            seconds = 1;
            break;
        default:
            break;
    }
    const int64_t total = allSeconds(moment) + n * seconds;
    const int64_t day = total >= 0 ? total / kSecondsPerDay : (total + 1) / kSecondsPerDay - 1;
    if (day < kFirstExprDay || day > kLastExprDay) throw ExprError{ExprError::InvalidCall};
    return exprDays(
        ExprMoment{static_cast<int>(day), static_cast<int>(total - day * kSecondsPerDay)});
}

double exprDateDiff(std::string_view interval, double from, double to, int firstDayOfWeek) {
    const ExprMoment a = exprMoment(from), b = exprMoment(to);
    const CivilDate first = exprCivil(a.day), last = exprCivil(b.day);
    const int years = last.year - first.year;
    switch (unitOf(interval)) {
        case Unit::Year:
            return years;
        case Unit::Quarter:
            return years * 4 + (last.month - 1) / 3 - (first.month - 1) / 3;
        case Unit::Month:
            return years * 12 + last.month - first.month;
        case Unit::DayOfYear:
        case Unit::Day:
            return b.day - a.day;
        case Unit::Weekday:
            return (b.day - a.day) / 7;
        case Unit::Week:
            return weekIndex(b.day, firstDayOfWeek) - weekIndex(a.day, firstDayOfWeek);
        case Unit::Hour:
            return (b.day - a.day) * 24.0 + b.seconds / 3600 - a.seconds / 3600;
        case Unit::Minute:
            return (b.day - a.day) * 1440.0 + b.seconds / 60 - a.seconds / 60;
        case Unit::Second:
            break;
    }
    return static_cast<double>(allSeconds(b) - allSeconds(a));
}

int exprDatePart(std::string_view interval, double days, int firstDayOfWeek, int firstWeekOfYear) {
    const ExprMoment moment = exprMoment(days);
    const CivilDate civil = exprCivil(moment.day);
    int january1 = 0;
    switch (unitOf(interval)) {
        case Unit::Year:
            return civil.year;
        case Unit::Quarter:
            return (civil.month - 1) / 3 + 1;
        case Unit::Month:
            return civil.month;
        case Unit::DayOfYear:
            exprDayNumber(civil.year, 1, 1, january1);
            return moment.day - january1 + 1;
        case Unit::Day:
            return civil.day;
        case Unit::Weekday:
            return (exprWeekday(moment.day) - firstDayOfWeek + 7) % 7 + 1;
        case Unit::Week:
            return weekOfYear(moment.day, firstDayOfWeek, firstWeekOfYear);
        case Unit::Hour:
            return moment.seconds / 3600;
        case Unit::Minute:
            return moment.seconds / 60 % 60;
        case Unit::Second:
            break;
    }
    return moment.seconds % 60;
}

}  // namespace owb
