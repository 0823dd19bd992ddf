// Draws the cells of a grid. Cells are many and a page must be drawn within a frame, so a cell is a
// filled rectangle, two lines and a text, and asks the toolkit's style for nothing.
#pragma once

#include <QStyledItemDelegate>
#include <map>
#include <tuple>

#include "qt/cell_colors.h"
#include "qt/grid_model.h"

namespace owb {

class GridDelegate final : public QStyledItemDelegate {
  public:
    GridDelegate(const Grid& grid, const GridModel& model, QObject* parent)
        : QStyledItemDelegate(parent), grid_(grid), model_(model) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    // With the room around the text, so that a column fitted to it shows it whole.
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    // A tip of the screen's, or the whole text where it is cut.
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

    static constexpr int kPadding = 4;

  private:
    enum Standing { Plain, CurrentRow, Chosen, Hit, ChosenHit };
    const CellColors& colors(Color back, Color fore, Standing standing,
                             const QPalette& palette) const;
    Standing standing(const QModelIndex& index, size_t r, size_t c) const;
    void paintGround(QPainter& painter, const QStyleOptionViewItem& option,
                     const QModelIndex& index, const QColor& back) const;
    // The line to the next cell, which must be seen on the ground of both.
    const QColor& line(const QColor& back, const QModelIndex& next, const QPalette& palette) const;
    void paintCheck(QPainter& painter, const QStyleOptionViewItem& option, size_t r, size_t c,
                    const QColor& back) const;

    const Grid& grid_;
    const GridModel& model_;
    // Contrast is dear to work out, and few kinds of cells make a page.
    mutable std::map<std::tuple<Color, Color, Standing>, CellColors> colors_;
    mutable std::map<std::pair<QRgb, QRgb>, QColor> lines_;
    mutable qint64 palette_ = 0;
};

}  // namespace owb
