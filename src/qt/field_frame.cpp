#include "qt/field_frame.h"

#include <QAbstractScrollArea>
#include <QEvent>
#include <QLabel>
#include <QPainter>

#include "qt/contrast.h"

namespace owb {

namespace {

constexpr int kWidth = 2;  // of the line, which stands outside the widget
constexpr int kBubbleRoom = 4;

// What the bubble stands on: the page that scrolls with the widget, or the window.
QWidget* groundOf(const QWidget& widget) {
    QWidget* ground = widget.parentWidget();
    while (!ground->isWindow() &&
           qobject_cast<QAbstractScrollArea*>(ground->parentWidget()->parentWidget()) == nullptr)
        ground = ground->parentWidget();
    return ground;
}

}  // namespace

FieldFrame::FieldFrame(Says what) : what_(what) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    setObjectName(what == Says::Focus ? "focusFrame" : "refusedFrame");
    hide();
}

FieldFrame::~FieldFrame() {
    delete bubble_;
}

void FieldFrame::surround(QWidget* widget) {
    if (widget == widget_) return follow();
    if (widget_) widget_->removeEventFilter(this);
    widget_ = widget;
    if (!widget_) {
        setReason("");
        return hide();
    }
    setParent(widget_->parentWidget());
    widget_->installEventFilter(this);
    follow();
}

void FieldFrame::setReason(const QString& reason) {
    if (reason.isEmpty() || !widget_) {
        delete bubble_;
        return;
    }
    if (!bubble_) {
        bubble_ = new QLabel(groundOf(*widget_));
        bubble_->setObjectName("refusal");
        bubble_->setTextFormat(Qt::PlainText);
        bubble_->setAttribute(Qt::WA_TransparentForMouseEvents);
        bubble_->setAutoFillBackground(true);
        bubble_->setMargin(kBubbleRoom);
        bubble_->setFrameShape(QFrame::Box);
    }
    QPalette colors = bubble_->palette();
    const QColor ground = colors.color(QPalette::Base);
    colors.setColor(QPalette::Window, ground);
    colors.setColor(QPalette::WindowText, standingOut(Qt::red, {ground}, kTextContrast));
    bubble_->setPalette(colors);
    bubble_->setText(reason);
    follow();
}

void FieldFrame::follow() {
    if (!widget_) return;
    const bool shown = widget_->isVisible();
    setVisible(shown);
    if (bubble_) bubble_->setVisible(shown);
    if (!shown) return;
    // A refusal stands outside the focus: both are seen.
    const int away = what_ == Says::Focus ? kWidth : 2 * kWidth;
    setGeometry(widget_->geometry().adjusted(-away, -away, away, away));
    raise();
    update();
    if (!bubble_) return;
    // Beside the field; below it, or above it, where the window ends.
    QWidget* ground = bubble_->parentWidget();
    bubble_->adjustSize();
    QRect seen = ground->visibleRegion().boundingRect();
    if (seen.isEmpty()) seen = ground->rect();
    QPoint at = widget_->mapTo(ground, QPoint(widget_->width() + 2 * kBubbleRoom, 0));
    if (at.x() + bubble_->width() > seen.right())
        at = widget_->mapTo(ground, QPoint(0, widget_->height() + kBubbleRoom));
    if (at.y() + bubble_->height() > seen.bottom())
        at = widget_->mapTo(ground, QPoint(0, -bubble_->height() - kBubbleRoom));
    at.setX(std::max(0, std::min(at.x(), ground->width() - bubble_->width())));
    bubble_->move(at);
    bubble_->raise();
}

QColor FieldFrame::color() const {
    const QPalette& colors = palette();
    const QColor ink = what_ == Says::Focus ? colors.color(QPalette::Highlight) : QColor(Qt::red);
    return standingOut(ink, {colors.color(QPalette::Window), colors.color(QPalette::Base)},
                       kMarkContrast);
}

void FieldFrame::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect all = rect();
    for (const QRect& side : {QRect(all.left(), all.top(), all.width(), kWidth),
                              QRect(all.left(), all.bottom() - kWidth + 1, all.width(), kWidth),
                              QRect(all.left(), all.top(), kWidth, all.height()),
                              QRect(all.right() - kWidth + 1, all.top(), kWidth, all.height())})
        painter.fillRect(side, color());
}

bool FieldFrame::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
        case QEvent::Move:
        case QEvent::Resize:
        case QEvent::Show:
        case QEvent::Hide:
        case QEvent::ParentChange:
            follow();
            break;
        default:
            break;
    }
    return false;
}

}  // namespace owb
