#include "qt/cell_colors.h"

#include <cmath>

namespace owb {

namespace {

constexpr double kReadable = 4.5;  // contrast of text to its ground

double luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

double contrast(const QColor& a, const QColor& b) {
    const double x = luminance(a), y = luminance(b);
    return (std::max(x, y) + 0.05) / (std::min(x, y) + 0.05);
}

QColor colorOf(Color color, const QPalette& palette, QPalette::ColorRole otherwise) {
    switch (color) {
        case kDefaultColor:
            return palette.color(otherwise);
        case kButtonFaceColor:
            return palette.color(QPalette::Button);
        case kToolTipColor:
            return palette.color(QPalette::ToolTipBase);
        default:
            return QColor(color & 0xFF, color >> 8 & 0xFF, color >> 16 & 0xFF);
    }
}

}  // namespace

CellColors cellColors(Color back, Color fore, const QPalette& palette) {
    CellColors colors{colorOf(back, palette, QPalette::Base),
                      colorOf(fore, palette, QPalette::Text)};
    if (contrast(colors.back, colors.fore) >= kReadable) return colors;
    // The same hue, towards the end that stands off the ground; black or white where none does.
    const bool darkGround = luminance(colors.back) < 0.18;
    float h = 0, s = 0, l = 0;
    colors.fore.getHslF(&h, &s, &l);
    for (int step = 1; fore != kDefaultColor && step <= 8; ++step) {
        const float towards = darkGround ? l + (1 - l) * step / 8.0F : l * (8 - step) / 8.0F;
        colors.fore = QColor::fromHslF(std::max(h, 0.0F), s, towards);
        if (contrast(colors.back, colors.fore) >= kReadable) return colors;
    }
    colors.fore = darkGround ? Qt::white : Qt::black;
    return colors;
}

}  // namespace owb
