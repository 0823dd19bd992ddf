#include "session/screens/query_lists.h"

#include <algorithm>

#include "base/date_time.h"
#include "base/number_text.h"
#include "session/Session.h"

namespace owb {

std::vector<std::string> gridCells(const Grid& grid, Recordset& rs) {
    std::vector<std::string> cells;
    for (size_t c = 0; c < std::min(grid.columnCount(), rs.FieldCount()); ++c) {
        const Value& value = rs.Fields(c).value();
        const GridColumn& column = grid.column(c);
        if (column.type == CellType::Check)
            cells.emplace_back(value.toBool() ? "1" : "0");
        else if (value.isNull())
            cells.emplace_back();
        else if (column.type == CellType::Date)
            cells.push_back(dateText(value.toDate(), "dd/mm/yyyy"));
        else if (column.type == CellType::Number)
            cells.push_back(formatNumber(
                value.toDouble(),
                column.decimals == 0 ? "0" : "0." + std::string(column.decimals, '0')));
        else
            cells.push_back(value.toText());
    }
    return cells;
}

void fillGrid(Session& session, Grid& grid, const std::string& sql, size_t keyColumn) {
    std::vector<std::vector<std::string>> rows;
    for (Recordset rs(session.gConn, sql); !rs.IsEOF(); rs.MoveNext())
        rows.push_back(gridCells(grid, rs));
    fillGrid(grid, std::move(rows), keyColumn);
}

namespace {

template <class List>
void addRows(Session& session, List& list, const std::string& sql) {
    for (Recordset rs(session.gConn, sql); !rs.IsEOF(); rs.MoveNext())
        list.add(rs.Fields(1).toText(), rs.Fields(0).toInt());
}

}  // namespace

void addItems(Session& session, Combo& combo, const std::string& sql) {
    addRows(session, combo, sql);
}

void addItems(Session& session, ListBox& list, const std::string& sql) {
    addRows(session, list, sql);
}

void fillGrid(Grid& grid, std::vector<std::vector<std::string>> rows, size_t keyColumn) {
    const int row = grid.currentRow(), column = grid.currentColumn();
    const std::string key = row < 0 ? "" : grid.cell(static_cast<size_t>(row), keyColumn);
    grid.setRowCount(0);
    for (std::vector<std::string>& cells : rows) {
        const size_t at = grid.addRow(std::move(cells));
        if (row >= 0 && grid.cell(at, keyColumn) == key)
            grid.setCurrent(static_cast<int>(at), column);
    }
}

}  // namespace owb
