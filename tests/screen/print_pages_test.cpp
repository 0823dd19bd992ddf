// How a grid is laid on paper: widths, scale, strips of columns, rows on a page, the head.
#include "screen/print_pages.h"

#include <gtest/gtest.h>

#include "screen/screen.h"
#include "support/screens.h"

namespace owb {
namespace {

// Every character is 5 points wide, a line 10 high.
PrintFont plainFont() {
    return {10, [](const std::string& text) { return 5.0 * static_cast<double>(text.size()); }};
}

constexpr double kRow = 13, kFoot = 13;  // a line with its spacing

class Paper : public ::testing::Test {
  protected:
    // Columns of texts as long as told, `frozen` of them stay in sight.
    void fill(const std::vector<size_t>& lengths, size_t rows, size_t frozen = 0) {
        std::vector<GridColumn> columns(lengths.size());
        for (size_t c = 0; c < lengths.size(); ++c) columns[c].caption = std::string(1, 'a');
        grid.setColumns(columns);
        grid.frozenColumns = frozen;
        std::vector<std::string> texts;
        for (const size_t length : lengths) texts.emplace_back(length, 'x');
        for (size_t r = 0; r < rows; ++r) grid.addRow(texts);
    }
    PrintPages lay(double width, double height, const PrintHeading& heading = {}) {
        return layPages(grid, heading, {width, height}, plainFont());
    }
    // The columns of each page, "0 1 | 0 2".
    static std::string columnsOf(const PrintPages& laid) {
        std::string text;
        for (const PrintedPage& page : laid.pages) {
            text += text.empty() ? "" : "| ";
            for (const PrintedColumn& column : page.columns)
                text += std::to_string(column.column) + " ";
        }
        return text;
    }
    static std::string rowsOf(const PrintPages& laid) {
        std::string text;
        for (const PrintedPage& page : laid.pages)
            text +=
                std::to_string(page.rows.front()) + "-" + std::to_string(page.rows.back()) + " ";
        return text;
    }

