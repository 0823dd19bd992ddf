// A grid as the toolkit's table: the rows that are not hidden, in the order that the user sorts
// them into (the grid itself keeps its own order), and the columns that the screen shows.
#pragma once

#include <QAbstractTableModel>
#include <optional>
#include <vector>

#include "screen/grid.h"

namespace owb {

class GridModel final : public QAbstractTableModel {
  public:
    explicit GridModel(Grid& grid) : grid_(grid) { collect(); }

    // Takes over what the screen has changed since; true when rows or columns did.
    bool sync();
    // By the cells of a column; nothing: in the grid's own order.
    void order(std::optional<int> column, Qt::SortOrder direction);

    size_t row(const QModelIndex& index) const { return rows_[static_cast<size_t>(index.row())]; }
    size_t column(const QModelIndex& index) const { return gridColumn(index.column()); }
    size_t gridColumn(int column) const { return columns_[static_cast<size_t>(column)]; }
    // Of a cell of the grid; invalid while it is hidden.
    QModelIndex indexOf(int row, int column) const;
    bool editable(const QModelIndex& index) const;
    int frozen() const;  // columns at the left that stay in sight

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

  private:
    void collect();
    void sortRows();

    Grid& grid_;
    std::vector<size_t> rows_, columns_;
    std::optional<size_t> sortColumn_;
    Qt::SortOrder direction_ = Qt::AscendingOrder;
    uint64_t shape_ = 0, content_ = 0;
};

// As cells of the column stand: numbers at the right unless the screen says otherwise.
Qt::Alignment alignmentOf(const GridColumn& column, CellType type);

}  // namespace owb
