// Number and amount texts, key filters of text boxes, text cleaners and the two question boxes
// that all screens share.
#pragma once

#include <string>

#include "screen/message_boxes.h"

namespace owb {

// The common wording of an amount box's content, set by its screen.
struct AmountBox {
    bool negativeAllowed = false;
    bool commaAllowed = false;
};

class clsGenCmn {
  public:
    explicit clsGenCmn(MessageBoxes& boxes) : boxes_(boxes) {}

    // --- numbers ---
    std::string FnStrCormat(double value, int decimals) const;  // "12,34,567.50"
    std::string FnStrConvertToNumber(double value, int decimals) const;
    std::string FnStrConvertToCommaNumber(double value, int decimals) const;
    // The amount with commas, or the limit when it is larger; no limit goes above 9999999.99.
    std::string FnStrRestrictAmount(const std::string& text, double limit) const;
    double FnDblTrimVal(const std::string& text) const;  // commas dropped
    std::string FnStrRupeeInWords(double amount) const;  // below 100 crore
    std::string FnStrSuffixST_ND_RD_TH(int n) const;
    std::string FnStrPADL(const std::string& text, int length, char character) const;

    // --- key filters: the typed character's code comes back, or 0 when it is refused ---
    int FnIntAllowAmtOnly(int key, const std::string& text) const;
    int FnIntAllowAmountOnly(int key, const std::string& text, AmountBox box) const;
    int FnIntAllowNegativeAmtAlso(int key, const std::string& text, bool negativeAllowed) const;
    int FnIntAllowDoubleOnly(int key, const std::string& text) const;
    int FnIntAllowNumbersOnly(int key) const;
    int FnIntAllowDateOnly(int key) const;
    int FnIntAllowDateOnlyWithAlpha(int key) const;
    int FnIntAllowCapitalsOnly(int key) const;
    int FnIntAllowLowerCaseOnly(int key) const;
    int FnIntAllowAlphaNumaralsOnly(int key) const;
    int FnIntAllowAlphabetsOnly(int key) const;
    int FnIntAllowOnlyEvalNumarals(int key) const;
    int FnIntAllowExprsnOnly(int key) const;
    int FnIntAllowAllNonSpecial(int key) const;
    int FnIntAllowAllFileNameChrs(int key) const;
    // `selected` characters of the text would be typed over.
    int FnIntLimitMaxLength(int key, const std::string& text, int selected, int maximum) const;

    // --- texts ---
    std::string FnStrClearAllNonFileChar(const std::string& text) const;
    std::string FnStrCorrectFileName(const std::string& text) const;
    std::string FnStrConvertToDate(const std::string& text) const;  // "dd/MM/yyyy" or ""
    std::string FnStrConvertToUpper(const std::string& text) const;
    std::string FnStrConvertToTitle(const std::string& text) const;  // each word
    std::string FnStrConvProperCase(const std::string& text) const;  // first letter only
    std::string FnStrConvSmallcase(const std::string& text) const;
    // The family's scramble of connection data, in the ANSI code page; it undoes itself.
    std::string FnStrEncryptWord(const std::string& text) const;

    // --- questions ---
    BoxAnswer FnLngCustomMessageBox(const std::string& text, const std::string& title) const;
    BoxAnswer FnLngDeleteBox() const;
    // "Updated", a box that goes away by itself.
    void ShowSavedMessage() const;

  private:
    MessageBoxes& boxes_;
};

}  // namespace owb
