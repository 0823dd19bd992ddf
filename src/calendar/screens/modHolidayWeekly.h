// "Weekly Holiday": which halves of which occurrences of a weekday are off, from a month on. With
// head 0 it is the company's rule, which flows to every head whose own rule has not diverged from
// it (EDITEDYN 0). Saving and deleting mark the register, month and ledger rows from the month on.
//
// Month and weekday are the row's key: the user types them, and the row that they name is the one
// that is saved or deleted, whichever was chosen in the list.
#pragma once

#include "session/screens/RowScreen.h"
#include "session/screens/family_combos.h"

namespace owb {

class modHolidayWeekly final : public RowScreen {
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
    Command cmdAdvanced{*this, "cmdAdvanced", "&Rotating", [this] { cmdAdvanced_Click(); }};

  private:
    void load() override;
    Layout layout() override;
    void showAgain() override;
    void loadList() override;
    bool readLine(size_t line) override;
    bool isShownBy(size_t line) const override;
    // A month that is none of the list is typed text, too.
    bool unsaved() const override {
        return RowScreen::unsaved() || (!cmbMonthYear.value.empty() && !cmbMonthYear.isInList());
    }
    std::optional<Refusal> check() override;
    bool mayBeSaved(SaveBatch& batch) override;
    std::string writeRow(SaveBatch& batch) override;
    std::optional<Refusal> checkDeletion() override;
    bool mayBeDeleted(SaveBatch& batch) override;
    std::string rowWords() const override;
    void deleteRow(SaveBatch& batch) override;
    void joinMarks(SaveBatch& batch, Change change, const std::string& key) override;
    AuditLine auditLine(Change change) override;
    void tellRow(AuditText& detail, Change change) override;
    void finish() override;

    void cmdAdvanced_Click();
    // The month and weekday on the screen as a condition, for any head and for this one.
    std::string typedKey() const;
    std::string ownKey() const;
    Lock lockFrom(int32_t lngMonthYear) const;
    // The statements by which a saved rule keeps the heads' rules in step.
    void passOnToHeads(SaveBatch& batch) const;
    void markEdited(SaveBatch& batch) const;

    int32_t attHeadId_;
    EditedRow rule_{"LEV_WEEKLYHLD", "WHID", "The weekly holiday"};
};

}  // namespace owb
