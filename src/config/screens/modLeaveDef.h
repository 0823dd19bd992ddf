// "Leave / Non-Leave Definition": the leave and non-leave types of ATT_DEFINITION. After every save
// and deletion each type with allotment has its LEV_SETTINGS rows, the master's and every head's,
// and no other type has any. A change of "Affects Salary" marks the months in which the type was
// taken.
#pragma once

#include "screen/grid.h"
#include "session/screens/SessionScreen.h"

namespace owb {

class modLeaveDef final : public SessionScreen {
  public:
    modLeaveDef(Session& session, FrontEnd& frontEnd);

    OptionGroup optKind;
    OptionButton optLeave{*this, optKind, "optLeave", "&Leave"};
    OptionButton optNonLeave{*this, optKind, "optNonLeave", "&Non-Leave"};
    Grid fpgMstDetail{*this, "fpgMstDetail"};
    TextBox txtLeaveName{*this, "txtLeaveName", "Name"};
    TextBox txtAttShort{*this, "txtAttShort", "Abbreviation"};
    CheckBox chkAffectSalary{*this, "chkAffectSalary", "Affects Salary"};
    CheckBox chkLeaveAllotment{*this, "chkLeaveAllotment", "Leave Allotment"};
    Command cmdMasterSetting{*this, "cmdMasterSetting", "&Master Setting"};
    Command cmdNew{*this, "cmdNew", "Ne&w"};
    Command cmdSave{*this, "cmdSave", "&Save"};
    Command cmdDelete{*this, "cmdDelete", "&Delete"};
    Command cmdClose{*this, "cmdClose", "Cl&ose"};

    void optKind_Click();
    void fpgMstDetail_Click(size_t row);
    void chkLeaveAllotment_Click();
    void cmdMasterSetting_Click();
    void cmdNew_Click();
    void cmdSave_Click();
    void cmdDelete_Click();

  private:
    struct Definition {
        int64_t levId = 0;  // 0: a new one
        std::string name, shortName;
        bool affectsSalary = false, allotment = false;
    };

    void onLoad() override;
    Layout layout() override;
    void repairRows();
    void loadGrid();
    void show(const Definition& definition);
    Definition definitionOnScreen() const;
    std::string word() const;  // "Leave" or "Non-Leave", the kind that is listed
    bool taken(const char* column, const std::string& text) const;
    // Asks before the type's months are to be paid anew; false ends the save. What it must still
    // find so goes into the batch, the marks on the months into `marks`.
    bool changeOfSalaryAccepted(SaveBatch& batch, std::string& marks);
    bool deletionAccepted(SaveBatch& batch);
    void requireFree(SaveBatch& batch, const Definition& definition) const;
    void write(SaveBatch& batch, const Definition& definition) const;
    static void alignSettings(SaveBatch& batch);
    std::string encashedSql() const;  // encashments of the chosen type
    void auditSave(const Definition& now);
    // The whole type, for a line that tells of its coming or going.
    std::string auditOf(const Definition& definition) const;
    void finish();

    Definition selected_;
    ShownRow shown_;  // the same as it was read
};

}  // namespace owb
