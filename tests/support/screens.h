// A front end for tests of screens: boxes are recorded and answered as queued, a screen that waits
// for input is handed to the test's own function, and refreshes are told to another.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "screen/screen.h"
#include "support/company.h"

namespace owb::test {

class TestFrontEnd final : public FrontEnd {
  public:
    explicit TestFrontEnd(RecordedBoxes& boxes) : boxes_(boxes) {}

    BoxAnswer show(const Box& box) override { return boxes_.show(box); }
    std::string askFile(const FileQuestion&) override { return file; }
    void opened(Screen& screen) override { events.push_back("open " + screen.name()); }
    void run(Screen& screen) override {
        if (atInput) atInput(screen);
        screen.close();
    }
    void closed(Screen& screen) override { events.push_back("close " + screen.name()); }
    void refresh(Screen& screen) override {
        if (atRefresh) atRefresh(screen);
    }
    void pause(int milliseconds) override {
        events.push_back("pause " + std::to_string(milliseconds));
    }

    std::vector<std::string> events;
    std::string file;  // what is answered to a question for one
    std::function<void(Screen&)> atInput, atRefresh;

  private:
    RecordedBoxes& boxes_;
};

}  // namespace owb::test
