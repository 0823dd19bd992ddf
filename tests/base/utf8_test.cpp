#include "base/utf8.h"

#include <gtest/gtest.h>

#include "base/csv.h"

namespace owb {
namespace {

TEST(Utf8, CharactersNotBytes) {
    EXPECT_EQ(utf8Length("½P+SL"), 5u);
    EXPECT_EQ(utf8Substr("½P+SL", 1, 2), "P+");
    EXPECT_EQ(utf8Substr("½P", 0, 1), "½");
    EXPECT_EQ(utf8Substr("ab", 5, 1), "");
    EXPECT_EQ(utf8Length("\xff\xfe"), 2u);
    EXPECT_FALSE(validUtf8("a\xc3"));
    EXPECT_FALSE(validUtf8("\xc0\x80"));
    EXPECT_FALSE(validUtf8("\xed\xa0\x80"));
    EXPECT_TRUE(validUtf8("½ é 漢 😀"));
}

TEST(Utf8, TextOrderOfTheDatabase) {
    const struct {
        const char* a;
        const char* b;
        int order;
    } cases[] = {{"abc", "ABC  ", 0}, {" a", "a", -1}, {"é", "É", 0}, {"é", "e", 1},
                 {"abc", "abd", -1},  {"", "  ", 0},   {"a", "", 1}};
    for (const auto& c : cases) {
        const int order = compareText(c.a, c.b);
        EXPECT_EQ((order > 0) - (order < 0), c.order) << c.a << ' ' << c.b;
        EXPECT_EQ(foldText(c.a) == foldText(c.b), order == 0) << c.a << ' ' << c.b;
    }
}

TEST(Utf8, AnsiBytesAndBack) {
    const struct {
        char32_t point;
        int byte;
    } cases[] = {{U'A', 0x41}, {U'½', 0xBD}, {U'€', 0x80}, {U'ÿ', 0xFF}, {U'漢', -1}};
    for (const auto& c : cases) {
        EXPECT_EQ(ansiByte(c.point), c.byte);
        if (c.byte >= 0) {
            EXPECT_EQ(ansiCodePoint(static_cast<uint8_t>(c.byte)), c.point);
        }
    }
}

TEST(Csv, FieldsThatNeedQuotes) {
    const struct {
        Value value;
        const char* field;
    } cases[] = {{Value(), ""},
                 {Value(""), "\"\""},
                 {Value("a,b"), "\"a,b\""},
                 {Value("a\"b"), "\"a\"\"b\""},
                 {Value("a\nb"), "\"a\nb\""},
                 {Value("plain "), "plain "},
                 {Value(2.5), "2.5"},
                 {Value(Decimal(250, 2)), "2.50"},
                 {Value(int64_t{-7}), "-7"},
                 {Value(1e300), "1e+300"},
                 {Value(DateTime{41642, 0}), "2014-01-05"}};
    for (const auto& c : cases) EXPECT_EQ(csvCell(c.value), c.field);
}

}  // namespace
}  // namespace owb
