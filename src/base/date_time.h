// Dates as a datetime holds them: a day number counted from 1900-01-01 (day 0) and a time of day in
// 1/300 seconds. Calendar arithmetic, the texts of dates that are read (in SQL, and as users type
// them), and those that are written.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace owb {

struct CivilDate {
    int year = 1900;
    int month = 1;  // 1 to 12
    int day = 1;
};

struct DateTime {
    static constexpr int32_t kTicksPerDay = 24 * 60 * 60 * 300;
    static constexpr int32_t kMinDay = -53690;   // 1753-01-01
    static constexpr int32_t kMaxDay = 2958463;  // 9999-12-31

    int32_t day = 0;   // days since 1900-01-01
    int32_t tick = 0;  // 1/300 s since midnight

    static DateTime fromCivil(int year, int month, int day) {
        return {dayNumber(year, month, day)};
    }
    static int32_t dayNumber(int year, int month, int day);
    // Days with a fraction, rounded to the nearest tick.
    static DateTime fromDays(double days);
    double toDays() const { return day + static_cast<double>(tick) / kTicksPerDay; }

    CivilDate civil() const;
    int weekday() const;  // 1 Sunday to 7 Saturday
    bool hasTime() const { return tick != 0; }
    int milliseconds() const;  // since midnight, rounded as SQL Server shows it (.000 .003 .007)
    DateTime plusDays(int n) const { return {day + n, tick}; }
    // Same day n months on, or the last day of that month.
    DateTime plusMonths(int n) const;

    auto operator<=>(const DateTime&) const = default;
};

bool isLeapYear(int year);
int daysInMonth(int year, int month);
const char* monthAbbreviation(int month);  // "Jan"
const char* monthFullName(int month);      // "January"
const char* weekdayName(int weekday);      // 1 "Sunday"

enum class DateOrder { MonthFirst, DayFirst };
enum class DateReading { Good, NoDate, OutOfRange };

// A date text as it was read: the time of day not yet rounded.
struct ReadDate {
    int32_t day = 0;    // as in DateTime
    int64_t units = 0;  // 100 nanoseconds since midnight
    int places = 0;     // digits behind the seconds
    bool timeOnly = false;
};
// The time of day in 1/300 s, which can carry into the next day.
DateTime toTicks(const ReadDate& date);

// Reads a date text in any of the forms that are sent ('05/Jan/2014', '2014-01-05', '20140105',
// '31-Jan-2014 ', '01/02/1950', 'Jan 5 2014 10:30AM', with or without a time). Purely numeric
// d/m/y texts follow `order`; years of two digits up to 49 are 20xx. A date in numbers alone that
// the calendar lacks is out of range.
DateReading readDate(std::string_view text, DateOrder order, ReadDate& out);
// The same; nothing when it is no date.
std::optional<DateTime> parseDate(std::string_view text, DateOrder order = DateOrder::MonthFirst);

// A date as users write it, day first: "5/1/2014", "05-Jan-14", "5.1.14", "2014-01-05". Any of
// / - . _ \ blank and comma separate, letters that name no month and other characters are dropped.
// What cannot be day/month is taken as month/day ("2/13/2014"). Nothing when it is no date, as an
// empty text is none. Whoever reads a whole date reads with it: sheets, stored texts.
std::optional<DateTime> parseTypedDate(std::string_view text);

// A date as users write it where a day of reference is known, in boxes and cells: a whole date as
// above, and the short forms "5" (of the reference's month), "5/3", "5 Mar", "Mar 5" (of its year),
// "+1" and "-10" (days from it). Nothing when it is no date, as an empty text is none.
std::optional<DateTime> parseEntryDate(const std::string& text, const DateTime& referenceDay);

// The date by a pattern of dd d MMM MM M yyyy yy HH mm ss; letters' case of "mmm" does not matter,
// "MMM" gives "Jan". Everything else stands as it is.
std::string dateText(const DateTime& value, std::string_view pattern);

// This machine's date and time of day.
DateTime wallClock();

// YYYY-MM-DD, and " HH:MM:SS.mmm" when there is a time.
std::string isoText(const DateTime& value);

}  // namespace owb
