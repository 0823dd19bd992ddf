// Lists to spreadsheets and back, as all screens do it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "screen/grid.h"

namespace owb {

class SessionScreen;

// "Export To Excel" of a grid, under the screen's caption.
void ExportGrid(SessionScreen& screen, const Grid& grid);

struct ImportColumn {
    std::string caption;
    size_t longest = 0;   // characters; 0: no limit
    bool isDate = false;  // reads as dd/mm/yyyy
};
// Reads the sheet that the user picks: the rows behind the one that is headed by the first column's
// caption; without such a heading all rows. `accept` judges each row's texts: it gives "" and keeps
// the row, or why the row is refused. The user then sees each row with its outcome; true when he
// wants the good ones. Nothing is written here.
bool ImportSheet(SessionScreen& screen, const std::vector<ImportColumn>& columns,
                 const std::function<std::string(const std::vector<std::string>& cells)>& accept);

}  // namespace owb
