// One control as a widget. The model is the truth: after every handler each view brings its widget
// in step with it, and what the user does goes to the model's own operations.
#pragma once

#include <QLabel>
#include <QPointer>
#include <memory>

#include "screen/control.h"

namespace owb {

class ScreenWindow;

class ControlView : public QObject {
  public:
    ControlView(ScreenWindow& window, Control& control) : window_(window), control_(control) {}

    Control& control() const { return control_; }
    QWidget* widget() const { return widget_; }
    // The caption that stands before the widget, shown and hidden with it.
    void setCompanion(QLabel* label);
    void sync();
    // What is typed and not yet told to the model.
    virtual void commit() {}

  protected:
    // Once, by the constructor of the kind. Mouse events may come by a part of the widget.
    void attach(QWidget* widget, QWidget* part = nullptr);
    // What only this kind shows.
    virtual void show() = 0;
    // Whether Enter goes on to the next control where nothing else takes it.
    virtual bool enterGoesOn() const { return false; }
    bool eventFilter(QObject* object, QEvent* event) override;
    ScreenWindow& window() const { return window_; }

  private:
    bool editorHasFocus() const;
    bool keyPressed(const std::string& name);

    ScreenWindow& window_;
    Control& control_;
    QWidget* widget_ = nullptr;
    QPointer<QLabel> companion_;
};

// The view of any control but tabs and menu items, which the window itself draws.
std::unique_ptr<ControlView> makeView(ScreenWindow& window, Control& control);

}  // namespace owb
