// How far a long job has come, with a button that cancels it. The job runs while the screen is
// open.
#pragma once

#include <functional>
#include <string>

#include "screen/progress.h"
#include "screen/screen.h"

namespace owb {

class frmProgress final : public Screen, public Progress {
  public:
    using Job = std::function<void(Progress&)>;
    frmProgress(FrontEnd& frontEnd, const std::string& title, Job job);

    Label lblStatus{*this, "lblStatus"};
    ProgressBar barProgress{*this, "barProgress"};
    Command cmdCancel{*this, "cmdCancel", "&Cancel", [this] { cancelled_ = true; }};

    void status(const std::string& text) override { lblStatus.caption = text; }
    void step(size_t done, size_t total) override;
    bool cancelled() const override { return cancelled_; }

  private:
    Layout layout() override;
    void onActivate() override;

    Job job_;
    bool cancelled_ = false;
};

// Runs the job; a job of so many rows that it takes a while is shown.
void RunShown(FrontEnd& frontEnd, const std::string& title, size_t rows,
              const frmProgress::Job& job);

}  // namespace owb
