// The window of one screen, built from its layout and its controls; no screen has a window class of
// its own. It takes input only while its screen waits for it: a handler that runs (a long pass that
// draws its progress between rows) leaves only cmdCancel open to the user.
#pragma once

#include <QEventLoop>
#include <QWidget>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "qt/control_view.h"
#include "screen/screen.h"

class QBoxLayout;
class QFormLayout;
class QLabel;
class QTabWidget;

namespace owb {

class WindowMemory;

class ScreenWindow final : public QWidget {
  public:
    ScreenWindow(Screen& screen, WindowMemory& memory, QWidget* below);
    ~ScreenWindow() override;

    Screen& screen() const { return screen_; }
    WindowMemory& memory() const { return memory_; }
    // Takes input until the screen has closed.
    void run();
    bool waitsForInput() const { return idle_; }
    // Brings every widget in step with its model.
    void sync();
    // Runs what the user did on a control and draws what came of it; false when no input is taken.
    bool act(const Control& control, const std::function<void()>& deed);
    void focusNext() { focusNextPrevChild(true); }
    bool hasMenu(const Control& control) const;
    // The menu items over a control; false when there are none.
    bool openMenu(const Control& control, const QPoint& at);
    // The line at the bottom: why an entry was refused, the sum of a selection.
    void say(const QString& text, bool refusal = false);

  protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool event(QEvent* event) override;

  private:
    void place(QBoxLayout& into, const Layout& part);
    void placeInForm(QFormLayout& into, const Layout& part);
    QWidget* tabWidget(const Layout& part);
    ControlView& view(Control& control);
    void fill(QBoxLayout& into, const std::vector<Layout>& parts);
    void takeFocus();
    void askToClose();

    Screen& screen_;
    WindowMemory& memory_;
    std::vector<std::unique_ptr<ControlView>> views_;
    std::map<const Control*, ControlView*> viewOf_;
    std::map<Tabs*, QTabWidget*> tabs_;
    QLabel* statusLine_ = nullptr;
    QEventLoop loop_;
    bool idle_ = false;         // waits for input
    bool closeWanted_ = false;  // the user asked for it while a handler ran
};

}  // namespace owb
