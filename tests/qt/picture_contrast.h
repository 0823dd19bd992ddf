// How well what is drawn can be told from its ground, measured from a picture: 1 (alike) to 21
// (black on white), as the rules for accessible contents count it. Text wants 4.5, lines and the
// focus 3.
#pragma once

#include <QColor>
#include <QImage>
#include <QPalette>
#include <QRect>
#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

namespace owb::test {

constexpr double kTextContrast = 4.5, kLineContrast = 3;

inline QPalette darkPalette() {
    QPalette dark(QColor(53, 53, 53), QColor(42, 42, 42));
    dark.setColor(QPalette::Base, QColor(36, 36, 36));
    dark.setColor(QPalette::Highlight, QColor(61, 125, 200));
    return dark;
}

inline double luminance(QRgb color) {
    const auto linear = [](int byte) {
        const double part = byte / 255.0;
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) +
           0.0722 * linear(qBlue(color));
}

inline double contrast(QRgb a, QRgb b) {
    const double x = luminance(a), y = luminance(b);
    return (std::max(x, y) + 0.05) / (std::min(x, y) + 0.05);
}

// The commonest colour of a part of the picture.
inline QRgb groundOf(const QImage& picture, const QRect& wanted) {
    const QRect part = wanted & picture.rect();
    std::map<QRgb, int> count;
    for (int y = part.top(); y <= part.bottom(); ++y)
        for (int x = part.left(); x <= part.right(); ++x) ++count[picture.pixel(x, y)];
    return std::max_element(count.begin(), count.end(),
                            [](const auto& a, const auto& b) { return a.second < b.second; })
        ->first;
}

// Of a text to its ground. Edges of letters are blurred, so that its colour is that of the few
// pixels that stand off most. 1 where nothing is written.
inline double textContrast(const QImage& picture, const QRect& part) {
    constexpr size_t kFew = 4;
    const QRgb ground = groundOf(picture, part);
    std::vector<double> found;
    for (int y = part.top(); y <= part.bottom(); ++y)
        for (int x = part.left(); x <= part.right(); ++x)
            found.push_back(contrast(picture.pixel(x, y), ground));
    std::sort(found.rbegin(), found.rend());
    return found.size() < kFew ? 1 : found[kFew - 1];
}

// Of the line that borders a part at its right or lower edge, to the grounds on both of its sides:
// where it is weakest along the edge. The line may lie a pixel or two inside or outside of the
// edge.
inline double borderContrast(const QImage& picture, const QRect& part, Qt::Edge edge) {
    constexpr int kReach = 2;
    const bool right = edge == Qt::RightEdge;
    const QRect beyond = part.translated(right ? part.width() : 0, right ? 0 : part.height());
    const QRgb inner = groundOf(picture, part), outer = groundOf(picture, beyond);
    const int from = right ? part.top() + kReach : part.left() + kReach,
              to = right ? part.bottom() - kReach : part.right() - kReach;
    double weakest = 21;
    for (int along = from; along <= to; ++along) {
        double strongest = 1;
        for (int across = -kReach; across <= kReach; ++across) {
            const QRgb pixel = right ? picture.pixel(part.right() + across, along)
                                     : picture.pixel(along, part.bottom() + across);
            strongest =
                std::max(strongest, std::min(contrast(pixel, inner), contrast(pixel, outer)));
        }
        weakest = std::min(weakest, strongest);
    }
    return weakest;
}

// Of what shows the focus: the part of the picture with it and without it. A frame of one pixel at
// least must have changed so much.
inline double focusContrast(const QImage& without, const QImage& with, const QRect& part) {
    std::vector<double> changed;
    for (int y = part.top(); y <= part.bottom(); ++y)
        for (int x = part.left(); x <= part.right(); ++x)
            if (without.pixel(x, y) != with.pixel(x, y))
                changed.push_back(contrast(without.pixel(x, y), with.pixel(x, y)));
    const auto frame = static_cast<size_t>(2 * (part.width() + part.height()) - 4) * 9 / 10;
    if (changed.size() < frame) return 1;
    std::sort(changed.rbegin(), changed.rend());
    return changed[frame - 1];
}

}  // namespace owb::test
