#include "family/clsGenCmn.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "base/number_text.h"
#include "base/utf8.h"
#include "family/modCommon.h"

namespace owb {

namespace {

constexpr double kAmountLimit = 9999999.99;

std::string plainNumber(double value, int decimals) {
    constexpr std::array<const char*, 5> formats = {"0", "0.0", "0.00", "0.000", "0.0000"};
    return formatNumber(value, formats.at(std::clamp(decimals, 0, 4)));
}

std::string withoutCommas(std::string text) {
    std::erase(text, ',');
    return text;
}

std::string wordsBelowHundred(int64_t n) {
    constexpr std::array<const char*, 20> small = {
        "",         "One",     "Two",     "Three",     "Four",     "Five",    "Six",
        "Seven",    "Eight",   "Nine",    "Ten",       "Eleven",   "Twelve",  "Thirteen",
        "Fourteen", "Fifteen", "Sixteen", "Seventeen", "Eighteen", "Nineteen"};
    constexpr std::array<const char*, 10> tens = {"",      "",      "Twenty",  "Thirty", "Forty",
                                                  "Fifty", "Sixty", "Seventy", "Eighty", "Ninety"};
    if (n < 20) return small[n];
    return std::string(tens[n / 10]) + (n % 10 ? " " : "") + small[n % 10];
}

// Words of a whole number in Indian groups; crores above 99 are themselves a number in words.
std::string wordsOf(int64_t n) {
    std::string out;
    if (n >= 10000000) out += wordsOf(n / 10000000) + " Crore ";
    if (n / 100000 % 100) out += wordsBelowHundred(n / 100000 % 100) + " Lakh ";
    if (n / 1000 % 100) out += wordsBelowHundred(n / 1000 % 100) + " Thousand ";
    if (n / 100 % 10) out += wordsBelowHundred(n / 100 % 10) + " Hundred ";
    return trim(out + wordsBelowHundred(n % 100));
}

std::string firstUpper(const std::string& lower) {
    return upperCase(utf8Substr(lower, 0, 1)) + utf8Substr(lower, 1, lower.size());
}

}  // namespace

std::string clsGenCmn::FnStrCormat(double value, int decimals) const {
    return groupIndian(plainNumber(value, decimals));
}

std::string clsGenCmn::FnStrConvertToNumber(double value, int decimals) const {
    return plainNumber(value, decimals);
}

std::string clsGenCmn::FnStrConvertToCommaNumber(double value, int decimals) const {
    return FnStrCormat(value, decimals);
}

std::string clsGenCmn::FnStrRestrictAmount(const std::string& text, double limit) const {
    return FnStrCormat(std::min({FnDblTrimVal(text), limit, kAmountLimit}), 2);
}

double clsGenCmn::FnDblTrimVal(const std::string& text) const {
    return textToNumber(withoutCommas(text));
}

std::string clsGenCmn::FnStrRupeeInWords(double amount) const {
    const auto paise = std::llround(roundHalfAway(std::fabs(amount), 2) * 100);
    const int64_t rupees = paise / 100;
    std::string out = "Rupees " + (rupees ? wordsOf(rupees) : "Zero");
    if (paise == 0) return out;
    if (paise % 100) out += " and Paise " + wordsBelowHundred(paise % 100);
    return out + " Only";
}

std::string clsGenCmn::FnStrSuffixST_ND_RD_TH(int n) const {
    switch (n) {
        case 1:
            return "st";
        case 2:
            return "nd";
        case 3:
            return "rd";
        default:
            return "th";
    }
}

std::string clsGenCmn::FnStrPADL(const std::string& text, int length, char character) const {
    const int missing = length - static_cast<int>(utf8Length(text));
    return missing > 0 ? std::string(static_cast<size_t>(missing), character) + text : text;
}

std::string clsGenCmn::FnStrClearAllNonFileChar(const std::string& text) const {
    std::string out = text;
    std::erase_if(out, [](char c) {
        return std::string_view("*/:<>?\\|").find(c) != std::string_view::npos;
    });
    return out;
}

std::string clsGenCmn::FnStrCorrectFileName(const std::string& text) const {
    std::string out;
    for (size_t at = 0; at < text.size();) {
        const char32_t c = nextCodePoint(text, at);
        constexpr std::array dropped = {39, 47, 44, 42, 130, 40, 41, 32};
        if (std::find(dropped.begin(), dropped.end(), ansiByte(c)) == dropped.end())
            appendCodePoint(out, c);
    }
    return out;
}

std::string clsGenCmn::FnStrConvertToDate(const std::string& text) const {
    return FnStrCleanDate(text);
}

std::string clsGenCmn::FnStrConvertToUpper(const std::string& text) const {
    return upperCase(text);
}

std::string clsGenCmn::FnStrConvertToTitle(const std::string& text) const {
    std::string out, word;
    auto flush = [&] {
        out += firstUpper(word);
        word.clear();
    };
    for (const char c : lowerCase(text)) {
        if (c == ' ') {
            flush();
            out += c;
        } else {
            word += c;
        }
    }
    flush();
    return out;
}

std::string clsGenCmn::FnStrConvProperCase(const std::string& text) const {
    return firstUpper(lowerCase(text));
}

std::string clsGenCmn::FnStrConvSmallcase(const std::string& text) const {
    return lowerCase(text);
}

std::string clsGenCmn::FnStrEncryptWord(const std::string& text) const {
    std::string out;
    for (size_t at = 0; at < text.size();) {
        const int byte = ansiByte(nextCodePoint(text, at));
        const int code = byte < 0 ? '?' : byte;
        appendCodePoint(out, ansiCodePoint(static_cast<uint8_t>(code ^ 0x80)));
    }
    return out;
}

BoxAnswer clsGenCmn::FnLngCustomMessageBox(const std::string& text,
                                           const std::string& title) const {
    return boxes_.show({text, title, BoxIcon::Question, BoxButtons::YesNo, BoxAnswer::No});
}

BoxAnswer clsGenCmn::FnLngDeleteBox() const {
    return FnLngCustomMessageBox("Delete This Record ?", "Confirm Deleting :");
}

void clsGenCmn::ShowSavedMessage() const {
    Box box{"Updated", "Saving Information", BoxIcon::Information};
    box.closesAfterSeconds = 1;
    boxes_.show(box);
}

}  // namespace owb
