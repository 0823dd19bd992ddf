#include "qt/screen_window.h"

#include <QCloseEvent>
#include <QFormLayout>
#include <QGroupBox>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QScreen>
#include <QSignalBlocker>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

#include "base/utf8.h"
#include "qt/qt_text.h"
#include "qt/window_memory.h"
#include "screen/grid.h"

namespace owb {

namespace {

constexpr int kMargin = 14;
constexpr int kSpacing = 10;
constexpr int kLeastWidth = 420;

Qt::WindowFlags flagsOf(const Screen& screen) {
    if (screen.popup) return Qt::Dialog | Qt::FramelessWindowHint;
    return Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint |
           Qt::WindowMinMaxButtonsHint;
}

QLabel* captionLabel(const std::string& caption) {
    auto* label = new QLabel(toQt(caption));
    label->setTextFormat(Qt::PlainText);
    return label;
}

bool isCancel(const Control& control) {
    return equalsIgnoreCaseAscii(control.name(), "cmdCancel");
}

}  // namespace

ScreenWindow::ScreenWindow(Screen& screen, WindowMemory& memory, QWidget* below)
    : QWidget(below, flagsOf(screen)), screen_(screen), memory_(memory) {
    setObjectName(toQt(screen.name()));
    // A popup leaves the window below open to the click that closes it.
    setWindowModality(screen.popup ? Qt::NonModal : Qt::ApplicationModal);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(kMargin, kMargin, kMargin, kMargin / 2);
    all->setSpacing(kSpacing);
    const Layout layout = screen.layout();
    if (layout.kind == Layout::Kind::Column)
        fill(*all, layout.parts);
    else
        place(*all, layout);
    statusLine_ = captionLabel("");
    statusLine_->setObjectName("statusLine");
    all->addWidget(statusLine_);
    bool hasGrid = false;
    for (const Control* control : screen.controls())
        hasGrid = hasGrid || dynamic_cast<const Grid*>(control) != nullptr;
    statusLine_->setVisible(hasGrid);
    if (!hasGrid) all->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    if (!screen.popup) all->addStrut(kLeastWidth);
    sync();
    resize(sizeHint().boundedTo(QGuiApplication::primaryScreen()->availableSize()));
    if (screen.popup && below != nullptr) {
        if (const QWidget* target = below->focusWidget())
            move(target->mapToGlobal(QPoint(0, target->height())));
    } else if (!screen.popup) {
        memory_.restoreWindow(screen.name(), *this);
    }
}

ScreenWindow::~ScreenWindow() {
    if (!screen_.popup) memory_.rememberWindow(screen_.name(), *this);
    // Widgets that go say that they lose the focus; nobody listens any more.
    for (const auto& view : views_) view->widget()->removeEventFilter(view.get());
}

// --- building ---

ControlView& ScreenWindow::view(Control& control) {
    views_.push_back(makeView(*this, control));
    viewOf_[&control] = views_.back().get();
    return *views_.back();
}

void ScreenWindow::fill(QBoxLayout& into, const std::vector<Layout>& parts) {
    for (const Layout& part : parts) place(into, part);
}

void ScreenWindow::place(QBoxLayout& into, const Layout& part) {
    const auto box = [&](QBoxLayout* inner) {
        inner->setSpacing(screen_.popup ? kSpacing / 3 : kSpacing);
        fill(*inner, part.parts);
        return inner;
    };
    switch (part.kind) {
        case Layout::Kind::Item: {
            ControlView& made = view(*part.control);
            if (!part.caption.empty()) {
                QLabel* label = captionLabel(part.caption);
                made.setCompanion(label);
                into.addWidget(label);
            }
            // A text that shares a row evenly stands as the buttons below it do.
            if (auto* text = dynamic_cast<QLabel*>(made.widget()); text && part.stretch > 0)
                text->setAlignment(Qt::AlignCenter);
            into.addWidget(made.widget(), part.stretch);
            break;
        }
        case Layout::Kind::Row:
            into.addLayout(box(new QHBoxLayout), part.stretch);
            break;
        case Layout::Kind::Column:
            into.addLayout(box(new QVBoxLayout), part.stretch);
            break;
        case Layout::Kind::Group: {
            auto* group = new QGroupBox(toQt(part.caption));
            auto* inner = new QVBoxLayout(group);
            box(inner);
            into.addWidget(group, part.stretch);
            break;
        }
        case Layout::Kind::Form: {
            auto* form = new QFormLayout;
            form->setHorizontalSpacing(kMargin);
            form->setVerticalSpacing(kSpacing);
            form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
            for (const Layout& line : part.parts) placeInForm(*form, line);
            into.addLayout(form, part.stretch);
            break;
        }
        case Layout::Kind::Tabs:
            into.addWidget(tabWidget(part), part.stretch);
            break;
        case Layout::Kind::Space:
            into.addStretch(part.stretch);
            break;
    }
}

void ScreenWindow::placeInForm(QFormLayout& into, const Layout& part) {
    if (part.kind == Layout::Kind::Item) {
        ControlView& made = view(*part.control);
        QLabel* label = captionLabel(part.caption);
        made.setCompanion(label);
        into.addRow(label, made.widget());
        return;
    }
    auto* line = new QHBoxLayout;
    line->setSpacing(kSpacing);
    place(*line, part);
    into.addRow(captionLabel(part.caption), line);
}

QWidget* ScreenWindow::tabWidget(const Layout& part) {
    auto* control = static_cast<Tabs*>(part.control);
    auto* widget = new QTabWidget;
    widget->setObjectName(toQt(control->name()));
    for (size_t i = 0; i < part.parts.size() && i < control->pages.size(); ++i) {
        auto* page = new QWidget;
        auto* inner = new QVBoxLayout(page);
        inner->setSpacing(kSpacing);
        place(*inner, part.parts[i]);
        widget->addTab(page, toQt(control->pages[i]));
    }
    tabs_[control] = widget;
    connect(widget, &QTabWidget::currentChanged, this, [this, control](int page) {
        act(*control, [&] { control->select(static_cast<size_t>(page)); });
    });
    return widget;
}

// --- life ---

void ScreenWindow::run() {
    idle_ = true;
    sync();
    takeFocus();
    if (focusWidget() == nullptr) focusNext();  // whatever the desktop does when it opens
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
    if (windowTitle() != toQt(screen_.caption)) setWindowTitle(toQt(screen_.caption).trimmed());
    for (const auto& view : views_) view->sync();
    for (const auto& [control, widget] : tabs_) {
        const QSignalBlocker quiet(widget);
        widget->setCurrentIndex(static_cast<int>(control->page));
        widget->setVisible(control->visible);
        widget->setEnabled(control->enabled);
    }
}

bool ScreenWindow::act(const Control& control, const std::function<void()>& deed) {
    const bool wasIdle = idle_;
    if (!wasIdle && !isCancel(control)) return false;
    idle_ = false;
    deed();
    sync();
    takeFocus();
    idle_ = wasIdle;
    if (wasIdle && closeWanted_) screen_.close();
    if (!screen_.isOpen()) loop_.quit();
    return true;
}

void ScreenWindow::takeFocus() {
    if (const Control* control = screen_.takeFocus()) {
        const auto found = viewOf_.find(control);
        if (found != viewOf_.end()) found->second->widget()->setFocus(Qt::OtherFocusReason);
    }
}

void ScreenWindow::askToClose() {
    if (idle_) {
        screen_.close();
        loop_.quit();
        return;
    }
    closeWanted_ = true;
    if (Control* cancel = screen_.find("cmdCancel")) cancel->click();
}

void ScreenWindow::closeEvent(QCloseEvent* event) {
    event->ignore();  // the window goes with its screen
    askToClose();
}

void ScreenWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && screen_.popup)
        askToClose();
    else
        QWidget::keyPressEvent(event);
}

