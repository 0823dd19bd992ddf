// A grid painted on pages: for the printer, its preview and PDF files. Cells have the colours that
// the screen has given them, on white; the desktop's palette has no part in it.
#pragma once

#include <QFont>

#include "screen/print_pages.h"

class QPainter;

namespace owb {

class GridPainter {
  public:
    // A QGuiApplication must exist. The grid must live as long as this one.
    GridPainter(const Grid& grid, const PrintHeading& heading, const PrintPaper& paper);

    size_t pageCount() const { return pages_.pages.size(); }
    // The painter's unit must be a point, its origin the corner of what can be printed on.
    void paint(QPainter& painter, size_t page) const;

  private:
    void paintHead(QPainter& painter) const;
    void paintTable(QPainter& painter, const PrintedPage& page) const;
    void paintHeader(QPainter& painter, const PrintedPage& page) const;
    void paintCell(QPainter& painter, const QRectF& at, size_t row, size_t c) const;

    const Grid& grid_;
    PrintPaper paper_;
    QFont plain_, bold_;
    PrintFont font_;
    PrintPages pages_;
};

}  // namespace owb
