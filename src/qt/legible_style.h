// The desktop's style with borders that can be seen: boxes, check boxes, options, lists and buttons
// get an outline of 3:1 against their ground, in light and dark palettes alike.
#pragma once

#include <QProxyStyle>

namespace owb {

class LegibleStyle final : public QProxyStyle {
  public:
    explicit LegibleStyle(QStyle* base) : QProxyStyle(base) {}
    // Makes it the application's, once.
    static void install();

    using QProxyStyle::polish;
    // What is selected can be read.
    void polish(QPalette& palette) override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;
};

}  // namespace owb
