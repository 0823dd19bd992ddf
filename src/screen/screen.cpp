#include "screen/screen.h"

#include <stdexcept>

#include "base/utf8.h"
#include "screen/print_pages.h"

namespace owb {

Screen::Screen(FrontEnd& frontEnd, std::string name, std::string caption)
    : caption(std::move(caption)), frontEnd_(frontEnd), name_(std::move(name)) {}

Control* Screen::find(std::string_view name) const {
    for (Control* control : controls_)
        if (equalsIgnoreCaseAscii(control->name(), name)) return control;
    return nullptr;
}

void Screen::remove(Control& control) {
    std::erase(controls_, &control);
    if (focus_ == &control) focus_ = nullptr;
}

std::string Screen::title() const {
    return trim(caption);
}

void Screen::closeByUser() {
    Control* command = find("cmdClose");
    if (command != nullptr && command->visible)
        command->click();
    else
        guard([this] {
            if (mayClose()) close();
        });
}

Layout Screen::layout() {
    std::vector<Layout> parts;
    for (Control* control : controls_)
        if (!dynamic_cast<MenuItem*>(control)) parts.push_back(item(*control));
    return column(std::move(parts));
}

PrintHeading Screen::printHeading() const {
    return {.title = caption};
}

Layout tabs(Tabs& control, std::vector<Layout> pages, int stretch) {
    return {Layout::Kind::Tabs, &control, "", std::move(pages), stretch};
}

void Screen::showModal() {
    open_ = true;
    if (!guard([this] { onLoad(); })) open_ = false;
    const bool drawn = open_;
    if (drawn) {
        frontEnd_.opened(*this);
        guard([this] { onActivate(); });
        if (open_) frontEnd_.run(*this);
    }
    guard([this] { onUnload(); });
    if (drawn) frontEnd_.closed(*this);
    open_ = false;
}

bool Screen::guard(const std::function<void()>& handler) {
    try {
        handler();
        return true;
    } catch (const std::exception& e) {
        frontEnd_.critical(e.what());
        return false;
    }
}

}  // namespace owb
