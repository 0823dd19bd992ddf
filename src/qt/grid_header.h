// The header of a grid: captions of up to two lines ("05" over "Thu"), the column of the current
// cell and the days off tinted, signs for the order and for filters.
#pragma once

#include <QHeaderView>

namespace owb {

class Grid;
class GridModel;

class GridHeader final : public QHeaderView {
  public:
    GridHeader(const Grid& grid, const GridModel& model, QWidget* parent);

    QSize sizeHint() const override;

  protected:
    void paintSection(QPainter* painter, const QRect& rect, int section) const override;
    QSize sectionSizeFromContents(int section) const override;

  private:
    QFont fontOf(bool small) const;
    int signsWidth(int section) const;

    const Grid& grid_;
    const GridModel& model_;
};

}  // namespace owb
