#include "base/date_time.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <vector>

namespace owb {

namespace {

constexpr std::array<const char*, 12> kMonths = {"January",   "February", "March",    "April",
                                                 "May",       "June",     "July",     "August",
                                                 "September", "October",  "November", "December"};
constexpr std::array<const char*, 12> kShortMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::array<const char*, 7> kWeekdays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                  "Thursday", "Friday", "Saturday"};

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isLetter(char c) {
    return lower(c) >= 'a' && lower(c) <= 'z';
}

// 1 to 12 for "jan", "Janu...", "september"; 0 otherwise.
int monthOfName(std::string_view word) {
    if (word.size() < 3) return 0;
    for (int m = 0; m < 12; ++m) {
        const std::string_view full = kMonths[m];
        if (word.size() != 3 && word.size() != full.size()) continue;
        bool same = true;
        for (size_t i = 0; i < word.size() && same; ++i) same = lower(word[i]) == lower(full[i]);
        if (same) return m + 1;
    }
    return 0;
}

struct TimeOfDay {
    int hour = 0, minute = 0, second = 0;
    int64_t fraction = 0;  // 100 nanoseconds
    int places = 0;
};

// "10AM", "10:30", "10:30:15.123", "10:30:15:123" with an optional AM or PM.
DateReading readTime(std::string_view text, TimeOfDay& t) {
    constexpr DateReading none = DateReading::NoDate;
    size_t i = 0;
    int part[3] = {0, 0, 0};
    int n = 0;
    bool colon = false;
    while (i < text.size() && n < 3) {
        if (!isDigit(text[i])) return none;
        int v = 0, digits = 0;
        while (i < text.size() && isDigit(text[i]) && digits < 3) {
            v = v * 10 + (text[i++] - '0');
            ++digits;
        }
        if (digits > 2) return none;
        part[n++] = v;
        if (i < text.size() && text[i] == ':' && n < 3) {
            ++i;
            colon = true;
        } else {
            break;
        }
    }
    if (i < text.size() && n == 3 && (text[i] == '.' || text[i] == ':')) {
        const bool milliseconds = text[i] == ':';
        ++i;
        int digits = 0;
        for (; i < text.size() && isDigit(text[i]); ++i, ++digits)
            if (digits < 7) t.fraction = t.fraction * 10 + (text[i] - '0');
        if (digits == 0 || digits > (milliseconds ? 3 : 7)) return none;
        t.places = digits;
        // ":5" is 5 ms, ".5" half a second
        for (int n = milliseconds ? 3 : digits; n < 7; ++n) t.fraction *= 10;
    }
    while (i < text.size() && text[i] == ' ') ++i;
    bool half = false;
    if (text.size() - i == 2 && lower(text[i + 1]) == 'm' &&
        (lower(text[i]) == 'a' || lower(text[i]) == 'p')) {
        half = true;
        const bool after = lower(text[i]) == 'p';
        if (part[0] > 23 || (part[0] > 12 && !after)) return DateReading::OutOfRange;
        if (part[0] <= 12) part[0] = part[0] % 12 + (after ? 12 : 0);
        i += 2;
    }
    if (i != text.size() || n == 0 || (!colon && !half)) return none;
    if (part[0] > 23 || part[1] > 59 || part[2] > 59) return DateReading::OutOfRange;
    t.hour = part[0];
    t.minute = part[1];
    t.second = part[2];
    return DateReading::Good;
}

int fullYear(int year, int digits) {
    if (digits > 2) return year;
    return year < 50 ? 2000 + year : 1900 + year;
}

}  // namespace

