#include "base/decimal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "base/number_text.h"

namespace owb {

namespace {

constexpr int kMaxDigits = 38;

int128 absolute(int128 v) {
    return v < 0 ? -v : v;
}

int128 limit() {
    static const int128 value = powerOfTen(kMaxDigits);
    return value;
}

void requireInRange(int128 v) {
    if (absolute(v) >= limit()) throw DecimalOverflow();
}

}  // namespace

int128 powerOfTen(int n) {
    static const auto table = [] {
        std::array<int128, kMaxDigits + 1> t{};
        t[0] = 1;
        for (int i = 1; i <= kMaxDigits; ++i) t[i] = t[i - 1] * 10;
        return t;
    }();
    return table.at(n);
}

int128 multiplyChecked(int128 a, int128 b) {
    int128 result;
    if (__builtin_mul_overflow(a, b, &result)) throw DecimalOverflow();
    requireInRange(result);
    return result;
}

int128 shiftDecimal(int128 value, int n) {
    if (n == 0) return value;
    if (n > 0) {
        if (value == 0) return 0;
        if (n > kMaxDigits) throw DecimalOverflow();
        return multiplyChecked(value, powerOfTen(n));
    }
    if (-n > kMaxDigits) return 0;
    const int128 unit = powerOfTen(-n);
    const int128 quotient = value / unit;
    const int128 rest = absolute(value % unit);
    if (rest >= unit - rest) return quotient + (value < 0 ? -1 : 1);
    return quotient;
}

Decimal Decimal::fromDouble(double v, int scale) {
    if (!std::isfinite(v)) throw DecimalOverflow();
    Decimal exact;
    if (!parse(numberText(v), exact)) throw DecimalOverflow();
    return exact.rescaled(scale);
}

bool Decimal::parse(std::string_view text, Decimal& out) {
    size_t i = 0;
    bool negative = false;
    if (i < text.size() && (text[i] == '-' || text[i] == '+')) negative = text[i++] == '-';
    int128 value = 0;
    int scale = 0, significant = 0;
    bool point = false, any = false;
    for (; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '.' && !point) {
            point = true;
            continue;
        }
        if (c < '0' || c > '9') return false;
        any = true;
        if (significant >= kMaxDigits) {
            // Places beyond what fits are cut; whole digits beyond it do not fit at all.
            if (!point) throw DecimalOverflow();
            continue;
        }
        value = value * 10 + (c - '0');
        if (value != 0) ++significant;
        if (point) ++scale;
    }
    if (!any) return false;
    out = Decimal(negative ? -value : value, scale);
    return true;
}

int Decimal::digits() const {
    int n = 1;
    for (int128 v = absolute(unscaled_); v >= 10; v /= 10) ++n;
    return n;
}

Decimal Decimal::truncated(int scale) const {
    if (scale >= scale_) return rescaled(scale);
    return {unscaled_ / powerOfTen(scale_ - scale), scale};
}

