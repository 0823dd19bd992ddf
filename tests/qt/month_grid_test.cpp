// A month of a large head as its register will show it: it fits a clerk's screen, its colours and
// locks can be told apart in light and dark, and codes are typed as slowly as one likes.
#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollBar>
#include <QTableView>
#include <QToolButton>

#include "base/date_time.h"
#include "qt/cell_colors.h"
#include "qt/desk.h"
#include "qt/grid_delegate.h"
#include "qt/qt_text.h"
#include "screen/grid.h"

namespace owb::test {
namespace {

constexpr size_t kFirstDay = 4, kDays = 31;

class Month final : public Screen {
  public:
    Month(FrontEnd& frontEnd, size_t rows) : Screen(frontEnd, "Month", "Attendance Detail") {
        std::vector<GridColumn> columns{
            {.caption = "Id", .width = 4, .align = Align::Right},
            {.caption = "Employee Name", .width = 18},
            {.caption = "Pay Days", .width = 4, .type = CellType::Number, .heading = "Pay\nDays"},
            {.caption = "Present Days",
             .width = 4,
             .type = CellType::Number,
             .heading = "Present\nDays"}};
        const DateTime first = DateTime::fromCivil(2026, 3, 1);
        for (int day = 0; day < static_cast<int>(kDays); ++day) {
            const DateTime date{first.day + day, 0};
            columns.push_back({.caption = dateText(date, "dd/Mmm/yyyy"),
                               .width = 2,
                               .type = CellType::Combo,
                               .align = Align::Center,
                               .locked = false,
                               .choices = {"P", "CL", "CO", "EL", "LOP", "SL"},
                               .heading = dateText(date, "dd\nDdd"),
                               .headingColor = date.weekday() == 1 ? 0x80C0FF : kDefaultColor});
        }
        grid.setColumns(std::move(columns));
        grid.frozenColumns = 2;
        grid.legend = {{0x80C0FF, "Full Day WH"},
                       {0xC0FFC0, "General Holiday"},
                       {0xFFA0FF, "First Half WH"},
                       {0xFFEBFF, "Second Half WH"},
                       {kButtonFaceColor, "Entry Locked"}};
        for (size_t r = 0; r < rows; ++r) {
            std::vector<std::string> cells{std::to_string(r + 1), "Employee " + std::to_string(r),
                                           "31.00", "26.50"};
            cells.resize(grid.columnCount(), "P");
            grid.addRow(std::move(cells));
            for (size_t c = kFirstDay; c < grid.columnCount(); c += 7) {
                grid.setBackColor(r, c, 0x80C0FF);
                grid.setCell(r, c, "");
            }
            grid.setBackColor(r, kFirstDay + 3, 0xC0FFC0);
            grid.setBackColor(r, kFirstDay + 6, 0xFFA0FF);
            grid.setBackColor(r, kFirstDay + 13, 0xFFEBFF);
            if (r % 4 == 2) {
                grid.setBackColor(r, kFirstDay + 1, kButtonFaceColor);
                grid.setLocked(r, kFirstDay + 1, true);
            }
            for (size_t c = 0; c < 2; ++c) grid.setBackColor(r, c, 0xFEFDED);
            for (size_t c = 2; c < kFirstDay; ++c) grid.setBackColor(r, c, kToolTipColor);
        }
        grid.choiceNote = [](size_t, size_t, const std::string& code) {
            return code == "CL" ? "Casual Leave  4.5" : "";
        };
    }
    Grid grid{*this, "fpgMonth"};
    Layout layout() override { return column({item(grid, 1)}); }
};

struct QtMonth : ::testing::Test {
    Desk desk;
    Month screen{desk.frontEnd, 40};
    Grid& grid = screen.grid;

