#include "qt/grid_table.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>

namespace owb {

namespace {
constexpr int kRowRoom = 8;
constexpr int kHeaderRoom = 12;
constexpr int kHintRows = 16;
constexpr int kHintWidth = 1100;
}  // namespace

GridTable::GridTable(GridModel& model, Owner& owner, GridTable* under)
    : QTableView(under), model_(model), owner_(owner), under_(under) {
    setModel(&model);
    setHorizontalScrollMode(ScrollPerPixel);
    setVerticalScrollMode(ScrollPerPixel);
    setWordWrap(false);
    setTabKeyNavigation(false);
    setEditTriggers(AnyKeyPressed | EditKeyPressed | DoubleClicked);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kRowRoom);
    horizontalHeader()->setFixedHeight(fontMetrics().height() + kHeaderRoom);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(horizontalHeader(), &QHeaderView::customContextMenuRequested, this,
            [this](const QPoint& at) {
                const int column = horizontalHeader()->logicalIndexAt(at);
                owner_.openColumnMenu(column, horizontalHeader()->mapToGlobal(at));
            });
    if (under != nullptr) {
        setFrameStyle(NoFrame);
        setFocusProxy(under);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setSelectionModel(under->selectionModel());
        setStyleSheet("QTableView { border-right: 1px solid palette(mid); }");
        return;
    }
    horizontalHeader()->setStretchLastSection(true);
    frozen_ = new GridTable(model, owner, this);
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

int GridTable::frozenWidth() const {
    int width = 0;
    for (int c = 0; c < model_.frozen(); ++c)
        if (!isColumnHidden(c)) width += columnWidth(c);
    return width;
}

void GridTable::layFrozen() {
    const int count = model_.frozen();
    frozen_->setVisible(count > 0);
    if (count == 0) return;
    const QSignalBlocker quiet(frozen_->horizontalHeader());
    for (int c = 0; c < model_.columnCount(); ++c) {
        frozen_->setColumnHidden(c, c >= count || isColumnHidden(c));
        if (c < count && !isColumnHidden(c)) frozen_->setColumnWidth(c, columnWidth(c));
    }
    frozen_->setGeometry(frameWidth(), frameWidth(), frozenWidth() + 1,
                         viewport()->height() + horizontalHeader()->height());
    frozen_->verticalScrollBar()->setValue(verticalScrollBar()->value());
    frozen_->raise();
}

bool GridTable::walk(bool forward) {
    const int columns = model_.columnCount(), cells = model_.rowCount() * columns;
    const QModelIndex now = currentIndex();
    int at = now.isValid() ? now.row() * columns + now.column() : (forward ? -1 : cells);
    for (at += forward ? 1 : -1; at >= 0 && at < cells; at += forward ? 1 : -1) {
        const QModelIndex next = model_.index(at / columns, at % columns);
        if (isColumnHidden(next.column()) || !model_.editable(next)) continue;
        setCurrentIndex(next);
        return true;
    }
    return false;
}

QSize GridTable::sizeHint() const {
    const int width = std::min(horizontalHeader()->length(), kHintWidth);
    const int row = verticalHeader()->defaultSectionSize();
    return {width + 2 * frameWidth() + verticalScrollBar()->sizeHint().width(),
            horizontalHeader()->height() + kHintRows * row};
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

void GridTable::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    // An editor leaves Enter to whoever is above it; it has its own way to end.
    if (state() == EditingState && !hasFocus()) return event->accept();
    if (event->matches(QKeySequence::Copy)) return owner_.copyCells();
    if (event->matches(QKeySequence::Paste)) return owner_.pasteCells();
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        if (!walk(!(event->modifiers() & Qt::ShiftModifier))) owner_.pressed(currentIndex());
        return;
    }
    if (key == Qt::Key_Down && (event->modifiers() & Qt::AltModifier)) {
        const QRect cell = visualRect(currentIndex());
        return owner_.openColumnMenu(currentIndex().column(),
                                     viewport()->mapToGlobal(cell.bottomLeft()));
    }
    if (key == Qt::Key_Space && owner_.toggled(currentIndex())) return;
    QTableView::keyPressEvent(event);
}

bool GridTable::focusNextPrevChild(bool next) {
    return (hasFocus() && walk(next)) || QTableView::focusNextPrevChild(next);
}

// The focus alone makes no cell the current one: that would run the screen's handler.
void GridTable::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
    if (frozen_ != nullptr) frozen_->viewport()->update();
}

void GridTable::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    if (frozen_ != nullptr) layFrozen();
}

void GridTable::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
    GridTable* table = under_ != nullptr ? under_ : this;
    QTableView::closeEditor(editor, QAbstractItemDelegate::NoHint);
    if (owner_.refused()) return;
    if (hint == QAbstractItemDelegate::EditNextItem ||
        hint == QAbstractItemDelegate::SubmitModelCache)
        table->walk(true);
    else if (hint == QAbstractItemDelegate::EditPreviousItem)
        table->walk(false);
}

bool GridTable::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
    if (frozen_ != nullptr && index.isValid() && index.column() < model_.frozen())
        return frozen_->edit(index, trigger, event);
    return QTableView::edit(index, trigger, event);
}

}  // namespace owb