bool ScreenWindow::event(QEvent* event) {
    if (event->type() == QEvent::WindowDeactivate && screen_.popup && idle_) askToClose();
    return QWidget::event(event);
}

// --- menus and status ---

bool ScreenWindow::hasMenu(const Control& control) const {
    for (const Control* other : screen_.controls())
        if (const auto* item = dynamic_cast<const MenuItem*>(other))
            if (&item->over == &control && item->visible) return true;
    return false;
}

bool ScreenWindow::openMenu(const Control& control, const QPoint& at) {
    if (!idle_ || !control.takesInput() || !hasMenu(control)) return false;
    QMenu menu(this);
    std::map<const MenuItem*, QMenu*> below{{nullptr, &menu}};
    MenuItem* chosen = nullptr;
    for (Control* other : screen_.controls()) {
        auto* item = dynamic_cast<MenuItem*>(other);
        if (item == nullptr || &item->over != &control || !item->visible) continue;
        const auto into = below.find(item->parent);
        if (into == below.end()) continue;  // below one that is hidden
        if (item->caption == "-") {
            into->second->addSeparator();
            continue;
        }
        const bool opens = std::any_of(
            screen_.controls().begin(), screen_.controls().end(), [&](const Control* candidate) {
                const auto* child = dynamic_cast<const MenuItem*>(candidate);
                return child != nullptr && child->parent == item;
            });
        if (opens) {
            below[item] = into->second->addMenu(toQt(item->caption));
            below[item]->setEnabled(item->enabled);
            continue;
        }
        QAction* action = into->second->addAction(toQt(item->caption));
        action->setEnabled(item->enabled);
        action->setCheckable(item->checkable);
        action->setChecked(item->checked);
        connect(action, &QAction::triggered, this, [&chosen, item] { chosen = item; });
    }
    menu.exec(at);
    if (chosen != nullptr) act(*chosen, [&] { chosen->click(); });
    return true;
}

void ScreenWindow::say(const QString& text, bool refusal) {
    statusLine_->setForegroundRole(refusal ? QPalette::LinkVisited : QPalette::WindowText);
    statusLine_->setText(text);
}

}  // namespace owb
