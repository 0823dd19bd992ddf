// A month of 2,000 employees in its window, 45 columns with the legend's colours: until it is
// drawn, a page further, and from a key to the page that answers it. The floor is a page of as many
// cells, painted in the plainest way; for opening, with the texts put where they are read from.
#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTableView>
#include <QTimer>

#include "bench.h"
#include "qt/qt_front_end.h"
#include "qt/screen_window.h"
#include "screen/grid.h"
#include "session/MemorySettingsStore.h"

namespace {

using namespace owb;

constexpr size_t kRows = 2000, kColumns = 45, kFixed = 5;
constexpr int kPages = 60, kKeys = 100, kRounds = 5;
constexpr int kWidth = 1366, kHeight = 768;
constexpr Color kLegend[] = {0x80C0FF, 0xC0FFC0, 0xFFA0FF, 0xFFEBFF, kButtonFaceColor};

std::string textAt(size_t row, size_t column) {
    if (column == 0) return std::to_string(1000 + row);
    if (column == 1) return "Employee of row " + std::to_string(row);
    return (row + column) % 11 == 0 ? "CL" : "P";
}

class Month final : public Screen {
  public:
    explicit Month(FrontEnd& frontEnd) : Screen(frontEnd, "Month", "Month") {}
    Grid fpgMonth{*this, "fpgMonth"};
    Layout layout() override { return column({item(fpgMonth, 1)}); }
    std::function<void()> atInput;

  private:
    void onLoad() override {
        std::vector<GridColumn> columns(kColumns);
        for (size_t c = 0; c < kColumns; ++c)
            columns[c] = {.caption = "Day " + std::to_string(c), .width = 4, .locked = c < kFixed};
        columns[1].width = 24;
        fpgMonth.setColumns(std::move(columns));
        fpgMonth.frozenColumns = 3;
        std::vector<std::string> cells(kColumns);
        for (size_t r = 0; r < kRows; ++r) {
            for (size_t c = 0; c < kColumns; ++c) cells[c] = textAt(r, c);
            fpgMonth.addRow(cells);
            for (size_t c = 0; c < 3; ++c) fpgMonth.setBackColor(r, c, 0xFEFDED);
            for (size_t c = kFixed + r % 7; c < kColumns; c += 7)
                fpgMonth.setBackColor(r, c, kLegend[(r + c) % std::size(kLegend)]);
        }
    }
    void onActivate() override {
        if (atInput)
            QTimer::singleShot(0, [this] { atInput(); });
        else
            close();
    }
};

void press(int key, const QString& text = "") {
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, text),
        up(QEvent::KeyRelease, key, Qt::NoModifier, text);
    QApplication::sendEvent(QApplication::focusWidget(), &down);
    QApplication::sendEvent(QApplication::focusWidget(), &up);
    QApplication::processEvents();  // draws
}

class PlainPage {
  public:
    // As many cells as the table shows at once.
    explicit PlainPage(const QTableView& table)
        : rows_(static_cast<size_t>(table.viewport()->height() / table.rowHeight(0))) {
        size_t columns = 0;
        for (int x = 0; x < table.viewport()->width(); x += table.columnWidth(kColumns - 1))
            ++columns;
        columns_ = std::min(columns, kColumns);
    }
    void paint() {
        QPainter painter(&picture_);
        const int width = kWidth / static_cast<int>(columns_), height = 22;
        for (size_t r = 0; r < rows_; ++r)
            for (size_t c = 0; c < columns_; ++c) {
                const QRect at(static_cast<int>(c) * width, static_cast<int>(r) * height, width,
                               height);
                painter.fillRect(at, Qt::white);
                painter.drawText(at, Qt::AlignVCenter, QString::fromStdString(textAt(r, c)));
            }
    }
    void fillAndPaint() {
        std::vector<std::string> texts;
        for (size_t r = 0; r < kRows; ++r)
            for (size_t c = 0; c < kColumns; ++c) texts.push_back(textAt(r, c));
        paint();
    }

  private:
    size_t rows_, columns_ = 0;
    QImage picture_{kWidth, kHeight, QImage::Format_ARGB32_Premultiplied};
};

void tell(const char* what, int count, const bench::Race& race, int aim) {
    std::printf("%-44s %9.2f ms (aim: below %d), floor %6.2f ms, ratio %5.2f\n", what,
                race.engine / count * 1e3, aim, race.floor / count * 1e3, race.engine / race.floor);
}

void times(int count, const std::function<void()>& work) {
    for (int i = 0; i < count; ++i) work();
}

void measure(QtFrontEnd& frontEnd, Month& month) {
    frontEnd.top()->resize(kWidth, kHeight);
    QApplication::processEvents();
    auto* table = frontEnd.top()->findChild<QTableView*>("fpgMonth");
    table->setFocus();
    PlainPage plain(*table);

    tell("2,000 x 45 cells filled, opened and drawn", 1,
         bench::Race(
             kRounds, [&] { Month(frontEnd).showModal(); }, [&] { plain.fillAndPaint(); }),
         300);
    frontEnd.top()->activateWindow();
    QApplication::processEvents();

    tell("a page of it", kPages,
         bench::Race(
             kRounds,
             [&] {
                 for (int i = 0; i < kPages; ++i) {
                     table->verticalScrollBar()->setValue(i *
                                                          table->verticalScrollBar()->pageStep());
                     frontEnd.top()->repaint();
                 }
             },
             [&] { times(kPages, [&] { plain.paint(); }); }),
         16);

    Grid& grid = month.fpgMonth;
    const auto keys = [&](const char* what, const std::function<void()>& deed) {
        tell(what, kKeys,
             bench::Race(
                 kRounds,
                 [&] {
                     grid.setCurrent(0, kFixed);
                     frontEnd.top()->sync();
                     times(kKeys, deed);
                 },
                 [&] { times(kKeys, [&] { plain.paint(); }); }),
             50);
    };
    keys("a key: the cursor a row down", [] { press(Qt::Key_Down); });
    if (grid.currentRow() != kKeys) throw std::runtime_error("the cursor did not move");
    keys("a letter and Enter, until the cell is drawn", [] {
        press(Qt::Key_S, "S");
        press(Qt::Key_Return, "\r");
    });
    if (grid.cell(0, kFixed) != "S") throw std::runtime_error("the cell was not edited");
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setStyle("Fusion");
    MemorySettingsStore settings;
    QtFrontEnd frontEnd(settings);
    Month month(frontEnd);
    month.atInput = [&] {
        measure(frontEnd, month);
        frontEnd.top()->close();
    };
    month.showModal();
    return 0;
}
