#include "qt/grid_view.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QMenu>
#include <QScrollBar>
#include <QSignalBlocker>

#include "base/number_text.h"
#include "base/utf8.h"
#include "qt/grid_delegate.h"
#include "qt/grid_model.h"
#include "qt/grid_table.h"
#include "qt/qt_text.h"
#include "qt/screen_window.h"
#include "qt/window_memory.h"

namespace owb {

namespace {

constexpr int kColumnRoom = 14;

class GridView final : public ControlView, private GridTable::Owner {
  public:
    GridView(ScreenWindow& window, Grid& grid)
        : ControlView(window, grid),
          grid_(grid),
          model_(grid),
          table_(new GridTable(model_, *this)) {
        attach(table_);
        for (GridTable* table : {table_, table_->frozen()}) {
            // Each has a delegate of its own: one that is shared would tell both of every editor.
            table->setItemDelegate(new GridDelegate(
                grid, model_,
                {[this](const QModelIndex& at) { return beginEdit(at); },
                 [this](const QModelIndex& at, const QString& text) { endEdit(at, text); }},
                table));
            table->setSelectionBehavior(grid.singleRows ? QTableView::SelectRows
                                                        : QTableView::SelectItems);
            table->setContextMenuPolicy(Qt::CustomContextMenu);
            connect(table, &QTableView::customContextMenuRequested, this,
                    [this, table](const QPoint& at) { openMenu(*table, at); });
            connect(table, &QTableView::clicked, this,
                    [this](const QModelIndex& at) { clicked(at); });
            connect(table, &QTableView::doubleClicked, this,
                    [this](const QModelIndex& at) { doubleClicked(at); });
        }
        connect(table_->selectionModel(), &QItemSelectionModel::currentChanged, this,
                [this](const QModelIndex& at) { moved(at); });
        connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
                [this] { sayTotals(); });
        layColumns();
    }
    ~GridView() override { rememberColumns(); }

  private:
    // --- in step with the model ---
    void show() override {
        const QSignalBlocker quiet(table_->selectionModel());
        const int scrolled = table_->verticalScrollBar()->value();
        if (model_.sync()) {
            if (columnsShown_ != columnsOfModel()) layColumns();
            table_->layFrozen();
            table_->verticalScrollBar()->setValue(scrolled);
        }
        const QModelIndex now = model_.indexOf(grid_.currentRow(), grid_.currentColumn());
        if (!now.isValid()) {
            if (table_->currentIndex().isValid()) table_->selectionModel()->clear();
        } else if (now != table_->currentIndex()) {
            table_->setCurrentIndex(now);
        }
        table_->viewport()->update();
        table_->frozen()->viewport()->update();
    }

    std::vector<size_t> columnsOfModel() const {
        std::vector<size_t> columns;
        for (int c = 0; c < model_.columnCount(); ++c) columns.push_back(model_.gridColumn(c));
        return columns;
    }

    void layColumns() {
        columnsShown_ = columnsOfModel();
        const int digit = table_->fontMetrics().horizontalAdvance('0');
        defaultWidths_.clear();
        for (int c = 0; c < model_.columnCount(); ++c) {
            const GridColumn& column = grid_.column(model_.gridColumn(c));
            const int caption =
                table_->fontMetrics().horizontalAdvance(toQt(column.caption)) + kColumnRoom;
            defaultWidths_.push_back(std::max(column.width * digit + kColumnRoom, caption));
        }
        const std::vector<int> held =
            window().memory().columns(memoryName(), defaultWidths_.size());
        for (int c = 0; c < model_.columnCount(); ++c) {
            const int width = held.empty() || held[static_cast<size_t>(c)] == 0
                                  ? defaultWidths_[static_cast<size_t>(c)]
                                  : held[static_cast<size_t>(c)];
            table_->setColumnWidth(c, std::abs(width));
            table_->setColumnHidden(c, width < 0);
        }
        table_->layFrozen();
    }

    std::string memoryName() { return window().screen().name() + "." + grid_.name(); }

