#include "qt/print_preview.h"

#include <QActionGroup>
#include <QFileDialog>
#include <QFileInfo>
#include <QGraphicsView>
#include <QMessageBox>
#include <QPainter>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QScreen>
#include <QToolBar>
#include <stdexcept>

#include "qt/print/grid_painter.h"
#include "qt/print/pdf_file.h"
#include "qt/qt_text.h"

namespace owb {

namespace {

constexpr double kPointsPerInch = 72, kShareOfScreen = 0.85;

// The toolkit gives its buttons no keys.
constexpr struct {
    const char *caption, *key;
} kKeys[] = {{"Print", "Ctrl+P"},    {"Next page", "PgDown"},  {"Previous page", "PgUp"},
             {"First page", "Home"}, {"Last page", "End"},     {"Zoom in", "Ctrl++"},
             {"Zoom out", "Ctrl+-"}, {"Fit page", "Ctrl+0"},   {"A4", "Alt+4"},
             {"A3", "Alt+3"},        {"Save as PDF", "Ctrl+S"}};

// On whatever paper the user has set up.
void paintPages(QPrinter& printer, const Grid& grid, const PrintHeading& heading) {
    const GridPainter pages(grid, heading, paperOf(printer.pageLayout()));
    QPainter painter(&printer);
    painter.scale(printer.resolution() / kPointsPerInch, printer.resolution() / kPointsPerInch);
    for (size_t page = 0; page < pages.pageCount(); ++page) {
        if (page > 0) printer.newPage();
        pages.paint(painter, page);
    }
}

class Preview final {
  public:
    Preview(QWidget& above, const Grid& grid, const PrintHeading& heading, PaperSize paper)
        : grid_(grid), heading_(heading), paper_(paper), printer_(QPrinter::HighResolution) {
        printer_.setPageLayout(pageLayout(paper_));
        printer_.setDocName(toQt(heading.title));
        dialog_ = std::make_unique<QPrintPreviewDialog>(&printer_, &above);
        dialog_->setWindowTitle("Print");
        dialog_->setObjectName("printPreview");
        dialog_->resize(above.screen()->availableSize() * kShareOfScreen);
        QObject::connect(dialog_.get(), &QPrintPreviewDialog::paintRequested, dialog_.get(),
                         [this](QPrinter* printer) { paintPages(*printer, grid_, heading_); });
        auto* bar = dialog_->findChild<QToolBar*>();
        bar->addSeparator();
        auto* papers = new QActionGroup(dialog_.get());
        for (const PaperSize size : {PaperSize::A4, PaperSize::A3}) addPaper(*bar, *papers, size);
        bar->addSeparator();
        bar->addAction("Save as PDF", [this] { savePdf(); });
        for (QAction* action : bar->actions()) giveKey(*action);
        dialog_->findChild<QGraphicsView*>()
            ->setFocus();  // not the box of the zoom, which has keys
    }

    PaperSize show() {
        dialog_->exec();
        return paper_;
    }

  private:
    static void giveKey(QAction& action) {
        for (const auto& [caption, key] : kKeys) {
            if (action.text() != caption) continue;
            action.setShortcut(QKeySequence(key));
            action.setToolTip(action.text() + " (" + key + ")");
        }
    }

    void addPaper(QToolBar& bar, QActionGroup& papers, PaperSize size) {
        QAction* action = bar.addAction(toQt(paperName(size)), [this, size] {
            paper_ = size;
            printer_.setPageLayout(pageLayout(size));
            dialog_->findChild<QPrintPreviewWidget*>()->updatePreview();
        });
        action->setCheckable(true);
        action->setChecked(size == paper_);
        papers.addAction(action);
    }

    void savePdf() {
        QString name = toQt(heading_.title);
        name.replace('/', '-');  // of a month
        QString path = QFileDialog::getSaveFileName(dialog_.get(), "Save as PDF", name + ".pdf",
                                                    "PDF files (*.pdf)");
        if (path.isEmpty()) return;
        if (QFileInfo(path).suffix().isEmpty()) path += ".pdf";
        try {
            printOnPages(grid_, heading_, printer_.pageLayout(), fromQt(path));
        } catch (const std::runtime_error& e) {
            QMessageBox::critical(dialog_.get(), "Print", e.what());
        }
    }

    const Grid& grid_;
    const PrintHeading& heading_;
    PaperSize paper_;
    QPrinter printer_;
    std::unique_ptr<QPrintPreviewDialog> dialog_;
};

}  // namespace

PaperSize previewPrint(QWidget& above, const Grid& grid, const PrintHeading& heading,
                       PaperSize paper) {
    if (grid.visibleRowCount() > 0) return Preview(above, grid, heading, paper).show();
    QMessageBox::information(&above, "Print", "There is nothing to print.");
    return paper;
}

}  // namespace owb
