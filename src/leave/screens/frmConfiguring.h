// The configuration pass of every normal start, as the user sees it. It works by itself and closes
// when done. A user who will not wait cancels it, and with it the start.
#pragma once

#include "screen/progress.h"
#include "screen/screen.h"

namespace owb {

struct Session;

class frmConfiguring final : public Screen, private Progress {
  public:
    frmConfiguring(Session& session, FrontEnd& frontEnd);

    Label lblProgress{*this, "lblProgress"};
    ProgressBar barProgress{*this, "barProgress"};  // steps done
    Command cmdCancel{*this, "cmdCancel", "&Cancel"};

    void cmdCancel_Click();

    // May the start go on? Not without the options, and not when the user cancelled. A pass that
    // failed has told so; what it did not do, its next run does.
    bool MayGoOn() const { return mayGoOn_; }

  private:
    Layout layout() override;
    void onActivate() override;
    void status(const std::string& text) override;
    void step(size_t done, size_t total) override;
    bool cancelled() const override { return cancelled_; }

    Session& session_;
    bool cancelled_ = false, mayGoOn_ = false;
};

}  // namespace owb
