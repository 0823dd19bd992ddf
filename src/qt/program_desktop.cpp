#include "qt/program_desktop.h"

#include <QApplication>
#include <QIcon>
#include <QPainter>

#include "base/version.h"

namespace owb {

namespace {

// A sheet of a month: a coloured head over a grid of days, a leave and an off among them.
QPixmap drawIcon(int side) {
    QPixmap picture(side, side);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    constexpr qreal kUnits = 32, kRound = 4, kHead = 9;
    painter.scale(side / kUnits, side / kUnits);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x1F, 0x4E, 0x79));
    painter.drawRoundedRect(QRectF(2, 3, 28, 27), kRound, kRound);
    painter.setBrush(QColor(0xF7, 0xF9, 0xFB));
    painter.drawRoundedRect(QRectF(4, 3 + kHead, 24, 25 - kHead), kRound / 2, kRound / 2);
    painter.setBrush(QColor(0xF2, 0xB1, 0x34));
    painter.drawRoundedRect(QRectF(8, 1, 3, 6), 1, 1);
    painter.drawRoundedRect(QRectF(21, 1, 3, 6), 1, 1);
    constexpr int kColumns = 4, kRows = 3;
    for (int row = 0; row < kRows; ++row)
        for (int column = 0; column < kColumns; ++column) {
            const bool leave = row == 1 && column == 1, off = column == kColumns - 1;
            painter.setBrush(leave ? QColor(0xD6, 0x45, 0x41)
                             : off ? QColor(0xF2, 0xB1, 0x34)
                                   : QColor(0x9F, 0xB8, 0xCE));
            painter.drawRect(QRectF(6.5 + column * 5, 14.5 + row * 4.5, 3.5, 3));
        }
    return picture;
}

}  // namespace

void prepareDesktop(const char* programName) {
    QApplication::setApplicationName(programName);
    QApplication::setApplicationVersion(programVersion());
    QApplication::setQuitOnLastWindowClosed(false);
    QIcon icon;
    for (const int side : {16, 24, 32, 48, 64, 128, 256}) icon.addPixmap(drawIcon(side));
    QApplication::setWindowIcon(icon);
}

}  // namespace owb
