// "Holiday List": the general holidays of the company, of an attendance head or of a branch. A
// company's holiday is taken from one head or branch by an exception, not by deleting it. Each save
// and delete marks the salary, register, month and ledger rows of the holiday's month. A company's
// holiday that is edited in the view of a head or branch is taken from it and becomes its own.
#pragma once

#include "marks/marks.h"
#include "session/screens/RowScreen.h"
#include "session/screens/family_combos.h"

namespace owb {

class modHolidayList final : public RowScreen {
  public:
    modHolidayList(Session& session, FrontEnd& frontEnd);

    CheckBox chkBranchWise{*this, "chkBranchWise", "Branch Wise"};
    Label lblAttHead{*this, "lblAttHead", "Attendance Head"};
    ScopeCombo cmbAttHead{*this, "cmbAttHead"};
    Label lblEffFrom{*this, "lblEffFrom", "N/A"};
    Label fmeFilter{*this, "fmeFilter", "Filter"};
    Combo cmbHFilter{*this, "cmbHFilter"};
    DateBox txtFilterFrom{*this, "txtFilterFrom"};
    DateBox txtFilterTo{*this, "txtFilterTo"};
    DateBox txtHDate{*this, "txtHDate"};
    TextBox txtHDesc{*this, "txtHDesc"};
    CheckBox chkNH{*this, "chkNH", "National Holiday"};
    Label lblImport{*this, "lblImport", "&Import"};
    Label lblExport{*this, "lblExport", "&Export"};
    // With what the list is narrowed by.
    PrintHeading printHeading() const override;

    // One holiday as it is typed or imported.
    struct Holiday {
        DateTime date;
        std::string description;
        bool national = false;
    };

  private:
    Layout layout() override;
    std::string titleHead() const override;
    void load() override;
    void showAgain() override;
    void loadList() override;
    std::optional<Refusal> check() override;
    bool mayBeSaved(SaveBatch& batch) override;
    std::string writeRow(SaveBatch& batch) override;
    std::optional<Refusal> checkDeletion() override;
    bool mayBeDeleted(SaveBatch& batch) override;
    std::string rowWords() const override;
    void deleteRow(SaveBatch& batch) override;
    void joinMarks(SaveBatch& batch, Change change, const std::string& key) override;
    AuditLine auditLine(Change change) override;

    void scopesChanged();  // heads or branches
    void lblImport_Click();
    HolidayScope scope() const;
    Holiday typed() const;
    // The checks of a holiday in their order; of a new one, also that it is not there yet.
    std::optional<Refusal> refusalOf(const Holiday& holiday, bool isNew);
    std::optional<Refusal> takenRefusal(const Holiday& holiday);
    Lock lockOf(int32_t lngMonthYear) const;
    int32_t monthOf(const DateTime& date);
    int32_t monthBefore();  // of the row as it was read
    // A company's holiday in the view of one head or branch, which may not change it for all.
    bool isCompanysInScope() const;
    std::string exceptionSql(const std::string& holidayId) const;
    bool keptInBranches();  // and says so
    // The statements of a new holiday, of an exception and of a month's marks.
    void addHoliday(SaveBatch& batch, const Holiday& holiday);
    void insertRow(SaveBatch& batch, const Holiday& holiday) const;
    void takeFromScope(SaveBatch& batch) const;
    void markMonth(SaveBatch& batch, int32_t lngMonthYear) const;
    static void updateBranchStart(SaveBatch& batch);
    AuditText auditBegin() const;

    EditedRow holiday_{"ATT_HOLIDAY", "HOLIDAYID", "The holiday"};
};

}  // namespace owb
