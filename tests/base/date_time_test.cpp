#include "base/date_time.h"

#include <gtest/gtest.h>

namespace owb {
namespace {

TEST(DateTime, DaysCountFrom1900) {
    const struct {
        int year, month, day, number, weekday;
    } cases[] = {{1900, 1, 1, 0, 2},        {1900, 3, 1, 59, 5},    {1899, 12, 31, -1, 1},
                 {2000, 2, 29, 36583, 3},   {2014, 1, 5, 41642, 1}, {1753, 1, 1, -53690, 2},
                 {9999, 12, 31, 2958463, 6}};
    for (const auto& c : cases) {
        const DateTime d = DateTime::fromCivil(c.year, c.month, c.day);
        EXPECT_EQ(d.day, c.number);
        EXPECT_EQ(d.weekday(), c.weekday) << c.year;
        const CivilDate back = d.civil();
        EXPECT_TRUE(back.year == c.year && back.month == c.month && back.day == c.day);
    }
}

TEST(DateTime, MonthsKeepTheDayOrTakeTheLast) {
    const struct {
        const char* from;
        int months;
        const char* to;
    } cases[] = {{"2014-01-31", 1, "2014-02-28"},
                 {"2012-01-31", 1, "2012-02-29"},
                 {"2014-03-31", -1, "2014-02-28"},
                 {"2014-01-15", 12, "2015-01-15"},
                 {"2014-01-15", -13, "2012-12-15"}};
    for (const auto& c : cases) EXPECT_EQ(isoText(parseDate(c.from)->plusMonths(c.months)), c.to);
}

TEST(DateTime, ReadsEveryFormThatIsSent) {
    const struct {
        const char* text;
        const char* iso;  // null: no date
    } cases[] = {{"05/Jan/2014", "2014-01-05"},
                 {"05/JAN/2014", "2014-01-05"},
                 {"2014-01-05", "2014-01-05"},
                 {"2014/01/05", "2014-01-05"},
                 {"20140105", "2014-01-05"},
                 {"2014-Jan-05", "2014-01-05"},
                 {"31-Jan-2014 ", "2014-01-31"},
                 {"01/02/1950", "1950-01-02"},
                 {"Jan 5 2014 10:30AM", "2014-01-05 10:30:00.000"},
                 {"2014-01-05 13:07:09.123", "2014-01-05 13:07:09.123"},
                 {"1/2/49", "2049-01-02"},
                 {"1/2/50", "1950-01-02"},
                 {"29/Feb/2012", "2012-02-29"},
                 {"29/Feb/2014", nullptr},
                 {"31/Jam/2014", nullptr},
                 {"13/13/2014", nullptr},
                 {"soon", nullptr},
                 {"2014-01-05 25:00", nullptr}};
    for (const auto& c : cases) {
        const auto read = parseDate(c.text);
        ASSERT_EQ(read.has_value(), c.iso != nullptr) << c.text;
        if (read) {
            EXPECT_EQ(isoText(*read), c.iso) << c.text;
        }
    }
    EXPECT_EQ(isoText(*parseDate("02/01/1950", DateOrder::DayFirst)), "1950-01-02");
}

// The reference is Thursday, 2026-11-26.
TEST(DateTime, ReadsWhatIsTypedIntoABox) {
    const struct {
        const char* text;
        const char* iso;  // null: no date
    } cases[] = {{"05-Mar-2026", "2026-03-05"},
                 {"05/Mar/2026", "2026-03-05"},
                 {"5.3.26", "2026-03-05"},
                 {" 5 ", "2026-11-05"},
                 {"05", "2026-11-05"},
                 {"5/3", "2026-03-05"},
                 {"5 mar", "2026-03-05"},
                 {"5mar", "2026-03-05"},
                 {"March 5", "2026-03-05"},
                 {"2/13", "2026-02-13"},
                 {"+1", "2026-11-27"},
                 {"-26", "2026-10-31"},
                 {"+0", "2026-11-26"},
                 {"31", nullptr},
                 {"0", nullptr},
                 {"29/2", nullptr},
                 {"32/3/26", nullptr},
                 {"150326", nullptr},
                 {"5/x", nullptr},
                 {"5*3", nullptr},
                 {"+", nullptr},
                 {"+-1", nullptr},
                 {"+99999", nullptr},
                 {"mar", nullptr},
                 {"  ", nullptr},
                 {"", nullptr}};
    for (const auto& c : cases) {
        const auto read = parseEntryDate(c.text, *parseDate("2026-11-26 10:30"));
        ASSERT_EQ(read.has_value(), c.iso != nullptr) << c.text;
        if (read) {
            EXPECT_EQ(isoText(*read), c.iso) << c.text;
        }
    }
}

TEST(DateTime, PatternsOfTheFamily) {
    const DateTime d = *parseDate("2014-01-05 13:07:09");
    const struct {
        const char* pattern;
        const char* text;
    } cases[] = {{"dd/mmm/yyyy", "05/Jan/2014"},
                 {"yyyy-MM-dd", "2014-01-05"},
                 {"MMM/yyyy", "Jan/2014"},
                 {"d/M/yy", "5/1/14"},
                 {"dd-MMM-yyyy HH:mm:ss", "05-Jan-2014 13:07:09"}};
    for (const auto& c : cases) EXPECT_EQ(dateText(d, c.pattern), c.text);
}

TEST(DateTime, TheClockHasStepsOfAThreeHundredth) {
    EXPECT_EQ(isoText(*parseDate("2014-01-05 10:00:00.002")), "2014-01-05 10:00:00.003");
    EXPECT_EQ(isoText(*parseDate("2014-01-05 23:59:59.999")), "2014-01-06");
    EXPECT_EQ(DateTime::fromDays(1.5).tick, DateTime::kTicksPerDay / 2);
    EXPECT_EQ(DateTime::fromDays(-0.25).day, -1);
}

}  // namespace
}  // namespace owb
