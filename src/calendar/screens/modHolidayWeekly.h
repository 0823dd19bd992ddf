// "Weekly Holiday": which halves of which occurrences of a weekday are off, from a month on. With
// head 0 it is the company's rule, which flows to every head whose own rule has not diverged from
// it (EDITEDYN 0). Saving and deleting mark the register, month and ledger rows from the month on.
#pragma once

#include "session/screens/SessionScreen.h"
#include "session/screens/family_combos.h"
#include "session/screens/list_grid.h"

namespace owb {

class modHolidayWeekly final : public SessionScreen {
  public:
    modHolidayWeekly(Session& session, FrontEnd& frontEnd);

    static constexpr Captions<5> kFirst = {"First Half", "First Half", "First Half", "First Half",
                                           "First Half"};
    static constexpr Captions<5> kSecond = {"Second Half", "Second Half", "Second Half",
                                            "Second Half", "Second Half"};

    Combo cmbWeekDay{*this, "cmbWeekDay"};  // key 1 Sunday to 7 Saturday
    MonthCombo cmbMonthYear{*this, "cmbMonthYear"};
    CheckBoxArray<5> chkFirst{*this, "chkFirst", 0, kFirst};
    CheckBoxArray<5> chkSecond{*this, "chkSecond", 0, kSecond};
    ListGrid fpgWeeklyHoliday{*this, "fpgWeeklyHoliday"};
    Command cmdSave{*this, "cmdSave", "&Save", Command::Writing, [this] { cmdSave_Click(); }};
    Command cmdDelete{*this, "cmdDelete", "&Delete", Command::Writing,
                      [this] { cmdDelete_Click(); }};
    Command cmdAdvanced{*this, "cmdAdvanced", "&Rotating", [this] { cmdAdvanced_Click(); }};
    CloseCommand cmdClose{*this};

  private:
    // FH1YN, SH1YN, FH2YN ... SH5YN.
    using Halves = std::array<bool, 10>;
    struct Rule {
        int32_t monthYear = 0, weekDay = 0;
        Halves halves{};
        std::string key() const;  // as a condition, for any head
    };

    void load() override;
    Layout layout() override;
    void showAgain();  // the rules as they are now, none chosen
    void fpgWeeklyHoliday_Click(size_t row);
    void cmdSave_Click();
    void cmdDelete_Click();
    void cmdAdvanced_Click();

    Rule ruleOnScreen() const;
    void show(const Rule& rule);
    ShownRow readRow(const Rule& key);
    static Halves halvesOf(const ShownRow& row);
    // Whether the row that the user chose in the grid is as it was shown; another key was not.
    bool stillAsChosen(const ShownRow& row);
    Lock lockFrom(int32_t lngMonthYear) const;
    // The statements of a save, in the order in which they run.
    void writeRow(SaveBatch& batch, const ShownRow& row, const Rule& rule) const;
    void passOnToHeads(SaveBatch& batch, const Rule& rule) const;
    void markEdited(SaveBatch& batch, const Rule& rule) const;
    std::string marksOf(const Rule& rule, bool changed) const;
    bool deletionAccepted(SaveBatch& batch, const Rule& rule);
    AuditText auditBegin(const Rule& rule) const;
    AuditLine auditSave(const Rule& rule, bool isNew, const Halves& before) const;

    int32_t attHeadId_;
    ShownRow shown_;  // the row that was chosen in the grid
};

}  // namespace owb
