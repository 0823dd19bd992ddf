// Registers in a window: columns that stay in sight, the header's menu, the screen's own menus,
// finding by typing, tabs.
#include <gtest/gtest.h>

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTabWidget>
#include <QTableView>

#include "qt/desk.h"
#include "qt/qt_text.h"
#include "screen/grid.h"
#include "screen/text_box.h"

namespace owb::test {
namespace {

// A register: more columns than the window shows, two of them always in sight, and a menu.
class Register final : public Screen {
  public:
    explicit Register(FrontEnd& frontEnd) : Screen(frontEnd, "Register", "Register") {
        std::vector<GridColumn> columns{{.caption = "Id", .type = CellType::Number, .decimals = 0},
                                        {.caption = "Name", .width = 20}};
        for (int day = 1; day <= 31; ++day)
            columns.push_back({.caption = std::to_string(day), .width = 8, .locked = false});
        fpgDays.setColumns(std::move(columns));
        fpgDays.frozenColumns = 2;
        for (const auto& [id, name] : std::vector<std::pair<const char*, const char*>>{
                 {"10", "Meena"}, {"9", "Arun"}, {"100", "Zoya"}, {"20", "Bala"}})
            fpgDays.addRow({id, name});
        mnuClear.onClick = [this] { log += "clear " + fpgDays.text() + ";"; };
        mnuAll.onClick = [this] { log += "all;"; };
        mnuDenied.enabled = false;
        txtRemarks.multiLine = true;
        txtRemarks.filter = [](int key, const std::string&) { return key == '|' ? 0 : key; };
        tabPages.onClick = [this] { log += tabPages.text() + ";"; };
        lblExport.onClick = [this] { log += "export;"; };
    }
    Grid fpgDays{*this, "fpgDays"};
    MenuItem mnuClear{*this, fpgDays, "mnuClear", "&Clear"};
    MenuItem mnuCalc{*this, fpgDays, "mnuCalc", "&Re Calculate"};
    MenuItem mnuAll{*this, fpgDays, "mnuAll", "&All", &mnuCalc};
    MenuItem mnuDenied{*this, fpgDays, "mnuDenied", "&Mark"};
    TextBox txtRemarks{*this, "txtRemarks"};
    TextBox txtHidden{*this, "txtHidden"};
    Label lblExport{*this, "lblExport", "Export"};
    Tabs tabPages{*this, "tabPages", {"Days", "Remarks"}};
    std::string log;

    Layout layout() override {
        return column({tabs(tabPages, {column({item(fpgDays, 1), item(lblExport)}),
                                       column({item(txtRemarks), item(txtHidden)})})});
    }
};

struct QtRegister : ::testing::Test {
    Desk desk;
    Register screen{desk.frontEnd};

