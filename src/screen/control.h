// What screens are made of, without a toolkit: each control is a member of its screen under its own
// name and registers itself there. Front ends read these members and call the events.
#pragma once

#include <functional>
#include <string>

namespace owb {

class Screen;

class Control {
  public:
    Control(Screen& screen, std::string name, std::string caption = "");
    virtual ~Control() = default;
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    const std::string& name() const { return name_; }
    // What the user reads in it.
    virtual std::string text() const { return caption; }
    // A user's click: runs onClick under the screen's guard. False when the control takes none
    // now (hidden, disabled, nothing to do).
    bool click();

    std::string caption;
    std::string toolTip;
    std::string tag;  // "NA" on a command that the user's rights deny
    bool visible = true;
    bool enabled = true;
    std::function<void()> onClick;

  private:
    Screen& screen_;
    std::string name_;
};

class Label : public Control {
  public:
    using Control::Control;
};

class Command : public Control {
  public:
    using Control::Control;
};

// How far a pass has come; maximum 0 means that the number is not known.
class ProgressBar : public Control {
  public:
    using Control::Control;
    std::string text() const override;

    size_t value = 0;
    size_t maximum = 0;
};

}  // namespace owb
