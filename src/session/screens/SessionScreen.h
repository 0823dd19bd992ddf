// What every screen over the family's database shares: its session, the rights on its commands, the
// read-only user, the combo of months and the two pickers.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "screen/lists.h"
#include "screen/screen.h"
#include "screen/text_box.h"
#include "session/Session.h"
#include "session/modSave.h"

namespace owb {

class SessionScreen : public Screen {
  public:
    // Nobody who is read-only writes anything; a command that the user's rights deny says
    // "Permission denied.".
    bool mayWrite(const Control& control) override;

  protected:
    SessionScreen(Session& session, FrontEnd& frontEnd, std::string name, std::string caption)
        : Screen(frontEnd, std::move(name), std::move(caption)), session_(session) {}

    // Marks the controls that write, disables them for a read-only user and tags the commands that
    // the user's rights on the form deny. A screen of the menu has its own menu identifier as form;
    // 0: the form that the program was started for.
    void applyRights(const std::vector<Control*>& writing, int32_t formId = 0);
    // The first test of save and delete, for whoever calls the handler.
    bool denied(const Command& command) { return !mayWrite(command); }
    // Runs a save or a deletion. When the database refused it, since somebody else was faster, the
    // reason is told, `showAgain` shows what there is now, and the result is false.
    bool save(const SaveBatch& batch, const std::function<void()>& showAgain);
    // Whether what was shown still stands; otherwise as with save.
    bool stillAsShown(const ShownRow& row, const std::string& what,
                      const std::function<void()>& showAgain);

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
