#include "screen/control.h"

#include "screen/screen.h"

namespace owb {

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

void Control::leave() {
    run(onLeave);
}

CloseCommand::CloseCommand(Screen& screen)
    : Command(screen, "cmdClose", "Cl&ose", [&screen] { screen.close(); }) {}

std::string ProgressBar::text() const {
    return maximum == 0 ? "" : std::to_string(value) + " / " + std::to_string(maximum);
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
