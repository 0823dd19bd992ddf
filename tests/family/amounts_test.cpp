#include <gtest/gtest.h>

#include "family/modCommon.h"

namespace owb {
namespace {

struct AmountCase {
    int type;
    double value, expected;
};

TEST(FnDblRoundAmount, EveryCode) {
    const AmountCase cases[] = {
        // Nearest rupee: .50 goes up, paise beyond the second are cut before that.
        {1, 2.5, 3},
        {1, -2.5, -3},
        {1, 2.499, 2},
        {1, 2.4999, 2},
        {1, 1.15, 1},
        {1, 0.5, 1},
        {1, 0.3, 0},
        {1, 1234567.51, 1234568},
        // Higher rupee: noise below a thousandth does not count.
        {2, 2.001, 3},
        {2, 2.0004, 2},
        {2, 2.5, 3},
        {2, 2.999, 3},
        {2, 2, 2},
        {2, -2.1, -3},
        // Tens: the rest is taken from the unrounded amount.
        {3, 14.99, 10},
        {3, 15, 20},
        {3, 14.5, 10},
        {3, 24.991, 30},
        {3, 24.99, 20},
        {3, 19.6, 20},
        {3, -16, -20},
        {4, 10, 10},
        {4, 10.01, 20},
        {4, 19.6, 20},
        {4, 0, 0},
        {5, 2.675, 2.68},
        {5, 2.674, 2.67},
        {5, -2.675, -2.68},
        // Five paise: above ninety every value goes to the next rupee, .95 stands.
        {6, 1.91, 2},
        {6, 1.95, 1.95},
        {6, 1.90, 1.90},
        {6, 1.99, 2},
        {6, 1.41, 1.45},
        {6, 1.46, 1.50},
        {6, 1.45, 1.45},
        {6, 0.01, 0.05},
        {6, 1.96, 2},
        {6, -1.46, -1.5},
        // No such code.
        {0, 12.34, 0},
        {7, 12.34, 0},
    };
    for (const auto& c : cases)
        EXPECT_DOUBLE_EQ(FnDblRoundAmount(c.type, c.value), c.expected)
            << "type " << c.type << " value " << c.value;
}

TEST(FnDblRndOffLocal, EveryCodeAndSign) {
    const AmountCase cases[] = {
        {0, 2.37, 2.37},
        {1, 2.5, 2.5},
        {1, 2.51, 2.5},
        {1, 2.3, 2},
        {1, -2.51, -3},
        {1, -2.3, -2.5},
        {2, 2.51, 3},
        {2, 2.3, 2.5},
        {2, 2, 2},
        {2, -2.3, -2},
        {2, -2.7, -2.5},
        {3, 2.9, 2},
        {3, -2.1, -3},
        {4, 2.1, 3},
        {4, -2.9, -2},
        {4, 0, 0},
        {4, 3, 3},
        {5, 2.24, 2},
        {5, 2.25, 2.5},
        {5, 2.74, 2.5},
        {5, 2.75, 3},
        {5, -2.25, -2.5},
        {6, 2.49, 2},
        {6, 2.5, 3},
        {6, -2.5, -3},
        {7, 2.37, 2.37},
        {9, 2.37, 2.37},
        // The one code in which it differs from the installed function.
        {8, 2.37, 2.5},
    };
    for (const auto& c : cases)
        EXPECT_DOUBLE_EQ(FnDblRndOffLocal(c.type, c.value), c.expected)
            << "type " << c.type << " value " << c.value;
}

}  // namespace
}  // namespace owb
