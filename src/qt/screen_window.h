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
class QGridLayout;
class QLabel;
class QMenu;
class QScrollArea;
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
    // To the next field, or back.
    // To the next field, or back. Behind the last field stands Save, whatever button comes first.
    void goOn(bool forward);
    // What a key does on this screen wherever the focus is; false when it does nothing.
    bool press(const std::string& key);
    // The view that holds the widget; null when none does.
    ControlView* viewAround(const QWidget* widget) const;
    bool hasMenu(const Control& control) const;
    // The menu over a control: the screen's items, and below them the control's own. False when
    // there are none.
    bool openMenu(const Control& control, const QPoint& at);
    // The line at the bottom: why an entry was refused, the sum of a selection. The screen's own
    // status stands at its right end.
    void say(const QString& text, bool refusal = false);

  protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    // Captions of the forms that stand below each other, and so line up.
    using Captions = std::vector<QLabel*>;
    struct Pages {
        QTabWidget* widget = nullptr;
        std::vector<std::vector<const Control*>> controls;  // of each page
    };

    // --- building (screen_layout.cpp) ---
    void build(const Layout& layout);
    void placeAll(QBoxLayout& into, const Layout& layout);
    void place(QBoxLayout& into, const Layout& part);
    void placeItem(QBoxLayout& into, const Layout& part);
    void placeRow(QBoxLayout& into, const Layout& part);
    void placeForm(QBoxLayout& into, const Layout& part);
    void placeInForm(QGridLayout& into, int line, const Layout& part);
    void placeInner(QBoxLayout& into, QBoxLayout* inner, const Layout& part);
    QWidget* tabWidget(const Layout& part);
    ControlView& view(Control& control);
    void fill(QBoxLayout& into, const std::vector<Layout>& parts);
    void lineUp(const std::function<void()>& building);
    void fit(const QWidget* below);
    void openBeside(const ScreenWindow& below);

    // --- life ---
    void syncPages();
    void focusMoved(QWidget* now);
    void takeFocus();
    void askToClose();
    void perform(const std::function<void()>& deed);
    void fillMenu(QMenu& menu, const Control& control, MenuItem*& chosen);

    Screen& screen_;
    WindowMemory& memory_;
    std::vector<std::unique_ptr<ControlView>> views_;
    std::map<const Control*, ControlView*> viewOf_;
    std::map<Tabs*, Pages> tabs_;
    Captions* captions_ = nullptr;  // while a page is built
    QScrollArea* page_ = nullptr;   // what does not fit into the window scrolls; none in a popup
    QLabel* statusLine_ = nullptr;
    QLabel* status_ = nullptr;  // the screen's own
    QPointer<FieldFrame> focusFrame_;
    QEventLoop loop_;
    bool idle_ = false;         // waits for input
    bool closeWanted_ = false;  // the user asked for it while a handler ran
};

}  // namespace owb
