// Escaping of texts as the family's programs do it, by the dialect that their settings name. This
// program puts values into a statement with literal() (db/sql_text.h), which knows one dialect; it
// takes the pattern of a LIKE and the texts of the audit trail from here.
#pragma once

#include <string>

namespace owb {

class SettingsStore;

class clsSPChar {
  public:
    // Settings/DBType says which dialect's further characters FnStrSpSQL escapes.
    explicit clsSPChar(const SettingsStore& settings) : settings_(settings) {}

    std::string FnStrSpSQL(const std::string& text) const;
    std::string FnStrSpLikeSQL(const std::string& text) const;
    // For the family's fixed-format values.
    std::string FnStrSpFFSQL(const std::string& text) const { return FnStrSpSQL(text); }
    std::string FnStrSpFFLikeSQL(const std::string& text) const { return FnStrSpLikeSQL(text); }
    // A quoted literal: in double quotes, or in single ones when it holds a double quote.
    std::string FnStrSpRep(const std::string& text) const;
    std::string FnStrChangeAllSp(const std::string& text) const;  // doubles ', drops |
    std::string FnStrClearAllSp(const std::string& text) const;   // drops ' | " # [ ]

  private:
    const SettingsStore& settings_;
};

}  // namespace owb
