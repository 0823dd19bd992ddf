#include "qt/grid_header.h"

#include <QPainter>

#include "qt/cell_colors.h"
#include "qt/grid_delegate.h"
#include "qt/grid_model.h"
#include "qt/qt_text.h"

namespace owb {

namespace {

constexpr int kRoom = 8;         // above and below the lines
constexpr double kSmall = 0.85;  // letters of a caption of two lines
constexpr int kSmallPadding = 1;
constexpr int kSign = 9;  // width of the sign for the order, or for a filter
constexpr double kCurrentTint = 0.25;

// A small triangle, up or down.
QPolygon arrow(const QPoint& center, bool down) {
    const int tip = down ? 3 : -3;
    return QPolygon({center + QPoint(-4, -tip), center + QPoint(4, -tip), center + QPoint(0, tip)});
}

QPolygon funnel(const QPoint& at) {
    return QPolygon({at + QPoint(-4, -4), at + QPoint(4, -4), at + QPoint(1, 0), at + QPoint(1, 4),
                     at + QPoint(-1, 4), at + QPoint(-1, 0)});
}

}  // namespace

GridHeader::GridHeader(const Grid& grid, const GridModel& model, QWidget* parent)
    : QHeaderView(Qt::Horizontal, parent), grid_(grid), model_(model) {
    setSectionsClickable(true);
    setSectionsMovable(true);
    setHighlightSections(false);
    setContextMenuPolicy(Qt::CustomContextMenu);
    setMinimumSectionSize(12);
}

// Captions of two lines stand close, so that a month's days fit.
QFont GridHeader::fontOf(bool small) const {
    QFont letters = font();
    if (small) letters.setPointSizeF(letters.pointSizeF() * kSmall);
    return letters;
}

QSize GridHeader::sizeHint() const {
    int lines = 1;
    for (size_t c = 0; c < grid_.columnCount(); ++c)
        lines = std::max(lines, static_cast<int>(toQt(grid_.column(c).heading).count('\n')) + 1);
    return {QHeaderView::sizeHint().width(), lines * fontMetrics().height() + kRoom};
}

int GridHeader::signsWidth(int section) const {
    const size_t c = model_.gridColumn(section);
    const bool ordered = grid_.sight.order() && grid_.sight.order()->column == c;
    return (ordered ? kSign + 2 : 0) + (grid_.sight.filters().contains(c) ? kSign + 2 : 0);
}

QSize GridHeader::sectionSizeFromContents(int section) const {
    const QString caption = model_.headerData(section, Qt::Horizontal, Qt::DisplayRole).toString();
    const QStringList lines = caption.split('\n');
    const bool small = lines.size() > 1;
    const QFontMetrics metrics(fontOf(small));
    int width = 0;
    for (const QString& line : lines) width = std::max(width, metrics.horizontalAdvance(line));
    const int padding = small ? kSmallPadding : GridDelegate::kPadding;
    return {width + 2 * padding + 2 + signsWidth(section), sizeHint().height()};
}

void GridHeader::paintSection(QPainter* painter, const QRect& rect, int section) const {
    if (!rect.isValid() || section >= model_.columnCount()) return;
    const size_t c = model_.gridColumn(section);
    const GridColumn& column = grid_.column(c);
    const QPalette& colors = palette();
    const QColor text = colors.color(QPalette::ButtonText);
    QColor back = mixed(colors.color(QPalette::Button), colors.color(QPalette::Text), 0.04);
    if (column.headingColor != kDefaultColor)
        back = cellColors(column.headingColor, kDefaultColor, colors).back;
    if (static_cast<int>(c) == grid_.currentColumn() && !grid_.singleRows)
        back = mixed(back, colors.color(QPalette::Highlight), kCurrentTint);
    painter->fillRect(rect, back);
    painter->setPen(lineColor(colors));
    painter->drawLine(rect.bottomLeft(), rect.bottomRight());
    painter->drawLine(rect.topRight(), rect.bottomRight());

    const QColor ink = standingOut(text, {back}, kTextContrast);
    int right = rect.right() - 2;
    painter->setBrush(ink);
    painter->setPen(Qt::NoPen);
    if (const auto& order = grid_.sight.order(); order && order->column == c) {
        painter->drawPolygon(arrow({right - kSign / 2, rect.center().y()}, order->descending));
        right -= kSign + 2;
    }
    if (grid_.sight.filters().contains(c)) {
        painter->drawPolygon(funnel({right - kSign / 2, rect.center().y()}));
        right -= kSign + 2;
    }
    painter->setBrush(Qt::NoBrush);
    painter->setPen(ink);
    const QStringList lines =
        model_.headerData(section, Qt::Horizontal, Qt::DisplayRole).toString().split('\n');
    const bool two = lines.size() > 1;
    const int padding = two ? kSmallPadding : GridDelegate::kPadding;
    QRect room = rect.adjusted(padding, 0, 0, 0);
    room.setRight(signsWidth(section) > 0 ? right : rect.right() - padding);
    painter->setFont(fontOf(two));
    const int height = painter->fontMetrics().height();
    room.setTop(rect.center().y() - static_cast<int>(lines.size()) * height / 2);
    room.setHeight(height);
    const Qt::Alignment align = two ? Qt::AlignCenter : alignmentOf(column, column.type);
    for (const QString& line : lines) {
        painter->drawText(room, static_cast<int>(align) | Qt::TextSingleLine,
                          painter->fontMetrics().elidedText(line, Qt::ElideRight, room.width()));
        room.translate(0, height);
    }
}

}  // namespace owb