    // 0 for a column as the screen has it.
    void rememberColumns() {
        std::vector<int> widths;
        bool changed = false;
        for (size_t c = 0; c < defaultWidths_.size(); ++c) {
            const int at = static_cast<int>(c);
            // A hidden column is 0 wide.
            const int width =
                table_->isColumnHidden(at) ? -defaultWidths_[c] : table_->columnWidth(at);
            // The last one takes the room that is left.
            const bool last = c + 1 == defaultWidths_.size() && width > 0;
            widths.push_back(last || width == defaultWidths_[c] ? 0 : width);
            changed = changed || widths.back() != 0;
        }
        if (changed || !window().memory().columns(memoryName(), widths.size()).empty())
            window().memory().rememberColumns(memoryName(), widths);
    }

    // --- what the user does ---
    void moved(const QModelIndex& at) {
        if (!at.isValid()) return;
        refused_ = false;
        const size_t r = model_.row(at), c = model_.column(at);
        if (!window().act(grid_, [&] { grid_.goTo(r, c); })) show();
    }
    void clicked(const QModelIndex& at) {
        const size_t r = model_.row(at), c = model_.column(at);
        window().act(grid_, [&] { grid_.clickCell(r, c); });
        toggled(table_->currentIndex());
    }
    void doubleClicked(const QModelIndex& at) {
        const size_t r = model_.row(at), c = model_.column(at);
        if (grid_.onCellDoubleClick) window().act(grid_, [&] { grid_.doubleClickCell(r, c); });
    }
    void pressed(const QModelIndex& at) override {
        if (at.isValid()) doubleClicked(at);
    }
    bool toggled(const QModelIndex& at) override {
        if (!at.isValid()) return false;
        const size_t r = model_.row(at), c = model_.column(at);
        if (grid_.cellType(r, c) != CellType::Check) return false;
        told([&](std::string& reason) { return grid_.check(r, c, !grid_.checked(r, c), reason); });
        return true;
    }
    bool beginEdit(const QModelIndex& at) {
        const size_t r = model_.row(at), c = model_.column(at);
        return told([&](std::string& reason) { return grid_.beginEdit(r, c, reason); });
    }
    void endEdit(const QModelIndex& at, const QString& text) {
        const size_t r = model_.row(at), c = model_.column(at);
        told([&](std::string& reason) { return grid_.endEdit(r, c, fromQt(text), reason); });
    }
    // Runs an entry and says why it was refused.
    template <typename Entry>
    bool told(Entry entry) {
        std::string reason;
        bool done = false;
        if (!window().act(grid_, [&] { done = entry(reason); })) return false;
        refused_ = !done;
        window().say(toQt(reason), refused_);
        return done;
    }
    bool refused() const override { return refused_; }

