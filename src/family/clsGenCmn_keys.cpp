// The key filters of text boxes: which typed characters a box takes.
#include <string_view>

#include "base/utf8.h"
#include "family/clsGenCmn.h"

namespace owb {

namespace {

// Ctrl+A, C, V, X, Z, backspace and Enter pass every filter.
bool isEditingKey(int key) {
    switch (key) {
        case 1:
        case 3:
        case 22:
        case 24:
        case 26:
        case 8:
        case 13:
            return true;
        default:
            return false;
    }
}

bool isDigit(int key) {
    return key >= '0' && key <= '9';
}
bool isLetter(int key) {
    return (key >= 'A' && key <= 'Z') || (key >= 'a' && key <= 'z');
}
bool isOneOf(int key, std::string_view characters) {
    return key > 0 && key < 128 &&
           characters.find(static_cast<char>(key)) != std::string_view::npos;
}
bool holds(const std::string& text, char c) {
    return text.find(c) != std::string::npos;
}

int kept(int key, bool accepted) {
    return accepted || isEditingKey(key) ? key : 0;
}

}  // namespace

int clsGenCmn::FnIntAllowAmtOnly(int key, const std::string& text) const {
    return kept(key, isDigit(key) || key == ',' || (key == '.' && !holds(text, '.')));
}

int clsGenCmn::FnIntAllowAmountOnly(int key, const std::string& text, AmountBox box) const {
    return kept(key, isDigit(key) || (key == '.' && !holds(text, '.')) ||
                         (key == '-' && box.negativeAllowed && !holds(text, '-')) ||
                         (key == ',' && box.commaAllowed));
}

int clsGenCmn::FnIntAllowNegativeAmtAlso(int key, const std::string& text,
                                         bool negativeAllowed) const {
    return FnIntAllowAmountOnly(key, text, {negativeAllowed, true});
}

int clsGenCmn::FnIntAllowDoubleOnly(int key, const std::string& text) const {
    return FnIntAllowAmountOnly(key, text, {});
}

int clsGenCmn::FnIntAllowNumbersOnly(int key) const {
    return kept(key, isDigit(key));
}

int clsGenCmn::FnIntAllowDateOnly(int key) const {
    return kept(key, isDigit(key) || isOneOf(key, " -./"));
}

int clsGenCmn::FnIntAllowDateOnlyWithAlpha(int key) const {
    return kept(key, isDigit(key) || isLetter(key) || isOneOf(key, " -./"));
}

int clsGenCmn::FnIntAllowCapitalsOnly(int key) const {
    return key >= 'a' && key <= 'z' ? key - 32 : key;
}

int clsGenCmn::FnIntAllowLowerCaseOnly(int key) const {
    return key >= 'A' && key <= 'Z' ? key + 32 : key;
}

int clsGenCmn::FnIntAllowAlphaNumaralsOnly(int key) const {
    return kept(key, isDigit(key) || isLetter(key) || key == '-');
}

int clsGenCmn::FnIntAllowAlphabetsOnly(int key) const {
    return kept(key, isLetter(key) || key == '-');
}

int clsGenCmn::FnIntAllowOnlyEvalNumarals(int key) const {
    return kept(key, isDigit(key) || isOneOf(key, "()*+-/.\\^, "));
}

// All that an expression can hold: names, keywords in braces, texts, comparisons.
int clsGenCmn::FnIntAllowExprsnOnly(int key) const {
    return kept(key, isDigit(key) || isLetter(key) || isOneOf(key, "()*+-/.\\^, {}<>=&\"#_%"));
}

int clsGenCmn::FnIntAllowAllNonSpecial(int key) const {
    switch (key) {
        case 34:
        case 35:
        case 39:
        case 91:
        case 92:
        case 93:
        case 124:
            return 0;
        default:
            return key;
    }
}

int clsGenCmn::FnIntAllowAllFileNameChrs(int key) const {
    switch (key) {
        case 34:
        case 42:
        case 47:
        case 58:
        case 60:
        case 62:
        case 63:
        case 92:
        case 96:
        case 124:
            return 0;
        default:
            return key;
    }
}

int clsGenCmn::FnIntLimitMaxLength(int key, const std::string& text, int selected,
                                   int maximum) const {
    return kept(key, static_cast<int>(utf8Length(text)) - selected < maximum);
}

}  // namespace owb