    QTableView& table() { return *desk.widget<QTableView>("fpgDays"); }
    QTableView& frozen() { return *table().findChild<QTableView*>(); }
    std::string names() {
        std::string all;
        for (int row = 0; row < table().model()->rowCount(); ++row)
            all += fromQt(table().model()->index(row, 1).data().toString()) + " ";
        return all;
    }
    // Runs the item of the menu that a deed opens.
    void choose(std::initializer_list<const char*> path, const std::function<void()>& open) {
        QTimer::singleShot(0, &table(),
                           [path = std::vector<std::string>(path.begin(), path.end())] {
                               auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
                               ASSERT_NE(menu, nullptr);
                               QAction* chosen = nullptr;
                               QMenu* at = menu;
                               for (const std::string& caption : path) {
                                   ASSERT_NE(at, nullptr);
                                   chosen = nullptr;
                                   for (QAction* action : at->actions())
                                       if (action->text() == toQt(caption)) chosen = action;
                                   ASSERT_NE(chosen, nullptr) << caption;
                                   at = chosen->menu();
                               }
                               menu->setActiveAction(chosen);
                               chosen->trigger();
                               menu->close();
                           });
        desk.alone(open);
    }
    void columnMenu(int column, std::initializer_list<const char*> path) {
        choose(path, [this, column] {
            const int at = table().horizontalHeader()->sectionViewportPosition(column) + 3;
            Q_EMIT table().horizontalHeader()->customContextMenuRequested(QPoint(at, 3));
        });
    }
};

TEST_F(QtRegister, IdAndNameStayInSight) {
    desk.then([&] {
        desk.frontEnd.top()->resize(700, 300);
        table().setFocus();
        table().setCurrentIndex(table().model()->index(0, 30));
    });
    desk.then([&] {
        EXPECT_GT(table().horizontalScrollBar()->value(), 0);
        EXPECT_LT(table().columnViewportPosition(0), 0);
        EXPECT_TRUE(frozen().isVisible());
        EXPECT_EQ(frozen().columnViewportPosition(1), table().columnWidth(0));
        EXPECT_TRUE(frozen().isColumnHidden(2));
        table().setColumnWidth(1, 211);
        EXPECT_EQ(frozen().columnWidth(1), 211);
        // Walking back to a column that lies under the fixed ones brings it out from there.
        table().setCurrentIndex(table().model()->index(0, 2));
        EXPECT_GE(table().columnViewportPosition(2), frozen().width() - 2);
    });
    screen.showModal();
}

TEST_F(QtRegister, HeadersSortMoveAndHide) {
    const auto clickHeader = [&](int column) {
        auto* header = table().horizontalHeader();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier,
                          {header->sectionViewportPosition(column) + 8, 8});
    };
    desk.then([&] {
        Q_EMIT frozen().horizontalHeader()->sectionClicked(0);
        EXPECT_EQ(names(), "Arun Meena Bala Zoya ") << "numbers sort as numbers";
        columnMenu(1, {"Sort &descending"});
    });
    desk.then([&] {
        EXPECT_EQ(names(), "Zoya Meena Bala Arun ");
        EXPECT_EQ(screen.fpgDays.cell(0, 1), "Meena");
        // An edit goes to the row that the user sees.
        table().setFocus();
        table().setCurrentIndex(table().model()->index(0, 2));
        QTest::keyClicks(&table(), "P");
        // The platform gives no focus back after a menu, so the editor is asked for.
        QTest::keyClick(table().findChild<QLineEdit*>("cellEditor"), Qt::Key_Return);
    });
    desk.then([&] {
        EXPECT_EQ(screen.fpgDays.cell(2, 2), "P");
        columnMenu(1, {"&Order of the screen"});
    });
    desk.then([&] {
        EXPECT_EQ(names(), "Meena Arun Zoya Bala ");
        columnMenu(2, {"Co&lumns", "1"});
    });
    desk.then([&] {
        EXPECT_TRUE(screen.fpgDays.sight.columnHidden(2));
        EXPECT_EQ(table().model()->headerData(2, Qt::Horizontal).toString(), "2");
        screen.fpgDays.goTo(2, 5);
        clickHeader(2);
        EXPECT_EQ(screen.fpgDays.sight.order()->column, 3U);
        EXPECT_EQ(screen.fpgDays.currentRow(), 2) << "the user is where he was";
        EXPECT_EQ(screen.fpgDays.currentColumn(), 5);
        table().horizontalHeader()->moveSection(3, 2);
        EXPECT_EQ(table().model()->headerData(2, Qt::Horizontal).toString(), "3");
        EXPECT_EQ(table().horizontalHeader()->visualIndex(3), 3) << "the grid's order counts";
    });
    screen.showModal();
}

TEST_F(QtRegister, TheMouseChoosesDragsAndOpensTheEditor) {
    const auto at = [&](int row, int column) {
        return table().visualRect(table().model()->index(row, column)).center();
    };
    QWidget* cells = nullptr;
    desk.then([&] {
        cells = table().viewport();
        QTest::mouseClick(cells, Qt::LeftButton, Qt::NoModifier, at(0, 2));
        QTest::mouseClick(cells, Qt::LeftButton, Qt::ShiftModifier, at(1, 3));
        const auto block = screen.fpgDays.cursor.block();
        EXPECT_EQ(block->bottom, 1U);
        EXPECT_EQ(block->right, 3U);
        QTest::mouseDClick(cells, Qt::LeftButton, Qt::NoModifier, at(2, 2));
        EXPECT_EQ(screen.fpgDays.entry.state(), GridEntry::State::Edit);
        QTest::keyClicks(QApplication::focusWidget(), "CL");
        // A click elsewhere enters what is typed.
        QTest::mouseClick(cells, Qt::LeftButton, Qt::NoModifier, at(2, 3));
        EXPECT_EQ(screen.fpgDays.cell(2, 2), "CL");
        QTest::mouseClick(cells, Qt::LeftButton, Qt::NoModifier, at(2, 2));
    });
    desk.then([&] {
        const QPoint corner =
            table().visualRect(table().model()->index(2, 2)).bottomRight() - QPoint(2, 2);
        QTest::mousePress(cells, Qt::LeftButton, Qt::NoModifier, corner);
        QMouseEvent over(QEvent::MouseMove, at(3, 2), cells->mapToGlobal(at(3, 2)), Qt::LeftButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(cells, &over);
        QTest::mouseRelease(cells, Qt::LeftButton, Qt::NoModifier, at(3, 2));
        EXPECT_EQ(screen.fpgDays.cell(3, 2), "CL");
        // Dragged beyond the edge the cells behind it come into sight.
        desk.frontEnd.top()->resize(600, 300);
        QApplication::processEvents();
        QTest::mousePress(cells, Qt::LeftButton, Qt::NoModifier, at(1, 3));
        const QPoint beyond(cells->width() + 20, at(1, 3).y());
        for (int i = 0; i < 8; ++i) {
            QMouseEvent further(QEvent::MouseMove, beyond, cells->mapToGlobal(beyond),
                                Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(cells, &further);
        }
        QTest::mouseRelease(cells, Qt::LeftButton, Qt::NoModifier, beyond);
        EXPECT_GT(table().horizontalScrollBar()->value(), 0);
        EXPECT_GT(screen.fpgDays.cursor.block()->right, 8U);
    });
    screen.showModal();
}

TEST_F(QtRegister, KeysLeaveTheGridAndTheFindBar) {
    desk.then([&] {
        table().setFocus();
        QTest::keyClick(&table(), Qt::Key_Right);
        QTest::keyClick(&table(), Qt::Key_F6);
        EXPECT_TRUE(desk.widget("lblExport")->hasFocus());
        table().setFocus();
        QTest::keyClick(&table(), Qt::Key_F, Qt::ControlModifier);
        auto* find = desk.widget<QLineEdit>("findText");
        EXPECT_TRUE(find->hasFocus());
        QTest::keyClicks(find, "ar");
        EXPECT_EQ(screen.fpgDays.currentRow(), 1);
        QTest::keyClick(find, Qt::Key_Escape);
        EXPECT_TRUE(table().hasFocus());
        EXPECT_FALSE(find->isVisible());
    });
    screen.showModal();
}

TEST_F(QtRegister, TypingFindsTheRowAndMenusRunTheirItems) {
    const auto rightClick = [&](int row, int column) {
        return [this, row, column] {
            Q_EMIT table().customContextMenuRequested(
                table().visualRect(table().model()->index(row, column)).center());
        };
    };
    desk.then([&] {
        table().setFocus();
        table().setCurrentIndex(table().model()->index(0, 1));
        QTest::keyClicks(&table(), "ba");
    });
    desk.then([&] {
        EXPECT_EQ(screen.fpgDays.currentRow(), 3);
        choose({"&Clear"}, rightClick(1, 1));
    });
    desk.then([&] {
        EXPECT_EQ(screen.fpgDays.currentRow(), 1) << "a right click makes its cell the current one";
        choose({"&Re Calculate", "&All"}, rightClick(0, 1));
    });
    desk.then([&] { choose({"&Mark"}, rightClick(0, 1)); });
    desk.then([&] {
        QContextMenuEvent right(QContextMenuEvent::Mouse, QPoint(2, 2),
                                desk.widget("lblExport")->mapToGlobal(QPoint(2, 2)));
        QApplication::sendEvent(desk.widget("lblExport"), &right);
    });
    screen.showModal();
    EXPECT_EQ(screen.log, "clear Arun;all;export;");
}

TEST_F(QtRegister, TabsAndLinesOfText) {
    desk.then([&] {
        desk.widget<QTabWidget>("tabPages")->setCurrentIndex(1);
        EXPECT_EQ(screen.tabPages.text(), "Remarks");
        desk.widget("txtRemarks")->setFocus();
        desk.type("txtRemarks", "one|");
        desk.press("txtRemarks", Qt::Key_Return);
        desk.type("txtRemarks", "two");
    });
    desk.then([&] {
        EXPECT_EQ(screen.txtRemarks.value, "one\ntwo");
        desk.press("txtRemarks", Qt::Key_Tab);
        EXPECT_TRUE(desk.widget("txtHidden")->hasFocus());
        screen.tabPages.page = 0;
        screen.txtHidden.visible = false;
        desk.frontEnd.top()->sync();
        EXPECT_TRUE(table().isVisible());
    });
    screen.showModal();
    EXPECT_EQ(screen.log, "Remarks;");
}

}  // namespace
}  // namespace owb::test
