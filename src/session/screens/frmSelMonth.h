// "Select Month Year": a year and one of its months choose the entry of a combo of months; months
// that the combo does not offer take no click. Closing it without a choice leaves the combo as it
// was.
#pragma once

#include <array>

#include "screen/cell_board.h"
#include "screen/lists.h"
#include "screen/screen.h"
#include "session/Session.h"

namespace owb {

class frmSelMonth final : public Screen {
  public:
    frmSelMonth(Session& session, FrontEnd& frontEnd);

    // The combo that the choice goes to; before showing.
    void SetTarget(Combo& target) { target_ = &target; }
    void LoadYear();
    void LoadMonths();
    void Monthdisable();
    void ClearAll();

    ListBox lstYear{*this, "lstYear"};
    std::array<Label, 12> lblMonth;  // shown by monMonths
    CellBoard monMonths{*this, "monMonths", 3, 4};
    Label lblClose{*this, "lblClose", "Close"};

    void lstYear_Click();
    void lblMonth_Click(int index);

  private:
    void onLoad() override;
    Layout layout() override;
    bool offered(int32_t lngMonthYear) const;  // by the combo
    void stepYear(int step);
    std::string fetchmonthname(int index) const;
    int32_t fetchmonthyear(int index) const;

    Session& session_;
    Combo* target_ = nullptr;
    std::array<int32_t, 12> months_{};  // month keys of the year; 0: not to be had
};

}  // namespace owb
