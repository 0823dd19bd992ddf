// Named queries of the user's own that give one number, as rules for leave that no formula can tell
// (MAS_FORMULACUSTOM, module 2). A new name follows into the formulas that use the query.
#pragma once

#include "screen/grid.h"
#include "session/screens/SessionScreen.h"

namespace owb {

class frmFormulacustom final : public SessionScreen {
  public:
    frmFormulacustom(Session& session, FrontEnd& frontEnd);

    Grid fpgFormulaQry{*this, "fpgFormulaQry"};
    TextBox txtFname{*this, "txtFname", "Name"};
    TextBox txtFtype{*this, "txtFtype", "Type"};
    TextBox txtFquery{*this, "txtFquery", "Query"};
    Label lblqryinfo{*this, "lblqryinfo"};
    Command cmdverify{*this, "cmdverify", "&Verify"};
    Command cmdNew{*this, "cmdNew", "Ne&w"};
    Command cmdSave{*this, "cmdSave", "&Save"};
    Command cmdDelete{*this, "cmdDelete", "&Delete"};
    Command cmdClose{*this, "cmdClose", "Cl&ose"};

    void fpgFormulaQry_Click(size_t row);
    void cmdverify_Click();
    void cmdNew_Click();
    void cmdSave_Click();
    void cmdDelete_Click();

  private:
    void onLoad() override;
    Layout layout() override;
    void loadGrid();
    void write(SaveBatch& batch, const std::string& name) const;
    void renameInFormulas(SaveBatch& batch, const std::string& from, const std::string& to) const;
    std::string literal(const std::string& text) const;

    int64_t fid_ = 0;  // 0: a new query
    std::string name_;
    ShownRow shown_;  // the chosen query as it was read
};

}  // namespace owb
