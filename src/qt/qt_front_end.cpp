#include "qt/qt_front_end.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QFileDialog>
#include <QGridLayout>
#include <QMessageBox>
#include <QTimer>
#include <QUrl>
#include <clocale>

#include "qt/legible_style.h"
#include "qt/print_preview.h"
#include "qt/qt_text.h"
#include "qt/screen_window.h"

namespace owb {

namespace {

QMessageBox::Icon iconOf(BoxIcon icon) {
    switch (icon) {
        case BoxIcon::Critical:
            return QMessageBox::Critical;
        case BoxIcon::Question:
            return QMessageBox::Question;
        case BoxIcon::Warning:
            return QMessageBox::Warning;
        case BoxIcon::Information:
            return QMessageBox::Information;
        case BoxIcon::None:
            break;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons buttonsOf(BoxButtons buttons) {
    switch (buttons) {
        case BoxButtons::Ok:
            return QMessageBox::Ok;
        case BoxButtons::OkCancel:
            return QMessageBox::Ok | QMessageBox::Cancel;
        case BoxButtons::YesNo:
            return QMessageBox::Yes | QMessageBox::No;
        case BoxButtons::YesNoCancel:
            return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    }
    return QMessageBox::Ok;
}

QMessageBox::StandardButton buttonOf(BoxAnswer answer) {
    switch (answer) {
        case BoxAnswer::Cancel:
            return QMessageBox::Cancel;
        case BoxAnswer::Yes:
            return QMessageBox::Yes;
        case BoxAnswer::No:
            return QMessageBox::No;
        case BoxAnswer::Ok:
            break;
    }
    return QMessageBox::Ok;
}

// As wide as the title wants, with the buttons of the frame beside it.
void showTitle(QMessageBox& box) {
    constexpr int kFrameButtons = 120;
    auto* grid = qobject_cast<QGridLayout*>(box.layout());
    if (grid == nullptr) return;
    const int width = box.fontMetrics().horizontalAdvance(box.windowTitle()) + kFrameButtons;
    grid->addItem(new QSpacerItem(width, 0), grid->rowCount(), 0, 1, grid->columnCount());
}

BoxAnswer answerOf(int button, BoxAnswer otherwise) {
    for (const BoxAnswer answer : {BoxAnswer::Ok, BoxAnswer::Cancel, BoxAnswer::Yes, BoxAnswer::No})
        if (buttonOf(answer) == button) return answer;
    return otherwise;
}

}  // namespace

// The toolkit's application has taken the user's locale over; numbers in texts and statements have
// a point all the same.
QtFrontEnd::QtFrontEnd(SettingsStore& settings) : memory_(settings) {
    std::setlocale(LC_NUMERIC, "C");
    LegibleStyle::install();
}

QtFrontEnd::~QtFrontEnd() = default;

ScreenWindow* QtFrontEnd::top() const {
    return windows_.empty() ? nullptr : windows_.back().get();
}

ScreenWindow* QtFrontEnd::windowOf(const Screen& screen) const {
    for (const auto& window : windows_)
        if (&window->screen() == &screen) return window.get();
    return nullptr;
}

BoxAnswer QtFrontEnd::show(const Box& box) {
    if (ScreenWindow* window = top()) window->sync();
    QMessageBox shown(iconOf(box.icon), toQt(box.title), toQt(box.text), buttonsOf(box.buttons),
                      top());
    shown.setTextFormat(Qt::PlainText);
    shown.setDefaultButton(buttonOf(box.defaultAnswer));
    if (box.buttons == BoxButtons::YesNo) shown.setEscapeButton(QMessageBox::No);
    showTitle(shown);
    if (box.closesAfterSeconds > 0)
        QTimer::singleShot(box.closesAfterSeconds * 1000, &shown, &QMessageBox::accept);
    return answerOf(shown.exec(), box.defaultAnswer);
}

std::string QtFrontEnd::askFile(const FileQuestion& question) {
    const QString title = toQt(question.title), suggested = toQt(question.suggested);
    const QString sheets = !question.kind.empty() ? toQt(question.kind)
                           : question.save        ? QStringLiteral("Spreadsheets (*.xlsx)")
                                                  : QStringLiteral("Spreadsheets (*.xlsx *.xls)");
    const QString path = question.save
                             ? QFileDialog::getSaveFileName(top(), title, suggested, sheets)
                             : QFileDialog::getOpenFileName(top(), title, suggested, sheets);
    return fromQt(path);
}

void QtFrontEnd::openFile(const std::string& path) {
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(toQt(path))))
        information("No program is set up to show " + path + ".\nThe file has been saved there.");
}

std::string QtFrontEnd::clipboard() {
    return fromQt(QGuiApplication::clipboard()->text());
}

void QtFrontEnd::setClipboard(const std::string& text) {
    QGuiApplication::clipboard()->setText(toQt(text));
}

void QtFrontEnd::print(const Grid& grid, const PrintHeading& heading) {
    ScreenWindow* window = top();
    if (window == nullptr) return;
    const PaperSize paper = paperNamed(memory_.paper()).value_or(PaperSize::A4);
    memory_.rememberPaper(paperName(previewPrint(*window, grid, heading, paper)));
}

void QtFrontEnd::opened(Screen& screen) {
    windows_.push_back(std::make_unique<ScreenWindow>(screen, memory_, top()));
    windows_.back()->show();
    windows_.back()->activateWindow();
    QApplication::processEvents();
}

void QtFrontEnd::run(Screen& screen) {
    windowOf(screen)->run();
}

void QtFrontEnd::closed(Screen& screen) {
    std::erase_if(windows_, [&](const auto& window) { return &window->screen() == &screen; });
    if (ScreenWindow* window = top()) window->activateWindow();
}

void QtFrontEnd::refresh(Screen& screen) {
    if (ScreenWindow* window = windowOf(screen)) window->sync();
    QApplication::processEvents();
}

void QtFrontEnd::pause(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

}  // namespace owb
