// The commands of a script that work in a grid as a user's hands do: typing, choosing cells,
// sorting, filtering, finding, filling.
#pragma once

#include <string>

namespace owb {

class Screen;

// `words` is what stands behind the command's own word. They throw ScriptError.
void typeInto(Screen& screen, const std::string& words);
void chooseCells(Screen& screen, const std::string& words);
void fillCells(Screen& screen, const std::string& words);
void pasteCells(Screen& screen, const std::string& words);
void findText(Screen& screen, const std::string& words);
void filterRows(Screen& screen, const std::string& words);
void clickHeader(Screen& screen, const std::string& words);
void clickLegend(Screen& screen, const std::string& words);
void chooseItem(Screen& screen, const std::string& words);
void hideColumn(Screen& screen, const std::string& words);
void moveColumn(Screen& screen, const std::string& words);
void freezeColumns(Screen& screen, const std::string& words);

}  // namespace owb