    // --- blocks ---
    std::vector<int> shownColumns(const QItemSelection& selection) const {
        std::vector<int> columns;
        for (int c = 0; c < model_.columnCount(); ++c)
            if (!table_->isColumnHidden(c) &&
                std::any_of(selection.begin(), selection.end(), [&](const auto& range) {
                    return range.left() <= c && c <= range.right();
                }))
                columns.push_back(c);
        return columns;
    }
    void copyCells() override {
        const QItemSelection selection = table_->selectionModel()->selection();
        if (selection.isEmpty()) return;
        int top = model_.rowCount(), bottom = -1;
        for (const QItemSelectionRange& range : selection) {
            top = std::min(top, range.top());
            bottom = std::max(bottom, range.bottom());
        }
        const std::vector<int> columns = shownColumns(selection);
        QString text;
        for (int r = top; r <= bottom; ++r) {
            QStringList line;
            for (const int c : columns)
                line << toQt(grid_.cell(model_.row(model_.index(r, c)), model_.gridColumn(c)));
            text += line.join('\t') + '\n';
        }
        QGuiApplication::clipboard()->setText(text);
    }
    void pasteCells() override {
        const QModelIndex from = table_->currentIndex();
        if (!from.isValid()) return;
        QString text = QGuiApplication::clipboard()->text().remove('\r');
        if (text.endsWith('\n')) text.chop(1);
        std::vector<int> columns;
        for (int c = from.column(); c < model_.columnCount(); ++c)
            if (!table_->isColumnHidden(c)) columns.push_back(c);
        std::vector<Grid::CellText> targets;
        const QStringList lines = text.split('\n');
        for (int r = 0; r < lines.size(); ++r) {
            const QStringList cells = lines[r].split('\t');
            for (int c = 0; c < cells.size(); ++c) {
                if (from.row() + r >= model_.rowCount() || c >= static_cast<int>(columns.size()))
                    return window().say("The block is larger than what is left of the grid.", true);
                const QModelIndex at =
                    model_.index(from.row() + r, columns[static_cast<size_t>(c)]);
                targets.push_back({model_.row(at), model_.column(at), fromQt(cells[c])});
            }
        }
        told([&](std::string& reason) { return grid_.paste(targets, reason); });
    }
    void sayTotals() {
        size_t count = 0, numbers = 0;
        double sum = 0;
        for (const QItemSelectionRange& range : table_->selectionModel()->selection())
            for (int c = range.left(); c <= range.right(); ++c) {
                if (table_->isColumnHidden(c)) continue;
                const size_t column = model_.gridColumn(c);
                for (int r = range.top(); r <= range.bottom(); ++r) {
                    const size_t row = model_.row(model_.index(r, c));
                    if (grid_.cell(row, column).empty()) continue;
                    ++count;
                    if (grid_.cellType(row, column) != CellType::Number) continue;
                    ++numbers;
                    sum += grid_.number(row, column);
                }
            }
        QString text;
        const bool wholeRow =
            grid_.singleRows && table_->selectionModel()->selectedRows().size() < 2;
        if (count > 1 && !wholeRow) text = "Count " + QString::number(count);
        if (!text.isEmpty() && numbers > 0) text += "     Sum " + toQt(formatNumber(sum, "0.00"));
        window().say(text);
    }

    // --- menus ---
    void openMenu(GridTable& table, const QPoint& at) {
        const QModelIndex index = table.indexAt(at);
        const QPoint place = table.viewport()->mapToGlobal(at);
        if (index.isValid()) {
            const size_t r = model_.row(index), c = model_.column(index);
            window().act(grid_, [&] { grid_.rightClickCell(r, c); });
        }
        if (!window().openMenu(grid_, place)) openColumnMenu(index.column(), place);
    }

    void openColumnMenu(int column, const QPoint& at) override {
        QMenu menu(table_);
        if (column >= 0) {
            menu.addAction("Sort &ascending", [=, this] { order(column, Qt::AscendingOrder); });
            menu.addAction("Sort &descending", [=, this] { order(column, Qt::DescendingOrder); });
        }
        menu.addAction("&Order of the screen", [this] { order({}, Qt::AscendingOrder); });
        menu.addSeparator();
        menu.addAction("&Copy", QKeySequence::Copy, [this] { copyCells(); });
        menu.addAction("&Paste", QKeySequence::Paste, [this] { pasteCells(); });
        menu.addSeparator();
        QMenu* columns = menu.addMenu("Co&lumns");
        const int shown = model_.columnCount() - table_->horizontalHeader()->hiddenSectionCount();
        for (int c = 0; c < model_.columnCount(); ++c) {
            QAction* action =
                columns->addAction(toQt(grid_.column(model_.gridColumn(c)).caption), [=, this] {
                    table_->setColumnHidden(c, !table_->isColumnHidden(c));
                    table_->layFrozen();
                });
            action->setCheckable(true);
            action->setChecked(!table_->isColumnHidden(c));
            action->setEnabled(table_->isColumnHidden(c) || shown > 1);
        }
        menu.exec(at);
    }

    void order(std::optional<int> column, Qt::SortOrder direction) {
        const QSignalBlocker quiet(table_->selectionModel());
        model_.order(column, direction);
        QHeaderView* header = table_->horizontalHeader();
        header->setSortIndicatorShown(column.has_value());
        if (column) header->setSortIndicator(*column, direction);
        show();
    }

    Grid& grid_;
    GridModel model_;
    GridTable* table_;
    std::vector<size_t> columnsShown_;
    std::vector<int> defaultWidths_;
    bool refused_ = false;
};

}  // namespace

std::unique_ptr<ControlView> makeGridView(ScreenWindow& window, Grid& grid) {
    return std::make_unique<GridView>(window, grid);
}

}  // namespace owb
