// Characters of UTF-8 text. A character is one code point; malformed bytes count one each.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace owb {

// Decodes the code point at `at` and moves `at` behind it. A malformed byte gives U+FFFD.
char32_t nextCodePoint(std::string_view text, size_t& at);
void appendCodePoint(std::string& text, char32_t codePoint);
size_t utf8Length(std::string_view text);
// Characters [from, from + count) of the text, counted from 0.
std::string utf8Substr(std::string_view text, size_t from, size_t count);
bool validUtf8(std::string_view text);

std::string upperCase(std::string_view text);
std::string lowerCase(std::string_view text);
std::string trim(std::string_view text);
// The parts between the marks; an empty text has none.
std::vector<std::string> split(std::string_view text, char mark);
std::string_view trimRight(std::string_view text);  // blanks only
bool equalsIgnoreCaseAscii(std::string_view a, std::string_view b);

// Case-insensitive, accent-sensitive order, trailing blanks ignored: the order of all text in
// the database. Negative, 0 or positive.
int compareText(std::string_view a, std::string_view b);
// The key under which texts that compare equal are the same bytes.
std::string foldText(std::string_view text);

// Windows code page 1252, in which connection data is scrambled: the byte of a code point (or -1),
// and the code point of a byte.
int ansiByte(char32_t codePoint);
char32_t ansiCodePoint(uint8_t byte);

}  // namespace owb
