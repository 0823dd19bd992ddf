// Shows screens as windows of the desktop. Screens open on each other, and so do their windows: the
// one on top takes the input.
#pragma once

#include <memory>
#include <vector>

#include "qt/window_memory.h"
#include "screen/screen.h"

namespace owb {

class ScreenWindow;

class QtFrontEnd final : public FrontEnd {
  public:
    // A QApplication must exist as long as this one.
    explicit QtFrontEnd(SettingsStore& settings);
    ~QtFrontEnd() override;

    BoxAnswer show(const Box& box) override;
    std::string askFile(const FileQuestion& question) override;
    void openFile(const std::string& path) override;
    void print(const Grid& grid, const PrintHeading& heading) override;
    std::string clipboard() override;
    void setClipboard(const std::string& text) override;
    void opened(Screen& screen) override;
    void run(Screen& screen) override;
    void closed(Screen& screen) override;
    void refresh(Screen& screen) override;
    void pause(int milliseconds) override;

    // Of the open screen on top; null when there is none.
    ScreenWindow* top() const;

  private:
    ScreenWindow* windowOf(const Screen& screen) const;

    WindowMemory memory_;
    std::vector<std::unique_ptr<ScreenWindow>> windows_;  // the last one is on top
};

}  // namespace owb
