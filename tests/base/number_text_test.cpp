#include "base/number_text.h"

#include <gtest/gtest.h>

#include <cmath>

namespace owb {
namespace {

TEST(NumberText, TextToNumberStopsAtTheFirstBadCharacter) {
    const struct {
        const char* text;
        double number;
    } cases[] = {{"", 0},       {"abc", 0},       {"12abc", 12}, {"  7", 7},    {"1.5.2", 1.5},
                 {"-3", -3},    {"+4.25x", 4.25}, {".5", 0.5},   {"-.5", -0.5}, {"1,000", 1},
                 {"00012", 12}, {"12 34", 12},    {"-", 0},      {".", 0},      {"2014-01", 2014}};
    for (const auto& c : cases) EXPECT_EQ(textToNumber(c.text), c.number) << c.text;
}

TEST(NumberText, AWholeTextIsANumberOrNone) {
    const struct {
        const char* text;
        std::optional<double> number;
    } cases[] = {{"+1.5", 1.5},
                 {"-2.", -2},
                 {".5e3", 500},
                 {"1E+2", 100},
                 {"4.9e-324", 5e-324},
                 {"-1e400", -HUGE_VAL},
                 {"1e-400", 0},
                 {"", {}},
                 {".", {}},
                 {"+-1", {}},
                 {"++1", {}},
                 {"1e", {}},
                 {"1,5", {}},
                 {"inf", {}},
                 {"nan", {}},
                 {" 1", {}}};
    for (const auto& c : cases) EXPECT_EQ(parseNumber(c.text), c.number) << c.text;
}

TEST(NumberText, FormatsRoundHalvesAwayFromZero) {
    const struct {
        double value;
        const char* format;
        const char* text;
    } cases[] = {{2.675, "0.00", "2.68"},
                 {1.005, "0.00", "1.01"},
                 {-2.5, "0", "-3"},
                 {2.5, "####", "3"},
                 {0.5, "0", "1"},
                 {12.345, "###.##", "12.35"},
                 {12.5, "###.##", "12.5"},
                 {0.25, "####.00", ".25"},
                 {3, "####.00", "3.00"},
                 {0, "0.00", "0.00"},
                 {1234567.5, "#,##0.00", "1,234,567.50"},
                 {-0.004, "0.00", "0.00"},
                 {999.995, "0.00", "1000.00"},
                 {5, "00", "05"}};
    for (const auto& c : cases)
        EXPECT_EQ(formatNumber(c.value, c.format), c.text) << c.value << ' ' << c.format;
}

TEST(NumberText, TheTwoRoundingsDifferAtHalves) {
    const struct {
        double value;
        int places;
        double even;
        double away;
    } cases[] = {{2.5, 0, 2, 3},         {3.5, 0, 4, 4},         {-2.5, 0, -2, -3},
                 {0.125, 2, 0.12, 0.13}, {2.675, 2, 2.68, 2.68}, {1.005, 2, 1, 1.01},
                 {0.375, 2, 0.38, 0.38}, {14.99, 0, 15, 15},     {-0.5, 0, 0, -1}};
    for (const auto& c : cases) {
        EXPECT_DOUBLE_EQ(roundHalfEven(c.value, c.places), c.even) << c.value;
        EXPECT_DOUBLE_EQ(roundHalfAway(c.value, c.places), c.away) << c.value;
    }
}

TEST(NumberText, ShortestTextHasNoExponent) {
    const struct {
        double value;
        const char* text;
    } cases[] = {
        {2.5, "2.5"},     {-0.1, "-0.1"},     {12, "12"},  {0.1 + 0.2, "0.30000000000000004"},
        {1e6, "1000000"}, {0.0001, "0.0001"}, {-0.0, "0"}, {100, "100"}};
    for (const auto& c : cases) EXPECT_EQ(numberText(c.value), c.text);
}

TEST(NumberText, IndianGrouping) {
    const struct {
        const char* plain;
        const char* grouped;
    } cases[] = {
        {"-1234567.50", "-12,34,567.50"}, {"999", "999"}, {"1000", "1,000"}, {"100000", "1,00,000"},
        {"12345678", "1,23,45,678"},      {"0.5", "0.5"}, {"-100", "-100"}};
    for (const auto& c : cases) EXPECT_EQ(groupIndian(c.plain), c.grouped);
}

}  // namespace
}  // namespace owb
