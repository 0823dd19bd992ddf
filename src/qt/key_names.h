// The names that the screens' handlers know keys by: "F5", "Enter", "Esc", "Ctrl+G".
#pragma once

#include <string>

class QKeyEvent;

namespace owb {

// Empty for a key that types text or only modifies others.
std::string keyName(const QKeyEvent& event);

}  // namespace owb
