// A grid on paper: what stands above it, how wide its columns are, how much smaller than life it is
// printed, and which columns and rows fall on which page. Nothing here paints.
//
// Lengths are points (1/72 inch), measured from the upper left corner of what can be printed on.
// The table is printed at `scale`, what stands above and below it at full size. A table that would
// become too small to read is cut into strips of columns, which lie on pages of their own; the
// header, and the columns that stay in sight on the screen, stand on each of them.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "screen/grid.h"

namespace owb {

// What a screen tells above its table on every page, before the filters and the legend of the grid;
// what is empty takes no room.
struct PrintHeading {
    std::string company;
    std::string title;                 // "Plant - Mar/2026 - Attendance Detail"
    std::string printed;               // by whom and when: "ADMIN, 05/Mar/2026 14:02"
    std::vector<std::string> filters;  // of the screen's own: "Department: Stores"
};

enum class PaperSize { A4, A3 };
// "A4"; in any letter case, nothing when there is no such paper.
std::optional<PaperSize> paperNamed(const std::string& name);
std::string paperName(PaperSize size);

// What can be printed on.
struct PrintPaper {
    double width = 0, height = 0;
};

// Of the font that is printed with.
struct PrintFont {
    double line = 0;  // from one line to the next
    std::function<double(const std::string&)> width;
};

struct PrintedText {
    enum Kind {
        Plain,
        Bold,
        Chip
    } kind = Plain;  // Chip: a square of `color` with a text behind it
    double left = 0, top = 0, width = 0;
    std::string text;
    bool atRight = false;  // ends at the right edge of its width
    Color color = kDefaultColor;
};

struct PrintedColumn {
    size_t column;
    double left, width;  // before scaling
};

struct PrintedPage {
    std::vector<PrintedColumn> columns;
    size_t frozen = 0;  // of them, at the left, are repeated on the pages beside it
    std::vector<size_t>
        rows;  // of the grid; kTotals at the end of the last page where there are any
};

constexpr size_t kTotals = static_cast<size_t>(-1);

struct PrintPages {
    std::vector<PrintedText> head;
    double headHeight = 0;
    double scale = 1;
    double headerHeight = 0, rowHeight = 0;  // of the table, before scaling
    std::vector<PrintedPage> pages;          // none when no row or no column is in sight
};

// Strips that lie beside each other follow each other, then come the next rows.
PrintPages layPages(const Grid& grid, const PrintHeading& heading, const PrintPaper& paper,
                    const PrintFont& font);

// The header of a column: its heading, or its caption wrapped between words to fit into a width.
std::vector<std::string> headerLines(const GridColumn& column, double width, const PrintFont& font);
// The text of a cell as it is printed.
std::string printedText(const Grid& grid, size_t row, size_t c);
// A cell's colour on white paper, as red-green-blue: the desktop's own are those of a light one;
// nothing for the paper's own.
std::optional<uint32_t> paperColor(Color color);
// How far the text of a chip stands from its left edge; the chip is a line high and wide.
double chipRoom(const PrintFont& font);
// "Page 1 of 7", below the table.
std::string pageNumber(size_t page, size_t pages);

constexpr double kPrintPadding = 3;  // of a text in its cell, left and right

}  // namespace owb
