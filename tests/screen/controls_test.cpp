// What a user can do to each kind of control, and what it then holds.
#include <gtest/gtest.h>

#include "screen/grid.h"
#include "screen/lists.h"
#include "screen/screen.h"
#include "screen/text_box.h"
#include "support/screens.h"

namespace owb {
namespace {

class Sheet final : public Screen {
  public:
    explicit Sheet(FrontEnd& frontEnd) : Screen(frontEnd, "Sheet", "Sheet") {
        txtAmount.filter = [](int key, const std::string& before) {
            const bool point = key == '.' && before.find('.') == std::string::npos;
            return (key >= '0' && key <= '9') || point ? key
                   : key >= 'a' && key <= 'f'          ? key - 32
                                                       : 0;
        };
        txtAmount.maxLength = 5;
        txtAmount.onPick = [this] { events += "pick "; };
        cmbHead.add("Staff", 7);
        cmbHead.add("Works", 9);
        cmbHead.onChange = [this] { events += "head=" + std::to_string(cmbHead.key()) + " "; };
        fpgDays.onEditEnd = [this](size_t row, size_t c, const std::string& before) {
            events += before + ">" + fpgDays.cell(row, c) + " ";
            if (fpgDays.cell(row, c) == "13.0")
                fpgDays.setCell(row, c, before);  // the screen says no
        };
        fpgDays.onCurrentChange = [this](size_t row, size_t) {
            events += "row" + std::to_string(row) + " ";
        };
    }
    TextBox txtAmount{*this, "txtAmount"};
    Combo cmbHead{*this, "cmbHead"};
    ListBox lstLeaves{*this, "lstLeaves"};
    CheckBox chkAll{*this, "chkAll"};
    OptionGroup groupType;
    OptionButton optType[3] = {{*this, groupType, "optType(0)", "Daily"},
                               {*this, groupType, "optType(1)", "Hourly"},
                               {*this, groupType, "optType(2)", "Monthly"}};
    Grid fpgDays{
        *this,
        "fpgDays",
        {{.caption = "Id", .hidden = true},
         {.caption = "Name"},
         {.caption = "Days", .type = CellType::Number, .decimals = 1, .locked = false},
         {.caption = "From", .type = CellType::Date, .locked = false},
         {.caption = "Leave", .type = CellType::Combo, .locked = false, .choices = {"CL", "SL"}}}};
    bool mayWrite(const Control& control) override {
        events += "asked for " + control.name() + " ";
        return writable;
    }
    std::string events;
    bool writable = false;
};

class Controls : public ::testing::Test {
  protected:
    test::RecordedBoxes boxes;
    test::TestFrontEnd frontEnd{boxes};
    Sheet sheet{frontEnd};
};

TEST_F(Controls, ATextBoxTakesWhatItsFilterLetsThrough) {
    const TextBox& box = sheet.txtAmount;
    EXPECT_EQ(box.filtered("1x2.5."), "12.5");
    EXPECT_EQ(box.filtered("ab"), "AB") << "a filter may change the character";
    EXPECT_EQ(box.filtered("1234567"), "12345") << "no more than its length";
    EXPECT_EQ(box.accepted('\n', ""), 0U);
    EXPECT_TRUE(sheet.txtAmount.key("F2"));
    EXPECT_TRUE(sheet.txtAmount.doubleClick());
    EXPECT_EQ(sheet.events, "pick pick ");
    sheet.txtAmount.locked = true;
    EXPECT_FALSE(sheet.txtAmount.edit("1"));
    EXPECT_FALSE(sheet.txtAmount.key("F2")) << "a picker changes nothing that is locked";
    EXPECT_FALSE(sheet.txtAmount.doubleClick());
    EXPECT_EQ(sheet.events, "pick pick ");
}

TEST_F(Controls, AComboIsOneOfItsEntriesOrFreeText) {
    Combo& combo = sheet.cmbHead;
    EXPECT_TRUE(combo.edit("wORKS"));
    EXPECT_EQ(combo.value, "Works");
    EXPECT_TRUE(combo.edit("Nobody"));
    EXPECT_FALSE(combo.isInList());
    EXPECT_EQ(combo.key(), 0);
    combo.editable = false;
    EXPECT_FALSE(combo.edit("Somebody"));
    EXPECT_EQ(combo.value, "Nobody");
    EXPECT_FALSE(combo.choose(2));
    EXPECT_TRUE(combo.choose(0));
    EXPECT_EQ(sheet.events, "head=9 head=0 head=7 ");
    // Two entries of one text are told apart by the choice.
    combo.add("Staff", 8);
    combo.select(2);
    EXPECT_EQ(combo.key(), 8);
}

TEST_F(Controls, LettersFindAnEntryHoweverSlowlyTheyCome) {
    sheet.writable = true;
    Combo leave(sheet, "cmbLeave");
    leave.editable = false;
    for (const char* entry : {"Casual Leave", "Comp Off", "Comp Work", "Loss of Pay"})
        leave.add(entry);
    const struct {
        std::vector<const char*> keys;
        const char* value;
        const char* refusal;
    } cases[] = {
        {{"c"}, "Casual Leave", ""},
        {{"c", "O"}, "Comp Off", ""},
        {{"c", "o", "m", "p", " ", "w"}, "Comp Work", ""},
        {{"c", "l"}, "Casual Leave", "No entry begins with \"cl\"."},
        {{"c", "l", "o"}, "Comp Off", ""},
        {{"c", "o", "Backspace", "a"}, "Casual Leave", ""},
        {{"x"}, "", "No entry begins with \"x\"."},
    };
    for (const auto& c : cases) {
        leave.select(-1);
        leave.leave();
        for (const char* key : c.keys) EXPECT_TRUE(leave.key(key)) << key;
        EXPECT_EQ(leave.value, c.value) << c.keys.back();
        EXPECT_EQ(leave.refusal(), c.refusal) << c.keys.back();
    }
    leave.key("c");
    leave.choose(3);
    EXPECT_TRUE(leave.key("c")) << "what was chosen otherwise ends the letters";
    EXPECT_EQ(leave.value, "Casual Leave");
    leave.leave();
    EXPECT_FALSE(leave.takesKey(" ")) << "it opens the list";
    leave.editable = true;
    EXPECT_FALSE(leave.takesKey("c")) << "free text";
}

TEST_F(Controls, ArrowsChooseInAGroup) {
    sheet.writable = true;
    OptionButton* all = sheet.optType;
    const struct {
        int at;
        const char* key;
        int chosen;
    } cases[] = {{0, "Down", 1}, {1, "Right", 2}, {2, "Down", 0}, {0, "Up", 2}, {2, "Left", 1}};
    EXPECT_EQ(sheet.groupType.tabStop(), &all[0]) << "none is chosen yet";
    for (const auto& c : cases) {
        EXPECT_TRUE(all[c.at].key(c.key));
        EXPECT_EQ(sheet.groupType.chosen(), c.chosen) << c.at << c.key;
        EXPECT_EQ(sheet.takeFocus(), &all[c.chosen]);
        EXPECT_EQ(sheet.groupType.tabStop(), &all[c.chosen]);
    }
    all[2].enabled = false;
    EXPECT_TRUE(all[1].key("Down"));
    EXPECT_EQ(sheet.groupType.chosen(), 0) << "one that takes no input is passed over";
    EXPECT_FALSE(all[0].key("F7"));
}

TEST_F(Controls, EscPutsBackWhatStoodThereUntilTheBoxIsLeft) {
    TextBox& box = sheet.txtAmount;
    box.value = "12";
    EXPECT_FALSE(box.key("Esc"));
    box.edit("123");
    box.edit("1234");
    EXPECT_TRUE(box.takesKey("Esc"));
    EXPECT_TRUE(box.key("Esc"));
    EXPECT_EQ(box.value, "12");
    EXPECT_FALSE(box.key("Esc")) << "nothing has begun";
    box.edit("5");
    box.leave();
    EXPECT_FALSE(box.takesKey("Esc"));
}

TEST_F(Controls, ARefusalStandsAsLongAsItsText) {
    sheet.txtAmount.value = "x";
    sheet.txtAmount.refuse("No number.");
    EXPECT_EQ(sheet.txtAmount.refusal(), "No number.");
    sheet.txtAmount.edit("1");
    EXPECT_EQ(sheet.txtAmount.refusal(), "");
}

TEST_F(Controls, ABarTellsStepsAndTheTimeLeft) {
    ProgressBar bar(sheet, "bar");
    EXPECT_EQ(bar.progress(), "");
    bar.step(0, 40);
    EXPECT_EQ(bar.progress(), "Step 0 of 40");
    bar.step(30, 40);
    EXPECT_EQ(bar.progress(), "Step 30 of 40") << "too early to tell the time";
}

TEST_F(Controls, OneOptionOfAGroup) {
    EXPECT_EQ(sheet.groupType.chosen(), -1);
    EXPECT_TRUE(sheet.optType[2].click());
    EXPECT_TRUE(sheet.optType[1].click());
    EXPECT_EQ(sheet.groupType.chosen(), 1);
    sheet.optType[0].enabled = false;
    EXPECT_FALSE(sheet.optType[0].click());
    EXPECT_EQ(sheet.groupType.chosen(), 1);
}

TEST_F(Controls, AGridCellTakesWhatItsTypeHolds) {
    Grid& grid = sheet.fpgDays;
    grid.addRow({"1", "Asha"});
    grid.addRow({"2", "Ravi"});
    grid.setLocked(1, 2, true);
    struct Case {
        size_t row, column;
        const char* text;
        const char* holds;  // null: refused
        const char* reason;
    };
    for (const Case& c : {
             Case{0, 2, " 1,234.25 ", "1234.3", ""},
             {0, 2, "-0.5", "-0.5", ""},
             {0, 2, "1.2.3", nullptr, "\"1.2.3\" is no number: row 1, \"Days\"."},
             {0, 2, "-", nullptr, "\"-\" is no number: row 1, \"Days\"."},
             {0, 2, "", "", ""},
             {0, 3, "5/1/2014", "05/01/2014", ""},
             {0, 3, "31/02/2014", nullptr, "\"31/02/2014\" is no date: row 1, \"From\"."},
             {0, 4, "cl", "CL", ""},
             {0, 4, "XL", nullptr, "\"XL\" is no entry of the list: row 1, \"Leave\"."},
             {0, 1, "Usha", nullptr, "The cell in row 1, \"Name\" is locked."},
             {1, 2, "3", nullptr, "The cell in row 2, \"Days\" is locked."},
             {5, 2, "3", nullptr, "There is no such cell."},
         }) {
        std::string reason;
        const bool taken = grid.edit(c.row, c.column, c.text, reason);
        EXPECT_EQ(taken, c.holds != nullptr) << c.text;
        EXPECT_EQ(reason, c.reason);
        if (taken) {
            EXPECT_EQ(grid.cell(c.row, c.column), c.holds);
        }
    }
}

TEST_F(Controls, WhatStandsApartFromTheCellsKeepsToItsRow) {
    Grid& grid = sheet.fpgDays;
    for (int i = 0; i < 3; ++i) grid.addRow({std::to_string(i)});
    grid.setCellTag(1, 2, "one");
    grid.setCellTag(2, 2, "two");
    grid.setChoices(2, 4, {"PL"});
    grid.setBackColor(2, 1, 0x80C0FF);
    grid.setCurrent(2, 1);
    grid.removeRow(1);
    EXPECT_EQ(grid.cell(1, 0), "2");
    EXPECT_EQ(grid.cellTag(1, 2), "two");
    EXPECT_EQ(grid.choices(1, 4), std::vector<std::string>{"PL"});
    EXPECT_EQ(grid.choices(0, 4).size(), 2U);
    EXPECT_EQ(grid.backColor(1, 1), 0x80C0FFU);
    EXPECT_EQ(grid.currentRow(), -1) << "its row has gone";
    grid.setRowCount(1);
    grid.setRowCount(2);
    EXPECT_EQ(grid.cellTag(1, 2), "");
    EXPECT_EQ(grid.backColor(1, 1), kDefaultColor);
}

TEST_F(Controls, WhatWritesIsAskedOnEveryWayIn) {
    MenuItem clear(sheet, sheet.fpgDays, "mnuClear", "Clear");
    const auto deed = [&] { sheet.events += "done "; };
    clear.onClick = sheet.chkAll.onClick = sheet.optType[0].onClick = deed;
    sheet.fpgDays.onKey = [&](const std::string&) {
        deed();
        return true;
    };
    sheet.fpgDays.setRowCount(1);
    std::string reason;
    const std::pair<Control*, std::function<bool()>> ways[] = {
        {&clear, [&] { return clear.click(); }},
        {&sheet.chkAll, [&] { return sheet.chkAll.click(); }},
        {&sheet.optType[0], [&] { return sheet.optType[0].click(); }},
        {&sheet.txtAmount, [&] { return sheet.txtAmount.edit("5"); }},
        {&sheet.txtAmount, [&] { return sheet.txtAmount.key("F2"); }},
        {&sheet.txtAmount, [&] { return sheet.txtAmount.doubleClick(); }},
        {&sheet.cmbHead, [&] { return sheet.cmbHead.choose(1); }},
        {&sheet.cmbHead, [&] { return sheet.cmbHead.edit("Nobody"); }},
        {&sheet.fpgDays, [&] { return sheet.fpgDays.key("Delete"); }},
        {&sheet.fpgDays, [&] { return sheet.fpgDays.edit(0, 2, "1", reason); }},
        {&sheet.fpgDays, [&] {
             return sheet.fpgDays.blocks.write({{0, 2, "1"}});
         }}};
    for (const auto& [control, way] : ways) control->writes = true;
    for (const auto& [control, way] : ways) {
        sheet.events.clear();
        EXPECT_FALSE(way()) << control->name();
        EXPECT_EQ(sheet.events.find("asked for " + control->name() + " "), 0U) << control->name();
        EXPECT_EQ(sheet.events.find("done"), std::string::npos) << control->name();
    }
    EXPECT_EQ(sheet.fpgDays.cell(0, 2) + sheet.txtAmount.value + sheet.cmbHead.value, "");
    sheet.writable = true;
    EXPECT_TRUE(clear.click());
    EXPECT_TRUE(sheet.fpgDays.edit(0, 2, "1", reason));
}

}  // namespace
}  // namespace owb
