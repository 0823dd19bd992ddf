// "Weekly Holiday": which halves of which occurrences of a weekday are off, from a month on. With
// head 0 it is the company's rule, which flows to every head whose own rule has not diverged from
// it (EDITEDYN 0). Saving and deleting mark the register, month and ledger rows from the month on.
#pragma once

#include <array>

#include "screen/grid.h"
#include "session/screens/SessionScreen.h"

namespace owb {

class modHolidayWeekly final : public SessionScreen {
  public:
    modHolidayWeekly(Session& session, FrontEnd& frontEnd);

    Combo cmbWeekDay{*this, "cmbWeekDay"};      // key 1 Sunday to 7 Saturday
    Combo cmbMonthYear{*this, "cmbMonthYear"};  // key: month key
    std::array<CheckBox, 5> chkFirst;
    std::array<CheckBox, 5> chkSecond;
    Grid fpgWeeklyHoliday{*this, "fpgWeeklyHoliday"};
    Command cmdSave{*this, "cmdSave", "&Save"};
    Command cmdDelete{*this, "cmdDelete", "&Delete"};
    Command cmdAdvanced{*this, "cmdAdvanced", "&Rotating"};
    Command cmdClose{*this, "cmdClose", "Cl&ose"};

    void cmdSave_Click();
    void cmdDelete_Click();
    void cmdAdvanced_Click();
    void fpgWeeklyHoliday_Click(size_t row);

  private:
    // FH1YN, SH1YN, FH2YN ... SH5YN.
    using Halves = std::array<bool, 10>;
    struct Rule {
        int32_t monthYear = 0, weekDay = 0;
        Halves halves{};
    };

    void onLoad() override;
    Layout layout() override;
    void loadGrid();
    Rule ruleOnScreen() const;
    void show(const Rule& rule);
    bool monthsLocked(int32_t lngMonthYear);
    std::string lockText(int32_t lngMonthYear) const;
    ShownRow readRow(int32_t intAttHeadId, const Rule& key);
    static Halves halvesOf(const ShownRow& row);
    // Whether the row that the user chose in the grid is as it was shown; another key was not.
    bool stillAsChosen(const ShownRow& row);
    // The statements of a save and a deletion, in the order in which they run.
    void SaveWeeklyRow(SaveBatch& batch, const ShownRow& row, const Rule& rule) const;
    void passOnToHeads(SaveBatch& batch, const Rule& rule) const;
    void markEdited(SaveBatch& batch, const Rule& rule) const;
    void markHeads(SaveBatch& batch, const std::string& heads, int32_t lngMonthYear) const;
    void markAfterSave(SaveBatch& batch, const Rule& rule, bool changed) const;
    void markAfterDelete(SaveBatch& batch, int32_t lngMonthYear) const;
    void showAgain();  // the rules as they are now, none chosen
    void auditSave(const Rule& rule, bool isNew, const Halves& before);
    std::string attendanceName();

    int32_t attHeadId_;
    ShownRow shown_;  // the row that was chosen in the grid
};

}  // namespace owb
