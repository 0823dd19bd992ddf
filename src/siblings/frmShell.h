// The launcher, for machines where the family's shell is not installed: what there is to know of
// the company before work begins, its attendance heads, and the screens of the menu, found by a few
// letters. It starts the program with the line of a launch and listens on a local socket for what
// opens and ends.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "app/LocalTalk.h"
#include "app/modMenu.h"
#include "screen/grid.h"
#include "session/screens/SessionScreen.h"
#include "siblings/Companies.h"

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
    Label lblUser{*this, "lblUser"};
    Label lblMonths{*this, "lblMonths"};
    Label lblAwaiting{*this, "lblAwaiting"};
    TextBox txtSearch{*this, "txtSearch"};
    Grid fpgHead{*this, "fpgHead"};
    Grid fpgScreen{*this, "fpgScreen"};
    Command cmdRecalc{*this, "cmdRecalc", "&Recalculate (F9)"};
    Command cmdCompany{*this, "cmdCompany", "Other Compan&y..."};
    Command cmdAbout{*this, "cmdAbout", "&About"};
    Command cmdOpen{*this, "cmdOpen", "&Open"};
    Command cmdClose{*this, "cmdClose", "&Close"};

    void cmdOpen_Click();
    // Asked while screens that it started are still open.
    bool mayClose() override;

    // The user wants to work on another company.
    bool wantsOtherCompany() const { return otherCompany_; }

  private:
    struct Running {
        int32_t menuId = 0, head = 0;
        bool open = false;  // its screen has told that it opened
    };

    std::string nameOf(const Running& running) const;
    void hear();

    void load() override;
    void onTimer() override;
    void onUnload() override;
    Layout layout() override;

    // --- what the company is like (frmShell_company.cpp) ---
    void readCompany();
    void readAwaiting();
    void fillHeads();
    std::string headName(int32_t head) const;

    // --- the list of screens ---
    void fillScreens();
    void addScreen(const MenuEntry& entry, const std::string& section);
    std::vector<int32_t> recentScreens() const;
    void rememberScreen(int32_t menuId);
    void search();
    bool searchKey(const std::string& key);
    void showState();

    void open(int32_t menuId);
    void cmdCompany_Click();
    void cmdAbout_Click();

    int32_t chosenHead() const;

    LocalListener listener_;
    Start start_;
    HasEnded hasEnded_;
    Companies companies_;
    std::vector<MenuEntry> entries_;
    std::map<int, Running> running_;  // by process
    bool otherCompany_ = false;
};

}  // namespace owb
