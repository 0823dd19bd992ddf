#include <gtest/gtest.h>

#include "family/clsGenCmn.h"
#include "family/clsSPChar.h"
#include "family/modCommon.h"
#include "session/MemorySettingsStore.h"
#include "support/company.h"

namespace owb {
namespace {

struct TextCase {
    std::string text, expected;
};

struct Helpers : ::testing::Test {
    MemorySettingsStore settings;
    test::RecordedBoxes boxes;
    clsSPChar spChar{settings};
    clsGenCmn genCmn{boxes};
};

TEST_F(Helpers, MonthKeys) {
    const std::pair<int32_t, std::string> months[] = {
        {24168, "Dec/2013"}, {24169, "Jan/2014"}, {22800, "Dec/1899"}, {24300, "Dec/2024"}};
    for (const auto& [key, text] : months) {
        EXPECT_EQ(FnStrMonthYearText(key), text);
        EXPECT_EQ(FnLngMonthYearOfText(text), key);
    }
    EXPECT_EQ(FnStrMonthYearText(0), "");
    EXPECT_EQ(FnStrMonthYearText(-3), "");
    for (const char* none : {"", "  ", "31/02/2014", "soon", "/2014"})
        EXPECT_EQ(FnLngMonthYearOfDate(std::string(none)), 0) << none;
    EXPECT_EQ(FnLngMonthYearOfDate(std::string("05/11/2014")), 2014 * 12 + 11);  // day first
    EXPECT_EQ(FnLngMonthYearOfDate(DateTime::fromCivil(2013, 12, 31)), 24168);
}

TEST_F(Helpers, TypedDates) {
    const TextCase cases[] = {
        {"1-2-14", "01/02/2014"},
        {"01.02.2014", "01/02/2014"},
        {"1 / 2 / 2014", "01/02/2014"},
        {"1,,2__2014", "01/02/2014"},
        {"--1-2-2014", "01/02/2014"},
        {"1x/2y/2014", "01/02/2014"},
        {"29-2-2024", "29/02/2024"},
        {"29-2-2023", ""},
        {"31/4/2024", ""},
        {"2-13-2024", "13/02/2024"},
        {"2024-3-9", "09/03/2024"},
        {"1-2-50", "01/02/1950"},
        {"1-2-49", "01/02/2049"},
        {"", ""},
        {"12", ""},
        {"1-2-3-4", ""},
        {"1-2-2014-", ""},
        {"1-2-20145", ""},
        {"05/Jan/2014", "05/01/2014"},
        {"05-Mar-2026", "05/03/2026"},
        {"Jan 5, 2014", "05/01/2014"},
        {"2014-jan-05", "05/01/2014"},
        {"31-Feb-2026", ""},
        {"Jan/Feb/2026", ""},
        {"5/2014", ""},
        {" 5/1/14 ", "05/01/2014"},
        {"2014-01-05 10:30:00.000", "05/01/2014"},
    };
    for (const auto& c : cases) EXPECT_EQ(FnStrCleanDate(c.text), c.expected) << c.text;
    EXPECT_EQ(FnStrCleanDateCentury("03.04.0014"), "03/04/2014");
    EXPECT_EQ(FnStrCleanDateCentury("03.04.1914"), "03/04/1914");
    EXPECT_EQ(FnStrSqlDate(std::string("5/1/2014")), "05/Jan/2014");
    for (const char* none : {" ", "soon", "31/2/2014"})
        EXPECT_THROW(FnStrSqlDate(std::string(none)), DbError) << none;
}

TEST_F(Helpers, EscapingByDialect) {
    const struct {
        const char* dialect;
        std::string text, expected;
    } cases[] = {
        {"SQL", "O'Neil|a\\b", "O''Neil|a\\b"},
        {"sql", "''", "''''"},
        {"mysql", "a\\b|c", "a\\\\b|c"},
        {"ACC97", "a|b'c", "a' & Chr$(124) & 'b''c"},
    };
    for (const auto& c : cases) {
        settings.SaveSetting("settings", "dbtype", c.dialect);
        EXPECT_EQ(spChar.FnStrSpSQL(c.text), c.expected) << c.dialect;
    }
    EXPECT_EQ(spChar.FnStrSpLikeSQL("a[b]#c'd\"e"), "a[[]b][#]c''d\"\"e");
    EXPECT_EQ(spChar.FnStrSpRep("plain"), "\"plain\"");
    EXPECT_EQ(spChar.FnStrSpRep("a\"b'c"), "'a\"b''c'");
    EXPECT_EQ(spChar.FnStrChangeAllSp("a|b'c"), "ab''c");
    EXPECT_EQ(spChar.FnStrClearAllSp("a'|\"#[b]c"), "abc");
}

TEST_F(Helpers, RupeesInWords) {
    const std::pair<double, std::string> cases[] = {
        {0, "Rupees Zero"},
        {234506.5, "Rupees Two Lakh Thirty Four Thousand Five Hundred Six and Paise Fifty Only"},
        {100000, "Rupees One Lakh Only"},
        {10000019, "Rupees One Crore Nineteen Only"},
        {999999999.99,
         "Rupees Ninety Nine Crore Ninety Nine Lakh Ninety Nine Thousand Nine Hundred Ninety Nine "
         "and Paise Ninety Nine Only"},
        {1.005, "Rupees One and Paise One Only"},
        {40, "Rupees Forty Only"},
    };
    for (const auto& [amount, words] : cases) EXPECT_EQ(genCmn.FnStrRupeeInWords(amount), words);
}

TEST_F(Helpers, AmountTexts) {
    EXPECT_EQ(genCmn.FnStrCormat(1234567.895, 2), "12,34,567.90");
    EXPECT_EQ(genCmn.FnStrCormat(-123456, 0), "-1,23,456");
    EXPECT_EQ(genCmn.FnStrCormat(999, 1), "999.0");
    EXPECT_EQ(genCmn.FnStrConvertToNumber(1234567.895, 2), "1234567.90");
    EXPECT_EQ(genCmn.FnStrRestrictAmount("12,34,567.5", 5000000), "12,34,567.50");
    EXPECT_EQ(genCmn.FnStrRestrictAmount("60,00,000", 5000000), "50,00,000.00");
    EXPECT_EQ(genCmn.FnStrRestrictAmount("99999999", 1e9), "99,99,999.99");
    EXPECT_EQ(genCmn.FnDblTrimVal("1,23,456.5x"), 123456.5);
    EXPECT_EQ(genCmn.FnStrSuffixST_ND_RD_TH(2), "nd");
    EXPECT_EQ(genCmn.FnStrSuffixST_ND_RD_TH(11), "th");
    EXPECT_EQ(genCmn.FnStrPADL("7", 3, '0'), "007");
    EXPECT_EQ(genCmn.FnStrPADL("1234", 3, '0'), "1234");
    EXPECT_EQ(genCmn.FnStrCorrectFileName("a'b/c,d*e(f) g"), "abcdefg");
    EXPECT_EQ(genCmn.FnStrClearAllNonFileChar("a*b/c:d<e>f?g\\h|i"), "abcdefghi");
    EXPECT_EQ(genCmn.FnStrConvertToTitle("ravi KUMAR"), "Ravi Kumar");
}

TEST_F(Helpers, ScrambleUndoesItself) {
    std::string all;
    for (int c = 32; c < 127; ++c) all += static_cast<char>(c);
    EXPECT_NE(genCmn.FnStrEncryptWord("sa"), "sa");
    EXPECT_EQ(genCmn.FnStrEncryptWord("A"), "Á");  // 65 + 128
    EXPECT_EQ(genCmn.FnStrEncryptWord(genCmn.FnStrEncryptWord(all)), all);
    EXPECT_EQ(genCmn.FnStrEncryptWord(genCmn.FnStrEncryptWord("Pässwört€")), "Pässwört€");
}

TEST_F(Helpers, KeyFilters) {
    const struct {
        std::string name;
        int key, expected;
        int got;
    } cases[] = {
        {"first point", '.', '.', genCmn.FnIntAllowAmtOnly('.', "12")},
        {"second point", '.', 0, genCmn.FnIntAllowAmtOnly('.', "1.2")},
        {"comma in an amount", ',', ',', genCmn.FnIntAllowAmtOnly(',', "1")},
        {"comma not allowed", ',', 0, genCmn.FnIntAllowAmountOnly(',', "1", {false, false})},
        {"minus allowed once", '-', '-', genCmn.FnIntAllowAmountOnly('-', "", {true, false})},
        {"second minus", '-', 0, genCmn.FnIntAllowAmountOnly('-', "-1", {true, false})},
        {"minus in a double", '-', 0, genCmn.FnIntAllowDoubleOnly('-', "")},
        {"letter in numbers", 'a', 0, genCmn.FnIntAllowNumbersOnly('a')},
        {"backspace passes", 8, 8, genCmn.FnIntAllowNumbersOnly(8)},
        {"paste passes", 22, 22, genCmn.FnIntAllowDateOnly(22)},
        {"month name in a date", 'J', 0, genCmn.FnIntAllowDateOnly('J')},
        {"month name allowed", 'J', 'J', genCmn.FnIntAllowDateOnlyWithAlpha('J')},
        {"capitals", 'q', 'Q', genCmn.FnIntAllowCapitalsOnly('q')},
        {"capitals leave digits", '7', '7', genCmn.FnIntAllowCapitalsOnly('7')},
        {"bar", 124, 0, genCmn.FnIntAllowAllNonSpecial(124)},
        {"colon in a file name", ':', 0, genCmn.FnIntAllowAllFileNameChrs(':')},
        {"full box", 'x', 0, genCmn.FnIntLimitMaxLength('x', "½½½", 0, 3)},
        {"full box, selection", 'x', 'x', genCmn.FnIntLimitMaxLength('x', "½½½", 1, 3)},
        {"full box, backspace", 8, 8, genCmn.FnIntLimitMaxLength(8, "abc", 0, 3)},
        {"brace in a formula", '{', '{', genCmn.FnIntAllowExprsnOnly('{')},
        {"brace in a figure", '{', 0, genCmn.FnIntAllowOnlyEvalNumarals('{')},
    };
    for (const auto& c : cases) EXPECT_EQ(c.got, c.expected) << c.name;
}

TEST_F(Helpers, QuestionsDefaultToNo) {
    EXPECT_EQ(genCmn.FnLngDeleteBox(), BoxAnswer::No);
    ASSERT_EQ(boxes.shown.size(), 1u);
    EXPECT_EQ(boxes.shown[0].text, "Delete This Record ?");
    EXPECT_EQ(boxes.shown[0].title, "Confirm Deleting :");
}

TEST_F(Helpers, SettingsNamesIgnoreCaseAndFallBack) {
    MemorySettingsStore upper(&settings);
    settings.SaveSetting("Settings", "User", "clerk");
    EXPECT_EQ(upper.GetSetting("SETTINGS", "USER", "ADMIN"), "clerk");
    upper.SaveSetting("settings", "user", "admin");
    EXPECT_EQ(upper.GetSetting("Settings", "User"), "admin");
    EXPECT_EQ(settings.GetSetting("Settings", "User"), "clerk");
    EXPECT_EQ(upper.GetSetting("ExeTalk", "FileName", "none"), "none");
}

}  // namespace
}  // namespace owb
