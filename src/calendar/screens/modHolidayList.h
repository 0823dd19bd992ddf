// "Holiday List": the general holidays of the company, of an attendance head or of a branch. A
// company's holiday is taken from one head or branch by an exception, not by deleting it. Each save
// and delete marks the salary, register, month and ledger rows of the holiday's month. A company's
// holiday that is edited in the view of a head or branch is taken from it and becomes its own.
#pragma once

#include "exchange/screens/frmImport.h"
#include "exchange/sheet_file.h"
#include "screen/grid.h"
#include "session/screens/SessionScreen.h"

namespace owb {

class modHolidayList final : public SessionScreen {
  public:
    modHolidayList(Session& session, FrontEnd& frontEnd);

    CheckBox chkBranchWise{*this, "chkBranchWise", "Branch Wise"};
    Label lblAttHead{*this, "lblAttHead", "Attendance Head"};
    Combo cmbAttHead{*this, "cmbAttHead"};  // key: head or branch; "ALL" is the company
    Label lblEffFrom{*this, "lblEffFrom", "N/A"};
    Label fmeFilter{*this, "fmeFilter", "Filter"};
    Combo cmbHFilter{*this, "cmbHFilter"};
    TextBox txtFilterFrom{*this, "txtFilterFrom"};
    TextBox txtFilterTo{*this, "txtFilterTo"};
    Grid fpgHDetail{*this, "fpgHDetail"};
    TextBox txtHDate{*this, "txtHDate"};
    TextBox txtHDesc{*this, "txtHDesc"};
    CheckBox chkNH{*this, "chkNH", "National Holiday"};
    Command cmdNew{*this, "cmdNew", "&New"};
    Command cmdSave{*this, "cmdSave", "&Save"};
    Command cmdDelete{*this, "cmdDelete", "&Delete"};
    Command cmdClose{*this, "cmdClose", "Cl&ose"};
    Label lblImport{*this, "lblImport", "Import"};
    Label lblExport{*this, "lblExport", "Export"};

    void chkBranchWise_Click();
    void cmbAttHead_Click();
    void filter_Change();
    void fpgHDetail_Click(size_t row);
    void cmdNew_Click();
    void cmdSave_Click();
    void cmdDelete_Click();
    void lblImport_Click();
    void lblExport_Click();

    // One holiday as it is typed or imported.
    struct Holiday {
        int64_t id = 0;  // 0: new
        DateTime date;
        std::string description;
        bool national = false;
        bool operator==(const Holiday&) const = default;
    };

  private:
    static constexpr size_t kLongestDescription = 100;

    void onLoad() override;
    Layout layout() override;
    void loadScopes();
    void LoadList();
    void showAgain();  // the list as it is now, nothing chosen
    std::string scopeColumn() const { return chkBranchWise.value ? " BRANCHID " : " ATTHEADID "; }
    int64_t scopeId() const { return cmbAttHead.key(); }
    std::string scopeName() const { return cmbAttHead.value; }
    // The checks of a save in their order; "" when all pass.
    std::string refusal(const Holiday& holiday, int32_t& lngMonthYear);
    std::string lockText() const;
    // A company's holiday in the view of one head or branch, which may not change it for all.
    bool isCompanysInScope() const;
    bool hasException(int64_t holidayId);
    bool keptInBranches(int64_t holidayId);  // and says so
    // The statements of a save and a deletion, in the order in which they run.
    void SaveHolidayRow(SaveBatch& batch, const Holiday& holiday);
    void insertRow(SaveBatch& batch, const Holiday& holiday) const;
    void takeFromScope(SaveBatch& batch, int64_t holidayId) const;
    void MarkHolidayMonth(SaveBatch& batch, int32_t lngMonthYear) const;
    void updateBranchStart(SaveBatch& batch) const;
    void showBranchStart();
    // The sheet's rows with what an import does with each, and the holidays that it brings.
    void readHolidays(const std::vector<SheetRow>& sheet, std::vector<frmImport::Row>& rows,
                      std::vector<Holiday>& holidays);
    int32_t monthOf(const DateTime& date);
    std::string scopeAudit() const;
    std::string describe(const Holiday& holiday) const;
    void auditSave(const Holiday& holiday);

    Holiday selected_;  // the row that is being edited; it stays so when the filter hides it
    ShownRow shown_;    // the same as it was read
};

}  // namespace owb
