#include "siblings/frmShell.h"

#include <sstream>

#include "app/modMenu.h"
#include "db/recordset.h"
#include "session/lenient_queries.h"

namespace owb {

namespace {

enum Column : size_t { kMenuId, kGroup, kTitle, kState };

const char* groupOf(int32_t menuId) {
    switch (menuId) {
        case 1508:
        case 1600:
        case 1601:
            return "Recalculation";
        case 1511:
        case 1512:
        case 1528:
            return "Holidays";
        case 1507:
        case 1510:
        case 1514:
        case 1517:
        case 1518:
        case 1522:
        case 1523:
            return "Leave";
        case 1515:
        case 1516:
        case 1527:
        case 1529:
        case 1530:
            return "Attendance";
        case 1521:
        case 1524:
        case 15210:
            return "Encashment";
        default:
            return "Configuration";
    }
}

}  // namespace

frmShell::frmShell(Session& session, FrontEnd& frontEnd, const std::string& socketPath, Start start,
                   HasEnded hasEnded)
    : SessionScreen(session, frontEnd, "frmShell", "Orvane Wagebook"),
      listener_(socketPath),
      start_(std::move(start)),
      hasEnded_(std::move(hasEnded)) {
    timerInterval = 200;
    fpgScreen.setColumns({{.caption = "Menu", .width = 7},
                          {.caption = "Group", .width = 16},
                          {.caption = "Screen", .width = 34},
                          {.caption = "State", .width = 10}});
    fpgScreen.singleRows = true;
    fpgScreen.onCellDoubleClick = [this](size_t, size_t) { cmdOpen_Click(); };
    cmdOpen.onClick = [this] { cmdOpen_Click(); };
    cmdClose.onClick = [this] { close(); };
}

Layout frmShell::layout() {
    return column({item(lblCompany),
                   row({group("Attendance Head", {item(lstHead, 1)}, 1), item(fpgScreen, 3)}, 1),
                   row({space(), item(cmdOpen), item(cmdClose)})});
}

void frmShell::load() {
    session_.settings.SaveSetting("ExeTalk", "Orvane WagebookStatusHWND", listener_.path());
    lblCompany.caption = FnVarGetValue(session_, "SELECT CMPNAME FROM MAS_COMPANY").toText();
    lstHead.add("All", 0);
    Recordset rs(session_.gConn,
                 "SELECT ATTHEADID, ATTHEADNAME FROM MAS_ATTHEAD ORDER BY ATTHEADID");
    for (; !rs.IsEOF(); rs.MoveNext()) lstHead.add(rs.Fields(1).toText(), rs.Fields(0).toInt());
    lstHead.current = 0;
    std::vector<MenuEntry> entries = MenuEntries();
    std::stable_sort(entries.begin(), entries.end(), [](const MenuEntry& a, const MenuEntry& b) {
        return std::string_view(groupOf(a.menuId)) < groupOf(b.menuId);
    });
    for (const MenuEntry& entry : entries)
        fpgScreen.addRow({std::to_string(entry.menuId), groupOf(entry.menuId), entry.title, ""});
}

void frmShell::cmdOpen_Click() {
    if (fpgScreen.currentRow() < 0) return inform("Select a screen to open.");
    const auto row = static_cast<size_t>(fpgScreen.currentRow());
    const auto head = lstHead.items[static_cast<size_t>(lstHead.current)].key;
    const std::string line = fpgScreen.cell(row, kMenuId) + "#False#0#" + std::to_string(head);
    const int process = start_(line);
    if (process == 0) return frontEnd().critical("Required External Application not found");
    running_[process] = {static_cast<int32_t>(fpgScreen.number(row, kMenuId)), false};
    showState();
}

// "opened <program> <screen> <handle>", "ended <program> <handle>"; the handle is the process. One
// that has ended without a word is found by its process.
void frmShell::onTimer() {
    for (const std::string& message : listener_.take()) {
        std::istringstream words(message);
        std::string verb, program, word;
        words >> verb >> program;
        while (words >> word) {
        }
        const auto known = running_.find(std::atoi(word.c_str()));
        if (known != running_.end()) known->second.open = verb == "opened";
    }
    std::erase_if(running_, [&](const auto& entry) { return hasEnded_(entry.first); });
    showState();
}

void frmShell::showState() {
    for (size_t r = 0; r < fpgScreen.rowCount(); ++r) {
        std::string state;
        for (const auto& [process, running] : running_)
            if (running.menuId == fpgScreen.number(r, kMenuId))
                state = running.open ? "Open" : "Starting";
        if (state != fpgScreen.cell(r, kState)) fpgScreen.setCell(r, kState, state);
    }
}

void frmShell::onUnload() {
    session_.settings.SaveSetting("ExeTalk", "Orvane WagebookStatusHWND", "0");
}

}  // namespace owb
