// Spreadsheet files: the first sheet of an .xlsx or .xls file as rows of cells, and an .xlsx file
// out of rows with a layout and colours.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace owb {

// Empty, a number (dates are numbers: days since 1899-12-30), or a text.
using SheetCell = std::variant<std::monostate, double, std::string>;
using SheetRow = std::vector<SheetCell>;

constexpr int32_t kSheetDayZero = -2;  // 1899-12-30 as a day number of DateTime

// Rows as long as their last filled cell. Throws std::runtime_error with what the user should know.
std::vector<SheetRow> readSheet(const std::string& path);

// The cell as a user would type it: "" when empty, the shortest number, the text.
std::string sheetText(const SheetCell& cell);
// The same for a column of dates: a number is a day, "dd/mm/yyyy".
std::string sheetDateText(const SheetCell& cell);

// A cell of a Number or Date column that reads as none stays a text.
struct SheetColumn {
    enum Kind { Text, Number, Date } kind = Text;
    int decimals = 0;  // of Number: "0" or "0.00"
};

// Red-green-blue.
using SheetColor = uint32_t;

struct SheetLook {
    std::optional<SheetColor> back, fore;
    auto operator<=>(const SheetLook&) const = default;
};

struct SheetLegend {
    SheetColor color = 0;
    std::string text;
};

// A table with headings above it, each across all columns: the heading rows, one header row (when
// it has any text), then the rows, cells as texts; below them, after an empty row, a row for each
// entry of the legend. The rows above and the frozen columns stay in sight.
struct SheetTable {
    std::string name;  // of the sheet
    std::vector<std::string> headings;
    std::vector<std::string> header;
    std::vector<SheetColumn> columns;
    std::vector<std::vector<std::string>> rows;
    std::map<std::pair<size_t, size_t>, SheetLook> looks;  // of row and column; absent: plain
    std::vector<SheetLegend> legend;
    size_t frozenColumns = 0;  // at the left
};

// Writes the file whole, in place of an older one, or throws and leaves that as it was.
void writeSheet(const std::string& path, const SheetTable& table);

}  // namespace owb
