#include "qt/grid_model.h"

#include "base/number_text.h"
#include "qt/qt_text.h"

namespace owb {

Qt::Alignment alignmentOf(const GridColumn& column, CellType type) {
    if (type == CellType::Check || column.align == Align::Center) return Qt::AlignCenter;
    if (type == CellType::Number || column.align == Align::Right)
        return Qt::AlignRight | Qt::AlignVCenter;
    return Qt::AlignLeft | Qt::AlignVCenter;
}

QString shownText(const Grid& grid, size_t row, size_t c) {
    const std::string& text = grid.cell(row, c);
    return toQt(grid.column(c).amount && !text.empty() ? groupIndian(text) : text);
}

bool GridModel::sync() {
    if (version_ != grid_.sight.version()) {
        beginResetModel();
        version_ = grid_.sight.version();
        endResetModel();
        return true;
    }
    if (content_ != grid_.content()) {
        content_ = grid_.content();
        if (rowCount() > 0 && columnCount() > 0)
            Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
    }
    return false;
}

QModelIndex GridModel::indexOf(int row, int column) const {
    if (row < 0 || column < 0) return {};
    const auto r = grid_.sight.placeOfRow(static_cast<size_t>(row));
    if (!r || columnCount() == 0) return {};
    // A current column that is out of sight still has its row.
    const size_t c = grid_.sight.placeOfColumn(static_cast<size_t>(column)).value_or(0);
    return index(static_cast<int>(*r), static_cast<int>(c));
}

bool GridModel::editable(const QModelIndex& index) const {
    return index.isValid() && grid_.takesInput() && !grid_.locked(row(index), column(index));
}

int GridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(grid_.sight.rows().size());
}

int GridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(grid_.sight.columns().size());
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
    const size_t r = row(index), c = column(index);
    switch (role) {
        case Qt::DisplayRole:
        case Qt::EditRole:
            return shownText(grid_, r, c);
        case Qt::ToolTipRole:
            return grid_.cellToolTip ? toQt(grid_.cellToolTip(r, c)) : QString();
        default:
            return {};
    }
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section >= columnCount()) return {};
    const size_t c = gridColumn(section);
    const GridColumn& column = grid_.column(c);
    switch (role) {
        case Qt::DisplayRole:
            return toQt(column.heading.empty() ? column.caption : column.heading);
        case Qt::AccessibleTextRole:
            return toQt(column.caption);
        case Qt::ToolTipRole:
            if (!column.toolTip.empty()) return toQt(column.toolTip);
            if (grid_.cellToolTip) return toQt(grid_.cellToolTip(Grid::kHeader, c));
            return column.heading.empty() ? QString() : toQt(column.caption);
        default:
            return {};
    }
}

Qt::ItemFlags GridModel::flags(const QModelIndex& index) const {
    const Qt::ItemFlags shown = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    return index.isValid() && editable(index) ? shown | Qt::ItemIsEditable : shown;
}

}  // namespace owb
