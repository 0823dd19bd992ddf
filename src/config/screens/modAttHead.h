// "Attendance Configuration": the attendance heads of MAS_ATTHEAD, each of which says how the
// attendance of its employees is kept and what days make up their months. A change of what the
// salary rests on asks first and, once the row is written, marks everything computed for the head.
#pragma once

#include <array>

#include "screen/grid.h"
#include "session/screens/SessionScreen.h"

namespace owb {

class modAttHead final : public SessionScreen {
  public:
    modAttHead(Session& session, FrontEnd& frontEnd);

    Grid fpgAtt{*this, "fpgAtt"};
    TextBox txtAttID{*this, "txtAttID", "Sl. No."};
    TextBox txtAttName{*this, "txtAttName", "Attendance Head Name"};
    TextBox txtShortName{*this, "txtShortName", "Short Name for menu caption."};
    TextBox txtDescription{*this, "txtDescription", "Remarks"};
    Label lblEmployees{*this, "lblEmployees"};

    OptionGroup optIntegration;
    OptionButton optTightIntegrate{*this, optIntegration, "optTightIntegrate", "Dependent"};
    OptionButton optLooseIntegrate{*this, optIntegration, "optLooseIntegrate", "Independent"};
    OptionGroup optRegister;  // in the order of ATTNTYPE, from 1
    OptionButton optAttLeave{*this, optRegister, "optAttLeave", "Leave Register"};
    OptionButton optAttDaily{*this, optRegister, "optAttDaily", "Daily"};
    OptionButton optAttHourly{*this, optRegister, "optAttHourly", "Hourly"};
    OptionButton OptAttMonthly{*this, optRegister, "OptAttMonthly", "Monthly"};
    OptionGroup allotTypes;  // buttons are named by what ATTNALLOTTYPE holds: 1 to 4
    std::array<OptionButton, 4> optAllotType;
    CheckBox chkOT1{*this, "chkOT1", "Over Time 1"};
    CheckBox chkOT2{*this, "chkOT2", "Over Time 2"};
    OptionGroup optOT;
    OptionButton optOTHourly{*this, optOT, "optOTHourly", "Hourly"};
    OptionButton optOTDaily{*this, optOT, "optOTDaily", "Daily"};
    Label fmeNWDOption{*this, "fmeNWDOption", "Salary Calendar Days (NWD)"};
    Label lblSalary{*this, "lblSalary", "Salary = "};
    Label lblDaysPaid{*this, "lblDaysPaid", "Pay Days or Present Days"};
    Label lblNWD{*this, "lblNWD", "NWD"};
    OptionGroup nwdOptions;  // named by what NODFORCALC holds: 1 to 6
    std::array<OptionButton, 6> optNODForCalc;
    CheckBox chkAllowMore{*this, "chkAllowMore", "Allow more than working days"};
    CheckBox chkInactive{*this, "chkInactive", "Inactive"};
    Command cmdSetting{*this, "cmdSetting", "Se&tting"};
    Command cmdCreateCopy{*this, "cmdCreateCopy", "Create Cop&y"};
    Command cmdNew{*this, "cmdNew", "Ne&w"};
    Command cmdSave{*this, "cmdSave", "&Save"};
    Command cmdDelete{*this, "cmdDelete", "&Delete"};
    Command cmdClose{*this, "cmdClose", "Cl&ose"};

    void fpgAtt_Click(size_t row);
    void chkOT1_Click();
    void chkOT2_Click();
    void cmdSetting_Click();
    void cmdCreateCopy_Click();
    void cmdNew_Click();
    void cmdSave_Click();
    void cmdDelete_Click();

  private:
    static constexpr const char* kHead = "The attendance head";  // begins what is told of it

    struct Head {
        int64_t id = 0;
        std::string name, menuName, remarks;
        int registerType = 1;  // ATTNTYPE
        int allotType = 0;     // ATTNALLOTTYPE; 0: none chosen
        int nwdOption = 0;     // NODFORCALC; 0: none chosen
        bool tight = true, ot1 = false, ot2 = false, otHourly = false, allowMore = false,
             inactive = false;
    };
    // A setting of two heads as the user reads it.
    struct Setting {
        std::string label, before, now;
        bool salaryRestsOnIt = false;
    };

    void onLoad() override;
    Layout layout() override;
    void loadGrid();
    // The head of the row that is read into shown_.
    Head readHead(int64_t id);
    void showAgain();  // the list as it is now, none chosen
    void show(const Head& head, bool isNew);
    Head headOnScreen() const;
    bool fieldsAccepted(const Head& head);
    std::vector<Setting> settingsOf(const Head& before, const Head& now) const;
    bool hasSalaryRows() const;
    // Whether the save may go on. Into the batch goes what it must still find so, and into `marks`
    // the marks on what is computed for the head.
    bool changesAccepted(SaveBatch& batch, const Head& now, std::string& marks);
    void requireFreeNames(SaveBatch& batch, const Head& head) const;
    static RowText rowOf(const Head& head);
    void insert(SaveBatch& batch, const Head& head);
    void makeLeaveSettings(SaveBatch& batch, const std::string& headId);
    std::string markHeadSql() const;
    void refuseClearedOvertime(CheckBox& box, bool wasKept, int row, const char* column,
                               const char* text);
    std::string auditOf(const Head& head) const;
    void auditSave(const Head& now);
    void finish();

    Head selected_;   // as stored
    ShownRow shown_;  // the same as it was read
    bool isNew_ = true;
};

}  // namespace owb
