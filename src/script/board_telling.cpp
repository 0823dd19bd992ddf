#include "script/board_telling.h"

#include "base/csv.h"
#include "screen/cell_board.h"

namespace owb {

namespace {

std::string marksOf(const CellBoard& board, size_t place) {
    const BoardCell& cell = board.cells[place];
    std::string marks;
    const auto add = [&marks](bool is, const char* mark) {
        if (is) marks += (marks.empty() ? "" : " ") + std::string(mark);
    };
    add(cell.ringed, "today");
    add(cell.chosen, "chosen");
    add(cell.offDay, "off");
    add(cell.holiday, "holiday");
    add(board.current == static_cast<int>(place), "current");
    return marks;
}

}  // namespace

void tellBoard(const CellBoard& board, std::ostream& out) {
    out << "text,tip,marks\n";
    for (size_t place = 0; place < board.cells.size(); ++place) {
        const BoardCell& cell = board.cells[place];
        if (!cell.enabled) continue;
        out << csvField(cell.text) << ',' << (cell.tip.empty() ? "" : csvField(cell.tip)) << ','
            << marksOf(board, place) << '\n';
    }
    out.flush();
}

}  // namespace owb
