#include "qt/grid_delegate.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPainter>

#include "qt/cell_colors.h"
#include "qt/qt_text.h"

namespace owb {

namespace {

constexpr int kPadding = 5;
constexpr double kSelectionShare = 0.30;

QColor mixed(const QColor& ground, const QColor& over, double share) {
    const auto part = [&](int a, int b) { return static_cast<int>(a + (b - a) * share); };
    return {part(ground.red(), over.red()), part(ground.green(), over.green()),
            part(ground.blue(), over.blue())};
}

}  // namespace

void GridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    const size_t r = model_.row(index), c = model_.column(index);
    CellColors colors{option.palette.color(QPalette::Base), option.palette.color(QPalette::Text)};
    const Color back = grid_.backColor(r, c), fore = grid_.foreColor(r, c);
    if (back != kDefaultColor || fore != kDefaultColor)
        colors = cellColors(back, fore, option.palette);
    // A legend's colour shows through the selection.
    const bool selected = option.state & QStyle::State_Selected;
    if (selected)
        colors.back =
            mixed(colors.back, option.palette.color(QPalette::Highlight), kSelectionShare);
    painter->fillRect(option.rect, colors.back);

    const CellType type = grid_.cellType(r, c);
    const std::string& text = grid_.cell(r, c);
    if (type == CellType::Check) {
        QStyleOptionButton box;
        QStyle* style = QApplication::style();
        box.rect = QStyle::alignedRect(Qt::LeftToRight, Qt::AlignCenter,
                                       QSize(style->pixelMetric(QStyle::PM_IndicatorWidth),
                                             style->pixelMetric(QStyle::PM_IndicatorHeight)),
                                       option.rect);
        box.palette = option.palette;
        box.state = grid_.checked(r, c) ? QStyle::State_On : QStyle::State_Off;
        if (model_.editable(index)) box.state |= QStyle::State_Enabled;
        style->drawPrimitive(QStyle::PE_IndicatorCheckBox, &box, painter);
    } else if (!text.empty()) {
        painter->setPen(colors.fore);
        painter->drawText(option.rect.adjusted(kPadding, 0, -kPadding, 0),
                          static_cast<int>(alignmentOf(grid_.column(c), type)) | Qt::TextSingleLine,
                          toQt(text));
    }
    if (option.state & QStyle::State_HasFocus) {
        painter->setPen(QPen(option.palette.color(QPalette::Highlight), 2));
        painter->drawRect(option.rect.adjusted(1, 1, -1, -1));
    }
}

QWidget* GridDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                    const QModelIndex& index) const {
    const size_t r = model_.row(index), c = model_.column(index);
    const CellType type = grid_.cellType(r, c);
    if (type == CellType::Check || !route_.begin(index)) return nullptr;
    if (type == CellType::Combo) {
        auto* combo = new QComboBox(parent);
        combo->setEditable(grid_.column(c).editable);
        for (const std::string& choice : grid_.choices(r, c)) combo->addItem(toQt(choice));
        combo->setAccessibleName(toQt(grid_.column(c).caption));
        return combo;
    }
    auto* line = new QLineEdit(parent);
    line->setFrame(false);
    line->setAlignment(alignmentOf(grid_.column(c), type));
    line->setAccessibleName(toQt(grid_.column(c).caption));
    return line;
}

void GridDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
    const QString text = index.data(Qt::EditRole).toString();
    if (auto* combo = dynamic_cast<QComboBox*>(editor)) {
        combo->setCurrentIndex(combo->findText(text));
        if (combo->isEditable()) combo->setEditText(text);
    } else if (auto* line = dynamic_cast<QLineEdit*>(editor)) {
        line->setText(text);
        line->selectAll();
    }
}

void GridDelegate::setModelData(QWidget* editor, QAbstractItemModel*,
                                const QModelIndex& index) const {
    if (auto* combo = dynamic_cast<QComboBox*>(editor))
        route_.end(index, combo->currentText());
    else if (auto* line = dynamic_cast<QLineEdit*>(editor))
        route_.end(index, line->text());
}

void GridDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                        const QModelIndex&) const {
    editor->setGeometry(option.rect);
}

}  // namespace owb
