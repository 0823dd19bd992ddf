// How a screen's controls stand: rows, columns, groups, forms and tabs. Front ends that draw follow
// it; the others need not know it.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace owb {

class Control;
class Tabs;

struct Layout {
    enum class Kind { Item, Row, Column, Group, Form, Tabs, Space, Line } kind = Kind::Column;
    Control* control = nullptr;  // of an Item, and the Tabs
    std::string caption;         // of a Group; of an Item in a Form, its label
    std::vector<Layout> parts;
    int stretch = 0;        // share of the room that is left over
    std::string unit = "";  // of an Item, behind its control: "hours"
};

inline Layout item(Control& control, int stretch = 0) {
    return {Layout::Kind::Item, &control, "", {}, stretch};
}
// A control with a caption before it; in a form the captions stand below each other.
inline Layout item(std::string caption, Control& control) {
    return {Layout::Kind::Item, &control, std::move(caption), {}, 0};
}
// A figure in a form, with its unit behind it.
inline Layout item(std::string caption, Control& control, std::string unit) {
    return {Layout::Kind::Item, &control, std::move(caption), {}, 0, std::move(unit)};
}
inline Layout row(std::vector<Layout> parts, int stretch = 0) {
    return {Layout::Kind::Row, nullptr, "", std::move(parts), stretch};
}
inline Layout column(std::vector<Layout> parts, int stretch = 0) {
    return {Layout::Kind::Column, nullptr, "", std::move(parts), stretch};
}
inline Layout group(std::string caption, std::vector<Layout> parts, int stretch = 0) {
    return {Layout::Kind::Group, nullptr, std::move(caption), std::move(parts), stretch};
}
inline Layout form(std::vector<Layout> parts) {
    return {Layout::Kind::Form, nullptr, "", std::move(parts), 0};
}
// One part for each page.
Layout tabs(Tabs& control, std::vector<Layout> pages, int stretch = 1);
// A line from side to side: the bar of a fraction.
inline Layout line() {
    return {Layout::Kind::Line, nullptr, "", {}, 0};
}
inline Layout space() {
    return {Layout::Kind::Space, nullptr, "", {}, 1};
}

}  // namespace owb
