// Opens another program of the family and waits until it has gone, or has said in the status entry
// of the settings store that it is done. While it waits it stands before its caller as a small
// window that brings the program forward; closing it gives the waiting up.
#pragma once

#include "session/screens/SessionScreen.h"

namespace owb {

class modExternal final : public SessionScreen {
  public:
    modExternal(Session& session, FrontEnd& frontEnd);

    // --- set before showing ---
    std::string AppName;  // of the executable, without extension
    std::string AppSearchDir;
    std::string AppTitle;  // AppName when it is empty
    std::string AppParameter;
    int Mode = 0;  // 1 to 4; 1 and 3 look whether the program is still there, the others wait for
                   // its word

    Label lblProgress{*this, "lblProgress"};
    TextBox txtStatus{*this, "txtStatus"};  // what the program says; never in sight
    Command cmdFront{*this, "cmdFront", "&Bring Forward"};
    Command cmdClose{*this, "cmdClose", "Cl&ose"};

    void cmdFront_Click();

  private:
    void load() override;
    void onActivate() override;
    void onTimer() override;  // whether the program has gone or said its word
    void onUnload() override;
    Layout layout() override;
    bool startOrRaise();

    std::string callersHandle_;
};

// Lets the user choose the employees that the calling screen shows; gFilterActive tells afterwards
// whether somebody was left out.
void ShowFilterProgram(Session& session, FrontEnd& frontEnd);

}  // namespace owb
