// Grids on paper: what a page looks like, the PDF file, and the preview that Ctrl+P opens.
#include <gtest/gtest.h>

#include <QFile>
#include <QPainter>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QToolBar>
#include <QWindow>

#include "qt/desk.h"
#include "qt/print/grid_painter.h"
#include "qt/print/pdf_file.h"
#include "screen/grid.h"

namespace owb {
namespace {

class MonthSheet final : public Screen {
  public:
    explicit MonthSheet(FrontEnd& frontEnd) : Screen(frontEnd, "MonthSheet", "Attendance Detail") {
        std::vector<GridColumn> columns{{.caption = "Employee"}, {.caption = "Name"}};
        for (int day = 1; day <= 31; ++day)
            columns.push_back(
                {.caption = std::to_string(day) + "/Mar/2026",
                 .width = 4,
                 .locked = false,
                 .heading = std::to_string(day) + "\n" + weekdayName(day % 7 + 1)[0]});
        fpgMonth.setColumns(columns);
        fpgMonth.frozenColumns = 2;
        for (size_t r = 0; r < 120; ++r) {
            std::vector<std::string> cells{std::to_string(1001 + r), "Asha Ramakrishnan"};
            for (size_t day = 1; day <= 31; ++day) cells.push_back((r + day) % 9 ? "P" : "CL/P");
            fpgMonth.addRow(cells);
            for (size_t c = 2 + (r / 40); c < 33; c += 7) fpgMonth.setBackColor(r, c, 0x80C0FF);
        }
        fpgMonth.setBackColor(0, 4, 0xFFA0FF);
        fpgMonth.setBackColor(0, 5, kButtonFaceColor);
        fpgMonth.setForeColor(0, 3, 0xFF0000);
        fpgMonth.legend = {{0x80C0FF, "Full Day WH"}, {kButtonFaceColor, "Entry Locked"}};
    }
    Grid fpgMonth{*this, "fpgMonth"};
    PrintHeading printHeading() const override {
        return {.company = "Sample Engineering Works",
                .title = "Plant - Mar/2026 - Attendance Detail",
                .printed = "ADMIN, 05/Mar/2026 14:02",
                .filters = {"Department: Stores"}};
    }
    Layout layout() override { return column({item(fpgMonth, 1)}); }
};

size_t pagesOf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return 0;
    static const QRegularExpression page("/Type /Page\\b");
    return static_cast<size_t>(QString::fromLatin1(file.readAll()).count(page));
}

class Print : public ::testing::Test {
  protected:
    test::Desk desk;
    MonthSheet screen{desk.frontEnd};
    QTemporaryDir folder;
};

TEST_F(Print, APageHasTheColoursOfTheCellsWhateverTheDesktopsAre) {
    const PrintPaper paper = paperOf(pageLayout(PaperSize::A4));
    const GridPainter pages(screen.fpgMonth, screen.printHeading(), paper);
    constexpr int kScale = 2;
    QImage picture(static_cast<int>(paper.width) * kScale, static_cast<int>(paper.height) * kScale,
                   QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.scale(kScale, kScale);
    pages.paint(painter, 0);
    painter.end();
    if (const char* pictures = std::getenv("OWB_PICTURES"))
        picture.save(QString(pictures) + "/print.png");
    std::map<QRgb, int> seen;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) ++seen[picture.pixel(x, y)];
    const int cell = 50;  // pixels of one colour that a cell has at least
    EXPECT_GT(seen[qRgb(0xFF, 0xC0, 0x80)], 100 * cell) << "weekly holidays and their chip";
    EXPECT_GT(seen[qRgb(0xFF, 0xA0, 0xFF)], cell) << "a first half";
    EXPECT_GT(seen[qRgb(0xF0, 0xF0, 0xF0)], cell) << "locked";
    EXPECT_GT(seen[qRgb(0, 0, 0xFF)], 0) << "hours in excess are written in blue";
    EXPECT_GT(seen[qRgb(0xFF, 0xFF, 0xFF)], picture.width() * picture.height() / 3);
}

TEST_F(Print, AFileHasTheLaidPagesAndStandsWholeOrNotAtAll) {
    const Grid& grid = screen.fpgMonth;
    const PrintHeading heading = screen.printHeading();
    const std::string path = folder.filePath("month.pdf").toStdString();
    const size_t a4 = printToPdf(grid, heading, PaperSize::A4, path);
    EXPECT_EQ(pagesOf(folder.filePath("month.pdf")), a4);
    EXPECT_GT(a4, 2U);
    const size_t a3 = printToPdf(grid, heading, PaperSize::A3, path);
    EXPECT_EQ(pagesOf(folder.filePath("month.pdf")), a3) << "in place of the older one";
    EXPECT_LT(a3, a4);

    for (size_t r = 0; r < grid.rowCount(); ++r) screen.fpgMonth.setRowHidden(r, true);
    const auto refusal = [&](const std::string& to) -> std::string {
        try {
            printToPdf(grid, heading, PaperSize::A4, to);
        } catch (const std::runtime_error& e) {
            return e.what();
        }
        return "none";
    };
    EXPECT_EQ(refusal(path), "There is nothing to print.");
    EXPECT_EQ(pagesOf(folder.filePath("month.pdf")), a3);
    screen.fpgMonth.setRowHidden(0, false);
    const std::string nowhere = folder.filePath("no/such/folder.pdf").toStdString();
    EXPECT_EQ(refusal(nowhere).rfind("The file " + nowhere + " cannot be written: ", 0), 0U);
}

TEST_F(Print, CtrlPShowsTheGridOnPaperAndThePaperIsTheUsersChoice) {
    int onA4 = 0, onA3 = 0;
    QStringList keys, pressed;
    const auto look = [&] {
        auto* preview = dynamic_cast<QPrintPreviewDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(preview, nullptr);
        auto* pages = preview->findChild<QPrintPreviewWidget*>();
        onA4 = pages->pageCount();
        for (QAction* action : preview->findChild<QToolBar*>()->actions())
            if (!action->shortcut().isEmpty()) {
                keys << action->shortcut().toString();
                QObject::connect(action, &QAction::triggered, action,
                                 [&pressed, action] { pressed << action->text(); });
            }
        preview->activateWindow();
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return QApplication::focusWidget() != nullptr &&
                   preview->isAncestorOf(QApplication::focusWidget());
        }));
        QTest::keyClick(preview->windowHandle(), Qt::Key_PageDown);
        QTest::keyClick(preview->windowHandle(), Qt::Key_3, Qt::AltModifier);
        onA3 = pages->pageCount();
        preview->reject();
    };
    desk.then([&] {
        QTimer::singleShot(50, desk.frontEnd.top(), look);  // the preview waits for its user
        desk.press("fpgMonth", Qt::Key_P, Qt::ControlModifier);
    });
    screen.showModal();
    EXPECT_EQ(keys.size(), 11) << keys.join(' ').toStdString() << ": a button without its key";
    EXPECT_EQ(pressed.join(", ").toStdString(), "Next page, A3");
    EXPECT_GT(onA3, 1);
    EXPECT_GT(onA4, onA3);
    EXPECT_EQ(desk.settings.GetSetting("LeaveMgmt", "Print paper"), "A3") << "for the next time";
}

}  // namespace
}  // namespace owb
