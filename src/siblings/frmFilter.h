// The employee filter: a stand-in for the family's program OWBFilter on machines without it. The
// user narrows the list by text, department, designation, branch and head and ticks who stays;
// Apply marks those, and only those, with FILTERYN1 and leaves in Settings/Filter whether anybody
// was left out.
#pragma once

#include <string>

#include "screen/grid.h"
#include "session/screens/SessionScreen.h"

namespace owb {

class frmFilter final : public SessionScreen {
  public:
    frmFilter(Session& session, FrontEnd& frontEnd);

    TextBox txtSearch{*this, "txtSearch"};
    Combo cmbDepartment{*this, "cmbDepartment"};
    Combo cmbDesignation{*this, "cmbDesignation"};
    Combo cmbBranch{*this, "cmbBranch"};
    Combo cmbAttHead{*this, "cmbAttHead"};
    Grid fpgEmployee{*this, "fpgEmployee"};
    Label lblListedCount{*this, "lblListedCount"};
    Command cmdSelectAll{*this, "cmdSelectAll", "&Select All"};
    Command cmdClear{*this, "cmdClear", "C&lear All"};
    Command cmdApply{*this, "cmdApply", "&Apply"};
    CloseCommand cmdClose{*this};

    // The ticks of what the list shows; employees out of sight are never in the filter.
    void setListed(bool on);
    void narrow();
    void cmdApply_Click();

  private:
    void load() override;
    Layout layout() override;
    void fillCombos();
    // Who is ticked, row by row.
    std::string ticks() const;
    bool unsaved() const override { return ticks() != ticksBegun_; }

    std::string ticksBegun_;
};

}  // namespace owb
