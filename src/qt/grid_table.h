// The table widget of a grid: hands keys and the mouse to its owner, draws what the cells do not
// (the handle of what is chosen, the current row of a list), and lays a second table over the
// columns that stay in sight. The toolkit's own selection and editing are off: the grid knows both.
#pragma once

#include <QTableView>

#include "qt/grid_model.h"

namespace owb {

class GridTable final : public QTableView {
  public:
    class Owner {
      public:
        virtual ~Owner() = default;
        // False when the grid has no use for the key.
        virtual bool pressed(const std::string& key) = 0;
        virtual void typed(const std::string& text) = 0;
        virtual void focusLeaves(bool forward) = 0;
        // The mouse: where a button went down (with Shift: extends), over which cell it is dragged,
        // and where it went up again.
        virtual void mousePressed(const QModelIndex& at, bool extends) = 0;
        virtual void mouseDragged(const QModelIndex& at) = 0;
        virtual void mouseClicked(const QModelIndex& at) = 0;
        virtual void mouseClickedTwice(const QModelIndex& at) = 0;
        virtual void handleDropped(const QModelIndex& at) = 0;
        virtual void zoomed(bool in) = 0;
        // Rows that are seen at once have changed, or the cells have moved.
        virtual void viewMoved() = 0;
    };

    GridTable(Grid& grid, GridModel& model, Owner& owner, GridTable* under = nullptr);

    // After the columns, their number at the left, or the zoom have changed.
    void layFrozen();
    void applyZoom();
    GridTable* frozen() const { return frozen_; }
    // The one of the two tables that shows a column, and a cell's place in it.
    GridTable* shower(int column);
    void updateAll();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    int frozenWidth() const;
    QRect handle() const;
    QModelIndex cellTowards(const QPoint& point) const;

    Grid& grid_;
    GridModel& model_;
    Owner& owner_;
    GridTable* const under_;       // the table that this one lies over
    GridTable* frozen_ = nullptr;  // the one that lies over this
    QPersistentModelIndex pressedAt_;
    bool draggingHandle_ = false;
    QPersistentModelIndex handleOver_;
    int zoom_ = 100;
};

}  // namespace owb
