#include "qt/print/pdf_file.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <clocale>
#include <stdexcept>

#include "qt/print/grid_painter.h"

namespace owb {

namespace {

constexpr double kPointsPerInch = 72;
constexpr int kResolution = 600;
constexpr double kMargin = 28;  // points on each side of the paper

void needApplication() {
    if (QCoreApplication::instance() != nullptr) return;
    static char program[] = "print", option[] = "-platform", platform[] = "offscreen";
    static char* arguments[] = {program, option, platform, nullptr};
    static int count = 3;
    // What the toolkit remarks on its surroundings concerns nobody who wants a file.
    const QtMessageHandler before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    static const QGuiApplication application(count, arguments);
    qInstallMessageHandler(before);
    std::setlocale(LC_NUMERIC, "C");  // numbers in statements keep their point
}

void paintPages(QPdfWriter& writer, const GridPainter& pages) {
    QPainter painter(&writer);
    painter.scale(kResolution / kPointsPerInch, kResolution / kPointsPerInch);
    for (size_t page = 0; page < pages.pageCount(); ++page) {
        if (page > 0) writer.newPage();
        pages.paint(painter, page);
    }
}

}  // namespace

QPageLayout pageLayout(PaperSize size) {
    return {QPageSize(size == PaperSize::A3 ? QPageSize::A3 : QPageSize::A4),
            QPageLayout::Landscape,
            {kMargin, kMargin, kMargin, kMargin},
            QPageLayout::Point};
}

PrintPaper paperOf(const QPageLayout& layout) {
    const QRectF room = layout.paintRect(QPageLayout::Point);
    return {room.width(), room.height()};
}

size_t printToPdf(const Grid& grid, const PrintHeading& heading, PaperSize paper,
                  const std::string& path) {
    return printOnPages(grid, heading, pageLayout(paper), path);
}

size_t printOnPages(const Grid& grid, const PrintHeading& heading, const QPageLayout& layout,
                    const std::string& path) {
    needApplication();
    const GridPainter pages(grid, heading, paperOf(layout));
    if (pages.pageCount() == 0) throw std::runtime_error("There is nothing to print.");

    QSaveFile file(QString::fromStdString(path));
    bool written = file.open(QIODevice::WriteOnly);
    if (written) {
        QPdfWriter writer(&file);
        writer.setTitle(QString::fromStdString(heading.title));
        writer.setResolution(kResolution);
        writer.setPageLayout(layout);
        paintPages(writer, pages);
        written = file.commit();
    }
    if (!written)
        throw std::runtime_error("The file " + path +
                                 " cannot be written: " + file.errorString().toStdString() + ".");
    return pages.pageCount();
}

}  // namespace owb
