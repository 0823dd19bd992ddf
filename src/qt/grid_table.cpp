#include "qt/grid_table.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

#include "qt/cell_colors.h"
#include "qt/grid_header.h"
#include "qt/key_names.h"
#include "qt/qt_text.h"

namespace owb {

namespace {
constexpr int kRowRoom = 6;
constexpr int kHintRows = 16, kLeastRows = 6;
constexpr int kHintWidth = 1100, kLeastWidth = 200;
constexpr int kHandle = 7;
}  // namespace

GridTable::GridTable(Grid& grid, GridModel& model, Owner& owner, GridTable* under)
    : QTableView(under), grid_(grid), model_(model), owner_(owner), under_(under) {
    setHorizontalHeader(new GridHeader(grid, model, this));
    // A click on it sorts; the toolkit would make the column's first cell the current one.
    disconnect(horizontalHeader(), &QHeaderView::sectionPressed, this, nullptr);
    disconnect(horizontalHeader(), &QHeaderView::sectionEntered, this, nullptr);
    setModel(&model);
    setHorizontalScrollMode(ScrollPerPixel);
    setVerticalScrollMode(ScrollPerPixel);
    setWordWrap(false);
    setShowGrid(false);
    setTabKeyNavigation(false);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(NoSelection);
    setMouseTracking(true);
    setContextMenuPolicy(Qt::CustomContextMenu);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    applyZoom();
    if (under != nullptr) {
        setFrameStyle(NoFrame);
        setFocusProxy(under);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setSelectionModel(under->selectionModel());
        return;
    }
    horizontalHeader()->setStretchLastSection(true);
    frozen_ = new GridTable(grid, model, owner, this);
    frozen_->hide();
    connect(verticalScrollBar(), &QScrollBar::valueChanged, frozen_->verticalScrollBar(),
            &QScrollBar::setValue);
    connect(frozen_->verticalScrollBar(), &QScrollBar::valueChanged, verticalScrollBar(),
            &QScrollBar::setValue);
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, [this] { layFrozen(); });
    connect(frozen_->horizontalHeader(), &QHeaderView::sectionResized, this,
            [this](int column, int, int width) {
                if (columnWidth(column) != width && width > 0) setColumnWidth(column, width);
            });
}

// --- the two tables ---

void GridTable::applyZoom() {
    if (zoom_ != grid_.zoom) {
        QFont zoomed = under_ != nullptr ? under_->font() : parentWidget()->font();
        if (under_ == nullptr) zoomed.setPointSizeF(zoomed.pointSizeF() * grid_.zoom / 100);
        setFont(zoomed);
        horizontalHeader()->setFont(zoomed);
        zoom_ = grid_.zoom;
    }
    verticalHeader()->setMinimumSectionSize(8);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kRowRoom);
    if (frozen_ != nullptr) frozen_->applyZoom();
}

int GridTable::frozenWidth() const {
    int width = 0;
    for (int c = 0; c < model_.frozen(); ++c) width += columnWidth(c);
    return width;
}

void GridTable::layFrozen() {
    const int count = model_.frozen();
    frozen_->setVisible(count > 0);
    if (count == 0) return owner_.viewMoved();
    const QSignalBlocker quiet(frozen_->horizontalHeader());
    frozen_->horizontalHeader()->setFixedHeight(horizontalHeader()->height());
    for (int c = 0; c < model_.columnCount(); ++c) {
        frozen_->setColumnHidden(c, c >= count);
        if (c < count) frozen_->setColumnWidth(c, columnWidth(c));
    }
    // A firm line stands at its right.
    frozen_->setGeometry(frameWidth(), frameWidth(), frozenWidth() + 2,
                         viewport()->height() + horizontalHeader()->height());
    frozen_->verticalScrollBar()->setValue(verticalScrollBar()->value());
    frozen_->raise();
    owner_.viewMoved();
}

GridTable* GridTable::shower(int column) {
    return column < model_.frozen() ? frozen_ : this;
}

void GridTable::updateAll() {
    viewport()->update();
    horizontalHeader()->viewport()->update();
    if (frozen_ != nullptr) frozen_->updateAll();
}

QSize GridTable::sizeHint() const {
    const int width = std::min(horizontalHeader()->length(), kHintWidth);
    const int row = verticalHeader()->defaultSectionSize();
    return {width + 2 * frameWidth() + verticalScrollBar()->sizeHint().width(),
            horizontalHeader()->sizeHint().height() + kHintRows * row};
}

QSize GridTable::minimumSizeHint() const {
    const int row = verticalHeader()->defaultSectionSize();
    return {kLeastWidth, horizontalHeader()->sizeHint().height() + kLeastRows * row};
}

// What lies below the columns that stay in sight is not visible.
void GridTable::scrollTo(const QModelIndex& index, ScrollHint hint) {
    const int before = horizontalScrollBar()->value();
    QTableView::scrollTo(index, hint);
    if (frozen_ == nullptr || model_.frozen() == 0) return;
    if (index.column() < model_.frozen()) {
        horizontalScrollBar()->setValue(before);
        return;
    }
    const int hidden = frozenWidth() - visualRect(index).left();
    if (hidden > 0) horizontalScrollBar()->setValue(horizontalScrollBar()->value() - hidden);
}

void GridTable::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    if (frozen_ != nullptr) layFrozen();
}

void GridTable::scrollContentsBy(int dx, int dy) {
    QTableView::scrollContentsBy(dx, dy);
    owner_.viewMoved();
}

// --- keys ---

