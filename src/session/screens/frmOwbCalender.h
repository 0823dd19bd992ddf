// A month of days; the one that is clicked fills a text box as "dd/mm/yyyy". Closing it leaves the
// box as it was.
#pragma once

#include <array>

#include "screen/lists.h"
#include "screen/screen.h"
#include "screen/text_box.h"
#include "session/Session.h"

namespace owb {

class frmOwbCalender final : public Screen {
  public:
    frmOwbCalender(Session& session, FrontEnd& frontEnd);

    // The box that the day goes to; before showing.
    void SetTarget(TextBox& target) { target_ = &target; }
    // The lists of months and years, and the month of the date in the box, or of today.
    void LoadMonthYear();
    void loadCalender();
    void ClearAll();
    void FillDatesNew();
    void filldates(const DateTime& date);

    Combo cmbMonth{*this, "cmbMonth"};
    Combo cmbYear{*this, "cmbYear"};
    Label lblsunday{*this, "lblsunday", "Sun"};
    Label lblMonday{*this, "lblMonday", "Mon"};
    Label lblTuesday{*this, "lblTuesday", "Tue"};
    Label lblWednesday{*this, "lblWednesday", "Wed"};
    Label lblThrusday{*this, "lblThrusday", "Thu"};
    Label lblFriday{*this, "lblFriday", "Fri"};
    Label lblSaturday{*this, "lblSaturday", "Sat"};
    std::array<Label, 42> lblDate;  // six weeks, Sunday first
    Label lbltoady{*this, "lbltoady", "Today Date"};
    Label lblclose{*this, "lblclose", "Close"};

    void lblDate_Click(size_t index);
    void lbltoady_Click();

  private:
    void onLoad() override;
    Layout layout() override;

    Session& session_;
    TextBox* target_ = nullptr;
};

}  // namespace owb