    QTableView& table() { return *desk.widget<QTableView>("fpgMonth"); }
    QWidget& focus() { return *QApplication::focusWidget(); }
    void picture(const char* name) {
        if (const char* folder = std::getenv("OWB_PICTURES"))
            desk.frontEnd.top()->grab().save(QString(folder) + "/" + name + ".png");
    }
};

TEST_F(QtMonth, ThirtyOneDaysStandOnAnOrdinaryScreen) {
    desk.then([&] {
        desk.frontEnd.top()->resize(1366, 700);
        table().setFocus();
        grid.goTo(3, kFirstDay + 4);
        desk.frontEnd.top()->sync();
    });
    desk.then([&] {
        picture("month");
        EXPECT_EQ(table().horizontalScrollBar()->maximum(), 0) << "all of it is seen";
        const int day = table().columnWidth(static_cast<int>(kFirstDay) + 1);
        EXPECT_GE(day, 26);
        EXPECT_LE(day, 30);
        EXPECT_GE(table().rowHeight(0), 20);
        EXPECT_LE(table().rowHeight(0), 24);
    });
    screen.showModal();
}

TEST_F(QtMonth, CodesAreTypedSlowlyChosenFromTheListAndRefusedAloud) {
    desk.then([&] {
        desk.frontEnd.top()->resize(1200, 500);
        table().setFocus();
        grid.goTo(0, kFirstDay + 1);
        QTest::keyClick(&focus(), 'c');
        desk.rest(700);
        QTest::keyClick(&focus(), 'l');
        desk.rest(700);
        QTest::keyClick(&focus(), Qt::Key_Return);
        EXPECT_EQ(grid.cell(0, kFirstDay + 1), "CL");
        EXPECT_EQ(grid.currentColumn(), static_cast<int>(kFirstDay + 2)) << "to the next day";
        QTest::keyClick(&focus(), Qt::Key_F4);
    });
    desk.then([&] {
        auto* list = desk.widget<QListWidget>("cellChoices");
        ASSERT_NE(list, nullptr);
        EXPECT_EQ(list->count(), 6);
        EXPECT_TRUE(list->item(1)->text().contains("Casual Leave  4.5"));
        picture("month-list");
        QTest::keyClick(&focus(), Qt::Key_Down);
        QTest::keyClick(&focus(), Qt::Key_Return);
        EXPECT_EQ(grid.cell(0, kFirstDay + 2), "CL");
        QTest::keyClick(&focus(), 'c');
        QTest::keyClick(&focus(), 'x');
    });
    desk.then([&] {
        auto* bubble = desk.widget<QLabel>("cellRefusal");
        ASSERT_NE(bubble, nullptr);
        EXPECT_TRUE(bubble->isVisible());
        EXPECT_EQ(fromQt(bubble->text()), "No code begins with \"cx\".");
        auto* editor = qobject_cast<QLineEdit*>(&focus());
        ASSERT_NE(editor, nullptr);
        EXPECT_EQ(fromQt(editor->text()), "cx") << "what was typed stays";
        picture("month-refused");
        // Neither a click elsewhere nor Enter takes the user away from it.
        QTest::mouseClick(table().viewport(), Qt::LeftButton, Qt::NoModifier,
                          table().visualRect(table().model()->index(5, 9)).center());
        EXPECT_EQ(grid.currentRow(), 0);
        QTest::keyClick(&focus(), Qt::Key_Escape);
        EXPECT_FALSE(bubble->isVisible());
        EXPECT_TRUE(table().hasFocus());
    });
    screen.showModal();
}

TEST_F(QtMonth, AChipOfTheLegendGoesToTheNextSuchCell) {
    desk.then([&] {
        table().setFocus();
        grid.goTo(0, 0);
        for (auto* chip : desk.frontEnd.top()->findChildren<QToolButton*>("legendChip"))
            if (chip->text() == "Entry Locked") chip->click();
        EXPECT_EQ(grid.currentRow(), 2);
        EXPECT_EQ(grid.currentColumn(), static_cast<int>(kFirstDay + 1));
        grid.sight.filter(kFirstDay + 1, {"P"});
        desk.frontEnd.top()->sync();
    });
    desk.then([&] {
        auto* chip = desk.widget<QToolButton>("filterChip");
        ASSERT_NE(chip, nullptr);
        picture("month-filter");
        chip->click();
        EXPECT_TRUE(grid.sight.filters().empty());
    });
    screen.showModal();
}

}  // namespace
}  // namespace owb::test
