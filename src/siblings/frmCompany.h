// Which company to open: one that was open before, a file, or a new sample company.
#pragma once

#include <string>

#include "screen/control.h"
#include "screen/lists.h"
#include "screen/screen.h"
#include "siblings/Companies.h"

namespace owb {

class frmCompany final : public Screen {
  public:
    frmCompany(Session& session, FrontEnd& frontEnd);

    Label lblHint{*this, "lblHint"};
    ListBox lstRecent{*this, "lstRecent"};
    Command cmdFile{*this, "cmdFile", "&File..."};
    Command cmdSample{*this, "cmdSample", "New &Sample..."};
    Command cmdOpen{*this, "cmdOpen", "&Open"};
    Command cmdClose{*this, "cmdClose", "&Close"};

    // The connection string of the company to open; "" when the user has chosen none.
    const std::string& chosen() const { return chosen_; }

  private:
    Layout layout() override;
    void onLoad() override;
    void cmdOpen_Click();
    void cmdFile_Click();
    void cmdSample_Click();
    void choose(const std::string& connection);

    Session& session_;
    Companies companies_;
    std::vector<std::string> recent_;
    std::string chosen_;
};

}  // namespace owb
