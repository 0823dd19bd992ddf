#include "qt/board_view.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include "qt/contrast.h"
#include "qt/qt_text.h"
#include "qt/screen_window.h"
#include "screen/cell_board.h"

namespace owb {

namespace {

constexpr int kCellWidth = 38, kCellHeight = 28, kLinesHeight = 18;
constexpr double kTint = 0.22;  // of the tint's colour over the ground

QColor blended(const QColor& over, const QColor& ground, double share) {
    const auto part = [share](int a, int b) {
        return static_cast<int>(a * share + b * (1 - share));
    };
    return {part(over.red(), ground.red()), part(over.green(), ground.green()),
            part(over.blue(), ground.blue())};
}

class BoardWidget final : public QWidget {
  public:
    explicit BoardWidget(const CellBoard& board) : board_(board) {
        setFocusPolicy(Qt::StrongFocus);
        setMouseTracking(true);
    }
    QSize sizeHint() const override {
        const int across = static_cast<int>(board_.columns());
        const int down = static_cast<int>(board_.cells.size()) / across;
        qsizetype lines = 1;
        for (const BoardCell& cell : board_.cells)
            lines = std::max(lines, 1 + toQt(cell.text).count('\n'));
        const int height = kCellHeight + static_cast<int>(lines - 1) * kLinesHeight;
        return {across * kCellWidth, down * height + headHeight()};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

    QRect cellRect(size_t place) const {
        const int across = static_cast<int>(board_.columns());
        const int down = static_cast<int>(board_.cells.size()) / across;
        const int column = static_cast<int>(place) % across, row = static_cast<int>(place) / across;
        const int room = height() - headHeight();
        const QPoint from(column * width() / across, headHeight() + row * room / down);
        const QPoint to((column + 1) * width() / across, headHeight() + (row + 1) * room / down);
        return {from, to - QPoint(1, 1)};
    }
    // The cell at a point; the count of cells where there is none.
    size_t placeAt(const QPoint& at) const {
        size_t place = 0;
        while (place < board_.cells.size() && !cellRect(place).contains(at)) ++place;
        return place;
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), palette().color(QPalette::Base));
        const int across = static_cast<int>(board_.columns());
        for (size_t c = 0; c < board_.heads.size(); ++c) {
            const QRect head(static_cast<int>(c) * width() / across, 0, width() / across,
                             headHeight());
            painter.setPen(palette().color(QPalette::Text));
            painter.drawText(head, Qt::AlignCenter, toQt(board_.heads[c]));
        }
        for (size_t place = 0; place < board_.cells.size(); ++place) paintCell(painter, place);
    }
    bool event(QEvent* event) override {
        if (event->type() != QEvent::ToolTip) return QWidget::event(event);
        const auto* help = static_cast<QHelpEvent*>(event);
        const size_t place = placeAt(help->pos());
        QToolTip::showText(help->globalPos(),
                           place < board_.cells.size() ? toQt(board_.cells[place].tip) : QString());
        return true;
    }

  private:
    int headHeight() const { return board_.heads.empty() ? 0 : kCellHeight; }

    void paintCell(QPainter& painter, size_t place) const {
        const BoardCell& cell = board_.cells[place];
        const QRect area = cellRect(place);
        const QColor base = palette().color(QPalette::Base);
        QColor ground = base;
        if (cell.holiday)
            ground = blended(Qt::red, base, kTint);
        else if (cell.offDay)
            ground = blended(Qt::darkYellow, base, kTint);
        if (cell.chosen) ground = palette().color(QPalette::Highlight);
        painter.fillRect(area.adjusted(1, 1, -1, -1), ground);
        const QColor text =
            palette().color(cell.enabled ? QPalette::Active : QPalette::Disabled, QPalette::Text);
        const QColor ink = standingOut(text, {ground}, cell.enabled ? kTextContrast : 1);
        painter.setPen(ink);
        painter.drawText(area.adjusted(2, 2, -2, -2), Qt::AlignCenter, toQt(cell.text));
        painter.setBrush(Qt::NoBrush);
        constexpr int kRing = 2;
        if (cell.ringed) {
            painter.setPen(QPen(standingOut(Qt::red, {ground, base}, kMarkContrast), kRing));
            painter.drawRoundedRect(area.adjusted(4, 3, -4, -3), 6, 6);
        }
        if (board_.current == static_cast<int>(place) && hasFocus()) {
            painter.setPen(QPen(
                standingOut(palette().color(QPalette::Highlight), {base, ground}, kMarkContrast),
                kRing));
            painter.drawRect(area.adjusted(1, 1, -1, -1));
        }
    }

    const CellBoard& board_;
};

class BoardView final : public ControlView {
  public:
    BoardView(ScreenWindow& window, CellBoard& board)
        : ControlView(window, board), board_(board), widget_(new BoardWidget(board)) {
        attach(widget_);
    }

  private:
    void show() override {
        const auto at = static_cast<size_t>(std::max(board_.current, 0));
        const BoardCell& cell = board_.cells[at];
        widget_->setAccessibleDescription(toQt(cell.text + " " + cell.tip).trimmed());
        widget_->update();
    }
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::MouseButtonRelease) {
            const size_t place =
                widget_->placeAt(static_cast<QMouseEvent*>(event)->position().toPoint());
            if (place < board_.cells.size())
                window().act(board_, [&] { board_.pick(place) || board_.goTo(place); });
            return true;
        }
        // A letter is a key here: nothing is typed into a board.
        if (event->type() == QEvent::KeyPress) {
            const auto* key = static_cast<QKeyEvent*>(event);
            const std::string letter = fromQt(key->text().toUpper().trimmed());
            const std::string name = key->key() == Qt::Key_Space ? "Space" : letter;
            if (key->modifiers() == Qt::NoModifier && !name.empty() && board_.takesKey(name)) {
                window().act(board_, [&] { board_.key(name); });
                return true;
            }
        }
        return ControlView::eventFilter(object, event);
    }
    bool enterGoesOn() const override { return !board_.onPickCell; }

    CellBoard& board_;
    BoardWidget* widget_;
};

}  // namespace

std::unique_ptr<ControlView> makeBoardView(ScreenWindow& window, CellBoard& board) {
    return std::make_unique<BoardView>(window, board);
}

}  // namespace owb
