#include "family/clsSPChar.h"

#include <string_view>

#include "base/utf8.h"
#include "family/SettingsStore.h"

namespace owb {

namespace {

constexpr const char* kJoinedBar = "' & Chr$(124) & '";

std::string replaced(const std::string& text, char what, std::string_view with) {
    std::string out;
    out.reserve(text.size());
    for (const char c : text) {
        if (c == what)
            out += with;
        else
            out += c;
    }
    return out;
}

std::string without(const std::string& text, std::string_view characters) {
    std::string out;
    for (const char c : text)
        if (characters.find(c) == std::string_view::npos) out += c;
    return out;
}

}  // namespace

std::string clsSPChar::FnStrSpSQL(const std::string& text) const {
    const std::string out = replaced(text, '\'', "''");
    if (out.find_first_of("|\\") == std::string::npos) return out;
    const std::string dialect = upperCase(settings_.GetSetting("Settings", "DBType", "ACC97"));
    if (dialect == "ACC97") return replaced(out, '|', kJoinedBar);
    if (dialect == "MYSQL") return replaced(out, '\\', "\\\\");
    return out;
}

std::string clsSPChar::FnStrSpLikeSQL(const std::string& text) const {
    std::string out;
    for (const char c : text) {
        switch (c) {
            case '\'':
                out += "''";
                break;
            case '[':
                out += "[[]";
                break;
            case '#':
                out += "[#]";
                break;
            case '|':
                out += kJoinedBar;
                break;
            case '"':
                out += "\"\"";
                break;
            default:
                out += c;
        }
    }
    return out;
}

std::string clsSPChar::FnStrSpRep(const std::string& text) const {
    if (text.find('"') == std::string::npos) return '"' + text + '"';
    return '\'' + replaced(text, '\'', "''") + '\'';
}

std::string clsSPChar::FnStrChangeAllSp(const std::string& text) const {
    return replaced(without(text, "|"), '\'', "''");
}

std::string clsSPChar::FnStrClearAllSp(const std::string& text) const {
    return without(text, "'|\"#[]");
}

}  // namespace owb
