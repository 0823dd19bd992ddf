// What every screen over the family's database shares: its session, the rights on its commands, the
// read-only user, the combo of months and the two pickers.
#pragma once

#include <string>
#include <vector>

#include "data/Session.h"
#include "screen/lists.h"
#include "screen/screen.h"
#include "screen/text_box.h"

namespace owb {

class SessionScreen : public Screen {
  protected:
    SessionScreen(Session& session, FrontEnd& frontEnd, std::string name, std::string caption)
        : Screen(frontEnd, std::move(name), std::move(caption)), session_(session) {}

    // Tags the commands that the user's rights deny, and disables `writing` for a read-only user.
    void applyRights(const std::vector<Command*>& writing);
    // Says "Permission denied." when the command is denied; the first test of save and delete.
    bool denied(const Command& command);

    // Months of the payroll from a month key on, the latest first; keys are month keys.
    void loadMonths(Combo& combo, int32_t lngFrom);
    // F2 and double click open the picker of months, of dates.
    void pickMonths(Combo& combo);
    void pickDates(TextBox& box);

    // A question with Yes and No, No being the default.
    bool ask(const std::string& text, const std::string& title = "Orvane Wagebook");
    void inform(const std::string& text, const std::string& title = "Orvane Wagebook") {
        frontEnd().information(text, title);
    }
    // The same, and the focus goes back to the field that is at fault.
    void refuse(const std::string& text, Control& field);

    Session& session_;
};

}  // namespace owb
