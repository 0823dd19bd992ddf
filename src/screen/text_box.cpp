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
    if (!before_) before_ = value;
    value = text;
    run(onChange);
    return true;
}

bool TextBox::takesKey(const std::string& key) const {
    return (key == "Esc" && before_ && *before_ != value) || Control::takesKey(key);
}

bool TextBox::key(const std::string& key) {
    if (key != "Esc" || !before_ || *before_ == value) return Control::key(key);
    edit(std::string(*before_));
    before_.reset();
    return true;
}

void TextBox::leave() {
    before_.reset();
    Control::leave();
}

std::vector<KeyHelp> TextBox::keyHelp() const {
    std::vector<KeyHelp> help = Control::keyHelp();
    help.push_back({"Esc", "puts back what stood in the box before it was typed into"});
    return help;
}

}  // namespace owb