bool isLeapYear(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int daysInMonth(int year, int month) {
    constexpr std::array<int, 12> days = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeapYear(year) ? 29 : days[month - 1];
}

const char* monthAbbreviation(int month) {
    return kShortMonths.at(month - 1);
}
const char* monthFullName(int month) {
    return kMonths.at(month - 1);
}
const char* weekdayName(int weekday) {
    return kWeekdays.at(weekday - 1);
}

// Day numbers by counting from 0000-03-01 in 400-year eras (the proleptic Gregorian calendar).
int32_t DateTime::dayNumber(int year, int month, int day) {
    const int y = month <= 2 ? year - 1 : year;
    const int era = (y >= 0 ? y : y - 399) / 400;
    const int yearOfEra = y - era * 400;
    const int dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const int dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 693901;
}

CivilDate DateTime::civil() const {
    const int z = day + 693901;
    const int era = (z >= 0 ? z : z - 146096) / 146097;
    const int dayOfEra = z - era * 146097;
    const int yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const int dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int shifted = (5 * dayOfYear + 2) / 153;
    const int month = shifted < 10 ? shifted + 3 : shifted - 9;
    return {yearOfEra + era * 400 + (month <= 2), month, dayOfYear - (153 * shifted + 2) / 5 + 1};
}

DateTime DateTime::fromDays(double days) {
    const double whole = std::floor(days);
    int64_t ticks = std::llround((days - whole) * kTicksPerDay);
    int32_t day = static_cast<int32_t>(whole);
    if (ticks >= kTicksPerDay) {
        ticks -= kTicksPerDay;
        ++day;
    }
    return {day, static_cast<int32_t>(ticks)};
}

int DateTime::weekday() const {
    const int sinceMonday = ((day % 7) + 7) % 7;  // 1900-01-01 was a Monday
    return (sinceMonday + 1) % 7 + 1;
}

int DateTime::milliseconds() const {
    return static_cast<int>((static_cast<int64_t>(tick) * 10 + 1) / 3);
}

DateTime DateTime::plusMonths(int n) const {
    const CivilDate c = civil();
    const int64_t months = static_cast<int64_t>(c.year) * 12 + c.month - 1 + n;
    const int year = static_cast<int>(months >= 0 ? months / 12 : (months - 11) / 12);
    const int month = static_cast<int>(months - static_cast<int64_t>(year) * 12) + 1;
    const int last = daysInMonth(year, month);
    return {dayNumber(year, month, c.day < last ? c.day : last), tick};
}

DateTime toTicks(const ReadDate& date) {
    const int64_t ticks = (date.units * 3 + 50'000) / 100'000;
    if (ticks >= DateTime::kTicksPerDay) return {date.day + 1, 0};
    return {date.day, static_cast<int32_t>(ticks)};
}

std::optional<DateTime> parseDate(std::string_view text, DateOrder order) {
    ReadDate date;
    if (readDate(text, order, date) != DateReading::Good) return std::nullopt;
    return toTicks(date);
}

DateReading readDate(std::string_view text, DateOrder order, ReadDate& out) {
    constexpr DateReading none = DateReading::NoDate;
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    out = {};
    if (text.empty()) return DateReading::Good;  // '' is 1900-01-01 to the server

    struct Part {
        int value = 0, digits = 0;
        int month = 0;  // of a month's name
    };
    std::vector<Part> parts;
    size_t i = 0;
    char lastSeparator = 0;
    while (i < text.size() && parts.size() < 3) {
        if (isDigit(text[i])) {
            // A number followed by ":" is the hour: the date part has ended.
            size_t end = i;
            while (end < text.size() && isDigit(text[end])) ++end;
            if (end < text.size() && text[end] == ':') break;
            if (end - i > 8) return none;
            Part p;
            p.digits = static_cast<int>(end - i);
            for (; i < end; ++i) p.value = p.value * 10 + (text[i] - '0');
            parts.push_back(p);
        } else if (isLetter(text[i])) {
            if (lastSeparator == 0 && !parts.empty() && text[i] == 'T') break;
            size_t end = i;
            while (end < text.size() && isLetter(text[end])) ++end;
            Part p;
            p.month = monthOfName(text.substr(i, end - i));
            if (p.month == 0) break;  // perhaps AM or PM of a time
            i = end;
            parts.push_back(p);
        } else {
            return none;
        }
        lastSeparator = 0;
        while (i < text.size() && (text[i] == '/' || text[i] == '-' || text[i] == '.' ||
                                   text[i] == ' ' || text[i] == ',')) {
            if (lastSeparator != 0 && lastSeparator != ' ' && text[i] != ' ') return none;
            if (text[i] != ' ' || lastSeparator == 0) lastSeparator = text[i];
            ++i;
        }
    }
    TimeOfDay time;
    if (i < text.size()) {
        if (text[i] == 'T' && lastSeparator == 0) ++i;
        const DateReading read = readTime(text.substr(i), time);
        if (read != DateReading::Good) return read;
    }

    int year = 1900, month = 1, day = 1;
    int named = -1;
    for (size_t k = 0; k < parts.size(); ++k) {
        if (parts[k].month != 0) {
            if (named >= 0) return none;
            named = static_cast<int>(k);
        }
    }
    if (parts.empty()) {
        if (i == 0 && text.find(':') == std::string_view::npos) return none;
    } else if (parts.size() == 1) {
        const Part& p = parts[0];
        if (p.month != 0) return none;
        if (p.digits == 8) {
            year = p.value / 10000;
            month = p.value / 100 % 100;
            day = p.value % 100;
        } else if (p.digits == 6) {
            year = fullYear(p.value / 10000, 2);
            month = p.value / 100 % 100;
            day = p.value % 100;
        } else if (p.digits == 4) {
            year = p.value;
        } else {
            return none;
        }
    } else if (named >= 0) {
        month = parts[named].month;
        std::vector<Part> numbers;
        for (size_t k = 0; k < parts.size(); ++k)
            if (static_cast<int>(k) != named) numbers.push_back(parts[k]);
        if (numbers.size() == 1) {
            if (numbers[0].digits != 4) return none;
            year = numbers[0].value;
        } else if (numbers[0].digits == 4) {
            year = numbers[0].value;
            day = numbers[1].value;
        } else {
            day = numbers[0].value;
            year = fullYear(numbers[1].value, numbers[1].digits);
        }
    } else if (parts.size() == 3) {
        if (parts[0].digits == 4) {
            year = parts[0].value;
            month = parts[1].value;
            day = parts[2].value;
        } else {
            const bool dayFirst = order == DateOrder::DayFirst;
            day = parts[dayFirst ? 0 : 1].value;
            month = parts[dayFirst ? 1 : 0].value;
            year = fullYear(parts[2].value, parts[2].digits);
            if (parts[2].digits == 3) return none;
        }
    } else {
        return none;
    }
    if (year < 1 || year > 9999 || month < 1 || month > 12 || day < 1 ||
        day > daysInMonth(year, month))
        return named >= 0 ? none : DateReading::OutOfRange;
    out.day = DateTime::dayNumber(year, month, day);
    out.units =
        ((time.hour * 60 + time.minute) * 60 + time.second) * int64_t(10'000'000) + time.fraction;
    out.places = time.places;
    out.timeOnly = parts.empty();
    return DateReading::Good;
}

namespace {

constexpr std::string_view kSeparators = "/.-_\\ ,";

// A part of a typed date: digits, or the name of a month, or neither.
struct TypedPart {
    int value = 0;
    size_t digits = 0;  // as written; 0 for a month's name
};

// The digits of a part, or the month that its letters name; nothing for a part without either.
std::optional<TypedPart> typedPart(std::string_view text) {
    std::string letters;
    TypedPart part;
    for (const char c : text) {
        if (isLetter(c)) letters += c;
        if (!isDigit(c)) continue;
        if (++part.digits > 4) return TypedPart{0, 5};  // no part of a date
        part.value = part.value * 10 + (c - '0');
    }
    if (part.digits == 0) part.value = monthOfName(letters);
    if (part.value == 0 && part.digits == 0) return std::nullopt;
    return part;
}

// The parts between the separators; parts that hold nothing are left out, a separator at the end
// makes one that is none.
std::vector<TypedPart> typedParts(std::string_view text) {
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    std::vector<TypedPart> parts;
    if (!text.empty() && kSeparators.find(text.back()) != std::string_view::npos)
        parts.emplace_back();
    while (!text.empty()) {
        const size_t end = std::min(text.find_first_of(kSeparators), text.size());
        if (const auto part = typedPart(text.substr(0, end))) parts.push_back(*part);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

}  // namespace

std::optional<DateTime> parseTypedDate(std::string_view text) {
    // A time of day behind the date does not matter.
    if (const size_t colon = text.find(':'); colon != std::string_view::npos)
        text = text.substr(0, std::min(text.find_last_of(" T", colon), text.size()));
    std::vector<TypedPart> parts = typedParts(text);
    if (parts.size() != 3) return std::nullopt;
    const bool yearFirst = parts[0].digits == 4;
    if (yearFirst) std::swap(parts[0], parts[2]);
    TypedPart day = parts[0], month = parts[1];
    if (day.digits == 0) std::swap(day, month);  // "Jan 5, 2014"
    const TypedPart year = parts[2];
    const bool named = month.digits == 0;
    if (day.digits == 0 || day.digits > 2 || month.digits > 2) return std::nullopt;
    if (year.digits == 0 || year.digits == 3 || year.digits > 4) return std::nullopt;
    if (!named && month.value > 12 && day.value <= 12) std::swap(day, month);
    const int fullyear = fullYear(year.value, static_cast<int>(year.digits));
    if (fullyear < 1 || month.value < 1 || month.value > 12 || day.value < 1 ||
        day.value > daysInMonth(fullyear, month.value))
        return std::nullopt;
    return DateTime::fromCivil(fullyear, month.value, day.value);
}

namespace {

// "+1", "-10": days from the reference day.
std::optional<DateTime> steppedDate(std::string_view text, const DateTime& referenceDay) {
    const std::string_view digits = text.substr(1);
    if (digits.empty() || digits.size() > 4 || !std::all_of(digits.begin(), digits.end(), isDigit))
        return std::nullopt;
    int days = 0;
    for (const char c : digits) days = days * 10 + (c - '0');
    const int32_t day = referenceDay.day + (text[0] == '-' ? -days : days);
    if (day < DateTime::kMinDay || day > DateTime::kMaxDay) return std::nullopt;
    return DateTime{day, 0};
}

// The numbers and words of a short date; nothing when something else stands in it.
std::optional<std::vector<std::string>> shortParts(std::string_view text) {
    std::vector<std::string> parts;
    char before = ' ';
    for (const char c : text) {
        const bool digit = isDigit(c), letter = isLetter(c);
        if (!digit && !letter && kSeparators.find(c) == std::string_view::npos) return std::nullopt;
        if (digit || letter) {
            if (digit ? !isDigit(before) : !isLetter(before)) parts.emplace_back();
            parts.back() += c;
        }
        before = c;
    }
    return parts;
}

int shortNumber(const std::string& part) {  // 0: none of a day or month
    return isDigit(part[0]) && part.size() <= 2 ? std::stoi(part) : 0;
}

}  // namespace

std::optional<DateTime> parseEntryDate(const std::string& text, const DateTime& referenceDay) {
    if (const auto whole = parseTypedDate(text)) return whole;
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos) return std::nullopt;
    const std::string_view typed =
        std::string_view(text).substr(first, text.find_last_not_of(' ') - first + 1);
    if (typed[0] == '+' || typed[0] == '-') return steppedDate(typed, referenceDay);
    const auto parts = shortParts(typed);
    if (!parts || parts->empty() || parts->size() > 2) return std::nullopt;
    const CivilDate reference = referenceDay.civil();
    int day = shortNumber(parts->front()), month = reference.month;
    if (parts->size() == 2) {
        const std::string& second = parts->back();
        if (day == 0) {
            day = shortNumber(second);
            month = monthOfName(parts->front());
        } else {
            month = isDigit(second[0]) ? shortNumber(second) : monthOfName(second);
            if (isDigit(second[0]) && month > 12 && day <= 12) std::swap(day, month);
        }
    }
    if (month < 1 || month > 12 || day < 1 || day > daysInMonth(reference.year, month))
        return std::nullopt;
    return DateTime::fromCivil(reference.year, month, day);
}

std::string dateText(const DateTime& value, std::string_view pattern) {
    const CivilDate c = value.civil();
    const int ms = value.milliseconds();
    std::string out;
    char buffer[16];
    auto number = [&](int v, int width) {
        std::snprintf(buffer, sizeof buffer, "%0*d", width, v);
        out += buffer;
    };
    for (size_t i = 0; i < pattern.size();) {
        const char letter = lower(pattern[i]);
        size_t run = 1;
        while (i + run < pattern.size() && lower(pattern[i + run]) == letter) ++run;
        switch (letter) {
            case 'd':
                if (run <= 2)
                    number(c.day, static_cast<int>(run));
                else
                    out += std::string(weekdayName(value.weekday())).substr(0, run == 3 ? 3 : 99);
                break;
            case 'm':
                // "mm" behind hours is minutes: HH:mm
                if (run <= 2 && pattern[i] == 'm' && i >= 3 && lower(pattern[i - 2]) == 'h')
                    number(ms / 60000 % 60, static_cast<int>(run));
                else if (run <= 2)
                    number(c.month, static_cast<int>(run));
                else
                    out += run == 3 ? monthAbbreviation(c.month) : monthFullName(c.month);
                break;
            case 'y':
                if (run <= 2)
                    number(c.year % 100, 2);
                else
                    number(c.year, 4);
                break;
            case 'h':
                number(ms / 3600000, static_cast<int>(run));
                break;
            case 's':
                number(ms / 1000 % 60, static_cast<int>(run));
                break;
            default:
                out += pattern.substr(i, run);
        }
        i += run;
    }
    return out;
}

DateTime wallClock() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    DateTime value = DateTime::fromCivil(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
    const int seconds = (local.tm_hour * 60 + local.tm_min) * 60 + std::min(local.tm_sec, 59);
    value.tick = seconds * 300 + static_cast<int32_t>(now.tv_nsec * 3 / 10'000'000);
    return value;
}

std::string isoText(const DateTime& value) {
    const CivilDate c = value.civil();
    char buffer[48];
    int n = std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d", c.year, c.month, c.day);
    if (value.hasTime()) {
        const int ms = value.milliseconds();
        std::snprintf(buffer + n, sizeof buffer - n, " %02d:%02d:%02d.%03d", ms / 3600000,
                      ms / 60000 % 60, ms / 1000 % 60, ms % 1000);
    }
    return buffer;
}

}  // namespace owb
