// Contrast of what is drawn, in both palettes: measured from pictures.
#include "qt/picture_contrast.h"

#include <gtest/gtest.h>

#include <QHeaderView>
#include <QPainter>
#include <QTableView>

#include "qt/desk.h"
#include "screen/grid.h"

namespace owb::test {
namespace {

TEST(Contrast, IsMeasuredFromPictures) {
    struct Case {
        const char* what;
        QColor ground, ink;
        double expected;
    };
    const QRect cell(10, 10, 60, 20);
    for (const Case& c :
         {Case{"black on white", Qt::white, Qt::black, 21},
          {"the least grey that will do", Qt::white, QColor(0x76, 0x76, 0x76), 4.54},
          {"nothing to see", Qt::white, Qt::white, 1},
          {"white on a dark ground", QColor(36, 36, 36), Qt::white, 15.52},
          {"a legend's colour", QColor(0xFF, 0xC0, 0x80), Qt::black, 13.1}}) {
        QImage plain(150, 60, QImage::Format_RGB32);
        plain.fill(c.ground);
        QImage lined = plain, written = plain;
        QPainter painter(&lined);
        painter.setPen(c.ink);
        painter.drawRect(cell.adjusted(0, 0, -1, -1));
        painter.end();
        painter.begin(&written);
        painter.fillRect(20, 15, 2, 10, c.ink);
        painter.end();
        EXPECT_NEAR(textContrast(written, cell), c.expected, 0.1) << c.what;
        EXPECT_NEAR(borderContrast(lined, cell, Qt::RightEdge), c.expected, 0.1) << c.what;
        EXPECT_NEAR(borderContrast(lined, cell, Qt::BottomEdge), c.expected, 0.1) << c.what;
        EXPECT_NEAR(focusContrast(plain, lined, cell), c.expected, 0.1) << c.what;
        EXPECT_NEAR(borderContrast(written, cell, Qt::RightEdge), 1, 0.01) << c.what;
        EXPECT_NEAR(focusContrast(plain, written, cell), 1, 0.01) << c.what << ": no frame";
    }
}

// A row of cells for each colour that the registers' legend knows.
class Legends final : public Screen {
  public:
    explicit Legends(FrontEnd& frontEnd) : Screen(frontEnd, "Legends", "Legends") {
        for (size_t r = 0; r < std::size(kColors); ++r) {
            fpgLegends.addRow({"HM", "XH", "MX", ""});
            for (size_t c = 0; c < 4; ++c) fpgLegends.setBackColor(r, c, kColors[r]);
            fpgLegends.setForeColor(r, 1, 0xFF0000);
            fpgLegends.setForeColor(r, 2, 0x0000FF);
        }
    }
    static constexpr Color kColors[] = {kDefaultColor,    0x80C0FF,      0xC0FFC0,
                                        0xFFA0FF,         0xFFEBFF,      0xFEFDED,
                                        kButtonFaceColor, kToolTipColor, kDefaultColor};
    Grid fpgLegends{*this,
                    "fpgLegends",
                    {{.caption = "Plain", .locked = false},
                     {.caption = "Blue", .locked = false},
                     {.caption = "Red", .locked = false},
                     {.caption = "None", .locked = false}}};
    Layout layout() override { return column({item(fpgLegends, 1)}); }
};

// Text, borders and the mark of the current cell, on every colour.
void measure(QTableView& table, const std::string& palette) {
    const QAbstractItemModel& model = *table.model();
    const int rows = model.rowCount(), columns = model.columnCount();
    const auto picture = [&] { return table.viewport()->grab().toImage(); };
    table.setCurrentIndex(model.index(rows - 1, columns - 1));
    const QImage without = picture();
    for (int r = 0; r + 1 < rows; ++r)
        for (int c = 0; c + 1 < columns; ++c) {
            const QString at = QString("%1, cell %2 %3").arg(palette.c_str()).arg(r).arg(c);
            const QRect cell = table.visualRect(model.index(r, c));
            ASSERT_TRUE(without.rect().contains(cell)) << at.toStdString();
            EXPECT_GE(textContrast(without, cell), kTextContrast) << at.toStdString();
            for (const Qt::Edge edge : {Qt::RightEdge, Qt::BottomEdge})
                EXPECT_GE(borderContrast(without, cell, edge), kLineContrast)
                    << at.toStdString() << ", edge " << edge;
            table.setCurrentIndex(model.index(r, c));
            EXPECT_GE(focusContrast(without, picture(), cell), kLineContrast) << at.toStdString();
        }
}

TEST(Contrast, OfCellsSufficesOnEveryColourInBothPalettes) {
    const QPalette light = QApplication::palette();
    for (const bool dark : {false, true}) {
        QApplication::setPalette(dark ? darkPalette() : light);
        Desk desk;
        Legends screen(desk.frontEnd);
        desk.then([&] {
            auto* table = desk.widget<QTableView>("fpgLegends");
            QFont large = table->font();
            large.setPixelSize(24);  // strokes wide enough to show their own colour
            table->setFont(large);
            table->verticalHeader()->setDefaultSectionSize(36);
            desk.frontEnd.top()->resize(600, 420);
            table->setFocus();
        });
        desk.then(
            [&] { measure(*desk.widget<QTableView>("fpgLegends"), dark ? "dark" : "light"); });
        screen.showModal();
    }
    QApplication::setPalette(light);
}

}  // namespace
}  // namespace owb::test
