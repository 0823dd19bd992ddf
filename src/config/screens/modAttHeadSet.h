// "Day to Day Hourly Setting": how the hours worked in a day of one head turn into attendance.
// Three bands of hours rise without overlap; a change marks the head's register rows.
#pragma once

#include <array>

#include "session/screens/EditedRow.h"
#include "session/screens/SessionScreen.h"

namespace owb {

class modAttHeadSet final : public SessionScreen {
  public:
    modAttHeadSet(Session& session, FrontEnd& frontEnd, int32_t intAttHeadId);

    Label lblNoAtt{*this, "lblNoAtt", "No Attendance"};
    NumberBox txtNoAttMin{*this, "txtNoAttMin", "Min."};
    NumberBox txtNoAttMax{*this, "txtNoAttMax", "Max."};
    CheckBox chkNoAttOT{*this, "chkNoAttOT", "OT"};
    CheckBox chkNoAffectSal{*this, "chkNoAffectSal", "Affect Salary"};
    Label lblHalf{*this, "lblHalf", "Half Day"};
    NumberBox txtHalfMin{*this, "txtHalfMin", "Min."};
    NumberBox txtHalfMax{*this, "txtHalfMax", "Max."};
    NumberBox txtHalfCutoff{*this, "txtHalfCutoff", "Cutoff"};
    CheckBox chkHalfOT{*this, "chkHalfOT", "OT"};
    CheckBox chkHalfDed{*this, "chkHalfDed", "OT Deduct"};
    CheckBox chkHalfAffectSal{*this, "chkHalfAffectSal", "Affect Salary"};
    Label lblFull{*this, "lblFull", "Full Day"};
    NumberBox txtFullMin{*this, "txtFullMin", "Min."};
    NumberBox txtFullMax{*this, "txtFullMax", "Max."};
    NumberBox txtFullCutOff{*this, "txtFullCutOff", "Cutoff"};
    CheckBox chkFullOT{*this, "chkFullOT", "OT"};
    CheckBox chkFullDed{*this, "chkFullDed", "OT Deduct"};
    CheckBox chkFullAffectSal{*this, "chkFullAffectSal", "Affect Salary"};
    NumberBox txtAttUpperLimit{*this, "txtAttUpperLimit", "Attendance Upper Limit"};
    NumberBox txtOTMinLimit{*this, "txtOTMinLimit", "Over Time Min. Limit"};
    Label lblHint{*this, "lblHint", "Enter In Minutes (30 for thirty minutes)"};
    Command cmdSave{*this, "cmdSave", "&Save", Command::Writing, [this] { cmdSave_Click(); }};
    CloseCommand cmdClose{*this};

    bool isChanged(const Control& control) const override { return hours_.touched(control); }

  private:
    // A figure has a largest value, and a text for one above it.
    struct Limit {
        NumberBox& box;
        double largest;
        std::string text;
    };

    void load() override;
    Layout layout() override;
    std::string titleHead() const override { return headName_; }
    bool unsaved() const override { return hours_.touched(); }
    void declareRow();
    void cmdSave_Click();
    static std::optional<Refusal> aboveLimit(const Limit& limit);
    std::optional<Refusal> check();
    // Whether the save may go on; what it must still find so goes into the batch.
    bool changeAccepted(SaveBatch& batch);

    int32_t attHeadId_;
    std::string headName_;
    EditedRow hours_{"MAS_ATTHEAD", "ATTHEADID", "The attendance head"};
    std::vector<Limit> limits_;  // the bands' figures, then the two limits
};

}  // namespace owb
