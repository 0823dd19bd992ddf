// Spreadsheet files: the first sheet of an .xlsx or .xls file as rows of cells, and an .xlsx file
// out of rows with a layout. What a cell looks like beyond that is nobody's business here.
#pragma once

#include <string>
#include <variant>
#include <vector>

namespace owb {

// Empty, a number (dates are numbers: days since 1899-12-30), or a text.
using SheetCell = std::variant<std::monostate, double, std::string>;
using SheetRow = std::vector<SheetCell>;

// Rows as long as their last filled cell. Throws std::runtime_error with what the user should know.
std::vector<SheetRow> readSheet(const std::string& path);

// The cell as a user would type it: "" when empty, the shortest number, the text.
std::string sheetText(const SheetCell& cell);
// The same for a column of dates: a number is a day, "dd/mm/yyyy".
std::string sheetDateText(const SheetCell& cell);

struct SheetColumn {
    enum Kind { Text, Number } kind = Text;
    int decimals = 0;  // of Number: "0" or "0.00"
};

// A table with headings above it, each across all columns: the heading rows, one header row (when
// it has any text), then the rows, cells as texts.
struct SheetTable {
    std::string name;  // of the sheet
    std::vector<std::string> headings;
    std::vector<std::string> header;
    std::vector<SheetColumn> columns;
    std::vector<std::vector<std::string>> rows;
};

// Writes the file whole, in place of an older one, or throws and leaves that as it was.
void writeSheet(const std::string& path, const SheetTable& table);

}  // namespace owb
