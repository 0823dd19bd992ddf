#include "qt/grid_model.h"

#include "base/date_time.h"
#include "base/utf8.h"
#include "qt/qt_text.h"

namespace owb {

Qt::Alignment alignmentOf(const GridColumn& column, CellType type) {
    if (type == CellType::Check || column.align == Align::Center) return Qt::AlignCenter;
    if (type == CellType::Number || column.align == Align::Right)
        return Qt::AlignRight | Qt::AlignVCenter;
    return Qt::AlignLeft | Qt::AlignVCenter;
}

void GridModel::collect() {
    shape_ = grid_.shape();
    content_ = grid_.content();
    rows_.clear();
    for (size_t r = 0; r < grid_.rowCount(); ++r)
        if (!grid_.rowHidden(r)) rows_.push_back(r);
    columns_.clear();
    for (size_t c = 0; c < grid_.columnCount(); ++c)
        if (!grid_.column(c).hidden) columns_.push_back(c);
    if (sortColumn_ && *sortColumn_ >= grid_.columnCount()) sortColumn_.reset();
    if (sortColumn_) sortRows();
}

bool GridModel::sync() {
    if (shape_ != grid_.shape()) {
        beginResetModel();
        collect();
        endResetModel();
        return true;
    }
    if (content_ != grid_.content()) {
        content_ = grid_.content();
        if (!rows_.empty() && !columns_.empty())
            Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
    }
    return false;
}

void GridModel::order(std::optional<int> column, Qt::SortOrder direction) {
    beginResetModel();
    sortColumn_.reset();
    if (column) sortColumn_ = gridColumn(*column);
    direction_ = direction;
    collect();
    endResetModel();
}

void GridModel::sortRows() {
    const size_t c = *sortColumn_;
    const CellType type = grid_.column(c).type;
    const auto dayOf = [&](size_t row) {
        const auto date = parseTypedDate(grid_.cell(row, c));
        return date ? date->day : 0;
    };
    const auto before = [&](size_t a, size_t b) {
        if (type == CellType::Number) return grid_.number(a, c) < grid_.number(b, c);
        if (type == CellType::Date) return dayOf(a) < dayOf(b);
        return compareText(grid_.cell(a, c), grid_.cell(b, c)) < 0;
    };
    std::stable_sort(rows_.begin(), rows_.end(), [&](size_t a, size_t b) {
        return direction_ == Qt::AscendingOrder ? before(a, b) : before(b, a);
    });
}

QModelIndex GridModel::indexOf(int row, int column) const {
    const auto r = std::find(rows_.begin(), rows_.end(), static_cast<size_t>(row));
    const auto c = std::find(columns_.begin(), columns_.end(), static_cast<size_t>(column));
    if (row < 0 || column < 0 || r == rows_.end()) return {};
    // A current column that is hidden still has its row.
    const auto shown = c == columns_.end() ? 0 : c - columns_.begin();
    return index(static_cast<int>(r - rows_.begin()), static_cast<int>(shown));
}

bool GridModel::editable(const QModelIndex& index) const {
    return index.isValid() && grid_.takesInput() && !grid_.locked(row(index), column(index));
}

int GridModel::frozen() const {
    int count = 0;
    for (const size_t c : columns_) count += c < grid_.frozenColumns;
    return count;
}

int GridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int GridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
    const size_t r = row(index), c = column(index);
    switch (role) {
        case Qt::DisplayRole:
        case Qt::EditRole:
            return toQt(grid_.cell(r, c));
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
            return toQt(column.caption);
        case Qt::TextAlignmentRole:
            return QVariant::fromValue(alignmentOf(column, column.type));
        case Qt::ToolTipRole:
            if (column.toolTip.empty() && grid_.cellToolTip)
                return toQt(grid_.cellToolTip(Grid::kHeader, c));
            return toQt(column.toolTip);
        default:
            return {};
    }
}

Qt::ItemFlags GridModel::flags(const QModelIndex& index) const {
    const Qt::ItemFlags shown = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    return index.isValid() && editable(index) ? shown | Qt::ItemIsEditable : shown;
}

}  // namespace owb
