// What screens are made of, without a toolkit: each control is a member of its screen under its own
// name and registers itself there. A screen sets the members as it likes; the operations named
// after what a user does (click, key, leave ...) are for the front ends: they ask whether the
// control takes input now, and run the screen's handlers under its guard.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace owb {

class FrontEnd;
class Screen;

class Control {
  public:
    Control(Screen& screen, std::string name, std::string caption = "");
    virtual ~Control();
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    const std::string& name() const { return name_; }
    // What the user reads in it.
    virtual std::string text() const { return caption; }
    bool takesInput() const { return visible && enabled; }

    // --- what a user does: false when the control takes none of it now ---
    virtual bool click();
    // Opens the picker where there is one.
    bool doubleClick();
    // A key that is no text: "F2" opens the picker, others go to onKey ("F5", "Enter", "Ctrl+G").
    virtual bool key(const std::string& key);
    // The focus goes elsewhere.
    void leave();

    std::string caption;
    std::string toolTip;
    std::string tag;      // "NA" on a command that the user's rights deny
    bool writes = false;  // what the user does here changes data: the screen is asked before
    bool visible = true;
    bool enabled = true;
    std::function<void()> onClick;
    std::function<void()> onDoubleClick;
    std::function<void()> onPick;  // F2 and double click: the screen opens a picker
    std::function<void()> onLeave;
    std::function<bool(const std::string& key)> onKey;  // whether it took the key

  protected:
    // Under the screen's guard; nothing when there is no handler.
    void run(const std::function<void()>& handler);
    // Whether the user may do here what changes data; the screen has said why when he may not.
    bool mayWrite() const;
    virtual bool takesPick() const { return takesInput(); }
    Screen& screen() const { return screen_; }
    FrontEnd& frontEnd() const;

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
    // What a command does decides what is asked before its handler runs: whoever writes needs the
    // right to.
    enum Kind { Reading, Writing };
    Command(Screen& screen, std::string name, std::string caption, Kind kind = Reading,
            std::function<void()> handler = {})
        : Control(screen, std::move(name), std::move(caption)) {
        writes = kind == Writing;
        onClick = std::move(handler);
    }
    Command(Screen& screen, std::string name, std::string caption, std::function<void()> handler)
        : Command(screen, std::move(name), std::move(caption), Reading, std::move(handler)) {}
};

// "Close": ends the screen.
class CloseCommand : public Command {
  public:
    explicit CloseCommand(Screen& screen);
};

// How far a pass has come; maximum 0 means that the number is not known.
class ProgressBar : public Control {
  public:
    using Control::Control;
    std::string text() const override;

    size_t value = 0;
    size_t maximum = 0;
};

class CheckBox : public Control {
  public:
    using Control::Control;
    std::string text() const override { return value ? "Yes" : "No"; }
    bool click() override { return set(!value); }
    // The user's tick; onClick runs when it changed something.
    bool set(bool on);

    bool value = false;
};

class OptionButton;

// Of the buttons of one group at most one is chosen.
class OptionGroup {
  public:
    // Place among its buttons, in the order of their making; -1 when none is chosen.
    int chosen() const;
    void choose(int index);
    const std::vector<OptionButton*>& buttons() const { return buttons_; }

  private:
    friend class OptionButton;
    std::vector<OptionButton*> buttons_;
};

class OptionButton : public Control {
  public:
    OptionButton(Screen& screen, OptionGroup& group, std::string name, std::string caption);
    std::string text() const override { return value_ ? "Yes" : "No"; }
    bool value() const { return value_; }
    // The others of the group are no longer chosen.
    void choose();
    bool click() override;

  private:
    friend class OptionGroup;
    OptionGroup& group_;
    bool value_ = false;
};

// Pages of controls, one of which is in front.
class Tabs : public Control {
  public:
    Tabs(Screen& screen, std::string name, std::vector<std::string> pages)
        : Control(screen, std::move(name)), pages(std::move(pages)) {}
    std::string text() const override { return page < pages.size() ? pages[page] : ""; }
    bool select(size_t index);

    std::vector<std::string> pages;
    size_t page = 0;
};

// An item of the menu that a right click on a control opens. An item with items below it only opens
// those. Items of an array are named "mnuAll(5)".
class MenuItem : public Control {
  public:
    MenuItem(Screen& screen, Control& over, std::string name, std::string caption,
             MenuItem* parent = nullptr)
        : Control(screen, std::move(name), std::move(caption)), over(over), parent(parent) {}
    bool click() override;

    Control& over;
    MenuItem* const parent;
    bool checkable = false;
    bool checked = false;
};

}  // namespace owb
