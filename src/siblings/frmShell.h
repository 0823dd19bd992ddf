// A small launcher for machines where the family's shell is not installed: the company's attendance
// heads, the screens of the menu by group, and which of them are open now. It starts the program
// with the line of a launch and listens on a local socket for what opens and ends.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "app/LocalTalk.h"
#include "screen/grid.h"
#include "session/screens/SessionScreen.h"

namespace owb {

class frmShell final : public SessionScreen {
  public:
    // Starts the program of the family with a command line and gives its process number; 0 when it
    // cannot be started. The second tells whether a process has ended.
    using Start = std::function<int(const std::string& commandLine)>;
    using HasEnded = std::function<bool(int process)>;
    frmShell(Session& session, FrontEnd& frontEnd, const std::string& socketPath, Start start,
             HasEnded hasEnded);

    Label lblCompany{*this, "lblCompany"};
    ListBox lstHead{*this, "lstHead"};  // key: attendance head, 0 the whole company
    Grid fpgScreen{*this, "fpgScreen"};
    Command cmdOpen{*this, "cmdOpen", "&Open"};
    Command cmdClose{*this, "cmdClose", "&Close"};

    void cmdOpen_Click();

  private:
    void load() override;
    void onTimer() override;
    void onUnload() override;
    Layout layout() override;
    void showState();

    struct Running {
        int32_t menuId = 0;
        bool open = false;  // its screen has told that it opened
    };
    LocalListener listener_;
    Start start_;
    HasEnded hasEnded_;
    std::map<int, Running> running_;  // by process
};

}  // namespace owb
