// One control as a widget. The model is the truth: after every handler each view brings its widget
// in step with it, and what the user does goes to the model's own operations.
#pragma once

#include <QLabel>
#include <QPointer>
#include <memory>

#include "qt/field_frame.h"
#include "screen/control.h"

class QKeyEvent;
class QMenu;

namespace owb {

class ScreenWindow;

class ControlView : public QObject {
  public:
    ControlView(ScreenWindow& window, Control& control) : window_(window), control_(control) {}
    ~ControlView() override { delete refused_; }

    Control& control() const { return control_; }
    QWidget* widget() const { return widget_; }
    // The caption that stands before the widget, shown and hidden with it; a sign behind it tells
    // that the user has changed what stands in the widget.
    void setCompanion(QLabel* label);
    const QLabel* companion() const { return companion_; }
    void sync();
    // What is typed and not yet told to the model.
    virtual void commit() {}
    // Items of this kind's own, below those of the screen in the menu over the control.
    virtual void addOwnItems(QMenu&) {}
    // Where a picker opens from, on the desktop: below this, or above it.
    virtual QRect anchor() const;

  protected:
    // Once, by the constructor of the kind. Mouse events may come by a part of the widget.
    void attach(QWidget* widget, QWidget* part = nullptr);
    // What only this kind shows.
    virtual void show() = 0;
    // Whether Enter goes on to the next control where nothing else takes it.
    virtual bool enterGoesOn() const { return false; }
    // Drops what is typed and not yet told to the model; whether there was any.
    virtual bool abandon() { return false; }
    // Whether the wheel would change the content, which it may only with the focus.
    virtual bool wheelChanges() const { return false; }
    // Whether a change is signed at this widget: of a group of options, at the chosen one.
    virtual bool signsChange() const { return true; }
    // What the model's caption says, with the sign of a change where no caption stands before.
    QString signedCaption() const;
    bool eventFilter(QObject* object, QEvent* event) override;
    ScreenWindow& window() const { return window_; }

  private:
    bool editorHasFocus() const;
    bool keyPressed(const QKeyEvent& event);
    bool offered(const std::string& name);
    void showRefusal();
    bool openMenu(const QPoint& at);

    ScreenWindow& window_;
    Control& control_;
    QWidget* widget_ = nullptr;
    QPointer<QLabel> companion_;
    QString companionText_;
    QPointer<FieldFrame> refused_;
};

// The view of any control but tabs and menu items, which the window itself draws.
std::unique_ptr<ControlView> makeView(ScreenWindow& window, Control& control);

}  // namespace owb
