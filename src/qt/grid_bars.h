// The bars above and below the table of a grid: legend, filters, find, totals. Each shows itself
// only while it has something to show.
#pragma once

#include <QWidget>
#include <functional>

#include "screen/grid.h"

class QHBoxLayout;
class QLabel;
class QLineEdit;

namespace owb {

class GridTable;

// Runs what the user did under the window's rules and brings all in step; false when no input is
// taken now.
using GridDeed = std::function<bool(const std::function<void()>&)>;

// A chip for each colour, which goes to the next cell that has it; one for each filter, which takes
// it away.
class GridChips final : public QWidget {
  public:
    GridChips(Grid& grid, GridDeed act);
    void sync();

  private:
    void addLegend();
    void addFilters();

    Grid& grid_;
    GridDeed act_;
    QHBoxLayout* line_;
    QString shown_;  // what the chips stand for now
};

class GridFindBar final : public QWidget {
  public:
    // `done`: the keys go back to the table.
    GridFindBar(Grid& grid, GridDeed act, std::function<void()> done);
    void sync();

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    Grid& grid_;
    GridDeed act_;
    std::function<void()> done_;
    QLineEdit* text_;
    QLabel* count_;
};

// The sums of the columns that have one, below their cells.
class GridTotals final : public QWidget {
  public:
    GridTotals(Grid& grid, GridTable& table);
    void sync();

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    Grid& grid_;
    GridTable& table_;
};

}  // namespace owb