void GridTable::keyPressEvent(QKeyEvent* event) {
    std::string name = keyName(*event);
    if (event->key() == Qt::Key_Space && event->modifiers() == Qt::ShiftModifier)
        name = "Shift+Space";
    if (name == "Ctrl+Shift+Backtab") name = "Ctrl+Shift+Tab";
    if (name.empty()) {
        const QString text = event->text();
        if (text.isEmpty() || !text.at(0).isPrint()) return event->ignore();
        return owner_.typed(fromQt(text));
    }
    if (owner_.pressed(name)) return;
    if (name == "Ctrl+Tab" || name == "F6") return owner_.focusLeaves(true);
    if (name == "Ctrl+Shift+Tab" || name == "Shift+F6") return owner_.focusLeaves(false);
    event->ignore();
}

bool GridTable::focusNextPrevChild(bool next) {
    return (hasFocus() && owner_.pressed(next ? "Tab" : "Shift+Tab")) ||
           QTableView::focusNextPrevChild(next);
}

// The focus alone makes no cell the current one: that would run the screen's handler.
void GridTable::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    updateAll();
}

void GridTable::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    updateAll();
}

// --- mouse ---

void GridTable::wheelEvent(QWheelEvent* event) {
    if (!(event->modifiers() & Qt::ControlModifier)) return QTableView::wheelEvent(event);
    if (event->angleDelta().y() != 0) owner_.zoomed(event->angleDelta().y() > 0);
    event->accept();
}

void GridTable::mousePressEvent(QMouseEvent* event) {
    const QModelIndex at = indexAt(event->pos());
    if (event->button() != Qt::LeftButton || !at.isValid()) return event->ignore();
    draggingHandle_ = handle().contains(event->pos());
    pressedAt_ = at;
    handleOver_ = at;
    if (!draggingHandle_) owner_.mousePressed(at, event->modifiers() & Qt::ShiftModifier);
}

void GridTable::mouseMoveEvent(QMouseEvent* event) {
    setCursor(handle().contains(event->pos()) ? Qt::CrossCursor : Qt::ArrowCursor);
    if (!(event->buttons() & Qt::LeftButton) || !pressedAt_.isValid()) return;
    const QModelIndex at = cellTowards(event->pos());
    if (!at.isValid()) return;
    scrollTo(at);
    if (draggingHandle_) {
        handleOver_ = at;
        viewport()->update();
    } else if (at != pressedAt_) {
        owner_.mouseDragged(at);
    }
}

// The cell below a point; beyond an edge the one behind the last that is seen there.
QModelIndex GridTable::cellTowards(const QPoint& point) const {
    const QRect seen = viewport()->rect().adjusted(1, 1, -2, -2);
    const QPoint within(std::clamp(point.x(), seen.left(), seen.right()),
                        std::clamp(point.y(), seen.top(), seen.bottom()));
    const QModelIndex edge = indexAt(within);
    if (!edge.isValid() || within == point) return edge;
    const auto step = [](int wanted, int possible) {
        return wanted > possible ? 1 : wanted < possible ? -1 : 0;
    };
    const int row = edge.row() + step(point.y(), within.y());
    const int column = edge.column() + step(point.x(), within.x());
    return model_.index(std::clamp(row, 0, model_.rowCount() - 1),
                        std::clamp(column, 0, model_.columnCount() - 1));
}

void GridTable::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    const QModelIndex from = pressedAt_, over = handleOver_;
    pressedAt_ = QModelIndex();
    if (std::exchange(draggingHandle_, false))
        owner_.handleDropped(over);
    else if (from.isValid() && from == indexAt(event->pos()) &&
             !(event->modifiers() & Qt::ShiftModifier))
        owner_.mouseClicked(from);
}

void GridTable::mouseDoubleClickEvent(QMouseEvent* event) {
    const QModelIndex at = indexAt(event->pos());
    pressedAt_ = QModelIndex();
    if (event->button() == Qt::LeftButton && at.isValid()) owner_.mouseClickedTwice(at);
}

// --- what the cells do not draw ---

// At the lower right corner of what is chosen, where it is shown.
QRect GridTable::handle() const {
    const auto block = grid_.cursor.block();
    if (!block || grid_.singleRows || grid_.entry.busy()) return {};
    const auto column = static_cast<int>(block->right);
    if ((under_ != nullptr) != (column < model_.frozen())) return {};
    const QModelIndex last = model_.index(static_cast<int>(block->bottom), column);
    if (!model_.editable(last)) return {};
    const QRect cell = visualRect(last);
    return {cell.right() - kHandle + 1, cell.bottom() - kHandle + 1, kHandle, kHandle};
}

void GridTable::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    QPainter painter(viewport());
    const QColor base = palette().color(QPalette::Base);
    const QColor mark = standingOut(palette().color(QPalette::Highlight), {base}, kMarkContrast);
    if (const QRect corner = handle(); corner.isValid()) {
        painter.fillRect(corner, base);
        painter.fillRect(corner.adjusted(1, 1, 0, 0), mark);
    }
    const auto block = grid_.cursor.block();
    if (draggingHandle_ && handleOver_.isValid() && block) {
        const QModelIndex first =
            model_.index(static_cast<int>(block->top), static_cast<int>(block->left));
        painter.setPen(QPen(mark, 2, Qt::DashLine));
        painter.drawRect(visualRect(first).united(visualRect(handleOver_)));
    }
    if (under_ != nullptr)
        painter.fillRect(viewport()->width() - 2, 0, 2, viewport()->height(),
                         standingOut(palette().color(QPalette::Mid), {base}, kTextContrast));
    // Of a list the row shows that the keys come here.
    if (!grid_.singleRows || !block || (!hasFocus() && (!under_ || !under_->hasFocus()))) return;
    painter.setPen(QPen(mark, 2));
    const int row = static_cast<int>(block->top);
    painter.drawRect(QRect(0, rowViewportPosition(row), viewport()->width(), rowHeight(row))
                         .adjusted(1, 1, -1, -2));
}

}  // namespace owb
