#include "qt/control_view.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>

#include "qt/key_names.h"
#include "qt/qt_text.h"
#include "qt/screen_window.h"

namespace owb {

void ControlView::attach(QWidget* widget, QWidget* part) {
    widget_ = widget;
    widget->setObjectName(toQt(control_.name()));
    widget->setAccessibleName(control_.caption.empty() ? toQt(control_.name())
                                                       : withoutMnemonic(control_.caption));
    widget->installEventFilter(this);
    if (part != nullptr) part->installEventFilter(this);
}

void ControlView::setCompanion(QLabel* label) {
    companion_ = label;
    companionText_ = label->text();
    label->setBuddy(widget_);
    if (control_.caption.empty()) widget_->setAccessibleName(label->text().remove('&'));
}

void ControlView::sync() {
    if (widget_->isVisibleTo(widget_->parentWidget()) != control_.visible)
        widget_->setVisible(control_.visible);
    if (widget_->isEnabledTo(widget_->parentWidget()) != control_.enabled)
        widget_->setEnabled(control_.enabled);
    QString tip = toQt(control_.toolTip);
    if (!control_.shortcut.empty())
        tip += (tip.isEmpty() ? "" : "  ") + ("(" + toQt(control_.shortcut) + ")");
    if (widget_->toolTip() != tip) widget_->setToolTip(tip);
    if (companion_) {
        companion_->setVisible(control_.visible);
        companion_->setEnabled(control_.enabled);
        const bool changed = window_.screen().isChanged(control_);
        const QString text = changed ? companionText_ + kChangedSign : companionText_;
        if (companion_->text() != text) companion_->setText(text);
    }
    show();
    showRefusal();
}

QString ControlView::signedCaption() const {
    const bool changed = !companion_ && signsChange() && window_.screen().isChanged(control_);
    return toQt(control_.caption) + (changed ? kChangedSign : QString());
}

void ControlView::showRefusal() {
    const QString reason = toQt(control_.refusal());
    if (reason.isEmpty() && !refused_) return;
    widget_->setAccessibleDescription(reason);
    if (reason.isEmpty()) {
        delete refused_;
        return;
    }
    if (!refused_) refused_ = new FieldFrame(FieldFrame::Says::Refused);
    refused_->surround(widget_);
    refused_->setReason(reason);
}

QRect ControlView::anchor() const {
    return {widget_->mapToGlobal(QPoint(0, 0)), widget_->size()};
}

bool ControlView::editorHasFocus() const {
    const QWidget* focus = QApplication::focusWidget();
    return focus != widget_ && widget_->isAncestorOf(focus);
}

// The control first, then the screen; Esc ends what has begun here before it closes anything.
bool ControlView::keyPressed(const QKeyEvent& event) {
    const std::string name = keyName(event);
    if (name.empty()) return false;
    if (name == "Esc" && abandon()) return true;
    if (offered(name) || (name != "Esc" && window_.press(name))) return true;
    if (name == "Shift+F10" || name == "Menu") {
        if (openMenu(anchor().bottomLeft())) return true;
        // The toolkit's own menu of a text box.
        QContextMenuEvent own(QContextMenuEvent::Keyboard, widget_->rect().bottomLeft(),
                              anchor().bottomLeft());
        QApplication::sendEvent(widget_, &own);
        return true;
    }
    if (!enterGoesOn() || (name != "Enter" && name != "Shift+Enter")) return false;
    window_.goOn(name == "Enter");
    return true;
}

bool ControlView::offered(const std::string& name) {
    if (!control_.takesKey(name)) return false;
    bool taken = false;
    window_.act(control_, [&] {
        commit();
        taken = control_.key(name);
    });
    return taken;
}

// What a label offers a click it offers the other button too.
bool ControlView::openMenu(const QPoint& at) {
    if (window_.openMenu(control_, at)) return true;
    if (dynamic_cast<Label*>(&control_) == nullptr || !control_.onClick) return false;
    window_.act(control_, [&] { control_.click(); });
    return true;
}

bool ControlView::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
        case QEvent::KeyPress:
            return !editorHasFocus() && keyPressed(*static_cast<QKeyEvent*>(event));
        case QEvent::Wheel:
            if (!wheelChanges() || widget_->hasFocus()) return false;
            event->ignore();  // for the page that scrolls
            return true;
        case QEvent::FocusOut: {
            const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
            // Another window or a menu over this one takes the focus only for a while.
            if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason)
                return false;
            // An editor within the widget keeps it busy.
            if (editorHasFocus()) return false;
            commit();
            window_.act(control_, [&] { control_.leave(); });
            return false;
        }
        case QEvent::MouseButtonDblClick:
            if (!control_.onDoubleClick && !control_.onPick) return false;
            window_.act(control_, [&] { control_.doubleClick(); });
            return true;
        case QEvent::ContextMenu:
            return openMenu(static_cast<QContextMenuEvent*>(event)->globalPos());
        default:
            return false;
    }
}

}  // namespace owb
