// "Attendance Configuration": the attendance heads of MAS_ATTHEAD, each of which says how the
// attendance of its employees is kept and what days make up their months. A change of what the
// salary rests on asks first and, once the row is written, marks everything computed for the head.
#pragma once

#include "session/screens/RowScreen.h"

namespace owb {

class modAttHead final : public RowScreen {
  public:
    modAttHead(Session& session, FrontEnd& frontEnd);

    static constexpr Captions<4> kAllotTypes = {"Between Dates", "Monthly", "Calendar Year",
                                                "Financial Year"};
    static constexpr Captions<6> kNwdOptions = {"Fixed (30) days / month",
                                                "Actual Days / Month",
                                                "Allow User to Edit Days in Month",
                                                "Only working days",
                                                "Only working days + Weekly Holiday",
                                                "Only working days + Holiday"};

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
    OptionArray<4> optAllotType{*this, "optAllotType", 1, kAllotTypes};  // as ATTNALLOTTYPE
    CheckBox chkOT1{*this, "chkOT1", "Over Time 1"};
    CheckBox chkOT2{*this, "chkOT2", "Over Time 2"};
    OptionGroup optOT;
    OptionButton optOTHourly{*this, optOT, "optOTHourly", "Hourly"};
    OptionButton optOTDaily{*this, optOT, "optOTDaily", "Daily"};
    Label fmeNWDOption{*this, "fmeNWDOption", "Salary Calendar Days (NWD)"};
    Label lblSalary{*this, "lblSalary", "Salary = "};
    Label lblDaysPaid{*this, "lblDaysPaid", "Pay Days or Present Days"};
    Label lblNWD{*this, "lblNWD", "NWD"};
    OptionArray<6> optNODForCalc{*this, "optNODForCalc", 1, kNwdOptions};  // as NODFORCALC
    CheckBox chkAllowMore{*this, "chkAllowMore", "Allow more than working days"};
    CheckBox chkInactive{*this, "chkInactive", "Inactive"};
    Command cmdSetting{*this, "cmdSetting", "Se&tting", [this] { cmdSetting_Click(); }};
    Command cmdCreateCopy{*this, "cmdCreateCopy", "Create Cop&y", Command::Writing,
                          [this] { cmdCreateCopy_Click(); }};

  private:
    Layout layout() override;
    std::string titleHead() const override { return ""; }  // of the company
    void declareRow();
    void load() override;
    void showAgain() override;
    void loadList() override;
    void rowShown() override;
    void newBegun() override;
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

    void cmdSetting_Click();
    void cmdCreateCopy_Click();
    bool isRegisterKept() const;  // a register of days
    // The first changed setting that the salary of the head's employees rests on; "" none, or
    // nobody has been paid by the head.
    std::string changedForSalary() const;
    std::string makeLeaveSettings(const std::string& headId);
    void refuseClearedOvertime(CheckBox& box, const char* column, int row, const char* text);

    EditedRow head_{"MAS_ATTHEAD", "ATTHEADID", "The attendance head"};
};

}  // namespace owb
