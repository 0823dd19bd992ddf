#include "qt/grid_view.h"

#include <QApplication>
#include <QBasicTimer>
#include <QHeaderView>
#include <QMenu>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "qt/grid_bars.h"
#include "qt/grid_delegate.h"
#include "qt/grid_editor.h"
#include "qt/grid_filter.h"
#include "qt/grid_model.h"
#include "qt/grid_table.h"
#include "qt/qt_text.h"
#include "qt/screen_window.h"
#include "qt/window_memory.h"
#include "screen/grid_menu.h"

namespace owb {

namespace {

constexpr int kColumnRoom = 12;

class GridView final : public ControlView, private GridTable::Owner, private GridEditor::Owner {
  public:
    GridView(ScreenWindow& window, Grid& grid)
        : ControlView(window, grid),
          grid_(grid),
          model_(*new GridModel(grid)),
          panel_(new QWidget) {
        auto* column = new QVBoxLayout(panel_);
        column->setContentsMargins(0, 0, 0, 0);
        column->setSpacing(0);
        const GridDeed act = [this](const std::function<void()>& deed) { return run(deed); };
        table_ = new GridTable(grid_, model_, *this, nullptr);
        model_.setParent(table_);  // which asks it as long as it lives
        chips_ = new GridChips(grid_, act);
        totals_ = new GridTotals(grid_, *table_);
        find_ = new GridFindBar(grid_, act, [this] { table_->setFocus(); });
        for (QWidget* part : std::initializer_list<QWidget*>{chips_, table_, totals_, find_})
            column->addWidget(part, part == table_ ? 1 : 0);
        attach(panel_, table_);
        // The table is what bears the control's name and takes its focus.
        panel_->setFocusProxy(table_);
        panel_->setObjectName(toQt(grid.name() + "Panel"));
        table_->setObjectName(toQt(grid.name()));
        table_->setAccessibleName(panel_->accessibleName());
        for (GridTable* table : {table_, table_->frozen()}) listenTo(*table);
        connect(table_->selectionModel(), &QItemSelectionModel::currentChanged, this,
                [this](const QModelIndex& at) {
                    if (at.isValid()) run([&] { grid_.goTo(model_.row(at), model_.column(at)); });
                });
        const WindowMemory& memory = window.memory();
        grid_.zoom =
            std::clamp(memory.habit(memoryName(), "Zoom", 100), Grid::kLeastZoom, Grid::kMostZoom);
        grid_.enterGoes = static_cast<Grid::EnterGoes>(std::clamp(
            memory.habit(memoryName(), "Enter", static_cast<int>(grid_.enterGoes)), 0, 2));
        layColumns();
    }
    ~GridView() override {
        for (GridEditor* editor : {editor_, frozenEditor_})
            if (editor != nullptr) editor->disconnect();
        rememberColumns();
        window().memory().rememberHabit(memoryName(), "Zoom", grid_.zoom, 100);
        window().memory().rememberHabit(memoryName(), "Enter", static_cast<int>(grid_.enterGoes),
                                        static_cast<int>(Grid::EnterGoes::ByColumn));
    }
    void commit() override {
        if (grid_.entry.busy()) grid_.entry.commit();
    }

  private:
    void listenTo(GridTable& table) {
        table.setItemDelegate(new GridDelegate(grid_, model_, &table));
        table.setSelectionBehavior(QTableView::SelectItems);
        connect(&table, &QTableView::customContextMenuRequested, this,
                [this, &table](const QPoint& at) { openMenu(table, at); });
        QHeaderView* header = table.horizontalHeader();
        connect(header, &QHeaderView::sectionClicked, this, [this](int section) {
            run([&] { grid_.sight.sortNext(model_.gridColumn(section)); });
            if (table_->currentIndex().isValid()) table_->scrollTo(table_->currentIndex());
        });
        connect(header, &QHeaderView::customContextMenuRequested, this,
                [this, header](const QPoint& at) {
                    openColumnMenu(header->logicalIndexAt(at), header->mapToGlobal(at));
                });
        connect(header, &QHeaderView::sectionMoved, this,
                [this, header](int section, int from, int to) {
                    const QSignalBlocker quiet(header);
                    header->moveSection(to, from);  // the sight's order is the one that counts
                    const size_t before = static_cast<size_t>(to > from ? to + 1 : to);
                    const size_t c = model_.gridColumn(section);
                    run([&] { grid_.sight.moveColumn(c, before); });
                });
    }

