// What screens are made of, without a toolkit: each control is a member of its screen under its own
// name and registers itself there. A screen sets the members as it likes; the operations named
// after what a user does (click, key, leave ...) are for the front ends: they ask whether the
// control takes input now, and run the screen's handlers under its guard.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace owb {

class FrontEnd;
class Screen;

// A line of the sheet of keys.
struct KeyHelp {
    std::string keys, what;
};

// The caption as it is read, without the mark of its mnemonic, and the mnemonic: the letter behind
// the "&" as a capital, 0 for none.
std::string plainCaption(const std::string& caption);
char mnemonicOf(const std::string& caption);

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
    // Whether the control has a use for the key, so that it goes nowhere else.
    virtual bool takesKey(const std::string& key) const;
    // The focus goes elsewhere.
    virtual void leave();

    // What stands here does not fit: the reason is shown beside it, what was typed stays. Both go
    // when the content changes, or with an empty reason.
    void refuse(std::string reason);
    std::string refusal() const { return text() == refusedText_ ? refusal_ : ""; }

    // What the keys do here, for the sheet of keys.
    virtual std::vector<KeyHelp> keyHelp() const;

    std::string caption;
    std::string toolTip;
    std::string tag;       // "NA" on a command that the user's rights deny
    std::string shortcut;  // "Ctrl+S": clicks the control from anywhere on the screen
    bool writes = false;   // what the user does here changes data: the screen is asked before
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
    std::string refusedText_, refusal_;
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
    // Commands of a usual name have their usual key: cmdSave Ctrl+S, cmdNew Ctrl+N, cmdShow F5.
    Command(Screen& screen, std::string name, std::string caption, Kind kind = Reading,
            std::function<void()> handler = {});
    Command(Screen& screen, std::string name, std::string caption, std::function<void()> handler)
        : Command(screen, std::move(name), std::move(caption), Reading, std::move(handler)) {}
};

// "Close": ends the screen, unless the user would rather keep what he has typed.
class CloseCommand : public Command {
  public:
    explicit CloseCommand(Screen& screen);
};

// How far a pass has come; maximum 0 means that the number is not known.
class ProgressBar : public Control {
  public:
    using Control::Control;
    std::string text() const override;
    // So many rows of all are done; the first step of a pass begins its time.
    void step(size_t done, size_t total);
    // "Step 120 of 2000, 8 s left"; the time once it can be told. "" where nothing is counted.
    std::string progress() const;

    std::string counted = "Step";  // what is done one by one

    size_t value = 0;
    size_t maximum = 0;

  private:
    std::chrono::steady_clock::time_point begun_{};
    size_t from_ = 0;  // the value when it began
};

class CheckBox : public Control {
  public:
    using Control::Control;
    std::string text() const override { return value ? "Yes" : "No"; }
    bool click() override { return set(!value); }
    std::vector<KeyHelp> keyHelp() const override { return {{"Space", "turns the tick"}}; }
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
    // The one that the Tab key comes to: the chosen one, else the first that takes input.
    const OptionButton* tabStop() const;
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
    const OptionGroup& group() const { return group_; }
    // The others of the group are no longer chosen.
    void choose();
    bool click() override;
    // The arrows choose the one before or behind it, round the group, and the focus goes with them.
    bool key(const std::string& key) override;
    bool takesKey(const std::string& key) const override;
    std::vector<KeyHelp> keyHelp() const override;

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
    std::vector<KeyHelp> keyHelp() const override;

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