    test::RecordedBoxes boxes;
    test::TestFrontEnd frontEnd{boxes};
    Screen screen{frontEnd, "Sheet", "Sheet"};
    Grid grid{screen, "fpgSheet"};
};

TEST_F(Paper, WidthsFollowTheTextsAndTheWholeFitsThePaper) {
    fill({4, 10, 60}, 1);
    const PrintPages laid = lay(400, 300);
    const std::vector<PrintedColumn>& columns = laid.pages.at(0).columns;
    const double padded[] = {26, 56, 206};  // a text of 60 ends after 40 with an ellipsis
    double left = 0;
    for (size_t c = 0; c < 3; ++c) {
        EXPECT_DOUBLE_EQ(columns[c].width, padded[c]) << c;
        EXPECT_DOUBLE_EQ(columns[c].left, left) << c;
        left += padded[c];
    }
    EXPECT_DOUBLE_EQ(laid.scale, 1) << "a narrow table is not blown up";
    EXPECT_DOUBLE_EQ(lay(216, 300).scale, 0.75) << "a wide one is made smaller";
}

TEST_F(Paper, AColumnIsWideEnoughForTheLongestWordOfItsHeader) {
    fill({2}, 1);
    grid.changeColumn(0).caption = "Salary calendar days";
    const PrintPages laid = lay(400, 300);
    EXPECT_DOUBLE_EQ(laid.pages.at(0).columns[0].width, 46);  // "calendar"
    EXPECT_EQ(headerLines(grid.column(0), 46, plainFont()),
              (std::vector<std::string>{"Salary", "calendar", "days"}));
    EXPECT_EQ(headerLines(grid.column(0), 80, plainFont()),
              (std::vector<std::string>{"Salary", "calendar days"}));
    EXPECT_DOUBLE_EQ(laid.headerHeight, 33);
}

TEST_F(Paper, TooManyColumnsAreCutIntoStripsThatRepeatTheFrozenOnes) {
    struct Case {
        const char* what;
        std::vector<size_t> lengths;
        size_t frozen;
        double width;
        const char* pages;
    };
    const std::vector<size_t> eight(8, 4);  // 26 points each
    const Case cases[] = {
        {"as they are", eight, 0, 208, "0 1 2 3 4 5 6 7 "},
        {"just readable", eight, 0, 125, "0 1 2 3 4 5 6 7 "},
        {"in two", eight, 0, 120, "0 1 2 3 | 4 5 6 7 "},
        {"in two, one repeated", eight, 1, 120, "0 1 2 3 4 | 0 5 6 7 "},
        {"in three, two repeated", eight, 2, 70, "0 1 2 3 | 0 1 4 5 | 0 1 6 7 "},
        {"a frozen one wider than half of the paper",
         {30, 4, 4, 4, 4, 4},
         1,
         100,
         "0 | 1 2 3 4 5 "},
        {"all frozen", eight, 8, 120, "0 1 2 3 | 4 5 6 7 "},
        {"one column wider than the paper", {40}, 0, 60, "0 "},
    };
    for (const Case& c : cases) {
        fill(c.lengths, 1, c.frozen);
        const PrintPages laid = lay(c.width, 300);
        EXPECT_EQ(columnsOf(laid), c.pages) << c.what;
        for (const PrintedPage& page : laid.pages)
            EXPECT_LE((page.columns.back().left + page.columns.back().width) * laid.scale,
                      c.width + 0.1)
                << c.what;
    }
}

TEST_F(Paper, RowsGoOnFromPageToPageBelowHeadAndHeader) {
    fill({4}, 9);
    const double header = kRow;
    EXPECT_EQ(rowsOf(lay(400, header + 4 * kRow + kFoot)), "0-3 4-7 8-8 ");
    EXPECT_EQ(rowsOf(lay(400, header + 9 * kRow + kFoot)), "0-8 ");
    const PrintHeading heading{.company = "Works", .title = "List"};
    const double head = 2 * kRow + 5;
    EXPECT_DOUBLE_EQ(lay(400, 300, heading).headHeight, head);
    EXPECT_EQ(rowsOf(lay(400, head + header + 4 * kRow + kFoot, heading)), "0-3 4-7 8-8 ");
    EXPECT_EQ(lay(400, 10).pages.size(), 9U) << "a row a page where there is no room";
    // Strips side by side come before the next rows.
    fill({40, 40}, 4);
    const PrintPages laid = lay(210, kFoot + header + 2 * kRow);
    EXPECT_EQ(columnsOf(laid), "0 | 1 | 0 | 1 ");
    EXPECT_EQ(rowsOf(laid), "0-1 0-1 2-3 2-3 ");
}

TEST_F(Paper, NothingInSightMakesNoPage) {
    fill({4, 4}, 1);
    grid.setRowHidden(0, true);
    EXPECT_TRUE(lay(400, 300).pages.empty());
    fill({4}, 1);
    grid.changeColumn(0).hidden = true;
    EXPECT_TRUE(lay(400, 300).pages.empty());
}

TEST_F(Paper, TheHeadTellsWhoseDataAndWhichAreShown) {
    fill({4, 4}, 3);
    grid.changeColumn(1).caption = "Department";
    grid.setCell(0, 1, "Stores");
    grid.setCell(1, 1, "Works");
    grid.sight.filter(1, {"Stores", "Works"});
    grid.legend = {{0x80C0FF, "Full Day WH"}, {kButtonFaceColor, "Entry Locked"}};
    const PrintHeading heading{.company = "Works",
                               .title = "List",
                               .printed = "ADMIN, 05/Mar/2026 14:02",
                               .filters = {"Leave: CL"}};
    const auto told = [](const PrintPages& laid) {
        std::string text;
        for (const PrintedText& piece : laid.head)
            text += std::to_string(static_cast<int>(piece.left)) + "," +
                    std::to_string(static_cast<int>(piece.top)) + " " + piece.text + "; ";
        return text;
    };
    EXPECT_EQ(told(lay(300, 300, heading)),
              "0,0 Works; 0,0 ADMIN, 05/Mar/2026 14:02; 0,13 List; 0,26 Leave: CL; 57,26 "
              "Department: Stores, Works; 194,26 2 of 3 shown; 0,39 Full Day WH; 80,39 Entry "
              "Locked; ");
    EXPECT_EQ(told(lay(140, 300, heading)),
              "0,0 Works; 0,0 ADMIN, 05/Mar/2026 14:02; 0,13 List; 0,26 Leave: CL; 0,39 "
              "Department: Stores, Works; 0,52 2 of 3 shown; 0,65 Full Day WH; 0,78 Entry "
              "Locked; ")
        << "what does not fit goes to the next line";
    grid.legend.clear();
    grid.sight.clearFilters();
    EXPECT_EQ(lay(300, 300).headHeight, 0);
}

TEST_F(Paper, WhatIsInSightIsPrintedInItsOrderWithTheTotalsBelow) {
    grid.setColumns({{.caption = "Name"},
                     {.caption = "Tick", .type = CellType::Check},
                     {.caption = "Rate", .type = CellType::Number, .amount = true, .total = true},
                     {.caption = "05/Mar/2026", .heading = "05\nThu"}});
    grid.addRow({"Ravi", "1", "250000.00", "CL"});
    grid.addRow({"Asha", "", "100000.50", ""});
    grid.addRow({"Mina", "", "1.00", ""});
    grid.sight.sort(GridSight::Order{0, false});
    grid.sight.hideColumn(1, true);
    grid.sight.freeze(1);
    const PrintPages laid = lay(400, 300);
    EXPECT_EQ(columnsOf(laid), "0 2 3 ");
    EXPECT_EQ(laid.pages[0].rows, (std::vector<size_t>{1, 2, 0, kTotals}));
    EXPECT_EQ(laid.pages[0].frozen, 1U);
    EXPECT_EQ(printedText(grid, 0, 1), "Yes");
    EXPECT_EQ(printedText(grid, 1, 1), "No");
    EXPECT_EQ(printedText(grid, 0, 2), "2,50,000.00");
    EXPECT_EQ(printedText(grid, kTotals, 2), "3,50,001.50");
    EXPECT_EQ(printedText(grid, kTotals, 0), "");
    EXPECT_DOUBLE_EQ(laid.pages[0].columns[2].width, 21) << "as its heading, not its caption";
    EXPECT_DOUBLE_EQ(laid.headerHeight, 23);
}

}  // namespace
}  // namespace owb
