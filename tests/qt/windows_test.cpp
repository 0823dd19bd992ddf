// The renderer as a user meets it: keys, filters, blocks, refusals, errors and closing.
#include <gtest/gtest.h>

#include <QAction>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTableView>

#include "qt/cell_colors.h"
#include "qt/desk.h"
#include "qt/qt_text.h"
#include "screen/grid.h"
#include "screen/lists.h"
#include "screen/text_box.h"

namespace owb::test {
namespace {

class Entry final : public Screen {
  public:
    explicit Entry(FrontEnd& frontEnd) : Screen(frontEnd, "Entry", "Entry") {
        txtAmount.filter = [](int key, const std::string& before) {
            const bool point = key == '.' && before.find('.') == std::string::npos;
            return (key >= '0' && key <= '9') || point ? key : 0;
        };
        txtAmount.onPick = [this] { txtAmount.value = "31"; };
        txtName.maxLength = 5;
        txtName.onLeave = [this] { log += "leave;"; };
        cmbKind.add("Casual", 1);
        cmbKind.add("Sick", 2);
        cmbKind.onChange = [this] { log += cmbKind.value + ";"; };
        fpgRows.setColumns({{.caption = "Id", .locked = true},
                            {.caption = "Days", .type = CellType::Number, .locked = false},
                            {.caption = "Note", .locked = true},
                            {.caption = "On", .type = CellType::Check, .locked = false}});
        for (const char* id : {"b", "a", "c"}) fpgRows.addRow({id, "1.00", "x", "0"});
        fpgRows.setRowHidden(1, true);
        cmdFail.onClick = [] { throw std::runtime_error("It broke."); };
        cmdSave.onClick = [this] { log += "save;"; };
    }
    TextBox txtAmount{*this, "txtAmount", "Amount"};
    TextBox txtName{*this, "txtName"};
    Combo cmbKind{*this, "cmbKind"};
    Grid fpgRows{*this, "fpgRows"};
    Command cmdFail{*this, "cmdFail", "&Fail"};
    Command cmdSave{*this, "cmdSave", "&Save"};
    std::string log;

    Layout layout() override {
        return column({form({item("", txtAmount), item("Name", txtName), item("Kind", cmbKind)}),
                       item(fpgRows, 1), row({item(cmdFail), item(cmdSave)})});
    }
};

struct Qt_ : ::testing::Test {
    Desk desk;
    Entry screen{desk.frontEnd};

    // Copies to the clipboard and pastes it by the key.
    void paste(const char* name, const char* text) {
        QGuiApplication::clipboard()->setText(text);
        desk.press(name, Qt::Key_V, Qt::ControlModifier);
    }
};

TEST_F(Qt_, TypedAndPastedTextPassTheFilters) {
    desk.then([&] { desk.type("txtAmount", "1a2.5.7"); });
    desk.then([&] {
        EXPECT_EQ(screen.txtAmount.value, "12.57");
        desk.press("txtAmount", Qt::Key_A, Qt::ControlModifier);
        paste("txtAmount", "Rs 1,250.00");
    });
    desk.then([&] {
        EXPECT_EQ(screen.txtAmount.value, "1250.00");
        desk.press("txtAmount", Qt::Key_F2);
        EXPECT_EQ(screen.txtAmount.value, "31");
        screen.txtAmount.value = "";
        desk.widget("txtAmount")->findChild<QAction*>()->trigger();
    });
    desk.then([&] {
        EXPECT_EQ(desk.widget<QLineEdit>("txtAmount")->text(), "31");
        desk.type("txtName", "Narayan");
    });
    screen.showModal();
    EXPECT_EQ(screen.txtName.value, "Naray");
}

TEST_F(Qt_, EnterGoesOnAndAMnemonicLeavesTheFieldFirst) {
    desk.then([&] {
        desk.widget("txtAmount")->setFocus();
        desk.press("txtAmount", Qt::Key_Return);
    });
    desk.then([&] {
        EXPECT_TRUE(desk.widget("txtName")->hasFocus());
        desk.widget<QPushButton>("cmdSave")->click();
    });
    desk.then([&] {
        desk.widget("cmbKind")->setFocus();
        desk.widget<QComboBox>("cmbKind")->setEditText("SICK");
        desk.press("cmbKind", Qt::Key_Return);
    });
    screen.showModal();
    EXPECT_EQ(screen.log, "leave;save;Sick;");
    EXPECT_EQ(screen.cmbKind.key(), 2);
}

// A field and buttons, of which Save is not the first.
class Saving final : public Screen {
  public:
    explicit Saving(FrontEnd& frontEnd) : Screen(frontEnd, "Saving", "Saving") {}
    TextBox txtName{*this, "txtName"};
    Command cmdImport{*this, "cmdImport", "&Import"};
    Command cmdSave{*this, "cmdSave", "&Save"};
};

TEST(Qt, EnterBehindTheLastFieldComesToSave) {
    Desk desk;
    Saving screen(desk.frontEnd);
    desk.then([&] {
        desk.widget("txtName")->setFocus();
        desk.press("txtName", Qt::Key_Return);
        EXPECT_TRUE(desk.widget("cmdSave")->hasFocus());
        desk.widget("txtName")->setFocus();
        desk.press("txtName", Qt::Key_Tab);
        EXPECT_TRUE(desk.widget("cmdImport")->hasFocus()) << "the Tab key passes nothing";
    });
    screen.showModal();
}

TEST_F(Qt_, AHandlerThatFailsShowsItsBoxAndTheScreenGoesOn) {
    QString shown;
    desk.then([&] { desk.widget<QPushButton>("cmdFail")->click(); });
    desk.then([&] {
        auto* box = dynamic_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        shown = box->text();
        box->accept();
    });
    desk.then([&] { desk.widget<QPushButton>("cmdSave")->click(); });
    screen.showModal();
    EXPECT_EQ(shown, "It broke.");
    EXPECT_EQ(screen.log, "save;");
}

// A pass that runs until it is asked to stop.
class Passing final : public Screen {
  public:
    explicit Passing(FrontEnd& frontEnd) : Screen(frontEnd, "Passing", "Passing") {
        cmdCancel.onClick = [this] { cancelled = true; };
        cmdAgain.onClick = [this] { ++again; };
    }
    Command cmdCancel{*this, "cmdCancel", "&Cancel"};
    Command cmdAgain{*this, "cmdAgain", "&Again"};
    bool cancelled = false;
    int rows = 0, again = 0;

