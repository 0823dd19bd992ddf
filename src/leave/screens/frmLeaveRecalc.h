// "Allotment Recalculation": marks the ledger rows of chosen leaves, employees and heads from a
// month on and has everything marked recalculated. The lists offer what has ledger rows that begin
// in the months from - to.
#pragma once

#include "screen/grid.h"
#include "session/screens/SessionScreen.h"
#include "session/screens/family_combos.h"
#include "session/screens/list_grid.h"

namespace owb {

class frmLeaveRecalc final : public SessionScreen {
  public:
    frmLeaveRecalc(Session& session, FrontEnd& frontEnd);

    MonthCombo cmbFromMonth{*this, "cmbFromMonth"};
    MonthCombo cmbToMonth{*this, "cmbToMonth"};
    Combo cmbAttHead{*this, "cmbAttHead"};  // key 0: all heads
    ListBox lstLeave{*this, "lstLeave"};    // key LEVID, ticked when chosen
    Label lblLeaveCount{*this, "lblLeaveCount"};
    ListGrid fpgEmployee{*this, "fpgEmployee"};
    Label lblEmployeeCount{*this, "lblEmployeeCount"};
    CheckBox chkAllLeaves{*this, "chkAllLeaves", "Select All &Leaves"};
    CheckBox chkAllEmployees{*this, "chkAllEmployees"};
    Command cmdFilter{*this, "cmdFilter", "&Filter", [this] { cmdFilter_Click(); }};
    Command cmdRecalculate{*this, "cmdRecalculate", "&Recalculate", Command::Writing,
                           [this] { cmdRecalculate_Click(); }};
    CloseCommand cmdClose{*this};

  private:
    void load() override;
    Layout layout() override;
    std::string titleHead() const override { return cmbAttHead.key() == 0 ? "" : cmbAttHead.value; }
    void chkAllLeaves_Click();
    void chkAllEmployees_Click();
    void cmdFilter_Click();
    void cmdRecalculate_Click();
    void loadLists();
    void loadEmployees();
    void count();
    std::vector<std::string> chosenEmployees() const;
    // " WHERE ALLOTFROM BETWEEN ..." of ledger rows that begin in the months.
    std::string firstDay() const;
    std::string inMonths() const;
    // FROM and WHERE of the ledger rows that are to be recomputed.
    std::string chosenRows() const;
};

}  // namespace owb
