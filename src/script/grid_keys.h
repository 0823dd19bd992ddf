// What a key does in a grid where the screen has no use for it, as in the window.
#pragma once

#include <string>

namespace owb {

class Grid;

// The arrows, Home and End (Ctrl: to the corner) move the current cell over what is shown. Enter
// and Tab go to the next cell that can be edited, with Shift back; Enter clicks twice where there
// is none. Space turns a tick. False when the key does nothing.
bool pressInGrid(Grid& grid, const std::string& key);

}  // namespace owb
