#include "screen/text_box.h"

#include "base/utf8.h"

namespace owb {

char32_t TextBox::accepted(char32_t typed, const std::string& before) const {
    if (maxLength > 0 && utf8Length(before) >= maxLength) return 0;
    if (typed == '\n' || typed == '\t') return multiLine ? typed : 0;
    if (typed < ' ' || typed == 127) return 0;
    return filter ? static_cast<char32_t>(filter(static_cast<int>(typed), before)) : typed;
}

std::string TextBox::filtered(const std::string& text) const {
    std::string out;
    for (size_t at = 0; at < text.size();)
        if (const char32_t c = accepted(nextCodePoint(text, at), out)) appendCodePoint(out, c);
    return out;
}

bool TextBox::edit(const std::string& text) {
    if (!takesInput() || locked) return false;
    if (value == text) return true;
    if (!mayWrite()) return false;
    value = text;
    run(onChange);
    return true;
}

}  // namespace owb
