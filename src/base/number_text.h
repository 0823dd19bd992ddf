// Conversions between numbers and text that the family's figures rest on. Each stands here and
// nowhere else.
#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace owb {

// Leading number of a text: blanks before it are skipped, reading stops at the first character
// that cannot continue it; 0 when there is none. "12abc" is 12, "1.5.2" is 1.5, "" is 0.
double textToNumber(std::string_view text);

// The number that the whole text is, with or without a sign, point and exponent: "+1.5", "-2.",
// ".5e3"; none for any other text. Infinite beyond the range of a double, 0 below it.
std::optional<double> parseNumber(std::string_view text);

// Number text by a format such as "0.00", "####", "###.##", "####.00", "#,##0.00": '0' forces a
// digit, '#' drops a zero one, a comma groups by thousands. Halves round away from zero, judged
// on the shortest decimal text of the number (so 2.675 with "0.00" gives 2.68).
std::string formatNumber(double value, std::string_view format);

// Rounds to a number of decimal places, halves to the even neighbour (2.5 -> 2, 3.5 -> 4; 0.125
// to 2 places -> 0.12), judged on the shortest decimal text of the number.
double roundHalfEven(double value, int places = 0);

// Rounds to a number of decimal places, halves away from zero, judged on the shortest text.
double roundHalfAway(double value, int places = 0);

// The shortest text that reads back as the same number, without exponent: "2.5", "-0.1", "12".
// This is how a number goes into SQL text.
std::string numberText(double value);

// The number with so many places, in fixed or exponent form, or with so many digits in general
// form, as printf writes it where the decimal sign is a point.
std::string numberText(double value, std::chars_format form, int places);

// Indian grouping of a plain number text: "-1234567.50" -> "-12,34,567.50".
std::string groupIndian(std::string_view number);

}  // namespace owb
