// The words of a script's line: controls, rows, columns and entries by their names. A name that is
// not there is refused with those that are.
#pragma once

#include <string>
#include <vector>

#include "screen/lists.h"

namespace owb {

class Grid;
class Screen;

// A command that cannot be done, told to whoever wrote the script.
struct ScriptError {
    std::string reason;
};

// Cuts a word off, at the beginning or the end.
std::string takeWord(std::string& rest);
std::string takeLastWord(std::string& rest);
size_t wordCount(const std::string& text);

// Line breaks as \n.
std::string oneLine(const std::string& text);
const char* yesNo(bool value);
bool yesOrNo(const std::string& word);
// "A, B, C", cut short when there are many.
std::string listed(const std::vector<std::string>& names);

Control& controlNamed(const Screen& screen, const std::string& name);
Grid& gridNamed(const Screen& screen, const std::string& name);
size_t entryNamed(const Control& list, const std::vector<ListItem>& items, const std::string& text);

// --- cells: rows and columns are those that the user sees, counted from 1 ---

struct CellPlace {
    size_t row, column;
};

enum class Among { Shown, All };

size_t rowAt(const Grid& grid, const std::string& word);
// By number or caption. Of the hidden ones only the captions are known.
size_t columnAt(const Grid& grid, const std::string& word, Among which = Among::Shown);
// "ROW COL" at the end of a line.
CellPlace placeAt(const Grid& grid, std::string words, Among which = Among::Shown);
std::vector<size_t> shownRows(const Grid& grid);
std::vector<size_t> shownColumns(const Grid& grid);

}  // namespace owb
