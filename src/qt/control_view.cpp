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
    label->setBuddy(widget_);
    if (control_.caption.empty()) widget_->setAccessibleName(label->text().remove('&'));
}

void ControlView::sync() {
    if (widget_->isVisibleTo(widget_->parentWidget()) != control_.visible)
        widget_->setVisible(control_.visible);
    if (widget_->isEnabledTo(widget_->parentWidget()) != control_.enabled)
        widget_->setEnabled(control_.enabled);
    const QString tip = toQt(control_.toolTip);
    if (widget_->toolTip() != tip) widget_->setToolTip(tip);
    if (companion_) {
        companion_->setVisible(control_.visible);
        companion_->setEnabled(control_.enabled);
    }
    show();
}

bool ControlView::editorHasFocus() const {
    const QWidget* focus = QApplication::focusWidget();
    return focus != widget_ && widget_->isAncestorOf(focus);
}

bool ControlView::keyPressed(const std::string& name) {
    if (!control_.onKey && !(name == "F2" && control_.onPick)) return false;
    bool taken = false;
    window_.act(control_, [&] {
        commit();
        taken = control_.key(name);
    });
    return taken;
}

bool ControlView::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
        case QEvent::KeyPress: {
            if (editorHasFocus()) return false;
            const std::string name = keyName(*static_cast<QKeyEvent*>(event));
            if (name.empty()) return false;
            if (keyPressed(name)) return true;
            if (name != "Enter" || !enterGoesOn()) return false;
            window_.focusNext();
            return true;
        }
        case QEvent::FocusOut: {
            const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
            // Another window or a menu over this one takes the focus only for a while.
            if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason)
                return false;
            // An editor within the widget keeps it busy.
            if (editorHasFocus()) return false;
            commit();
            if (control_.onLeave) window_.act(control_, [&] { control_.leave(); });
            return false;
        }
        case QEvent::MouseButtonDblClick:
            if (!control_.onDoubleClick && !control_.onPick) return false;
            window_.act(control_, [&] { control_.doubleClick(); });
            return true;
        case QEvent::ContextMenu:
            if (window_.openMenu(control_, static_cast<QContextMenuEvent*>(event)->globalPos()))
                return true;
            // What a label offers a click it offers the other button too.
            if (dynamic_cast<Label*>(&control_) == nullptr || !control_.onClick) return false;
            window_.act(control_, [&] { control_.click(); });
            return true;
        default:
            return false;
    }
}

}  // namespace owb