  private:
    void onActivate() override {
        for (; !cancelled && rows < 100000; ++rows) frontEnd().refresh(*this);
    }
};

TEST(Qt, ClosingInTheMiddleOfAPassStopsItFirst) {
    Desk desk;
    desk.fromInput = false;
    Passing screen(desk.frontEnd);
    desk.then([&] {
        desk.widget<QPushButton>("cmdAgain")->click();  // no input while the pass runs
        desk.frontEnd.top()->close();
        EXPECT_TRUE(screen.isOpen());
    });
    screen.showModal();
    EXPECT_TRUE(screen.cancelled);
    EXPECT_LT(screen.rows, 100000);
    EXPECT_EQ(screen.again, 0);
}

TEST(Qt, WidthsAreRememberedAndColumnsStayHidden) {
    Desk desk;
    for (const int round : {1, 2}) {
        Entry screen(desk.frontEnd);
        desk.fromInput = true;
        desk.then([&, round] {
            auto* table = desk.widget<QTableView>("fpgRows");
            if (round == 1) {
                table->setColumnWidth(0, 177);
                screen.fpgRows.addRow({"d", "1.00", "x", "0"});
                desk.frontEnd.top()->sync();
                EXPECT_EQ(table->columnWidth(0), 177) << "rows that come leave it";
                screen.fpgRows.zoom = 150;
                desk.frontEnd.top()->sync();
                EXPECT_EQ(table->columnWidth(0), 265);
                screen.fpgRows.zoom = 100;
                desk.frontEnd.top()->sync();
                screen.fpgRows.sight.hideColumn(2, true);
                screen.fpgRows.enterGoes = Grid::EnterGoes::Down;
                screen.fpgRows.sight.moveColumn(3, 0);
                desk.frontEnd.top()->sync();
            } else {
                EXPECT_EQ(screen.fpgRows.sight.columns(), (std::vector<size_t>{3, 0, 1}));
                EXPECT_EQ(screen.fpgRows.enterGoes, Grid::EnterGoes::Down);
                EXPECT_EQ(table->columnWidth(1), 177);
                EXPECT_TRUE(screen.fpgRows.sight.columnHidden(2));
            }
        });
        screen.showModal();
    }
}

TEST(Qt, TextCanBeReadOnEveryLegend) {
    const QPalette light(QColor(239, 239, 239)), dark(QColor(53, 53, 53), QColor(42, 42, 42));
    for (const QPalette& palette : {light, dark})
        for (const Color back : {kDefaultColor, kButtonFaceColor, kToolTipColor, 0x80C0FFu,
                                 0xFFFFFFu, 0x000000u, 0x0000FFu, 0x808080u})
            for (const Color fore : {kDefaultColor, 0x0000FFu, 0xFF0000u, 0x000000u, 0x008000u}) {
                const CellColors colors = cellColors(back, fore, palette);
                EXPECT_GE(contrast(colors.back, colors.fore), 4.5)
                    << std::hex << back << " " << fore;
            }
}

}  // namespace
}  // namespace owb::test
