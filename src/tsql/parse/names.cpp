#include "tsql/parse/names.h"

#include <algorithm>

#include "base/utf8.h"

namespace owb::tsql {

bool sameName(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (((a[i] | b[i]) & 0x80) != 0) return foldName(a) == foldName(b);
        if (a[i] != b[i] && !equalsIgnoreCaseAscii(a.substr(i, 1), b.substr(i, 1))) return false;
    }
    return true;
}

Name nameInText(std::string_view text) {
    Name name;
    const std::string trimmed = trim(text);
    for (size_t at = 0;; ++at) {
        std::string part;
        if (at < trimmed.size() && (trimmed[at] == '[' || trimmed[at] == '"')) {
            const char close = trimmed[at] == '[' ? ']' : '"';
            for (++at;; ++at) {
                if (at >= trimmed.size()) return {};
                if (trimmed[at] == close && (at + 1 >= trimmed.size() || trimmed[++at] != close))
                    break;
                part += trimmed[at];
            }
            if (at + 1 == trimmed.size() && trimmed[at] == close) ++at;
        } else {
            const size_t end = std::min(trimmed.find('.', at), trimmed.size());
            part = trim(std::string_view(trimmed).substr(at, end - at));
            at = end;
        }
        name.parts.push_back(std::move(part));
        if (at >= trimmed.size()) break;
        if (trimmed[at] != '.') return {};
    }
    if (name.parts.size() > 4 || name.last().empty()) return {};
    return name;
}

std::string foldName(std::string_view name) {
    return lowerCase(name);
}

}  // namespace owb::tsql
