// A month of days; the one that is picked goes to a text box, or to whoever asked for it, as
// "dd/mm/yyyy". Sundays and the company's holidays are tinted. Closing it changes nothing.
#pragma once

#include <array>

#include "screen/cell_board.h"
#include "screen/lists.h"
#include "screen/screen.h"
#include "screen/text_box.h"
#include "session/Session.h"

namespace owb {

class frmOwbCalender final : public Screen {
  public:
    frmOwbCalender(Session& session, FrontEnd& frontEnd);

    // Where the day goes, before showing: a box, or a function that gets the day's text; the
    // calendar opens at the date of `text`, or at today.
    void SetTarget(TextBox& target);
    void SetTarget(const std::string& text, std::function<void(const std::string& date)> picked);
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
    std::array<Label, 42> lblDate;  // six weeks, Sunday first; shown by monDays
    MonthView monDays{*this, "monDays"};
    Label lbltoady{*this, "lbltoady", "Today Date"};
    Label lblclose{*this, "lblclose", "Close"};

    void lblDate_Click(size_t index);
    void lbltoady_Click();

  private:
    void onLoad() override;
    Layout layout() override;
    DateTime entryDay() const override { return {session_.now().day, 0}; }
    bool turnTo(int year, int month, int day);
    void tintHolidays();

    Session& session_;
    std::string text_;
    std::function<void(const std::string&)> picked_;
    int day_ = 1;  // of the month that loadCalender shows
};

}  // namespace owb
