// "Leave / Non-Leave Definition": the leave and non-leave types of ATT_DEFINITION. After every save
// and deletion each type with allotment has its LEV_SETTINGS rows, the master's and every head's,
// and no other type has any. A change of "Affects Salary" marks the months in which the type was
// taken.
#pragma once

#include "session/screens/RowScreen.h"

namespace owb {

class modLeaveDef final : public RowScreen {
  public:
    modLeaveDef(Session& session, FrontEnd& frontEnd);

    OptionGroup optKind;
    OptionButton optLeave{*this, optKind, "optLeave", "&Leave"};
    OptionButton optNonLeave{*this, optKind, "optNonLeave", "Non-Lea&ve"};
    TextBox txtLeaveName{*this, "txtLeaveName", "Name"};
    TextBox txtAttShort{*this, "txtAttShort", "Abbreviation"};
    CheckBox chkAffectSalary{*this, "chkAffectSalary", "Affects Salary"};
    CheckBox chkLeaveAllotment{*this, "chkLeaveAllotment", "Leave Allotment"};
    Command cmdMasterSetting{*this, "cmdMasterSetting", "&Master Setting",
                             [this] { cmdMasterSetting_Click(); }};

  private:
    Layout layout() override;
    std::string titleHead() const override { return ""; }  // of the company
    void load() override;
    void repairRows();
    void loadList() override;
    void rowShown() override;
    std::optional<Refusal> check() override;
    bool mayBeSaved(SaveBatch& batch) override;
    std::string writeRow(SaveBatch& batch) override;
    std::optional<Refusal> checkDeletion() override;
    bool mayBeDeleted(SaveBatch& batch) override;
    std::string rowWords() const override;
    void deleteRow(SaveBatch& batch) override;
    void joinMarks(SaveBatch& batch, Change change, const std::string& key) override;
    AuditLine auditLine(Change change) override;
    void finish() override;

    void optLeave_Click();
    void chkLeaveAllotment_Click();
    void cmdMasterSetting_Click();
    std::string word() const;  // "Leave" or "Non-Leave", the kind that is listed
    bool salaryChanged() const { return !row_.isNew() && row_.changed("AFFECTSALARYYN"); }
    std::string encashedSql() const;  // encashments of the chosen type

    bool leavesListed_ = true;
    EditedRow definition_{"ATT_DEFINITION", "LEVID", "The leave definition"};
};

}  // namespace owb
