#include "qt/cell_colors.h"

namespace owb {

namespace {

constexpr double kDarkShare = 0.35;

bool isDark(const QColor& ground) {
    return contrast(ground, Qt::white) > contrast(ground, Qt::black);
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
    const QColor base = palette.color(QPalette::Base);
    CellColors colors{colorOf(back, palette, QPalette::Base),
                      colorOf(fore, palette, QPalette::Text)};
    // A ground as light as the pastels of a legend glares on a dark desktop.
    if (isDark(base) && !isDark(colors.back)) colors.back = mixed(base, colors.back, kDarkShare);
    colors.fore = standingOut(colors.fore, {colors.back}, kTextContrast);
    return colors;
}

QColor lineColor(const QPalette& palette) {
    const QColor base = palette.color(QPalette::Base);
    return standingOut(mixed(base, palette.color(QPalette::Text), 0.30), {base}, kMarkContrast);
}

}  // namespace owb
