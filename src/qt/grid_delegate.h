// Draws the cells of a grid and makes their editors. Cells are many and a page must be drawn within
// a frame, so a cell is a filled rectangle and a text and asks the style for nothing but check
// boxes.
#pragma once

#include <QStyledItemDelegate>
#include <functional>

#include "qt/grid_model.h"

namespace owb {

class GridDelegate final : public QStyledItemDelegate {
  public:
    // What the user's edit goes through: begins one (false: the cell takes none), ends it.
    struct Route {
        std::function<bool(const QModelIndex&)> begin;
        std::function<void(const QModelIndex&, const QString&)> end;
    };
    GridDelegate(const Grid& grid, const GridModel& model, Route route, QObject* parent)
        : QStyledItemDelegate(parent), grid_(grid), model_(model), route_(std::move(route)) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;

  private:
    const Grid& grid_;
    const GridModel& model_;
    Route route_;
};

}  // namespace owb
