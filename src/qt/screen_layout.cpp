// Building a window from its screen's layout. Forms of a page line up: their captions are of one
// width, their lines of one height, so that forms side by side share their rows. What does not fit
// into the window scrolls; the commands at the foot stay in sight.
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>

#include "qt/qt_text.h"
#include "qt/screen_window.h"
#include "screen/grid.h"

namespace owb {

namespace {

constexpr int kMargin = 14;
constexpr int kSpacing = 10;
constexpr int kLineSpacing = 4;  // between the lines of a form
constexpr int kLineHeight = 24;
constexpr int kSignRoom = 12;     // behind a caption, for the sign of a change
constexpr int kFieldShare = 100;  // of a line's room, against the empty end of the line
constexpr int kLeastWidth = 420;
constexpr int kGridLines = 6;                       // of a grid are always in sight
constexpr int kFrameWidth = 12, kFrameHeight = 40;  // what the desktop puts around a window

QLabel* captionLabel(const std::string& caption) {
    auto* label = new QLabel(toQt(caption));
    label->setTextFormat(Qt::PlainText);
    return label;
}

bool isCommandRow(const Layout& part) {
    return part.kind == Layout::Kind::Row &&
           std::all_of(part.parts.begin(), part.parts.end(), [](const Layout& inner) {
               return inner.kind == Layout::Kind::Space ||
                      (inner.kind == Layout::Kind::Item &&
                       (dynamic_cast<const Command*>(inner.control) != nullptr ||
                        dynamic_cast<const Label*>(inner.control) != nullptr));
           });
}

// As large as what it holds, where there is room, and as small as the window wants to be.
class Page final : public QScrollArea {
  public:
    Page() {
        setWidgetResizable(true);
        setFrameShape(QFrame::NoFrame);
        setFocusPolicy(Qt::NoFocus);
        setWidget(new QWidget);
    }
    QSize sizeHint() const override { return widget()->sizeHint(); }
    QSize minimumSizeHint() const override {
        return sizeHint().boundedTo({kLeastWidth / 2, kLineHeight * kGridLines});
    }
};

void keepLinesInSight(QWidget& widget) {
    auto* table = qobject_cast<QTableView*>(&widget);
    if (table == nullptr) return;
    table->setMinimumHeight(table->verticalHeader()->defaultSectionSize() * kGridLines +
                            table->horizontalHeader()->sizeHint().height() +
                            table->style()->pixelMetric(QStyle::PM_ScrollBarExtent) + kLineSpacing);
}

}  // namespace

void ScreenWindow::build(const Layout& layout) {
    auto* all = new QVBoxLayout(this);
    all->setSpacing(kSpacing);
    all->setContentsMargins(kMargin, kMargin, kMargin, screen_.popup ? kMargin : kMargin / 2);
    if (screen_.popup) {
        placeAll(*all, layout);
    } else {
        page_ = new Page;
        all->setContentsMargins(0, 0, 0, kMargin / 2);
        auto* inner = new QVBoxLayout(page_->widget());
        inner->setContentsMargins(kMargin, kMargin, kMargin, kLineSpacing);
        inner->setSpacing(kSpacing);
        inner->addStrut(kLeastWidth);
        all->addWidget(page_, 1);
        Layout scrolling = layout;
        const bool column = layout.kind == Layout::Kind::Column;
        const bool hasCommands = column && isCommandRow(layout.parts.back());
        if (hasCommands) scrolling.parts.pop_back();
        placeAll(*inner, scrolling);
        auto* foot = new QVBoxLayout;
        foot->setContentsMargins(kMargin, 0, kMargin, 0);
        if (hasCommands) place(*foot, layout.parts.back());
        all->addLayout(foot);
        all = foot;
    }
    statusLine_ = captionLabel("");
    statusLine_->setObjectName("statusLine");
    status_ = captionLabel("");
    status_->setObjectName("status");
    auto* line = new QHBoxLayout;
    line->addWidget(statusLine_, 1);
    line->addWidget(status_);
    all->addLayout(line);
    statusLine_->setVisible(!screen_.popup);
    status_->setVisible(!screen_.popup);
}

void ScreenWindow::placeAll(QBoxLayout& into, const Layout& layout) {
    lineUp([&] {
        if (layout.kind == Layout::Kind::Column)
            fill(into, layout.parts);
        else
            place(into, layout);
    });
}

// The captions that the building makes get one width.
void ScreenWindow::lineUp(const std::function<void()>& building) {
    Captions captions;
    Captions* outer = std::exchange(captions_, &captions);
    building();
    captions_ = outer;
    int width = 0;
    for (const QLabel* label : captions) width = std::max(width, label->sizeHint().width());
    for (QLabel* label : captions) label->setMinimumWidth(width + kSignRoom);
}

ControlView& ScreenWindow::view(Control& control) {
    views_.push_back(makeView(*this, control));
    viewOf_[&control] = views_.back().get();
    keepLinesInSight(*views_.back()->widget());
    return *views_.back();
}

void ScreenWindow::fill(QBoxLayout& into, const std::vector<Layout>& parts) {
    for (const Layout& part : parts) place(into, part);
}

void ScreenWindow::placeInner(QBoxLayout& into, QBoxLayout* inner, const Layout& part) {
    // Lines of a form in all but name: options, ticks, a fraction.
    const bool lines = std::all_of(part.parts.begin(), part.parts.end(), [](const Layout& line) {
        return line.kind == Layout::Kind::Item || line.kind == Layout::Kind::Line;
    });
    inner->setSpacing(lines || screen_.popup ? kLineSpacing : kSpacing);
    into.addLayout(inner, part.stretch);
    fill(*inner, part.parts);
}

void ScreenWindow::place(QBoxLayout& into, const Layout& part) {
    switch (part.kind) {
        case Layout::Kind::Item:
            return placeItem(into, part);
        case Layout::Kind::Row:
            return placeRow(into, part);
        case Layout::Kind::Column:
            return placeInner(into, new QVBoxLayout, part);
        case Layout::Kind::Group: {
            auto* group = new QGroupBox(toQt(part.caption));
            auto* inner = new QVBoxLayout(group);
            inner->setSpacing(kLineSpacing);
            into.addWidget(group, part.stretch);
            return fill(*inner, part.parts);
        }
        case Layout::Kind::Form:
            return placeForm(into, part);
        case Layout::Kind::Tabs:
            return into.addWidget(tabWidget(part), part.stretch);
        case Layout::Kind::Line: {
            auto* bar = new QFrame;
            bar->setFrameShape(QFrame::HLine);
            return into.addWidget(bar);
        }
        case Layout::Kind::Space:
            return into.addStretch(part.stretch);
    }
}

void ScreenWindow::placeItem(QBoxLayout& into, const Layout& part) {
    ControlView& made = view(*part.control);
    if (!part.caption.empty()) {
        QLabel* label = captionLabel(part.caption);
        made.setCompanion(label);
        label->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
        into.addWidget(label);
    }
    // A text that shares a row evenly stands as the buttons below it do.
    if (auto* text = dynamic_cast<QLabel*>(made.widget()); text && part.stretch > 0)
        text->setAlignment(Qt::AlignCenter);
    into.addWidget(made.widget(), part.stretch);
}

// What stands side by side lines up by itself; fields that want no room stand at the left.
void ScreenWindow::placeRow(QBoxLayout& into, const Layout& part) {
    auto* inner = new QHBoxLayout;
    inner->setSpacing(screen_.popup ? kSpacing / 3 : kSpacing);
    into.addLayout(inner, part.stretch);
    for (const Layout& beside : part.parts) lineUp([&] { place(*inner, beside); });
    const bool keptLeft =
        !screen_.popup &&
        std::all_of(part.parts.begin(), part.parts.end(), [](const Layout& beside) {
            return beside.kind == Layout::Kind::Item && beside.stretch == 0;
        });
    if (keptLeft) inner->addStretch(1);
}

void ScreenWindow::placeForm(QBoxLayout& into, const Layout& part) {
    auto* form = new QGridLayout;
    form->setHorizontalSpacing(kSpacing / 2);
    form->setVerticalSpacing(kLineSpacing);
    form->setColumnStretch(1, kFieldShare);
    form->setColumnStretch(3, 1);  // where no field wants the room
    into.addLayout(form, part.stretch);
    int line = 0;
    bool grows = false;
    for (const Layout& each : part.parts) {
        placeInForm(*form, line, each);
        form->setRowMinimumHeight(line, kLineHeight);
        const QLayoutItem* made = form->itemAtPosition(line, 1);
        if (made != nullptr && qobject_cast<QPlainTextEdit*>(made->widget()) != nullptr) {
            form->setRowStretch(line, 1);
            form->setAlignment(form->itemAtPosition(line, 0)->widget(), Qt::AlignTop);
            grows = true;
        }
        ++line;
    }
    if (!grows) form->setRowStretch(line, 1);
}

void ScreenWindow::placeInForm(QGridLayout& into, int line, const Layout& part) {
    QLabel* label = captionLabel(part.caption);
    captions_->push_back(label);
    into.addWidget(label, line, 0);
    if (part.kind != Layout::Kind::Item) {
        auto* inner = new QHBoxLayout;
        inner->setSpacing(kSpacing);
        into.addLayout(inner, line, 1, 1, 2);
        return place(*inner, part);
    }
    ControlView& made = view(*part.control);
    made.setCompanion(label);
    if (part.unit.empty()) {
        into.addWidget(made.widget(), line, 1, 1, 2);
    } else {
        into.addWidget(made.widget(), line, 1);
        into.addWidget(captionLabel(part.unit), line, 2);
    }
}

QWidget* ScreenWindow::tabWidget(const Layout& part) {
    auto* control = static_cast<Tabs*>(part.control);
    auto* widget = new QTabWidget;
    widget->setObjectName(toQt(control->name()));
    widget->tabBar()->installEventFilter(this);
    Pages& pages = tabs_[control];
    pages.widget = widget;
    for (size_t i = 0; i < part.parts.size() && i < control->pages.size(); ++i) {
        auto* page = new QWidget;
        auto* inner = new QVBoxLayout(page);
        inner->setSpacing(kSpacing);
        const size_t first = views_.size();
        lineUp([&] { place(*inner, part.parts[i]); });
        widget->addTab(page, toQt(control->pages[i]));
        pages.controls.emplace_back();
        for (size_t v = first; v < views_.size(); ++v)
            pages.controls.back().push_back(&views_[v]->control());
    }
    connect(widget, &QTabWidget::currentChanged, this, [this, control](int page) {
        act(*control, [&] { control->select(static_cast<size_t>(page)); });
    });
    return widget;
}

// --- size and place ---

// Never larger than the desktop, with the frame that it puts around.
void ScreenWindow::fit(const QWidget* below) {
    const QScreen* desktop = below != nullptr ? below->screen() : QWidget::screen();
    const QRect room = desktop->availableGeometry();
    const QSize frame = screen_.popup ? QSize() : QSize(kFrameWidth, kFrameHeight);
    resize(size().boundedTo(room.size() - frame));
    if (!testAttribute(Qt::WA_Moved)) return;  // the desktop places it
    const QPoint last = room.bottomRight() - QPoint(width() + frame.width(), height());
    const QPoint within(std::clamp(x(), room.left(), std::max(room.left(), last.x())),
                        std::clamp(y(), room.top(), std::max(room.top(), last.y())));
    if (within != pos()) move(within);  // moved in vain it would creep by the width of its frame
}

// Below the field that it picks for; above it where there is no room below.
void ScreenWindow::openBeside(const ScreenWindow& below) {
    const ControlView* target = below.viewAround(below.focusWidget());
    if (target == nullptr) return;
    const QRect field = target->anchor();
    const QRect room = below.QWidget::screen()->availableGeometry();
    QPoint at = field.bottomLeft() + QPoint(0, 1);
    if (at.y() + height() > room.bottom()) at.setY(field.top() - height());
    move(at);
}

}  // namespace owb
