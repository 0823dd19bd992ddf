// " Process Leave": runs the passes over marked rows in their fixed order and shows where they are:
// which step of how many and, in the bar, the rows of it and the time left. The user may
// cancel between rows; what is not yet done keeps its marks.
#pragma once

#include "screen/progress.h"
#include "screen/screen.h"

namespace owb {

struct Session;

class modLeaveProcess final : public Screen, private Progress {
  public:
    // endsTransaction: the caller has begun a transaction, which ends with the screen.
    modLeaveProcess(Session& session, FrontEnd& frontEnd, bool endsTransaction = false);

    ProgressBar barProgress{*this, "barProgress"};
    Label lblProgress{*this, "lblProgress"};
    Label lblStatus{*this, "lblStatus"};
    Command cmdCancel{*this, "cmdCancel", "&Cancel"};
    Command cmdClose{*this, "cmdClose", "Cl&ose"};

    void cmdCancel_Click();
    void cmdClose_Click();

    // Was every marked row worked out?
    bool Succeeded() const { return succeeded_; }

  private:
    void onLoad() override;
    Layout layout() override;
    void onActivate() override;
    void onUnload() override;
    void runPasses();
    void beginStep();
    // The steps are done; `anything`: there was something to do.
    void tellCompleted(bool anything);

    void status(const std::string& text) override;
    void step(size_t done, size_t total) override;
    bool cancelled() const override;

    Session& session_;
    bool endsTransaction_;
    bool succeeded_ = false;
    size_t step_ = 0, steps_ = 0;  // from 1
};

}  // namespace owb
