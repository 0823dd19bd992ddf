// The commands of a script that print what a user sees: a control, a cell, a menu, all of them.
#pragma once

#include <ostream>
#include <string>

namespace owb {

class Screen;

// `words` is what stands behind the command's own word. They throw ScriptError.
void tellState(const Screen& screen, const std::string& words, std::ostream& out);
void tellTip(const Screen& screen, const std::string& words, std::ostream& out);
void tellContent(const Screen& screen, const std::string& words, std::ostream& out);
void tellMenus(const Screen& screen, const std::string& words, std::ostream& out);
void tellControls(const Screen& screen, const std::string& words, std::ostream& out);
void tellCaption(const Screen& screen, const std::string& words, std::ostream& out);

}  // namespace owb
