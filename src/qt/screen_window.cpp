#include "qt/screen_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QTabBar>
#include <QTabWidget>
#include <QTimer>

#include "base/utf8.h"
#include "qt/contrast.h"
#include "qt/key_names.h"
#include "qt/qt_text.h"
#include "qt/window_memory.h"

namespace owb {

namespace {

Qt::WindowFlags flagsOf(const Screen& screen) {
    if (screen.popup) return Qt::Dialog | Qt::FramelessWindowHint;
    return Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint |
           Qt::WindowMinMaxButtonsHint;
}

constexpr int kRoomAround = 8;  // a field that has the focus, where the page scrolls

bool isCancel(const Control& control) {
    return equalsIgnoreCaseAscii(control.name(), "cmdCancel");
}

}  // namespace

ScreenWindow::ScreenWindow(Screen& screen, WindowMemory& memory, QWidget* below)
    : QWidget(below, flagsOf(screen)), screen_(screen), memory_(memory) {
    setObjectName(toQt(screen.name()));
    // A popup leaves the window below open to the click that closes it.
    setWindowModality(screen.popup ? Qt::NonModal : Qt::ApplicationModal);
    build(screen.layout());
    sync();
    resize(sizeHint());
    if (!screen.popup)
        memory_.restoreWindow(screen.name(), *this);
    else if (const auto* window = dynamic_cast<ScreenWindow*>(below))
        openBeside(*window);
    fit(below);
    focusFrame_ = new FieldFrame(FieldFrame::Says::Focus);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { focusMoved(now); });
}

ScreenWindow::~ScreenWindow() {
    if (!screen_.popup) memory_.rememberWindow(screen_.name(), *this);
    hide();  // while the views of the widgets still listen
    delete focusFrame_;
    // Widgets that go say that they lose the focus; nobody listens any more.
    qApp->disconnect(this);
    for (const auto& view : views_) view->widget()->removeEventFilter(view.get());
}

void ScreenWindow::run() {
    idle_ = true;
    sync();
    takeFocus();
    if (focusWidget() == nullptr) goOn(true);  // whatever the desktop does when it opens
    if (auto* line = qobject_cast<QLineEdit*>(focusWidget())) line->selectAll();
    focusMoved(focusWidget());
    if (closeWanted_) screen_.close();
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, this, [this] {
        if (!idle_) return;  // a handler is at work
        screen_.tick();
        sync();
        if (!screen_.isOpen()) loop_.quit();
    });
    if (screen_.timerInterval > 0) timer.start(screen_.timerInterval);
    while (screen_.isOpen()) loop_.exec();
    idle_ = false;
}

void ScreenWindow::sync() {
    const QString title = toQt(screen_.title());
    if (windowTitle() != title) setWindowTitle(title);
    const QString status = toQt(screen_.status);
    if (status_->text() != status) status_->setText(status);
    for (const auto& view : views_) view->sync();
    syncPages();
}

// A page with changes bears the sign that its fields bear.
void ScreenWindow::syncPages() {
    for (const auto& [control, pages] : tabs_) {
        const QSignalBlocker quiet(pages.widget);
        pages.widget->setCurrentIndex(static_cast<int>(control->page));
        pages.widget->setVisible(control->visible);
        pages.widget->setEnabled(control->enabled);
        for (size_t i = 0; i < pages.controls.size(); ++i) {
            const auto& all = pages.controls[i];
            const bool changed = std::any_of(all.begin(), all.end(), [this](const Control* inner) {
                return screen_.isChanged(*inner);
            });
            const QString text = toQt(control->pages[i]) + (changed ? kChangedSign : QString());
            const int at = static_cast<int>(i);
            if (pages.widget->tabText(at) != text) pages.widget->setTabText(at, text);
        }
    }
}

bool ScreenWindow::act(const Control& control, const std::function<void()>& deed) {
    if (!idle_ && !isCancel(control)) return false;
    perform(deed);
    return true;
}

void ScreenWindow::perform(const std::function<void()>& deed) {
    const bool wasIdle = std::exchange(idle_, false);
    deed();
    sync();
    takeFocus();
    idle_ = wasIdle;
    if (wasIdle && closeWanted_) screen_.close();
    if (!screen_.isOpen()) loop_.quit();
}

