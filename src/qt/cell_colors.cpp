#include "qt/cell_colors.h"

#include <cmath>

namespace owb {

namespace {

constexpr double kReadable = 4.5;  // contrast of text to its ground
constexpr double kVisible = 3.0;   // of lines and marks
constexpr double kDarkShare = 0.35;

double luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

bool isDark(const QColor& ground) {
    return luminance(ground) < 0.18;
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

double contrastOf(const QColor& a, const QColor& b) {
    const double x = luminance(a), y = luminance(b);
    return (std::max(x, y) + 0.05) / (std::min(x, y) + 0.05);
}

QColor mixed(const QColor& ground, const QColor& over, double share) {
    const auto part = [&](int a, int b) { return static_cast<int>(a + (b - a) * share); };
    return {part(ground.red(), over.red()), part(ground.green(), over.green()),
            part(ground.blue(), over.blue())};
}

QColor standingOff(const QColor& color, const QColor& ground, double contrast) {
    if (contrastOf(color, ground) >= contrast) return color;
    float h = 0, s = 0, l = 0;
    color.getHslF(&h, &s, &l);
    constexpr int kSteps = 16;
    for (int step = 1; step <= kSteps; ++step) {
        const float share = static_cast<float>(step) / kSteps;
        const float towards = isDark(ground) ? l + (1 - l) * share : l * (1 - share);
        const QColor moved = QColor::fromHslF(std::max(h, 0.0F), s, towards);
        if (contrastOf(moved, ground) >= contrast) return moved;
    }
    return isDark(ground) ? Qt::white : Qt::black;
}

CellColors cellColors(Color back, Color fore, const QPalette& palette) {
    const QColor base = palette.color(QPalette::Base);
    CellColors colors{colorOf(back, palette, QPalette::Base),
                      colorOf(fore, palette, QPalette::Text)};
    const bool screens = back != kDefaultColor && (back & 0x80000000) == 0;
    if (screens && isDark(base)) colors.back = mixed(base, colors.back, kDarkShare);
    colors.fore = standingOff(colors.fore, colors.back, kReadable);
    return colors;
}

QColor lineColor(const QPalette& palette) {
    const QColor base = palette.color(QPalette::Base);
    return standingOff(mixed(base, palette.color(QPalette::Text), 0.30), base, kVisible);
}

}  // namespace owb