    // --- in step with the grid ---
    void show() override {
        const QSignalBlocker quiet(table_->selectionModel());
        const int scrolled = table_->verticalScrollBar()->value();
        table_->applyZoom();
        const bool changed = model_.sync();
        if (changed || columnsShown_ != grid_.sight.columns() || zoomShown_ != grid_.zoom) {
            rememberColumns();
            layColumns();
            table_->verticalScrollBar()->setValue(scrolled);
        } else if (frozenShown_ != grid_.sight.frozen()) {
            table_->layFrozen();
        }
        frozenShown_ = grid_.sight.frozen();
        const QModelIndex now = model_.indexOf(grid_.currentRow(), grid_.currentColumn());
        if (now != table_->currentIndex() || changed)
            table_->selectionModel()->setCurrentIndex(now, QItemSelectionModel::NoUpdate);
        if (const auto moved = grid_.cursor.moved(); moved && (moved != moved_ || changed)) {
            moved_ = moved;
            table_->scrollTo(
                model_.index(static_cast<int>(moved->first), static_cast<int>(moved->second)));
        }
        table_->updateAll();
        chips_->sync();
        totals_->sync();
        find_->sync();
        syncEditor();
        tell();
    }

    void tell() {
        const Grid::Said& said = grid_.said();
        const std::string summary = grid_.cursor.summary();
        window().say(toQt(said.text.empty() ? summary : said.text), said.refusal);
    }

    // The editor lies in the table that shows the column.
    void syncEditor() {
        const QModelIndex at = grid_.entry.busy()
                                   ? model_.indexOf(static_cast<int>(grid_.entry.row()),
                                                    static_cast<int>(grid_.entry.column()))
                                   : QModelIndex();
        const bool fixed = at.isValid() && at.column() < model_.frozen();
        for (const bool inFrozen : {false, true}) {
            GridEditor*& editor = inFrozen ? frozenEditor_ : editor_;
            GridTable* table = inFrozen ? table_->frozen() : table_;
            if (at.isValid() && inFrozen == fixed) {
                if (editor == nullptr) editor = new GridEditor(grid_, *this, table->viewport());
                editor->sync(table->visualRect(at));
            } else if (editor != nullptr && editor->isVisibleTo(table)) {
                const bool had = editor->hasFocus();
                editor->away();
                if (had) table_->setFocus(Qt::OtherFocusReason);
            }
        }
    }

    // --- columns ---
    void layColumns() {
        columnsShown_ = grid_.sight.columns();
        zoomShown_ = grid_.zoom;
        const int digit = table_->fontMetrics().horizontalAdvance('0');
        if (widths_.size() != grid_.columnCount()) {
            widths_ = window().memory().columns(memoryName(), grid_.columnCount());
            if (widths_.empty()) widths_.assign(grid_.columnCount(), 0);
            for (size_t c = 0; c < widths_.size(); ++c)
                if (widths_[c] < 0) grid_.sight.hideColumn(c, true);
            grid_.sight.setColumnOrder(window().memory().order(memoryName(), grid_.columnCount()));
            model_.sync();
            columnsShown_ = grid_.sight.columns();
        }
        ownWidths_.assign(grid_.columnCount(), 0);
        laidWidths_.assign(grid_.columnCount(), 0);
        for (int place = 0; place < model_.columnCount(); ++place) {
            const size_t c = model_.gridColumn(place);
            ownWidths_[c] =
                std::max(grid_.column(c).width * digit + kColumnRoom, headerWidth(place));
            const int held = std::abs(widths_[c]) * grid_.zoom / 100;
            laidWidths_[c] = held > 0 ? held : ownWidths_[c];
            table_->setColumnWidth(place, laidWidths_[c]);
        }
        table_->layFrozen();
    }
    int headerWidth(int place) const { return table_->horizontalHeader()->sectionSizeHint(place); }
    std::string memoryName() { return window().screen().name() + "." + grid_.name(); }

