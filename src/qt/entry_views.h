// The controls that the user types into or picks from: text boxes of one and of several lines,
// combos, lists.
#pragma once

#include <memory>

#include "qt/control_view.h"

namespace owb {

class Combo;
class ListBox;
class TextBox;

std::unique_ptr<ControlView> makeTextView(ScreenWindow& window, TextBox& box);
std::unique_ptr<ControlView> makeComboView(ScreenWindow& window, Combo& combo);
std::unique_ptr<ControlView> makeListView(ScreenWindow& window, ListBox& list);

}  // namespace owb
