// Exact decimal numbers: a 128-bit whole number and a count of decimal places. Covers every
// numeric(p,s) with p up to 38. Arithmetic that would leave 38 digits throws DecimalOverflow.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace owb {

using int128 = __int128;

struct DecimalOverflow : std::overflow_error {
    DecimalOverflow() : std::overflow_error("decimal overflow") {}
};

// 10^n for 0 <= n <= 38.
int128 powerOfTen(int n);
// value * 10^n, checked; n may be negative, then the quotient rounds halves away from zero.
int128 shiftDecimal(int128 value, int n);
// a * b, checked against 38 digits.
int128 multiplyChecked(int128 a, int128 b);

class Decimal {
  public:
    Decimal() = default;
    Decimal(int128 unscaled, int scale) : unscaled_(unscaled), scale_(scale) {}
    static Decimal fromInt(int64_t v) { return {v, 0}; }
    // The nearest decimal with that many places, halves away from zero on the shortest text.
    static Decimal fromDouble(double v, int scale);
    // "-12.50" -> scale 2. False when the text is no plain decimal number.
    static bool parse(std::string_view text, Decimal& out);

    int128 unscaled() const { return unscaled_; }
    int scale() const { return scale_; }
    // Digits needed in all, at least 1.
    int digits() const;

    Decimal rescaled(int scale) const { return {shiftDecimal(unscaled_, scale - scale_), scale}; }
    Decimal truncated(int scale) const;
    double toDouble() const;
    std::string toText() const;  // always with exactly scale() places
    bool negative() const { return unscaled_ < 0; }
    Decimal operator-() const { return {-unscaled_, scale_}; }

    static Decimal add(const Decimal& a, const Decimal& b);
    // Product with the given number of places, halves away from zero.
    static Decimal multiply(const Decimal& a, const Decimal& b, int scale);
    // Quotient with the given number of places, cut off as T-SQL does. b must not be zero.
    static Decimal divide(const Decimal& a, const Decimal& b, int scale);
    static int compare(const Decimal& a, const Decimal& b);
    bool operator==(const Decimal& o) const { return compare(*this, o) == 0; }

  private:
    int128 unscaled_ = 0;
    int scale_ = 0;
};

}  // namespace owb
