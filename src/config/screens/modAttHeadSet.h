// "Day to Day Hourly Setting": how the hours worked in a day of one head turn into attendance.
// Three bands of hours rise without overlap; a change marks the head's register rows.
#pragma once

#include <array>

#include "session/screens/SessionScreen.h"

namespace owb {

class modAttHeadSet final : public SessionScreen {
  public:
    modAttHeadSet(Session& session, FrontEnd& frontEnd, int32_t intAttHeadId);

    Label lblNoAtt{*this, "lblNoAtt", "No Attendance"};
    TextBox txtNoAttMin{*this, "txtNoAttMin", "Min."};
    TextBox txtNoAttMax{*this, "txtNoAttMax", "Max."};
    CheckBox chkNoAttOT{*this, "chkNoAttOT", "OT"};
    CheckBox chkNoAffectSal{*this, "chkNoAffectSal", "Affect Salary"};
    Label lblHalf{*this, "lblHalf", "Half Day"};
    TextBox txtHalfMin{*this, "txtHalfMin", "Min."};
    TextBox txtHalfMax{*this, "txtHalfMax", "Max."};
    TextBox txtHalfCutoff{*this, "txtHalfCutoff", "Cutoff"};
    CheckBox chkHalfOT{*this, "chkHalfOT", "OT"};
    CheckBox chkHalfDed{*this, "chkHalfDed", "OT Deduct"};
    CheckBox chkHalfAffectSal{*this, "chkHalfAffectSal", "Affect Salary"};
    Label lblFull{*this, "lblFull", "Full Day"};
    TextBox txtFullMin{*this, "txtFullMin", "Min."};
    TextBox txtFullMax{*this, "txtFullMax", "Max."};
    TextBox txtFullCutOff{*this, "txtFullCutOff", "Cutoff"};
    CheckBox chkFullOT{*this, "chkFullOT", "OT"};
    CheckBox chkFullDed{*this, "chkFullDed", "OT Deduct"};
    CheckBox chkFullAffectSal{*this, "chkFullAffectSal", "Affect Salary"};
    TextBox txtAttUpperLimit{*this, "txtAttUpperLimit", "Attendance Upper Limit"};
    TextBox txtOTMinLimit{*this, "txtOTMinLimit", "Over Time Min. Limit"};
    Label lblHint{*this, "lblHint", "Enter In Minutes (30 for thirty minutes)"};
    Command cmdSave{*this, "cmdSave", "&Save"};
    Command cmdClose{*this, "cmdClose", "Cl&ose"};

    void cmdSave_Click();

  private:
    // One column of the row with its control: a box of hours or minutes, or a check.
    struct Field {
        const char* column;
        const char* label;  // in the audit
        TextBox* box = nullptr;
        CheckBox* check = nullptr;
        const char* tooLarge = nullptr;  // what is said of a figure above the largest
        double largest = 24;
    };
    struct Band {
        const char* title;  // in the audit
        std::vector<Field> fields;
    };

    void onLoad() override;
    Layout layout() override;
    double valueOf(const Field& field) const;
    bool withinLimit(const Field& field);
    bool bandsAccepted();
    // Whether the save may go on; what it must still find so goes into the batch.
    bool changeAccepted(SaveBatch& batch);
    bool changed() const;
    void audit();

    int32_t attHeadId_;
    std::vector<Band> bands_;  // no attendance, half day, full day, and the two limits
    std::vector<std::vector<double>> stored_;  // of the row, as bands_ has the fields
    ShownRow shown_;                           // the same row
};

}  // namespace owb
