// The table widget of a grid: keys as a clerk expects them, and a second table laid over the
// columns that stay in sight.
#pragma once

#include <QTableView>

#include "qt/grid_model.h"

namespace owb {

class GridTable final : public QTableView {
  public:
    // What the table leaves to the view of the grid.
    class Owner {
      public:
        virtual ~Owner() = default;
        // Enter on a cell that cannot be edited; the space bar on a check box.
        virtual void pressed(const QModelIndex& index) = 0;
        virtual bool toggled(const QModelIndex& index) = 0;
        virtual void copyCells() = 0;
        virtual void pasteCells() = 0;
        virtual void openColumnMenu(int column, const QPoint& at) = 0;
        // Whether the last edit was refused: the walk stays where it is.
        virtual bool refused() const = 0;
    };

    GridTable(GridModel& model, Owner& owner, GridTable* under = nullptr);

    // After the columns or their number at the left have changed.
    void layFrozen();
    GridTable* frozen() const { return frozen_; }
    // To the next cell that can be edited, or back; false when there is none.
    bool walk(bool forward);

    QSize sizeHint() const override;
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void focusInEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;

  private:
    int frozenWidth() const;

    GridModel& model_;
    Owner& owner_;
    GridTable* const under_;       // the table that this one lies over
    GridTable* frozen_ = nullptr;  // the one that lies over this
};

}  // namespace owb
