#include "base/decimal.h"

#include <gtest/gtest.h>

namespace owb {
namespace {

Decimal decimal(const char* text) {
    Decimal d;
    EXPECT_TRUE(Decimal::parse(text, d)) << text;
    return d;
}

TEST(Decimal, TextKeepsItsScale) {
    for (const char* text :
         {"0", "0.00", "-12.50", "99999999999999999999999999999999999999", "0.0000000001", "-0.5"})
        EXPECT_EQ(decimal(text).toText(), text);
    Decimal d;
    for (const char* text : {"", "-", "abc", "1.2.3", "1e3", "12a", "1 2"})
        EXPECT_FALSE(Decimal::parse(text, d)) << text;
}

TEST(Decimal, RescalingRoundsHalvesAwayFromZero) {
    const struct {
        const char* from;
        int scale;
        const char* rounded;
        const char* cut;
    } cases[] = {{"2.345", 2, "2.35", "2.34"}, {"-2.345", 2, "-2.35", "-2.34"},
                 {"2.5", 0, "3", "2"},         {"-2.5", 0, "-3", "-2"},
                 {"2.4", 3, "2.400", "2.400"}, {"0.004", 2, "0.00", "0.00"},
                 {"9.999", 2, "10.00", "9.99"}};
    for (const auto& c : cases) {
        EXPECT_EQ(decimal(c.from).rescaled(c.scale).toText(), c.rounded);
        EXPECT_EQ(decimal(c.from).truncated(c.scale).toText(), c.cut);
    }
}

TEST(Decimal, Arithmetic) {
    EXPECT_EQ(Decimal::add(decimal("0.1"), decimal("0.2")).toText(), "0.3");
    EXPECT_EQ(Decimal::add(decimal("1.5"), decimal("-2.25")).toText(), "-0.75");
    EXPECT_EQ(Decimal::divide(decimal("2"), decimal("3"), 6).toText(), "0.666666");
    EXPECT_EQ(Decimal::divide(decimal("-1"), decimal("3.0"), 6).toText(), "-0.333333");
    EXPECT_EQ(Decimal::divide(decimal("10.25"), decimal("3.10"), 20).toText(),
              "3.30645161290322580645");
}

TEST(Decimal, ComparesAcrossScales) {
    const struct {
        const char* a;
        const char* b;
        int order;
    } cases[] = {{"1.50", "1.5", 0},
                 {"0.1", "0.09", 1},
                 {"-1", "0.5", -1},
                 {"-0.0", "0", 0},
                 {"12345678901234567890123456789012345678", "0.00000000000000000001", 1}};
    for (const auto& c : cases) {
        const int order = Decimal::compare(decimal(c.a), decimal(c.b));
        EXPECT_EQ((order > 0) - (order < 0), c.order) << c.a << ' ' << c.b;
    }
}

TEST(Decimal, MoreThan38DigitsIsAnError) {
    const Decimal wide = decimal("99999999999999999999999999999999999999");
    EXPECT_THROW(Decimal::add(wide, decimal("1")), DecimalOverflow);
    EXPECT_THROW(wide.rescaled(1), DecimalOverflow);
    EXPECT_THROW(multiplyChecked(wide.unscaled(), 2), DecimalOverflow);
    EXPECT_EQ(wide.digits(), 38);
}

TEST(Decimal, FromDoubleRoundsTheShortestText) {
    EXPECT_EQ(Decimal::fromDouble(2.675, 2).toText(), "2.68");
    EXPECT_EQ(Decimal::fromDouble(-1.005, 2).toText(), "-1.01");
    EXPECT_EQ(Decimal::fromDouble(0.1 + 0.2, 2).toText(), "0.30");
}

}  // namespace
}  // namespace owb
