#include "siblings/frmShell.h"

#include <algorithm>
#include <set>
#include <sstream>

#include "app/OneWindow.h"
#include "base/utf8.h"
#include "base/version.h"

namespace owb {

namespace {

enum Column : size_t { kTitle, kWhat, kSection, kState, kMenuId };
constexpr const char* kRecent = "Recent";
constexpr const char* kMissing = "Not in this version";
constexpr size_t kRecentScreens = 4;
constexpr Color kGrey = 0x707070;
constexpr int32_t kProcessLeave = 1508;

}  // namespace

frmShell::frmShell(Session& session, FrontEnd& frontEnd, const std::string& socketPath, Start start,
                   HasEnded hasEnded)
    : SessionScreen(session, frontEnd, "frmShell", "Orvane Wagebook"),
      listener_(socketPath),
      start_(std::move(start)),
      hasEnded_(std::move(hasEnded)),
      companies_(session),
      entries_(MenuEntries()) {
    timerInterval = 200;
    fpgScreen.setColumns({{.caption = "Screen", .width = 27},
                          {.caption = "What it does", .width = 44},
                          {.caption = "Section", .width = 15},
                          {.caption = "State", .width = 13},
                          {.caption = "Menu", .width = 6, .align = Align::Right}});
    fpgScreen.singleRows = fpgHead.singleRows = true;
    fpgScreen.onCellDoubleClick = [this](size_t, size_t) { cmdOpen_Click(); };
    fpgHead.onCellDoubleClick = [this](size_t, size_t) { setFocus(fpgScreen); };
    txtSearch.toolTip = "A few letters of a screen's name; Enter opens it";
    txtSearch.onChange = [this] { search(); };
    txtSearch.onKey = [this](const std::string& key) { return searchKey(key); };
    cmdRecalc.shortcut = "F9";
    cmdRecalc.onClick = [this] { open(kProcessLeave); };
    cmdCompany.onClick = [this] { cmdCompany_Click(); };
    cmdAbout.onClick = [this] { cmdAbout_Click(); };
    cmdOpen.onClick = [this] { cmdOpen_Click(); };
    cmdClose.onClick = [this] {
        if (mayClose()) close();
    };
}

Layout frmShell::layout() {
    return column(
        {row({item(lblCompany), space(), item(lblUser)}),
         row({item(lblMonths), space(), item(lblAwaiting), item(cmdRecalc)}),
         row({item("&Search", txtSearch), space()}),
         row({group("Attendance Head", {item(fpgHead, 1)}, 2),
              group("Screens", {item(fpgScreen, 1)}, 5)},
             1),
         row({item(cmdCompany), item(cmdAbout), space(), item(cmdOpen), item(cmdClose)})});
}

void frmShell::load() {
    session_.settings.SaveSetting("ExeTalk", "Orvane WagebookStatusHWND", listener_.path());
    readCompany();
    fillHeads();
    fillScreens();
    setFocus(txtSearch);
}

// --- the list of screens ---

// What was opened lately stands first, and once more where it belongs; what this version has not
// stands grey at the end.
void frmShell::fillScreens() {
    const std::string typed = std::exchange(txtSearch.value, "");
    fpgScreen.setRowCount(0);
    for (const int32_t menuId : recentScreens())
        for (const MenuEntry& entry : entries_)
            if (entry.menuId == menuId && entry.available) addScreen(entry, kRecent);
    for (const bool available : {true, false})
        for (const MenuEntry& entry : entries_)
            if (entry.available == available)
                addScreen(entry, available ? entry.section : kMissing);
    txtSearch.value = typed;
    search();
    showState();
}

void frmShell::addScreen(const MenuEntry& entry, const std::string& section) {
    const size_t r =
        fpgScreen.addRow({entry.title, entry.what, section, "", std::to_string(entry.menuId)});
    if (entry.available) return;
    for (size_t c = 0; c < fpgScreen.columnCount(); ++c) fpgScreen.setForeColor(r, c, kGrey);
}

std::vector<int32_t> frmShell::recentScreens() const {
    std::istringstream words(session_.settings.GetSetting("OWBShell", "RecentScreens"));
    std::vector<int32_t> menuIds;
    for (int32_t menuId = 0; words >> menuId;) menuIds.push_back(menuId);
    return menuIds;
}

void frmShell::rememberScreen(int32_t menuId) {
    std::vector<int32_t> menuIds = recentScreens();
    std::erase(menuIds, menuId);
    menuIds.insert(menuIds.begin(), menuId);
    menuIds.resize(std::min(menuIds.size(), kRecentScreens));
    std::string words;
    for (const int32_t each : menuIds) words += std::to_string(each) + " ";
    session_.settings.SaveSetting("OWBShell", "RecentScreens", words);
}

// Shows the screens whose name, purpose or menu number has the typed text. The best of them becomes
// the current one: the name begins so, a word of it does, it stands anywhere.
void frmShell::search() {
    const std::string typed = lowerCase(trim(txtSearch.value));
    int best = -1, bestRank = 4;
    for (size_t r = 0; r < fpgScreen.rowCount(); ++r) {
        const std::string title = lowerCase(fpgScreen.cell(r, kTitle));
        const std::string rest =
            lowerCase(fpgScreen.cell(r, kWhat)) + " " + fpgScreen.cell(r, kMenuId);
        int rank = 4;
        if (title.starts_with(typed))
            rank = 0;
        else if (title.find(" " + typed) != std::string::npos)
            rank = 1;
        else if (title.find(typed) != std::string::npos)
            rank = 2;
        else if (rest.find(typed) != std::string::npos)
            rank = 3;
        const bool twice = !typed.empty() && fpgScreen.cell(r, kSection) == kRecent;
        fpgScreen.setRowHidden(r, rank == 4 || twice);
        if (fpgScreen.rowHidden(r) || rank >= bestRank) continue;
        best = static_cast<int>(r);
        bestRank = rank;
    }
    fpgScreen.setCurrent(best, best < 0 ? -1 : static_cast<int>(kTitle));
}

// Enter opens the best screen; the arrows walk over the others, as they do in the list.
bool frmShell::searchKey(const std::string& key) {
    if (key == "Enter") {
        cmdOpen_Click();
        return true;
    }
    return (key == "Down" || key == "Up") && fpgScreen.key(key);
}

void frmShell::showState() {
    for (size_t r = 0; r < fpgScreen.rowCount(); ++r) {
        std::string state;
        for (const auto& [process, running] : running_) {
            if (running.menuId != fpgScreen.number(r, kMenuId)) continue;
            state += (state.empty() ? "" : ", ") +
                     std::string(running.open ? "Open: " : "Starting: ") + headName(running.head);
        }
        if (state != fpgScreen.cell(r, kState)) fpgScreen.setCell(r, kState, state);
    }
}

// --- what a user does ---

void frmShell::cmdOpen_Click() {
    if (fpgScreen.currentRow() < 0) return inform("Select a screen to open.");
    const auto row = static_cast<size_t>(fpgScreen.currentRow());
    if (fpgScreen.cell(row, kSection) == kMissing)
        return inform(fpgScreen.cell(row, kTitle) + " is not available in this version.");
    open(static_cast<int32_t>(fpgScreen.number(row, kMenuId)));
}

// One window for a screen and head: where it is open it comes forward, where it starts it is waited
// for.
void frmShell::open(int32_t menuId) {
    const int32_t head = chosenHead();
    if (FnBlnBroughtForward(FnStrWindowSocket(session_, menuId, head))) return;
    for (const auto& [process, running] : running_)
        if (running.menuId == menuId && running.head == head && !running.open) return;
    companies_.announce();  // another launcher may have worked on another company meanwhile
    const int process = start_(std::to_string(menuId) + "#False#0#" + std::to_string(head));
    if (process == 0) return frontEnd().critical("Required External Application not found");
    running_[process] = {menuId, head, false};
    rememberScreen(menuId);
    txtSearch.value.clear();
    fillScreens();
}

void frmShell::cmdCompany_Click() {
    if (!mayClose()) return;
    otherCompany_ = true;
    close();
}

void frmShell::cmdAbout_Click() {
    inform(std::string("Orvane Wagebook, leave and attendance\nVersion ") + programVersion() +
               "\n\nCompany: " + lblCompany.caption +
               "\nDatabase: " + Companies::inWords(session_.gConn.ConnectionString()),
           "About Orvane Wagebook");
}

// "Holiday List (Plant)".
std::string frmShell::nameOf(const Running& running) const {
    std::string title;
    for (const MenuEntry& entry : entries_)
        if (entry.menuId == running.menuId) title = entry.title;
    return title + " (" + headName(running.head) + ")";
}

bool frmShell::mayClose() {
    std::set<std::string> open;
    for (const auto& [process, running] : running_) open.insert(nameOf(running));
    if (open.empty()) return true;
    std::string list;
    for (const std::string& each : open) list += (list.empty() ? "" : ", ") + each;
    return ask("Still open: " + list + ".\nThey stay open. Close the launcher?");
}

// --- what the programs tell ---

// "opened <program> <screen> <handle>", "ended <program> <handle>"; the handle is the process.
void frmShell::hear() {
    for (const std::string& message : listener_.take()) {
        std::istringstream words(message);
        std::string verb, program, word;
        words >> verb >> program;
        while (words >> word) {
        }
        const auto known = running_.find(std::atoi(word.c_str()));
        if (known != running_.end()) known->second.open = verb == "opened";
    }
}

// A program that has ended while its screen was open has failed, or was killed.
void frmShell::onTimer() {
    hear();
    std::vector<int> ended;
    for (const auto& [process, running] : running_)
        if (hasEnded_(process)) ended.push_back(process);
    if (!ended.empty()) hear();  // what they told last
    std::string lost;
    for (const int process : ended) {
        if (running_[process].open) lost = nameOf(running_[process]);
        running_.erase(process);
    }
    if (!ended.empty()) readCompany();
    showState();
    if (!lost.empty())
        frontEnd().warning(lost + " has ended unexpectedly.\nWhat was saved there is kept.");
}

void frmShell::onUnload() {
    session_.settings.SaveSetting("ExeTalk", "Orvane WagebookStatusHWND", "0");
}

}  // namespace owb
