// The controls that are clicked or only read: commands, labels, check boxes, options, progress.
#pragma once

#include <memory>

#include "qt/control_view.h"

namespace owb {

std::unique_ptr<ControlView> makeCommandView(ScreenWindow& window, Command& command);
std::unique_ptr<ControlView> makeLabelView(ScreenWindow& window, Label& label);
std::unique_ptr<ControlView> makeCheckView(ScreenWindow& window, CheckBox& box);
std::unique_ptr<ControlView> makeOptionView(ScreenWindow& window, OptionButton& option);
std::unique_ptr<ControlView> makeProgressView(ScreenWindow& window, ProgressBar& bar);

}  // namespace owb