    // 0 for a column as the screen has it, negative for one that the user has hidden.
    void rememberColumns() {
        if (widths_.size() != grid_.columnCount()) return;
        if (const auto& order = grid_.sight.columnOrder(); !order.empty())
            window().memory().rememberOrder(memoryName(), order);
        bool changed = false;
        for (size_t c = 0; c < widths_.size(); ++c) {
            if (grid_.sight.columnHidden(c)) {
                widths_[c] = -std::max(std::abs(widths_[c]), 1);
            } else {
                const auto at = std::find(columnsShown_.begin(), columnsShown_.end(), c);
                // The last one takes the room that is left.
                if (at == columnsShown_.end() || at + 1 == columnsShown_.end()) continue;
                const int width = table_->columnWidth(static_cast<int>(at - columnsShown_.begin()));
                if (widths_[c] < 0) widths_[c] = widths_[c] == -1 ? 0 : -widths_[c];
                if (width == ownWidths_[c])
                    widths_[c] = 0;
                else if (width != laidWidths_[c])
                    widths_[c] = width * 100 / zoomShown_;
            }
            changed = changed || widths_[c] != 0;
        }
        if (changed || !window().memory().columns(memoryName(), widths_.size()).empty())
            window().memory().rememberColumns(memoryName(), widths_);
    }

