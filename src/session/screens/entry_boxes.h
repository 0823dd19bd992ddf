// Boxes for dates and numbers: what may be typed, how it reads once the focus has left, and what it
// means.
#pragma once

#include <optional>

#include "base/date_time.h"
#include "screen/text_box.h"

namespace owb {

class SessionScreen;

// "dd/mm/yyyy"; F2 and double click open the calendar. A short entry ("5", "5/3", "+1") becomes
// the whole date when the focus leaves, and counts from the screen's entryDay(). What is no date
// stays as it was typed, refused.
class DateBox : public TextBox {
  public:
    DateBox(SessionScreen& screen, std::string name, std::string caption = "");
    std::optional<DateTime> date() const;  // nothing: empty, or no whole date
    void setDate(const DateTime& date);    // day 0 empties it
    std::vector<KeyHelp> keyHelp() const override;

  private:
    void complete(const DateTime& entryDay);
};

// A number, rounded to its decimals; an empty box is 0.
class NumberBox : public TextBox {
  public:
    NumberBox(SessionScreen& screen, std::string name, std::string caption = "", int decimals = 2);
    double number() const;
    void setNumber(double number);

  private:
    int decimals_;
};

}  // namespace owb
