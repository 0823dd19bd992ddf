#include "qt/contrast.h"

#include <algorithm>
#include <cmath>

namespace owb {

namespace {

double luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

}  // namespace

// In bytes, as it will be drawn.
QColor mixed(const QColor& from, const QColor& to, double share) {
    const auto part = [share](int a, int b) {
        return static_cast<int>(std::lround(a + (b - a) * share));
    };
    return {part(from.red(), to.red()), part(from.green(), to.green()),
            part(from.blue(), to.blue())};
}

double contrast(const QColor& one, const QColor& other) {
    const double a = luminance(one), b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QColor standingOut(const QColor& ink, std::initializer_list<QColor> grounds, double least) {
    const auto worst = [&](const QColor& color) {
        double found = 21;
        for (const QColor& ground : grounds) found = std::min(found, contrast(color, ground));
        return found;
    };
    const bool isBlack = worst(Qt::black) > worst(Qt::white);
    const QColor end = isBlack ? Qt::black : Qt::white, other = isBlack ? Qt::white : Qt::black;
    constexpr int kSteps = 20;
    for (int step = 0; step < kSteps; ++step)
        for (const QColor& towards : {end, other}) {  // between two grounds it may be the other
            const QColor color = mixed(ink, towards, static_cast<double>(step) / kSteps);
            if (worst(color) >= least) return color;
        }
    return end;
}

}  // namespace owb