bool ScreenWindow::press(const std::string& key) {
    if (!idle_ || !screen_.uses(key)) return false;
    ControlView* at = viewAround(QApplication::focusWidget());
    if (at != nullptr && key != "Esc") at->commit();
    perform([&] { screen_.press(key, at == nullptr ? nullptr : &at->control()); });
    return true;
}

ControlView* ScreenWindow::viewAround(const QWidget* widget) const {
    for (; widget != nullptr && widget != this; widget = widget->parentWidget())
        for (const auto& view : views_)
            if (view->widget() == widget) return view.get();
    return nullptr;
}

void ScreenWindow::goOn(bool forward) {
    const bool fromButton = qobject_cast<QPushButton*>(focusWidget()) != nullptr;
    focusNextPrevChild(forward);
    if (!forward || fromButton || qobject_cast<QPushButton*>(focusWidget()) == nullptr) return;
    for (const auto& view : views_)
        if (view->control().shortcut == "Ctrl+S" && view->control().takesInput())
            view->widget()->setFocus(Qt::TabFocusReason);
}

// What has the focus is framed and in sight, with its caption.
void ScreenWindow::focusMoved(QWidget* now) {
    if (!focusFrame_) return;
    QWidget* shown = now != nullptr && isAncestorOf(now) ? now : nullptr;
    const ControlView* at = viewAround(shown);
    if (at != nullptr) shown = at->widget();
    focusFrame_->surround(shown);
    if (shown == nullptr || page_ == nullptr || !page_->isAncestorOf(shown)) return;
    const auto onPage = [this](const QWidget& widget) {
        return QRect(widget.mapTo(page_->widget(), QPoint(0, 0)), widget.size());
    };
    QRect area = onPage(*shown);
    if (at != nullptr && at->companion() != nullptr) area |= onPage(*at->companion());
    area = area.adjusted(-kRoomAround, -kRoomAround, kRoomAround, kRoomAround);
    // Of what is larger than the window, the beginning.
    area.setSize(area.size().boundedTo(page_->viewport()->size()));
    page_->ensureVisible(area.center().x(), area.center().y(), area.width() / 2, area.height() / 2);
}

void ScreenWindow::takeFocus() {
    if (const Control* control = screen_.takeFocus()) {
        const auto found = viewOf_.find(control);
        if (found != viewOf_.end()) found->second->widget()->setFocus(Qt::OtherFocusReason);
    }
}

void ScreenWindow::askToClose() {
    if (idle_) return perform([this] { screen_.closeByUser(); });
    closeWanted_ = true;
    if (Control* cancel = screen_.find("cmdCancel")) cancel->click();
}

void ScreenWindow::closeEvent(QCloseEvent* event) {
    event->ignore();  // the window goes with its screen
    askToClose();
}

void ScreenWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        askToClose();
    else if (!press(keyName(*event)))
        QWidget::keyPressEvent(event);
}

// A popup has no frame of the desktop's.
void ScreenWindow::paintEvent(QPaintEvent* event) {
    QWidget::paintEvent(event);
    if (!screen_.popup) return;
    QPainter painter(this);
    painter.setPen(standingOut(palette().color(QPalette::Mid), {palette().color(QPalette::Window)},
                               kMarkContrast));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

// The wheel turns pages only with the focus, as it changes boxes.
bool ScreenWindow::eventFilter(QObject* object, QEvent* event) {
    const auto* bar = qobject_cast<QTabBar*>(object);
    if (event->type() != QEvent::Wheel || bar == nullptr || bar->hasFocus())
        return QWidget::eventFilter(object, event);
    event->ignore();
    return true;
}

bool ScreenWindow::event(QEvent* event) {
    if (event->type() == QEvent::WindowDeactivate && screen_.popup && idle_)
        perform([this] { screen_.close(); });
    return QWidget::event(event);
}

void ScreenWindow::say(const QString& text, bool refusal) {
    QPalette colors = palette();
    if (refusal)
        colors.setColor(QPalette::WindowText,
                        standingOut(Qt::red, {colors.color(QPalette::Window)}, kTextContrast));
    statusLine_->setPalette(colors);
    statusLine_->setText(text);
}

}  // namespace owb
