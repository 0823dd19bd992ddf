// Grids and lists from queries. The columns of a query go into the grid's columns in their order,
// written by the grid's types (Check, Date as dd/mm/yyyy, Number with its decimals, all others as
// they are).
#pragma once

#include <string>

#include "db/recordset.h"
#include "screen/grid.h"
#include "screen/lists.h"

namespace owb {

struct Session;

// The row of the recordset as the grid shows it.
std::vector<std::string> gridCells(const Grid& grid, Recordset& rs);
// All rows anew. The row that was current stays so, told by the text in its key column; when it has
// gone there is no current row. Throws DbError, and the grid is as it was.
void fillGrid(Session& session, Grid& grid, const std::string& sql, size_t keyColumn = 0);
// The same from rows that the screen has made.
void fillGrid(Grid& grid, std::vector<std::vector<std::string>> rows, size_t keyColumn = 0);

// The rows of a query behind the entries of a combo or list box: first column the key, second the
// text. Throws DbError.
void addItems(Session& session, Combo& combo, const std::string& sql);
void addItems(Session& session, ListBox& list, const std::string& sql);

}  // namespace owb
