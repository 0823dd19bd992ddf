#include "qt/legible_style.h"

#include <QApplication>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleOption>

#include "qt/contrast.h"

namespace owb {

namespace {

enum class Outline { None, Box, Rounded, Circle };

Outline outlineOf(QStyle::PrimitiveElement element) {
    switch (element) {
        case QStyle::PE_IndicatorCheckBox:
        case QStyle::PE_IndicatorItemViewItemCheck:
        case QStyle::PE_Frame:
            return Outline::Box;
        case QStyle::PE_FrameLineEdit:
        case QStyle::PE_PanelButtonCommand:
        case QStyle::PE_PanelButtonTool:
            return Outline::Rounded;
        case QStyle::PE_IndicatorRadioButton:
            return Outline::Circle;
        default:
            return Outline::None;
    }
}

void drawOutline(Outline outline, const QStyleOption& option, QPainter& painter) {
    if (outline == Outline::None || !(option.state & QStyle::State_Enabled)) return;
    constexpr double kRound = 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, outline != Outline::Box);
    painter.setBrush(Qt::NoBrush);
    // Stands out by more than is wanted: a line that is smoothed at its edges loses some.
    painter.setPen(
        standingOut(option.palette.color(QPalette::Mid),
                    {option.palette.color(QPalette::Window), option.palette.color(QPalette::Base)},
                    kMarkContrast + 1));
    const QRectF line = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (outline == Outline::Circle)
        painter.drawEllipse(line);
    else if (outline == Outline::Rounded)
        painter.drawRoundedRect(line, kRound, kRound);
    else
        painter.drawRect(option.rect.adjusted(0, 0, -1, -1));
    painter.restore();
}

}  // namespace

void LegibleStyle::install() {
    if (dynamic_cast<LegibleStyle*>(QApplication::style()) != nullptr) return;
    QApplication::setStyle(new LegibleStyle(QStyleFactory::create(QApplication::style()->name())));
}

void LegibleStyle::polish(QPalette& palette) {
    QProxyStyle::polish(palette);
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        const QColor text = palette.color(group, QPalette::HighlightedText);
        palette.setColor(
            group, QPalette::Highlight,
            standingOut(palette.color(group, QPalette::Highlight), {text}, kTextContrast));
    }
}

void LegibleStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                 QPainter* painter, const QWidget* widget) const {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    drawOutline(outlineOf(element), *option, *painter);
}

void LegibleStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                      QPainter* painter, const QWidget* widget) const {
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_ComboBox) drawOutline(Outline::Rounded, *option, *painter);
}

}  // namespace owb
