// A clerk's hands in a grid: typing, codes, blocks, undo, sorting and filters.
#include <gtest/gtest.h>

#include "screen/typist.h"

namespace owb::test {
namespace {

// A small register under a clerk's hands.
struct Hands {
    Hands() {
        const char* rows[][4] = {
            {"1", "Asha", "CL", "1.0"}, {"2", "Ravi", "", ""}, {"3", "Meera", "SL", "2.0"}};
        for (const auto& row : rows) grid.addRow({row[0], row[1], row[2], row[3], "", "0"});
        grid.choiceNote = [](size_t row, size_t, const std::string& code) {
            return code + std::to_string(row);
        };
        grid.onEditEnd = [this](size_t row, size_t c, const std::string& before) {
            log += before + ">" + grid.cell(row, c) + ";";
        };
        grid.onPickCell = [this](size_t row, size_t c) {
            std::string reason;
            grid.edit(row, c, "05/03/2026", reason);
        };
    }
    // From a cell, by places; gives the cells afterwards.
    std::string from(size_t row, size_t column, const std::string& keys) {
        grid.goTo(row, column);
        typeKeys(grid, keys);
        return cellsOf(grid);
    }

    RecordedBoxes boxes;
    TestFrontEnd frontEnd{boxes};
    GridScreen screen{
        frontEnd,
        {{.caption = "Id", .align = Align::Right},
         {.caption = "Name"},
         {.caption = "Leave",
          .type = CellType::Combo,
          .locked = false,
          .choices = {"CL", "CO", "CW", "LOP", "P", "PL", "SL"}},
         {.caption = "Days", .type = CellType::Number, .decimals = 1, .locked = false},
         {.caption = "From", .type = CellType::Date, .locked = false},
         {.caption = "On", .type = CellType::Check, .locked = false}}};
    Grid& grid = screen.grid;
    std::string log;
};

TEST(GridEntry, EveryKindOfCellTakesWhatIsTyped) {
    const std::string start = "1 Asha CL 1.0 - 0 / 2 Ravi - - - 0 / 3 Meera SL 2.0 - 0";
    struct Case {
        size_t row, column;
        const char* keys;
        const char* changed;  // the row typed into; "": nothing changed
        const char* hands;
        const char* said = "";
    };
    for (const Case& c : {
             // numbers go down, and an arrow ends what typing began
             Case{0, 3, "2 Down", "1 Asha CL 2.0 - 0", "1,3"},
             {0, 3, "'2.5 Enter", "1 Asha CL 2.5 - 0", "1,3"},
             {0, 3, "2 Esc", "", "0,3"},
             {0, 3, "F2 5 Enter", "1 Asha CL 1.1 - 0", "1,3"},  // 1.05
             {0, 3, "F2 Left", "", "0,3 typing 1.0"},           // the caret's
             {0, 3, "5 Left", "1 Asha CL 5.0 - 0", "0,2"},
             {0, 3, "'5x Enter", "", "0,3 typing 5x", "\"5x\" is no number: row 1, \"Days\"."},
             {0, 3, "Backspace Enter", "1 Asha CL - - 0", "1,3"},
             {0, 3, "Del", "1 Asha CL - - 0", "0,3"},
             {0, 3, "7 Tab", "1 Asha CL 7.0 - 0", "0,4"},
             {1, 3, "7 Shift+Tab", "2 Ravi - 7.0 - 0", "1,2"},
             {2, 3, "7 Enter", "3 Meera SL 7.0 - 0", "2,3"},  // the last row
             // codes: only a whole one is entered
             {1, 2, "c l Enter", "2 Ravi CL - - 0", "1,3"},
             {1, 2, "P Enter", "2 Ravi P - - 0", "1,3"},
             {1, 2, "c Enter", "", "1,2 typing c", "\"c\" is no whole code."},
             {1, 2, "c Down", "", "1,2 typing c", "\"c\" is no whole code."},
             {1, 2, "c Enter Down Enter", "2 Ravi CO - - 0", "1,2"},
             {1, 2, "c x", "", "1,2 typing cx", "No code begins with \"cx\"."},
             {1, 2, "c x Esc", "", "1,2"},
             {1, 2, "F4 End", "", "1,2 typing "},
             {1, 2, "Alt+Down Down Down Enter", "2 Ravi CW - - 0", "1,2"},
             {1, 2, "F4 Esc Esc", "", "1,2"},
             {0, 2, "F4 Down Enter", "1 Asha CO 1.0 - 0", "0,2"},
             // dates and ticks
             {0, 4, "'5/3/26 Enter", "1 Asha CL 1.0 05/03/2026 0", "0,5"},
             {0, 4, "'31/2/26 Tab", "", "0,4 typing 31/2/26",
              "\"31/2/26\" is no date: row 1, \"From\"."},
             {0, 4, "F4", "1 Asha CL 1.0 05/03/2026 0", "0,4"},
             {0, 5, "Space Enter", "1 Asha CL 1.0 - 1", "1,2"},
             {0, 5, "Space Space", "", "0,5"},
             {0, 5, "x", "", "0,5"},
             // cells that are only read: letters find the row
             {0, 1, "m e", "", "2,1"},
             {0, 0, "r", "", "1,1"},
             {0, 1, "F2", "", "0,1", "The cell in row 1, \"Name\" is locked."},
             // blanking a column or a row is choosing it first
             {0, 3, "Ctrl+Space", "", "0,3 (0,3-2,3)"},
             {1, 2, "Shift+Space", "", "1,2 (1,0-1,5)"},
         }) {
        Hands one;
        const std::string cells = one.from(c.row, c.column, c.keys);
        std::string wanted = start;
        if (*c.changed) {
            const size_t at = c.row == 0 ? 0 : start.find(c.row == 1 ? "2 Ravi" : "3 Meera");
            wanted = start.substr(0, at) + c.changed +
                     (c.row == 2 ? "" : start.substr(start.find(" /", at)));
        }
        EXPECT_EQ(cells, wanted) << c.keys;
        EXPECT_EQ(handsOf(one.grid), c.hands) << c.keys;
        EXPECT_EQ(one.grid.said().text, c.said) << c.keys;
    }
}

TEST(GridEntry, BlocksAreSetWhereCellsAreOpen) {
    struct Case {
        const char* what;
        size_t row, column;
        const char* chosen;  // keys that choose
        const char* pasted;  // "": nothing is pasted
        const char* keys;
        const char* leaves;  // the column afterwards
        const char* days;
        const char* said;
    };
    for (const Case& c : {
             Case{"from the corner, chosen upwards", 2, 3, "Shift+Up", "4\n5\n", "", "CL - SL",
                  "1.0 4.0 5.0", "2 set"},
             {"one cell fills all", 0, 3, "Shift+Down Shift+Down", "4", "", "CL - SL",
              "4.0 4.0 4.0", "3 set"},
             {"a larger block than what is chosen", 0, 3, "Shift+Down", "1\n2\n3", "", "CL - SL",
              "1.0 - 2.0", "The block (3 x 1) is larger than what is chosen (2 x 1)."},
             {"beyond the end", 2, 3, "", "1\n2", "", "CL - SL", "1.0 - 2.0",
              "The block is larger than what is left of the grid."},
             {"a text that does not fit", 0, 2, "", "CL\t1\nXX\t2", "", "CL - SL", "1.0 - 2.0",
              "\"XX\" is no entry of the list: row 2, \"Leave\"."},
             {"over locked cells", 0, 1, "Shift+Right", "x\tCO\n", "", "CO - SL", "1.0 - 2.0",
              "1 set, 1 skipped (locked)"},
             {"into locked cells only", 0, 0, "Shift+Right", "x\ty", "", "CL - SL", "1.0 - 2.0",
              "0 set, 2 skipped (locked)"},
             {"all at once", 0, 2, "Shift+Down Shift+Down", "", "P L Ctrl+Enter", "PL PL PL",
              "1.0 - 2.0", "3 set"},
             {"emptied", 0, 2, "Shift+Down Shift+Down Shift+Right", "", "Del", "- - -", "- - -",
              "6 set"},
             {"cut", 0, 2, "", "", "Ctrl+X Down Ctrl+V", "- CL SL", "1.0 - 2.0", ""},
             {"filled down", 0, 2, "Shift+Down Shift+Down Shift+Right", "", "Ctrl+D", "CL CL CL",
              "1.0 1.0 1.0", "4 set"},
             {"from the cell above", 1, 3, "", "", "Ctrl+D", "CL - SL", "1.0 1.0 2.0", ""},
             {"from the cell to the left", 0, 3, "", "", "Ctrl+R", "CL - SL", "1.0 - 2.0",
              "\"CL\" is no number: row 1, \"Days\"."},
             {"undone whole", 0, 2, "Ctrl+Space", "LOP", "Ctrl+Z", "CL - SL", "1.0 - 2.0",
              "Undone: 3 cells"},
             {"and entered again", 0, 2, "Ctrl+Space", "LOP", "Ctrl+Z Ctrl+Y", "LOP LOP LOP",
              "1.0 - 2.0", "Entered again: 3 cells"},
         }) {
        Hands one;
        one.grid.goTo(c.row, c.column);
        typeKeys(one.grid, c.chosen);
        std::string block;
        for (const char* at = c.pasted; *at != 0; ++at) {
            const bool escaped = *at == '\\';
            if (escaped) ++at;
            block += !escaped ? *at : *at == 't' ? '\t' : '\n';
        }
        if (!block.empty()) one.grid.blocks.paste(block);
        typeKeys(one.grid, c.keys);
        const auto column = [&](size_t at) {
            std::string all;
            for (size_t r = 0; r < 3; ++r)
                all += (r > 0 ? " " : "") +
                       (one.grid.cell(r, at).empty() ? std::string("-") : one.grid.cell(r, at));
            return all;
        };
        EXPECT_EQ(column(2), c.leaves) << c.what;
        EXPECT_EQ(column(3), c.days) << c.what;
        EXPECT_EQ(one.grid.said().text, c.said) << c.what;
    }
}

TEST(GridEntry, TheHandleRepeatsWhatIsChosenInFourDirections) {
    struct Case {
        GridCursor::Block chosen;
        size_t row, column;
        const char* cells;
    };
    for (const Case& c : {Case{{0, 0, 1, 0}, 4, 0, "a - - / b - - / a - - / b - - / a - -"},
                          {{3, 1, 4, 1}, 0, 1, "- e - / - d - / - e - / - d - / - e -"},
                          {{0, 0, 0, 0}, 0, 2, "a a a / b - - / - - - / - d - / - e -"},
                          {{3, 1, 4, 1}, 3, 0, "a - - / b - - / - - - / d d - / e e -"}}) {
        RecordedBoxes boxes;
        TestFrontEnd frontEnd{boxes};
        GridScreen screen(frontEnd, std::vector<GridColumn>(3, {.locked = false}));
        for (const auto& [first, second] :
             {std::pair("a", ""), {"b", ""}, {"", ""}, {"", "d"}, {"", "e"}})
            screen.grid.addRow({first, second});
        screen.grid.goTo(c.chosen.top, c.chosen.left);
        screen.grid.cursor.choose(c.chosen);
        if (c.chosen.left == 0 && c.row > 1)
            for (const size_t row : {3, 4}) screen.grid.setCell(row, 1, "");
        if (c.chosen.left == 1 && c.row == 0)
            for (const size_t row : {0, 1}) screen.grid.setCell(row, 0, "");
        EXPECT_TRUE(screen.grid.blocks.fillTo(c.row, c.column));
        EXPECT_EQ(cellsOf(screen.grid), c.cells);
    }
}

TEST(GridEntry, UndoRunsTheScreensHandlersAndStopsAtALock) {
    Hands one;
    one.from(0, 3, "4 Enter 5 Enter");
    EXPECT_EQ(one.log, "1.0>4.0;>5.0;");
    typeKeys(one.grid, "Ctrl+Z");
    EXPECT_EQ(one.log, "1.0>4.0;>5.0;5.0>;");
    EXPECT_EQ(handsOf(one.grid), "1,3");
    one.grid.setLocked(0, 3, true);
    typeKeys(one.grid, "Ctrl+Z");
    EXPECT_EQ(one.grid.said().text, "Cannot undo. The cell in row 1, \"Days\" is locked.");
    one.grid.setLocked(0, 3, false);
    one.grid.setCell(0, 3, "9.0");
    typeKeys(one.grid, "Ctrl+Z");
    EXPECT_EQ(one.grid.said().text,
              "Cannot undo. The cell in row 1, \"Days\" holds something else by now.");
    one.grid.setCell(0, 3, "4.0");
    typeKeys(one.grid, "Ctrl+Z Ctrl+Z");
    EXPECT_EQ(one.grid.cell(0, 3), "1.0");
    EXPECT_EQ(one.grid.said().text, "There is nothing to undo.");
    // A new entry ends what could be entered again.
    one.from(2, 3, "8 Enter Ctrl+Y");
    EXPECT_EQ(one.grid.said().text, "There is nothing to redo.");
}

TEST(GridEntry, UndoKnowsRowsByTheirKeysAfterTheyAreReadAgain) {
    for (const bool keyed : {true, false}) {
        Hands one;
        if (keyed) one.grid.rowKey = [&](size_t row) { return one.grid.cell(row, 0); };
        one.from(1, 3, "4 Enter");
        one.grid.setRowCount(0);
        one.grid.addRow({"2", "Ravi", "", "4.0"});
        one.grid.addRow({"1", "Asha", "CL", "1.0"});
        typeKeys(one.grid, "Ctrl+Z");
        EXPECT_EQ(one.grid.cell(0, 3), keyed ? "" : "4.0");
        EXPECT_EQ(one.grid.said().text,
                  keyed ? "Undone: row 1, \"Days\"" : "There is nothing to undo.");
    }
}

TEST(GridEntry, HundredStepsAreKept) {
    Hands one;
    for (int i = 0; i < 105; ++i) one.from(0, 3, i % 2 == 0 ? "2 Enter" : "3 Enter");
    size_t steps = 0;
    while (one.grid.history.undo()) ++steps;
    EXPECT_EQ(steps, GridHistory::kSteps);
    EXPECT_EQ(one.grid.cell(0, 3), "2.0") << "the fifth of the first five stays";
}

TEST(GridEntry, AScreenTakesABlockAtOnceAndItsKeysAreFiltered) {
    Hands one;
    std::string taken;
    one.grid.onBlock = [&](const std::vector<CellText>& entries) {
        for (const CellText& entry : entries) {
            taken += entry.text + ";";
            one.grid.setCell(entry.row, entry.column, entry.text);
        }
    };
    one.from(0, 3, "Ctrl+Space 7 Ctrl+Enter");
    EXPECT_EQ(taken, "7.0;7.0;7.0;");
    EXPECT_EQ(one.log, "") << "no cell was edited by itself";
    typeKeys(one.grid, "Ctrl+Z");
    EXPECT_EQ(taken, "7.0;7.0;7.0;2.0;;1.0;");
    one.grid.cellFilter = [](size_t, size_t c, char32_t typed, const std::string& before) {
        const bool digit = typed >= '0' && typed <= '9';
        const bool point = typed == '.' && before.find('.') == std::string::npos;
        return c == 3 && !digit && !point ? U'\0' : typed;
    };
    one.from(1, 3, "'8..x5 Enter");
    EXPECT_EQ(one.grid.cell(1, 3), "8.5");
}

TEST(GridEntry, SortingAndFiltersKeepToTheRows) {
    Hands one;
    Grid& grid = one.grid;
    grid.sight.sortNext(3);
    EXPECT_EQ(grid.sight.rows(), (std::vector<size_t>{1, 0, 2})) << "numbers sort as numbers";
    grid.sight.sortNext(3);
    EXPECT_EQ(grid.sight.rows(), (std::vector<size_t>{2, 0, 1}));
    // What is typed goes to the row that is seen, and the row stays until the order is asked again.
    one.from(2, 3, "0 Enter");
    EXPECT_EQ(grid.cell(2, 3), "0.0");
    EXPECT_EQ(handsOf(grid), "1,3");
    grid.sight.sortNext(3);
    EXPECT_EQ(grid.sight.rows(), (std::vector<size_t>{0, 1, 2}));

    grid.sight.filter(2, {"CL", ""});
    EXPECT_TRUE(grid.rowHidden(2)) << "what works on all rows passes it over";
    EXPECT_EQ(grid.sight.summary(), "2 of 3 shown");
    EXPECT_EQ(grid.sight.values(0),
              (std::vector<std::pair<std::string, size_t>>{{"1", 1}, {"2", 1}}));
    EXPECT_EQ(grid.sight.values(2).size(), 3U) << "its own filter does not count";
    // The screen reads its rows again: the filter stays, as its column does.
    grid.setRowCount(0);
    for (const char* leave : {"SL", "CL"}) grid.addRow({"7", "Zoya", leave, "3.0"});
    EXPECT_EQ(grid.sight.rows(), std::vector<size_t>{1});
    grid.setColumns({{.caption = "Other"}, {.caption = "And"}, {.caption = "Third"}});
    EXPECT_TRUE(grid.sight.filters().empty());

    grid.addRow({"a", "b", "c"});
    grid.sight.moveColumn(2, 0);
    grid.sight.hideColumn(0, true);
    EXPECT_EQ(cellsOf(grid), "c b");
    grid.sight.hideColumn(1, true);
    grid.sight.hideColumn(2, true);
    EXPECT_EQ(cellsOf(grid), "c") << "the last one stays";
}

TEST(GridEntry, FindGoesAroundInWhatIsSeen) {
    Hands one;
    Grid& grid = one.grid;
    grid.addRow({"4", "Asharani", "CL", "1.0"});
    grid.sight.sort(GridSight::Order{0, true});
    grid.find.open();
    grid.find.setText("ASHA");
    EXPECT_EQ(grid.find.count(), 2U);
    std::string hits = handsOf(grid) + ";";
    for (const bool forward : {true, true, false}) {
        EXPECT_TRUE(grid.find.next(forward));
        hits += handsOf(grid) + ";";
    }
    EXPECT_EQ(hits, "0,1;3,1;0,1;3,1;");
    grid.setCell(0, 1, "Usha");
    EXPECT_EQ(grid.find.count(), 1U);
    grid.sight.filter(0, {"2"});
    EXPECT_FALSE(grid.find.next());
    typeKeys(grid, "Esc");
    EXPECT_FALSE(grid.find.isOpen());
}

TEST(GridEntry, AListKnowsOneRow) {
    Hands one;
    one.grid.singleRows = true;
    one.from(0, 0, "Ctrl+Down Shift+Up Ctrl+A");
    EXPECT_EQ(handsOf(one.grid), "1,0 (1,0-1,5)") << "what is marked is where the user is";
    EXPECT_EQ(one.grid.cursor.summary(), "Row 2/3");
}

TEST(GridEntry, TheLineBelowTellsSumsAndRows) {
    Hands one;
    one.from(0, 2, "Shift+Down Shift+Down Shift+Right");
    EXPECT_EQ(one.grid.cursor.summary(), "Row 1/3   Count 4   Sum 3.00   Avg 1.50");
    one.grid.setCell(0, 3, "1234567.5");
    EXPECT_EQ(one.grid.totalText(3), "12,34,569.5");
}

}  // namespace
}  // namespace owb::test
