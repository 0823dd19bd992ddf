#include "qt/grid_delegate.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include "qt/qt_text.h"

namespace owb {

namespace {

constexpr double kSelectionShare = 0.30, kRowShare = 0.07, kHitShare = 0.5;
constexpr int kBoxSide = 13;
const QColor kHitColor(255, 214, 0);

}  // namespace

GridDelegate::Standing GridDelegate::standing(const QModelIndex& index, size_t r, size_t c) const {
    const auto block = grid_.cursor.block();
    const bool chosen =
        block && (block->several() || grid_.singleRows) &&
        block->holds(static_cast<size_t>(index.row()), static_cast<size_t>(index.column()));
    if (grid_.find.isOpen() && grid_.find.isHit(r, c)) return chosen ? ChosenHit : Hit;
    if (chosen) return Chosen;
    return static_cast<int>(r) == grid_.currentRow() ? CurrentRow : Plain;
}

// A legend's colour shows through what is chosen, found, or in the current row.
const CellColors& GridDelegate::colors(Color back, Color fore, Standing standing,
                                       const QPalette& palette) const {
    if (palette_ != palette.cacheKey()) {
        colors_.clear();
        palette_ = palette.cacheKey();
        lines_.clear();
    }
    const auto [at, made] = colors_.try_emplace({back, fore, standing});
    if (!made) return at->second;
    CellColors& colors = at->second;
    colors = cellColors(back, fore, palette);
    const QColor highlight = palette.color(QPalette::Highlight);
    if (standing == Hit || standing == ChosenHit)
        colors.back = mixed(colors.back, kHitColor, kHitShare);
    if (standing == Chosen || standing == ChosenHit)
        colors.back = mixed(colors.back, highlight, kSelectionShare);
    if (standing == CurrentRow) colors.back = mixed(colors.back, highlight, kRowShare);
    colors.fore = standingOut(colors.fore, {colors.back}, kTextContrast);
    return colors;
}

const QColor& GridDelegate::line(const QColor& back, const QModelIndex& next,
                                 const QPalette& palette) const {
    QColor beyond = palette.color(QPalette::Base);
    if (next.isValid()) {
        const size_t r = model_.row(next), c = model_.column(next);
        beyond = colors(grid_.backColor(r, c), grid_.foreColor(r, c), standing(next, r, c), palette)
                     .back;
    }
    const auto [at, made] = lines_.try_emplace({back.rgb(), beyond.rgb()});
    if (made) at->second = standingOut(lineColor(palette), {back, beyond}, kMarkContrast);
    return at->second;
}

void GridDelegate::paintGround(QPainter& painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index, const QColor& back) const {
    painter.fillRect(option.rect, back);
    if (grid_.backColor(model_.row(index), model_.column(index)) == kButtonFaceColor)
        painter.fillRect(
            option.rect,
            QBrush(mixed(back, option.palette.color(QPalette::Text), 0.28), Qt::BDiagPattern));
    painter.setPen(line(back, index.siblingAtRow(index.row() + 1), option.palette));
    painter.drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
    painter.setPen(line(back, index.siblingAtColumn(index.column() + 1), option.palette));
    painter.drawLine(option.rect.topRight(), option.rect.bottomRight());
}

void GridDelegate::paintCheck(QPainter& painter, const QStyleOptionViewItem& option, size_t r,
                              size_t c, const QColor& back) const {
    QRect box(0, 0, kBoxSide, kBoxSide);
    box.moveCenter(option.rect.center());
    const QColor ink = standingOut(option.palette.color(QPalette::Text), {back}, kMarkContrast);
    painter.setPen(grid_.locked(r, c) ? mixed(back, ink, 0.6) : ink);
    painter.drawRect(box);
    if (!grid_.checked(r, c)) return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(ink, 2));
    const QPoint corner = box.topLeft();
    painter.drawPolyline(
        QPolygon({corner + QPoint(3, 6), corner + QPoint(6, 9), corner + QPoint(10, 3)}));
    painter.setRenderHint(QPainter::Antialiasing, false);
}

void GridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    const size_t r = model_.row(index), c = model_.column(index);
    const Color back = grid_.backColor(r, c), fore = grid_.foreColor(r, c);
    const CellColors& colors = this->colors(back, fore, standing(index, r, c), option.palette);
    const bool current = static_cast<int>(r) == grid_.currentRow();
    paintGround(*painter, option, index, colors.back);

    const CellType type = grid_.cellType(r, c);
    if (type == CellType::Check) {
        paintCheck(*painter, option, r, c, colors.back);
    } else if (!grid_.cell(r, c).empty()) {
        const bool bold = current && index.column() < model_.frozen();
        if (bold) {
            QFont font = option.font;
            font.setBold(true);
            painter->setFont(font);
        }
        painter->setPen(colors.fore);
        const QRect room = option.rect.adjusted(kPadding, 0, -kPadding, 0);
        painter->drawText(room,
                          static_cast<int>(alignmentOf(grid_.column(c), type)) | Qt::TextSingleLine,
                          painter->fontMetrics().elidedText(shownText(grid_, r, c), Qt::ElideRight,
                                                            room.width()));
        if (bold) painter->setFont(option.font);
    }
    if (!current || static_cast<int>(c) != grid_.currentColumn() || grid_.singleRows) return;
    // The current cell, thicker while the keys come here; of a list the table marks the whole row.
    const QWidget* table = option.widget;
    const bool focused =
        table->hasFocus() || (table->focusProxy() && table->focusProxy()->hasFocus());
    painter->setPen(
        QPen(standingOut(option.palette.color(QPalette::Highlight), {colors.back}, kMarkContrast),
             focused ? 2 : 1));
    painter->drawRect(option.rect.adjusted(focused ? 1 : 0, focused ? 1 : 0, -2, -2));
}

QSize GridDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const QFontMetrics metrics(option.font);
    const int text =
        metrics.horizontalAdvance(shownText(grid_, model_.row(index), model_.column(index)));
    return {text + 2 * kPadding + 2, metrics.height()};
}

bool GridDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                             const QStyleOptionViewItem& option, const QModelIndex& index) {
    if (event->type() == QEvent::ToolTip && index.isValid()) {
        QStyleOptionViewItem drawn = option;
        initStyleOption(&drawn, index);
        QString tip = index.data(Qt::ToolTipRole).toString();
        if (tip.isEmpty() && sizeHint(drawn, index).width() > option.rect.width())
            tip = index.data(Qt::DisplayRole).toString();
        if (tip.isEmpty()) return false;
        QToolTip::showText(event->globalPos(), tip, view);
        return true;
    }
    return QStyledItemDelegate::helpEvent(event, view, option, index);
}

}  // namespace owb
