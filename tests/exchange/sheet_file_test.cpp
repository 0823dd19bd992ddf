// Spreadsheets written and read back, as users' files come in and go out.
#include "exchange/sheet_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "exchange/clsEXLFunc.h"
#include "exchange/modExpToExcel.h"
#include "screen/screen.h"
#include "support/company.h"
#include "support/screens.h"
#include "support/temp_dir.h"
#include "support/xlsx_parts.h"

namespace owb {
namespace {

SheetTable table() {
    return {.name = "Holiday: List/2024 with a name that is far too long",
            .headings = {"Asha & Sons <Ltd>", "12, MG Road", "Holiday List"},
            .header = {"Date", "Description", "Days"},
            .columns = {{}, {}, {SheetColumn::Number, 2}},
            .rows = {{"15/08/2024", "=1+1", "1,234.50"},
                     {"", "+91 \"₹\" @x -y", ""},
                     {"26/01/2025", "Republic\nDay", "n/a"}}};
}

TEST(SheetFile, ComesBackAsItWasWritten) {
    test::TempDir folder;
    const std::string path = folder.file("list.xlsx");
    std::ofstream(path) << "an older file";
    writeSheet(path, table());
    std::vector<std::string> lines;
    for (const SheetRow& row : readSheet(path)) {
        std::string line;
        for (const SheetCell& cell : row)
            line += (std::holds_alternative<double>(cell) ? "#" : "") + sheetText(cell) + "|";
        lines.push_back(line);
    }
    EXPECT_EQ(lines,
              (std::vector<std::string>{"Asha & Sons <Ltd>|", "12, MG Road|", "Holiday List|",
                                        "Date|Description|Days|", "15/08/2024|=1+1|#1234.5|",
                                        "|+91 \"₹\" @x -y|", "26/01/2025|Republic\nDay|n/a|"}))
        << "texts stay texts, whatever they begin with";
    EXPECT_FALSE(std::filesystem::exists(path + ".part"));
}

// What a spreadsheet program would show of a cell: type, value, number format, colours.
TEST(SheetFile, OfAGridKeepsColoursDatesNumbersAndWhatStaysInSight) {
    test::Company company;
    test::TestFrontEnd frontEnd(company.boxes);
    Screen screen(frontEnd, "modDayToDay", "Attendance Detail");
    Grid grid(screen, "fpgDayToDay",
              {{.caption = "Id", .hidden = true},
               {.caption = "Name"},
               {.caption = "Pay Days", .type = CellType::Number, .decimals = 1},
               {.caption = "From", .type = CellType::Date},
               {.caption = "05/Mar/2026"},
               {.caption = "Select", .type = CellType::Check}});
    grid.frozenColumns = 2;
    grid.legend = {{0x80C0FF, "Full Day WH"}};
    grid.addRow({"1", "Asha", "31.0", "01/03/2026", "CL", "1"});
    grid.addRow({"2", "Ravi", "", "later", "", "0"});
    grid.addRow({"3", "Mina", "", "", "", "0"});
    grid.sight.filter(1, {"Asha", "Ravi"});
    grid.setBackColor(0, 4, 0x80C0FF);
    grid.setForeColor(0, 4, 0xFF0000);
    grid.setBackColor(1, 4, kButtonFaceColor);
    const std::string path = company.folder.file("month.xlsx");
    frontEnd.file = path;
    NoProgress progress;
    ASSERT_TRUE(ExportGridToExcel(company.session, frontEnd, grid, "Month", progress));

    const test::XlsxParts parts(path);
    EXPECT_EQ(parts.cell("A5"), "text Asha @");
    EXPECT_EQ(parts.cell("B5"), "number 31 0.00");
    EXPECT_EQ(parts.cell("C5"), "number 46082 dd/mm/yyyy");
    EXPECT_EQ(parts.cell("C6"), "text later dd/mm/yyyy") << "nothing is lost";
    EXPECT_EQ(parts.cell("D5"), "text CL @ back FFFFC080 fore FF0000FF");
    EXPECT_EQ(parts.cell("D6"), "empty @ back FFF0F0F0");
    EXPECT_EQ(parts.cell("E5"), "text Yes @");
    EXPECT_EQ(parts.cell("A7"), "none") << "filtered out";
    EXPECT_EQ(parts.cell("A8"), "text Full Day WH General back FFFFC080");
    EXPECT_EQ(parts.frozen(), "1 column 4 rows");
    EXPECT_EQ(sheetDateText(readSheet(path)[4][2]), "01/03/2026") << "and it can be read back";
}

TEST(SheetFile, TellsTheLegendBelowTheTable) {
    test::TempDir folder;
    SheetTable legended = table();
    legended.legend = {{0xFFC080, "Full Day WH"}, {0, "Black"}};
    writeSheet(folder.file("list.xlsx"), legended);
    const test::XlsxParts parts(folder.file("list.xlsx"));
    EXPECT_EQ(parts.cell("A8"), "none");
    EXPECT_EQ(parts.cell("A9"), "text Full Day WH General back FFFFC080");
    EXPECT_EQ(parts.cell("A10"), "text Black General back FF000000");
    EXPECT_EQ(parts.frozen(), "0 columns 4 rows");
}

TEST(SheetFile, ThatCannotBeWrittenLeavesNothing) {
    test::TempDir folder;
    EXPECT_THROW(writeSheet(folder.file("nowhere/list.xlsx"), table()), std::runtime_error);
    const std::string folderInTheWay = folder.file("list.xlsx");
    std::filesystem::create_directories(folderInTheWay + "/inside");
    EXPECT_THROW(writeSheet(folderInTheWay, table()), std::runtime_error);
    EXPECT_FALSE(std::filesystem::exists(folderInTheWay + ".part"));
}

TEST(SheetFile, ThatIsNoneIsRefused) {
    test::TempDir folder;
    for (const char* name : {"text.xlsx", "text.xls", "text.csv"}) {
        std::ofstream(folder.file(name)) << "Date,Description\n";
        EXPECT_THROW(readSheet(folder.file(name)), std::runtime_error) << name;
    }
    EXPECT_THROW(readSheet(folder.file("absent.xlsx")), std::runtime_error);
}

TEST(SheetFile, TellsDatesOfNumbers) {
    for (const auto& [cell, text] :
         std::vector<std::pair<SheetCell, std::string>>{{45519.0, "15/08/2024"},
                                                        {45519.75, "15/08/2024"},
                                                        {std::string("15-Aug-2024"), "15-Aug-2024"},
                                                        {0.5, "0.5"},
                                                        {1e9, "1000000000"},
                                                        {SheetCell(), ""}})
        EXPECT_EQ(sheetDateText(cell), text);
}

TEST(SheetFile, NamesColumnsAsSheetsDo) {
    for (const auto& [number, letters] : std::vector<std::pair<int, std::string>>{{0, ""},
                                                                                  {1, "A"},
                                                                                  {26, "Z"},
                                                                                  {27, "AA"},
                                                                                  {52, "AZ"},
                                                                                  {53, "BA"},
                                                                                  {256, "IV"},
                                                                                  {702, "ZZ"},
                                                                                  {703, "AAA"}})
        EXPECT_EQ(clsEXLFunc::ExlFnStrGetCol(number), letters) << number;
}

}  // namespace
}  // namespace owb