double Decimal::toDouble() const {
    // Reading the text gives the nearest double; a plain division would round twice.
    if (absolute(unscaled_) < (int128(1) << 53) && scale_ <= 22)
        return static_cast<double>(static_cast<int64_t>(unscaled_)) /
               static_cast<double>(powerOfTen(scale_));
    const std::string text = toText();
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

std::string Decimal::toText() const {
    char digits[48];
    int n = 0;
    int128 v = absolute(unscaled_);
    do {
        digits[n++] = static_cast<char>('0' + static_cast<int>(v % 10));
        v /= 10;
    } while (v != 0);
    while (n <= scale_) digits[n++] = '0';
    std::string text;
    text.reserve(n + 2);
    if (unscaled_ < 0) text += '-';
    for (int i = n - 1; i >= 0; --i) {
        text += digits[i];
        if (i == scale_ && i > 0) text += '.';
    }
    return text;
}

Decimal Decimal::add(const Decimal& a, const Decimal& b) {
    const int scale = a.scale_ > b.scale_ ? a.scale_ : b.scale_;
    const int128 sum = a.rescaled(scale).unscaled_ + b.rescaled(scale).unscaled_;
    requireInRange(sum);
    return {sum, scale};
}

Decimal Decimal::multiply(const Decimal& a, const Decimal& b, int scale) {
    // The exact product has up to 253 bits: its high and low half, by 64-bit pieces.
    using uint128 = unsigned __int128;
    const auto x = static_cast<uint128>(absolute(a.unscaled_));
    const auto y = static_cast<uint128>(absolute(b.unscaled_));
    const bool negative = (a.unscaled_ < 0) != (b.unscaled_ < 0);
    const uint128 mask = UINT64_MAX;
    const uint128 low = (x & mask) * (y & mask);
    const uint128 cross1 = (x >> 64) * (y & mask), cross2 = (x & mask) * (y >> 64);
    const uint128 middle = (low >> 64) + (cross1 & mask) + (cross2 & mask);
    uint64_t words[4] = {static_cast<uint64_t>(low), static_cast<uint64_t>(middle), 0, 0};
    const uint128 high = (x >> 64) * (y >> 64) + (cross1 >> 64) + (cross2 >> 64) + (middle >> 64);
    words[2] = static_cast<uint64_t>(high);
    words[3] = static_cast<uint64_t>(high >> 64);
    uint64_t lastDigit = 0;
    for (int places = a.scale_ + b.scale_; places > scale; --places) {
        uint128 rest = 0;
        for (int i = 3; i >= 0; --i) {
            rest = (rest << 64) | words[i];
            words[i] = static_cast<uint64_t>(rest / 10);
            rest %= 10;
        }
        lastDigit = static_cast<uint64_t>(rest);
    }
    const uint128 kept = (static_cast<uint128>(words[1]) << 64 | words[0]);
    if (words[2] != 0 || words[3] != 0 || kept >= static_cast<uint128>(limit()))
        throw DecimalOverflow();
    const int128 size = static_cast<int128>(kept) + (lastDigit >= 5 ? 1 : 0);
    const int places = std::min(scale, a.scale_ + b.scale_);
    return Decimal(negative ? -size : size, places).rescaled(scale);
}

Decimal Decimal::divide(const Decimal& a, const Decimal& b, int scale) {
    // a / b with `scale` places: long division, one digit at a time, so that nothing overflows.
    int128 dividend = absolute(a.unscaled_);
    const int128 divisor = absolute(b.unscaled_);
    int128 quotient = dividend / divisor;
    int128 rest = dividend % divisor;
    int places = a.scale_ - b.scale_;
    while (places > scale) {  // more places than wanted: cut
        quotient /= 10;
        --places;
        rest = 0;
    }
    for (; places < scale; ++places) {
        quotient = multiplyChecked(quotient, 10);
        // rest < divisor < 10^38: ten times that still fits 127 bits only below 1.7e37
        int digit = 0;
        if (rest < limit() / 10) {
            rest *= 10;
            digit = static_cast<int>(rest / divisor);
            rest %= divisor;
        } else {
            int128 sum = 0;
            for (int i = 0; i < 10; ++i) {
                if (sum >= divisor - rest) {
                    sum -= divisor - rest;
                    ++digit;
                } else {
                    sum += rest;
                }
            }
            rest = sum;
        }
        quotient += digit;
    }
    requireInRange(quotient);
    const bool negative = (a.unscaled_ < 0) != (b.unscaled_ < 0);
    return {negative ? -quotient : quotient, scale};
}

int Decimal::compare(const Decimal& a, const Decimal& b) {
    if (a.scale_ == b.scale_)
        return a.unscaled_ < b.unscaled_ ? -1 : a.unscaled_ > b.unscaled_ ? 1 : 0;
    if (a.negative() != b.negative()) return a.negative() ? -1 : 1;
    const bool aFiner = a.scale_ > b.scale_;
    const Decimal& fine = aFiner ? a : b;
    const Decimal& coarse = aFiner ? b : a;
    const int shift = fine.scale_ - coarse.scale_;
    int128 widened;
    int order;
    if (__builtin_mul_overflow(coarse.unscaled_, powerOfTen(shift), &widened))
        order = coarse.negative() ? 1 : -1;  // the coarse one is the larger in size
    else
        order = fine.unscaled_ < widened ? -1 : fine.unscaled_ > widened ? 1 : 0;
    return aFiner ? order : -order;
}

}  // namespace owb
