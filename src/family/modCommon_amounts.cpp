// Rounding of amounts and of days.
#include <cmath>
#include <cstdint>

#include "base/number_text.h"
#include "family/modCommon.h"

namespace owb {

namespace {

double formatted(double value, std::string_view format) {
    return textToNumber(formatNumber(value, format));
}

double nearestRupee(double x) {
    x = roundHalfEven(std::trunc(x * 100) / 100, 2);
    const std::string text = formatNumber(x, "####.00");
    return text.ends_with(".50") ? x + 0.5 : formatted(x, "####");
}

double higherRupee(double x) {
    x = roundHalfEven(std::trunc(x * 1000) / 1000, 3);
    const double whole = formatted(x, "####");
    const double d = roundHalfEven(x - whole, 4);
    if (d == 0) return whole;
    return d < 0 ? formatted(roundHalfEven(x, 2), "####") : whole + 1;
}

// Lower ten, or the ten above it when the rest is larger than `step`.
double ten(double x, double step) {
    const double lower = std::trunc(roundHalfEven(x) / 10) * 10;
    return roundHalfEven(x - lower, 10) > step ? lower + 10 : lower;
}

double nextFivePaise(double x) {
    std::string s = formatNumber(x, "0.00");
    const char first = s[s.size() - 2];
    if (s.back() == '0' || s.back() == '5') return textToNumber(s);
    if (s.back() < '5') s.back() = '5';
    if (first == '9') return std::trunc(x) + 1;
    if (s.back() > '5') {
        s.resize(s.size() - 2);
        s += static_cast<char>(first + 1);
        s += '0';
    }
    return textToNumber(s);
}

}  // namespace

double FnDblRoundAmount(int roundType, double value) {
    if (value < 0) return -FnDblRoundAmount(roundType, -value);
    switch (roundType) {
        case 1:
            return nearestRupee(value);
        case 2:
            return higherRupee(value);
        case 3:
            return ten(value, 4.99);
        case 4:
            return ten(value, 0);
        case 5:
            return formatted(value, "###.##");
        case 6:
            return nextFivePaise(value);
        default:
            return 0;
    }
}

double FnDblRndOffLocal(int roundType, double value) {
    double x = roundHalfEven(value, 2);
    if (x < 0) {
        // Codes 1 to 4 move one way on the number line, whatever the sign.
        constexpr int swapped[] = {0, 2, 1, 4, 3};
        return -FnDblRndOffLocal(roundType >= 1 && roundType <= 4 ? swapped[roundType] : roundType,
                                 -x);
    }
    const std::string text = formatNumber(x, "0.00");
    const double f = textToNumber(text.substr(text.size() - 3));
    switch (roundType) {
        case 1:
            x = f >= 0.5 ? x - (f - 0.5) : x - f;
            break;
        case 2:
            if (f > 0.5)
                x += 1 - f;
            else if (f > 0)
                x += 0.5 - f;
            break;
        case 3:
            x -= f;
            break;
        case 4:
            x = std::trunc(x) + (f > 0 ? 1 : 0);
            break;
        case 5:
        case 8:
            if (f < 0.5) {
                x += f >= 0.25 ? 0.5 - f : -f;
            } else {
                const double g = roundHalfEven(f - 0.5, 2);
                x += g < 0.25 ? -g : 0.5 - g;
            }
            break;
        case 6:
            x += f < 0.5 ? -f : 1 - f;
            break;
        default:
            break;
    }
    return roundHalfEven(x, 2);
}

}  // namespace owb
