// A grid as the toolkit's table: the rows and columns that are in sight, in the order in which the
// user sees them.
#pragma once

#include <QAbstractTableModel>

#include "screen/grid.h"

namespace owb {

class GridModel final : public QAbstractTableModel {
  public:
    explicit GridModel(const Grid& grid) : grid_(grid), version_(grid.sight.version()) {}

    // Takes over what has changed since; true when other rows or columns are in sight.
    bool sync();

    size_t row(const QModelIndex& index) const {
        return grid_.sight.rows()[static_cast<size_t>(index.row())];
    }
    size_t column(const QModelIndex& index) const { return gridColumn(index.column()); }
    size_t gridColumn(int column) const {
        return grid_.sight.columns()[static_cast<size_t>(column)];
    }
    // Of a cell of the grid; invalid while its row is out of sight.
    QModelIndex indexOf(int row, int column) const;
    bool editable(const QModelIndex& index) const;
    int frozen() const { return static_cast<int>(grid_.sight.frozen()); }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

  private:
    const Grid& grid_;
    uint64_t version_, content_ = 0;
};

// As cells of the column stand: numbers at the right unless the screen says otherwise.
Qt::Alignment alignmentOf(const GridColumn& column, CellType type);
// What stands in a cell, amounts with the Indian grouping of digits.
QString shownText(const Grid& grid, size_t row, size_t c);

}  // namespace owb
