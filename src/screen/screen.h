// One screen: its controls, its life from load to unload, and the guard under which every handler
// runs. A screen knows no toolkit; the front end that it is given draws it.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/date_time.h"
#include "screen/control.h"
#include "screen/front_end.h"
#include "screen/layout.h"

namespace owb {

class Grid;
struct PrintHeading;

class Screen {
  public:
    Screen(FrontEnd& frontEnd, std::string name, std::string caption);
    virtual ~Screen() = default;
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    const std::string& name() const { return name_; }
    std::string caption;
    // What its window is named: the caption, and whose data it shows.
    virtual std::string title() const;
    std::string status;  // the line at the foot of the window: "Saved 14:02"
    bool popup = false;  // small and borderless; closes when the focus leaves it
    const std::vector<Control*>& controls() const { return controls_; }
    // By name, in any letter case; null when there is none.
    Control* find(std::string_view name) const;

    // How the controls stand; without a layout of its own a screen shows them one below the other.
    virtual Layout layout();
    // The control that the focus goes to once the running handler has returned; the front end takes
    // it from here.
    void setFocus(Control& control) { focus_ = &control; }
    Control* takeFocus() { return std::exchange(focus_, nullptr); }

    // What stands above a grid of the screen on paper.
    virtual PrintHeading printHeading() const;

    // Load, draw, activate, take input, unload; returns when the screen has closed. A load that
    // fails or closes the screen keeps it from being drawn.
    void showModal();
    // Ends showModal once the running handler has returned.
    void close() { open_ = false; }
    bool isOpen() const { return open_; }
    // What Close, Esc, the window's own button and a script's `close` do: the screen's command
    // cmdClose where it has one. While that is disabled the screen stays.
    void closeByUser();
    // Asked before the user closes: false keeps the screen open.
    virtual bool mayClose() { return true; }

    // Whether a key means something on this screen, wherever the focus is, and what it does then:
    // Esc closes, F1 shows the keys, Ctrl+P prints the first list, Ctrl+PgUp and Ctrl+PgDown turn
    // the pages, and the shortcuts of commands and menu items. The control with the focus is left
    // first; when its handler holds the focus there, nothing more is done.
    bool uses(const std::string& key) const;
    bool press(const std::string& key, Control* focused = nullptr);
    // The keys of this screen, its commands first.
    std::vector<KeyHelp> keyHelp() const;

    // The day that a short entry of a date ("5", "+1") counts from.
    virtual DateTime entryDay() const { return {wallClock().day, 0}; }
    // Whether the user has changed what stands there since it was shown.
    virtual bool isChanged(const Control&) const { return false; }

    // A front end calls tick() while it waits for input, about every `timerInterval` milliseconds;
    // 0: never.
    int timerInterval = 0;
    bool closesItself = false;  // at a tick: a script, which has no user, waits for that
    void tick() {
        guard([this] { onTimer(); });
    }

    // Runs a handler; an error shows its description in a critical box and the screen stays up.
    // False when there was one.
    bool guard(const std::function<void()>& handler);

    // Whether the user may change data by this control, which is marked as one that writes. Every
    // way in asks it before the handler runs: click, key, menu, tick, edit of a cell, paste.
    virtual bool mayWrite(const Control&) { return true; }

  protected:
    virtual void onLoad() {}
    virtual void onActivate() {}  // once, after the screen has been drawn
    virtual void onUnload() {}
    virtual void onTimer() {}
    FrontEnd& frontEnd() { return frontEnd_; }

  private:
    friend class Control;
    void add(Control& control) { controls_.push_back(&control); }
    void remove(Control& control);
    Control* commandOf(const std::string& key) const;
    Tabs* pages() const;      // in front; null: none
    Grid* firstGrid() const;  // in sight; null: none

    FrontEnd& frontEnd_;
    std::string name_;
    std::vector<Control*> controls_;
    Control* focus_ = nullptr;
    bool open_ = false;
};

}  // namespace owb
