// Spreadsheets written and read back, as users' files come in and go out.
#include "exchange/sheet_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "exchange/clsEXLFunc.h"
#include "support/temp_dir.h"

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
