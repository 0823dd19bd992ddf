#include "qt/print/grid_painter.h"

#include <QPainter>

namespace owb {

namespace {

constexpr double kFontSize = 8.5;
constexpr double kThinLine = 0.4, kFirmLine = 1.2;
constexpr QColor kLineColor(0x80, 0x80, 0x80), kHatchColor(0xB8, 0xB8, 0xB8),
    kHeaderColor(0xE8, 0xE8, 0xE8);

QString toQt(const std::string& text) {
    return QString::fromStdString(text);
}

QColor onPaper(Color color, const QColor& otherwise) {
    const auto rgb = paperColor(color);
    return rgb ? QColor(QRgb(*rgb)) : otherwise;
}

// Fonts have whole pixels: texts are measured and drawn at this size and scaled from there.
constexpr int kFontPixels = 100;
constexpr double kFontUnit = kFontSize / kFontPixels;

QFont printFont(bool bold) {
    QFont font;
    font.setFamilies({"Arial", "Sans Serif"});
    font.setPixelSize(kFontPixels);
    font.setBold(bold);
    return font;
}

void drawText(QPainter& painter, const QRectF& at, Qt::Alignment alignment, const QString& text,
              const QFont& font, const QColor& color) {
    painter.save();
    painter.translate(at.topLeft());
    painter.scale(kFontUnit, kFontUnit);
    painter.setFont(font);
    painter.setPen(color);
    const QRectF box(0, 0, at.width() / kFontUnit, at.height() / kFontUnit);
    // A text that just fits must not be elided by a rounding.
    const QString fitting = QFontMetricsF(font).elidedText(text, Qt::ElideRight, box.width() + 1);
    painter.drawText(box, static_cast<int>(alignment) | Qt::TextSingleLine | Qt::TextDontClip,
                     fitting);
    painter.restore();
}

Qt::Alignment alignmentOf(const GridColumn& column, CellType type) {
    if (type == CellType::Check || column.align == Align::Center) return Qt::AlignCenter;
    const bool right = type == CellType::Number || column.align == Align::Right;
    return Qt::AlignVCenter | (right ? Qt::AlignRight : Qt::AlignLeft);
}

}  // namespace

GridPainter::GridPainter(const Grid& grid, const PrintHeading& heading, const PrintPaper& paper)
    : grid_(grid), paper_(paper), plain_(printFont(false)), bold_(printFont(true)) {
    const QFontMetricsF metrics(plain_);
    font_.line = metrics.height() * kFontUnit;
    font_.width = [metrics](const std::string& text) {
        return metrics.horizontalAdvance(toQt(text)) * kFontUnit;
    };
    pages_ = layPages(grid, heading, paper, font_);
}

void GridPainter::paint(QPainter& painter, size_t page) const {
    paintHead(painter);
    painter.save();
    painter.translate(0, pages_.headHeight);
    painter.scale(pages_.scale, pages_.scale);
    paintTable(painter, pages_.pages[page]);
    painter.restore();
    drawText(painter, {0, paper_.height - font_.line, paper_.width, font_.line}, Qt::AlignRight,
             toQt(pageNumber(page, pageCount())), plain_, Qt::black);
}

void GridPainter::paintHead(QPainter& painter) const {
    for (const PrintedText& piece : pages_.head) {
        QRectF at(piece.left, piece.top, piece.width, font_.line);
        if (piece.kind == PrintedText::Chip) {
            const QRectF chip(at.left(), at.top(), font_.line, font_.line);
            painter.fillRect(chip, onPaper(piece.color, Qt::white));
            if (piece.color == kButtonFaceColor)
                painter.fillRect(chip, QBrush(kHatchColor, Qt::BDiagPattern));
            painter.setPen(QPen(kLineColor, kThinLine));
            painter.drawRect(chip);
            at.setLeft(at.left() + chipRoom(font_));
        }
        drawText(painter, at, Qt::AlignVCenter | (piece.atRight ? Qt::AlignRight : Qt::AlignLeft),
                 toQt(piece.text), piece.kind == PrintedText::Bold ? bold_ : plain_, Qt::black);
    }
}

void GridPainter::paintTable(QPainter& painter, const PrintedPage& page) const {
    paintHeader(painter, page);
    double top = pages_.headerHeight;
    for (const size_t row : page.rows) {
        for (const PrintedColumn& column : page.columns)
            paintCell(painter, {column.left, top, column.width, pages_.rowHeight}, row,
                      column.column);
        top += pages_.rowHeight;
    }
    const PrintedColumn& last = page.columns.back();
    painter.setPen(QPen(kLineColor, kThinLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(0, 0, last.left + last.width, top));
    if (page.frozen == 0 || page.frozen >= page.columns.size()) return;
    const double edge = page.columns[page.frozen].left;
    painter.setPen(QPen(kLineColor, kFirmLine));
    painter.drawLine(QPointF(edge, 0), QPointF(edge, top));
}

void GridPainter::paintHeader(QPainter& painter, const PrintedPage& page) const {
    for (const PrintedColumn& column : page.columns) {
        const QRectF box(column.left, 0, column.width, pages_.headerHeight);
        const GridColumn& shown = grid_.column(column.column);
        painter.fillRect(box, onPaper(shown.headingColor, kHeaderColor));
        painter.setPen(QPen(kLineColor, kThinLine));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(box);
        const std::vector<std::string> lines = headerLines(shown, column.width, font_);
        double top = (box.height() - font_.line * static_cast<double>(lines.size())) / 2;
        for (const std::string& line : lines) {
            drawText(painter,
                     {box.left() + kPrintPadding, top, box.width() - 2 * kPrintPadding, font_.line},
                     alignmentOf(shown, shown.type), toQt(line), plain_, Qt::black);
            top += font_.line;
        }
    }
}

void GridPainter::paintCell(QPainter& painter, const QRectF& at, size_t row, size_t c) const {
    const bool isTotal = row == kTotals;
    const Color back = isTotal ? kDefaultColor : grid_.backColor(row, c),
                fore = isTotal ? kDefaultColor : grid_.foreColor(row, c);
    painter.fillRect(at, onPaper(back, isTotal ? kHeaderColor : Qt::white));
    if (back == kButtonFaceColor) painter.fillRect(at, QBrush(kHatchColor, Qt::BDiagPattern));
    painter.setPen(QPen(kLineColor, kThinLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(at);
    const std::string text = printedText(grid_, row, c);
    if (text.empty()) return;
    drawText(painter, at.adjusted(kPrintPadding, 0, -kPrintPadding, 0),
             alignmentOf(grid_.column(c), isTotal ? CellType::Number : grid_.cellType(row, c)),
             toQt(text), plain_, onPaper(fore, Qt::black));
}

}  // namespace owb
