#include "session/screens/FnGrid.h"

#include <algorithm>

#include "base/utf8.h"

namespace owb {

size_t FnGridFirstMatch(Grid& grid, const std::string& text,
                        std::initializer_list<size_t> columns) {
    const std::string wanted = foldText(text);
    for (size_t r = 0; r < grid.rowCount(); ++r)
        grid.setRowHidden(r, std::none_of(columns.begin(), columns.end(), [&](size_t c) {
                              return foldText(grid.cell(r, c)).find(wanted) != std::string::npos;
                          }));
    return grid.visibleRowCount();
}

}  // namespace owb
