#include "screen/control.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "screen/screen.h"

namespace owb {

std::string plainCaption(const std::string& caption) {
    std::string plain = caption;
    std::erase(plain, '&');
    return plain;
}

char mnemonicOf(const std::string& caption) {
    for (size_t at = caption.find('&'); at != std::string::npos; at = caption.find('&', at + 2))
        if (at + 1 < caption.size() && caption[at + 1] != '&')
            return static_cast<char>(std::toupper(static_cast<unsigned char>(caption[at + 1])));
    return 0;
}

Control::Control(Screen& screen, std::string name, std::string caption)
    : caption(std::move(caption)), screen_(screen), name_(std::move(name)) {
    screen.add(*this);
}

Control::~Control() {
    screen_.remove(*this);
}

void Control::run(const std::function<void()>& handler) {
    if (handler) screen_.guard(handler);
}

FrontEnd& Control::frontEnd() const {
    return screen_.frontEnd();
}

bool Control::mayWrite() const {
    return !writes || screen_.mayWrite(*this);
}

bool Control::click() {
    if (!takesInput() || !onClick || !mayWrite()) return false;
    run(onClick);
    return true;
}

bool Control::doubleClick() {
    if (onDoubleClick ? !takesInput() : !takesPick() || !onPick) return false;
    if (!mayWrite()) return false;
    run(onDoubleClick ? onDoubleClick : onPick);
    return true;
}

bool Control::key(const std::string& key) {
    if (!takesInput()) return false;
    if (key == "F2" && onPick) {
        if (!takesPick() || !mayWrite()) return false;
        run(onPick);
        return true;
    }
    bool taken = false;
    if (onKey && mayWrite()) run([&] { taken = onKey(key); });
    return taken;
}

bool Control::takesKey(const std::string& key) const {
    return onKey || (key == "F2" && onPick);
}

void Control::leave() {
    run(onLeave);
}

void Control::refuse(std::string reason) {
    refusedText_ = text();
    refusal_ = std::move(reason);
}

std::vector<KeyHelp> Control::keyHelp() const {
    if (!onPick) return {};
    return {{"F2", "opens the picker of a date or a month"}};
}

Command::Command(Screen& screen, std::string name, std::string caption, Kind kind,
                 std::function<void()> handler)
    : Control(screen, std::move(name), std::move(caption)) {
    writes = kind == Writing;
    onClick = std::move(handler);
    struct Usual {
        const char *name, *key;
    };
    for (const Usual& usual : {Usual{"cmdSave", "Ctrl+S"}, {"cmdNew", "Ctrl+N"}, {"cmdShow", "F5"}})
        if (this->name() == usual.name) shortcut = usual.key;
}

CloseCommand::CloseCommand(Screen& screen)
    : Command(screen, "cmdClose", "Cl&ose", [&screen] {
          if (screen.mayClose()) screen.close();
      }) {}

std::string ProgressBar::text() const {
    return maximum == 0 ? "" : std::to_string(value) + " / " + std::to_string(maximum);
}

void ProgressBar::step(size_t done, size_t total) {
    if (total != maximum || done < value || begun_ == std::chrono::steady_clock::time_point{}) {
        begun_ = std::chrono::steady_clock::now();
        from_ = done;
    }
    value = done;
    maximum = total;
}

std::string ProgressBar::progress() const {
    if (maximum == 0 || counted.empty()) return "";
    std::string told = counted + " " + std::to_string(value) + " of " + std::to_string(maximum);
    const std::chrono::duration<double> gone = std::chrono::steady_clock::now() - begun_;
    constexpr double kTooEarly = 1;  // seconds
    if (value <= from_ || value >= maximum || gone.count() < kTooEarly ||
        begun_ == std::chrono::steady_clock::time_point{})
        return told;
    const double left =
        gone.count() * static_cast<double>(maximum - value) / static_cast<double>(value - from_);
    const auto seconds = static_cast<int64_t>(std::ceil(left));
    constexpr int64_t kMinute = 60, kManySeconds = 90;
    return told + ", " +
           (seconds < kManySeconds ? std::to_string(seconds) + " s"
                                   : std::to_string((seconds + kMinute / 2) / kMinute) + " min") +
           " left";
}

bool CheckBox::set(bool on) {
    if (!takesInput()) return false;
    if (value == on) return true;
    if (!mayWrite()) return false;
    value = on;
    run(onClick);
    return true;
}

int OptionGroup::chosen() const {
    for (size_t i = 0; i < buttons_.size(); ++i)
        if (buttons_[i]->value_) return static_cast<int>(i);
    return -1;
}

void OptionGroup::choose(int index) {
    for (size_t i = 0; i < buttons_.size(); ++i) buttons_[i]->value_ = static_cast<int>(i) == index;
}

OptionButton::OptionButton(Screen& screen, OptionGroup& group, std::string name,
                           std::string caption)
    : Control(screen, std::move(name), std::move(caption)), group_(group) {
    group.buttons_.push_back(this);
}

void OptionButton::choose() {
    for (OptionButton* other : group_.buttons_) other->value_ = other == this;
}

bool OptionButton::click() {
    if (!takesInput() || !mayWrite()) return false;
    choose();
    run(onClick);
    return true;
}

const OptionButton* OptionGroup::tabStop() const {
    const OptionButton* first = nullptr;
    for (const OptionButton* button : buttons_) {
        if (!button->takesInput()) continue;
        if (button->value_) return button;
        if (first == nullptr) first = button;
    }
    return first;
}

namespace {

// Where an arrow goes in a group: 1 to the next button, -1 to the one before; 0 for other keys.
int stepOf(const std::string& key) {
    if (key == "Down" || key == "Right") return 1;
    return key == "Up" || key == "Left" ? -1 : 0;
}

}  // namespace

bool OptionButton::takesKey(const std::string& key) const {
    return stepOf(key) != 0 || Control::takesKey(key);
}

bool OptionButton::key(const std::string& key) {
    const int step = stepOf(key);
    if (step == 0 || !takesInput()) return Control::key(key);
    const std::vector<OptionButton*>& all = group_.buttons();
    const auto count = static_cast<int>(all.size());
    const auto here = static_cast<int>(std::find(all.begin(), all.end(), this) - all.begin());
    for (int away = 1; away < count; ++away) {
        OptionButton* next = all[static_cast<size_t>((here + step * away + count * away) % count)];
        if (!next->takesInput()) continue;
        next->click();
        if (next->value_) screen().setFocus(*next);
        break;
    }
    return true;
}

std::vector<KeyHelp> OptionButton::keyHelp() const {
    return {{"Arrows", "choose another option of the group"}};
}

std::vector<KeyHelp> Tabs::keyHelp() const {
    return {{"Ctrl+PgUp, Ctrl+PgDown", "turn to the page before or behind"}};
}

bool Tabs::select(size_t index) {
    if (!takesInput() || index >= pages.size()) return false;
    page = index;
    run(onClick);
    return true;
}

bool MenuItem::click() {
    if (!takesInput() || !over.takesInput() || (parent && !parent->takesInput())) return false;
    if (!onClick || !mayWrite()) return false;
    if (checkable) checked = !checked;
    run(onClick);
    return true;
}

}  // namespace owb
