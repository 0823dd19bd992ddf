#include "screen/control.h"

#include "screen/screen.h"

namespace owb {

Control::Control(Screen& screen, std::string name, std::string caption)
    : caption(std::move(caption)), screen_(screen), name_(std::move(name)) {
    screen.add(*this);
}

bool Control::click() {
    if (!visible || !enabled || !onClick) return false;
    screen_.guard(onClick);
    return true;
}

std::string ProgressBar::text() const {
    return maximum == 0 ? "" : std::to_string(value) + " / " + std::to_string(maximum);
}

}  // namespace owb
