// A box that the user types into. Characters pass the box's key filter one by one, typed, pasted or
// sent by a script alike.
#pragma once

#include <optional>

#include "screen/control.h"

namespace owb {

class TextBox : public Control {
  public:
    using Control::Control;
    std::string text() const override { return value; }

    // The character that stands in the text when `typed` is pressed with `before` in the box
    // (`before` without what is selected); 0: refused.
    char32_t accepted(char32_t typed, const std::string& before) const;
    // What is left of the text when it is typed into the empty box.
    std::string filtered(const std::string& text) const;
    // The user has made this the content; false when the box takes no input.
    bool edit(const std::string& text);
    // Esc puts back what stood there when the user began to type, as long as he has not left.
    bool key(const std::string& key) override;
    bool takesKey(const std::string& key) const override;
    void leave() override;
    std::vector<KeyHelp> keyHelp() const override;

    std::string value;
    size_t maxLength = 0;  // characters; 0: no limit
    bool locked = false;   // shows and copies, takes no change
    bool multiLine = false;
    bool alignRight = false;   // a number
    bool focusSelects = true;  // the whole text is selected when the focus comes
    // One of the key filters: the typed character's code comes back, or 0.
    std::function<int(int key, const std::string& before)> filter;
    std::function<void()> onChange;  // after each change by the user

  private:
    bool takesPick() const override { return takesInput() && !locked; }

    std::optional<std::string> before_;  // what stood there when an entry began
};

}  // namespace owb
