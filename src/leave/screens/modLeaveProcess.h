// " Process Leave": runs the passes over marked rows in their fixed order and shows where they are.
// The user may cancel between rows; what is not yet done keeps its marks.
#pragma once

#include "screen/progress.h"
#include "screen/screen.h"

namespace owb {

struct Session;

class modLeaveProcess final : public Screen, private Progress {
  public:
    modLeaveProcess(Session& session, FrontEnd& frontEnd);

    ProgressBar barProgress{*this, "barProgress"};
    Label lblProgress{*this, "lblProgress"};
    Label lblStatus{*this, "lblStatus"};
    Command cmdCancel{*this, "cmdCancel", "&Cancel"};
    Command cmdClose{*this, "cmdClose", "Cl&ose"};

    void cmdCancel_Click();
    void cmdClose_Click();

  private:
    void onLoad() override;
    Layout layout() override;
    void onActivate() override;
    void onUnload() override;
    void runPasses();

    void status(const std::string& text) override;
    void step(size_t done, size_t total) override;
    bool cancelled() const override;

    Session& session_;
};

}  // namespace owb
