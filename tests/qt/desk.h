// A desktop for tests: screens run in windows of the offscreen platform, and while one waits for
// input the test's next step works on its window as a user would.
#pragma once

#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QTimer>
#include <deque>
#include <functional>

#include "qt/qt_front_end.h"
#include "qt/screen_window.h"
#include "session/MemorySettingsStore.h"

namespace owb::test {

class Desk {
  public:
    Desk() { wait(); }

    // Steps run one after the other, each when the event loop is free; the screen on top closes
    // after the last one.
    void then(std::function<void()> step) { steps_.push_back(std::move(step)); }

    template <typename Widget = QWidget>
    Widget* widget(const char* name) {
        return frontEnd.top()->findChild<Widget*>(name);
    }
    void press(const char* name, int key, Qt::KeyboardModifiers with = Qt::NoModifier) {
        QTest::keyClick(widget(name), static_cast<Qt::Key>(key), with);
    }
    void type(const char* name, const char* text) { QTest::keyClicks(widget(name), text); }
    // What waits for events itself, a menu or a pause; the next step comes after it.
    void alone(const std::function<void()>& deed) {
        resting_ = true;
        deed();
        resting_ = false;
    }
    void rest(int milliseconds) {
        alone([=] { QTest::qWait(milliseconds); });
    }
    QString status() { return widget<QLabel>("statusLine")->text(); }

    bool fromInput = true;  // the first step waits until the screen takes input
    MemorySettingsStore settings;
    QtFrontEnd frontEnd{settings};

  private:
    // A single shot each time: a repeating timer rests while its own work waits in a loop.
    void wait() {
        QTimer::singleShot(1, &life_, [this] { next(); });
    }
    void next() {
        wait();
        if (resting_) return;
        const ScreenWindow* window = frontEnd.top();
        if (fromInput && (window == nullptr || !window->waitsForInput())) return;
        fromInput = false;
        if (steps_.empty()) {
            if (ScreenWindow* top = frontEnd.top()) top->close();
            return;
        }
        const auto step = std::move(steps_.front());
        steps_.pop_front();
        step();
    }

    std::deque<std::function<void()>> steps_;
    bool resting_ = false;
    QObject life_;
};

}  // namespace owb::test
