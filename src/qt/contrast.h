// How well a colour stands out from its ground, as accessibility guides measure it: 1 not at all,
// 21 black on white. Text wants 4.5, borders and marks 3.
#pragma once

#include <QColor>
#include <initializer_list>

namespace owb {

constexpr double kTextContrast = 4.5, kMarkContrast = 3;

double contrast(const QColor& one, const QColor& other);
// The share of `to`, 0 to 1, in the mixture.
QColor mixed(const QColor& from, const QColor& to, double share);
// The colour, moved towards black or white until it stands out so much from each of the grounds.
QColor standingOut(const QColor& ink, std::initializer_list<QColor> grounds, double least);

}  // namespace owb
