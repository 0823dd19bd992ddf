// Runs screens that work by themselves, with nobody at the keys: boxes and progress go where the
// caller says, and a screen that would wait for input closes.
#pragma once

#include "screen/progress.h"
#include "screen/screen.h"

namespace owb {

class BatchFrontEnd final : public FrontEnd {
  public:
    BatchFrontEnd(MessageBoxes& boxes, Progress& progress) : boxes_(boxes), progress_(progress) {}

    BoxAnswer show(const Box& box) override { return boxes_.show(box); }
    void opened(Screen& screen) override { refresh(screen); }
    void run(Screen& screen) override { screen.close(); }
    void closed(Screen&) override {}
    void refresh(Screen& screen) override;
    void pause(int) override {}

  private:
    MessageBoxes& boxes_;
    Progress& progress_;
};

}  // namespace owb