    // --- what the user does ---
    bool run(const std::function<void()>& deed) {
        const bool taken = window().act(grid_, deed);
        if (!taken) show();
        return taken;
    }
    bool pressed(const std::string& key) override {
        if (key == "Ctrl+Shift+L") {
            const QRect cell = table_->visualRect(table_->currentIndex());
            openColumnMenu(table_->currentIndex().column(),
                           table_->viewport()->mapToGlobal(cell.bottomLeft()));
            return true;
        }
        if (key == "Ctrl+Shift+F") return chooseFilter(table_->currentIndex().column()), true;
        bool taken = false;
        run([&] { taken = grid_.key(key); });
        return taken;
    }
    void typed(const std::string& text) override {
        run([&] { grid_.entry.type(text); });
        typing_.start(kTypingPause, this);
    }
    void timerEvent(QTimerEvent*) override {
        typing_.stop();
        grid_.find.endTyping();
    }
    void textEdited(const std::string& text) override {
        run([&] { grid_.entry.setText(text); });
    }
    void candidateClicked(int candidate) override {
        run([&] { grid_.entry.choose(static_cast<size_t>(candidate)); });
    }
    void editorLeft() override {
        if (!grid_.entry.busy() || !window().waitsForInput()) return;
        if (panel_->isAncestorOf(QApplication::focusWidget())) return;
        run([&] {
            if (!grid_.entry.commit()) window().screen().setFocus(grid_);
        });
    }
    void focusLeaves(bool forward) override {
        table_->setFocus(Qt::OtherFocusReason);
        // From the last part of the panel on, so that no bar of the grid itself is next.
        QWidget* next = table_;
        do {
            next = forward ? next->nextInFocusChain() : next->previousInFocusChain();
        } while (next != table_ && (panel_->isAncestorOf(next) || next == panel_ ||
                                    !(next->focusPolicy() & Qt::TabFocus) || !next->isVisible() ||
                                    !next->isEnabled() || next->window() != &window()));
        next->setFocus(forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    }
    void mousePressed(const QModelIndex& at, bool extends) override {
        const size_t r = model_.row(at), c = model_.column(at);
        run([&] {
            if (extends)
                grid_.cursor.extendTo(static_cast<size_t>(at.row()),
                                      static_cast<size_t>(at.column()));
            else if (grid_.goTo(r, c))
                grid_.cursor.collapse();
        });
        if (!grid_.entry.busy()) table_->setFocus(Qt::MouseFocusReason);
    }
    void mouseDragged(const QModelIndex& at) override {
        run([&] {
            grid_.cursor.extendTo(static_cast<size_t>(at.row()), static_cast<size_t>(at.column()));
        });
    }
    void mouseClicked(const QModelIndex& at) override {
        const size_t r = model_.row(at), c = model_.column(at);
        if (grid_.entry.busy()) return;
        run([&] {
            grid_.clickCell(r, c);
            if (r < grid_.rowCount() && grid_.cellType(r, c) == CellType::Check)
                grid_.entry.type(" ");
        });
    }
    void mouseClickedTwice(const QModelIndex& at) override {
        const size_t r = model_.row(at), c = model_.column(at);
        run([&] {
            if (grid_.onCellDoubleClick)
                grid_.doubleClickCell(r, c);
            else if (grid_.cellType(r, c) == CellType::Check)
                grid_.entry.type(" ");
            else if (grid_.goTo(r, c) && !grid_.locked(r, c))
                grid_.entry.edit();
        });
    }
    void handleDropped(const QModelIndex& at) override {
        run([&] {
            grid_.blocks.fillTo(static_cast<size_t>(at.row()), static_cast<size_t>(at.column()));
        });
    }
    void zoomed(bool in) override {
        run([&] { grid_.entry.press(in ? "Ctrl++" : "Ctrl+-"); });
    }
    void viewMoved() override {
        const int row = table_->verticalHeader()->defaultSectionSize();
        grid_.cursor.pageRows =
            static_cast<size_t>(std::max(1, table_->viewport()->height() / std::max(row, 1) - 1));
        totals_->update();
        if (editor_ != nullptr || frozenEditor_ != nullptr) syncEditor();
    }

    // --- menus ---
    void openMenu(GridTable& table, const QPoint& at) {
        const QModelIndex index = table.indexAt(at);
        const QPoint place = table.viewport()->mapToGlobal(at);
        if (index.isValid()) {
            const size_t r = model_.row(index), c = model_.column(index);
            run([&] { grid_.rightClickCell(r, c); });
        }
        menuColumn_ = index.column();
        window().openMenu(grid_, place);
    }
    void openColumnMenu(int place, const QPoint& at) {
        std::optional<size_t> column;
        if (place >= 0) column = model_.gridColumn(place);
        QMenu menu(table_);
        addItems(menu, column);
        menu.exec(at);
    }
    void addOwnItems(QMenu& menu) override {
        const int place = menuColumn_.value_or(table_->currentIndex().column());
        menuColumn_.reset();
        addItems(menu, place < 0 ? std::nullopt : std::optional(model_.gridColumn(place)));
    }
    // A picker, or the menu by its key, opens at the current cell.
    QRect anchor() const override {
        const QModelIndex now = table_->currentIndex();
        if (!now.isValid()) return ControlView::anchor();
        GridTable* table = table_->shower(now.column());
        const QRect cell = table->visualRect(now);
        return {table->viewport()->mapToGlobal(cell.topLeft()), cell.size()};
    }
    void addItems(QMenu& menu, std::optional<size_t> column) {
        fill(menu, gridMenu(grid_, column));
        if (!column) return;
        menu.addAction("F&ilter...", QKeySequence("Ctrl+Shift+F"), this, [this, c = *column] {
            if (const auto at = grid_.sight.placeOfColumn(c)) chooseFilter(static_cast<int>(*at));
        });
    }
    void fill(QMenu& menu, const std::vector<GridMenuItem>& items) {
        for (const GridMenuItem& item : items) {
            if (item.caption == "-") {
                menu.addSeparator();
            } else if (!item.below.empty()) {
                fill(*menu.addMenu(toQt(item.caption)), item.below);
            } else {
                QAction* action =
                    menu.addAction(toQt(item.caption), this, [this, act = item.act] { run(act); });
                // Shown only: the table itself hears the key.
                action->setShortcut(QKeySequence(toQt(item.key)));
                action->setShortcutContext(Qt::WidgetShortcut);
                action->setEnabled(item.enabled);
                action->setCheckable(item.checkable);
                action->setChecked(item.checked);
            }
        }
    }
    void chooseFilter(int place) {
        if (place < 0 || !window().waitsForInput()) return;
        const size_t c = model_.gridColumn(place);
        GridFilter filter(grid_, c, table_);
        if (filter.exec() == QDialog::Accepted)
            run([&] {
                if (const auto texts = filter.chosen())
                    grid_.sight.filter(c, *texts);
                else
                    grid_.sight.clearFilter(c);
            });
        table_->setFocus();
    }

    static constexpr int kTypingPause = 1000;

    Grid& grid_;
    GridModel& model_;
    QWidget* panel_;
    GridTable* table_ = nullptr;
    GridChips* chips_ = nullptr;
    GridTotals* totals_ = nullptr;
    GridFindBar* find_ = nullptr;
    GridEditor* editor_ = nullptr;
    GridEditor* frozenEditor_ = nullptr;
    QBasicTimer typing_;
    std::vector<size_t> columnsShown_;
    size_t frozenShown_ = 0;
    std::optional<std::pair<size_t, size_t>> moved_;
    std::optional<int> menuColumn_;  // on which the mouse opens the menu
    int zoomShown_ = 100;
    std::vector<int> widths_;      // that the user has given, by columns, at 100 %; 0: none
    std::vector<int> ownWidths_;   // as the screen has them, at the zoom that is shown
    std::vector<int> laidWidths_;  // as they were laid out
};

}  // namespace

std::unique_ptr<ControlView> makeGridView(ScreenWindow& window, Grid& grid) {
    return std::make_unique<GridView>(window, grid);
}

}  // namespace owb
