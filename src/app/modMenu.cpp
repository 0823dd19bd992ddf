#include "app/modMenu.h"

#include "app/ThisApp.h"
#include "calendar/screens/modHolidayList.h"
#include "calendar/screens/modHolidayWeekly.h"
#include "config/screens/modAttHead.h"
#include "config/screens/modLeaveDef.h"
#include "leave/screens/modLeaveProcess.h"

namespace owb {

namespace {

struct MenuScreen {
    int32_t menuId;
    const char* screen;
    const char* title;
    // Opens the screen modally; null where this version has none.
    void (*open)(Session&, FrontEnd&) = nullptr;
};

// The screen ends the transaction itself, when it unloads.
void openRecalculation(Session& session, FrontEnd& frontEnd) {
    session.gOpenedFromMenu = true;
    session.gFullPassAutoClose = session.gMenuId == 1600;
    if (session.gExtendedYN) session.gConn.BeginTrans();
    modLeaveProcess(session, frontEnd, session.gExtendedYN).showModal();
}

template <class S>
void openScreen(Session& session, FrontEnd& frontEnd) {
    S(session, frontEnd).showModal();
}

constexpr MenuScreen kMenu[] = {
    {1500, "modLeaveDef", "Leave / Non-Leave Definition", openScreen<modLeaveDef>},
    {1501, "frmLeaveSettings", "Leave Settings"},
    {1502, "frmOpt", "General : Optional Configuration"},
    {1503, "modAttHead", "Attendance Configuration", openScreen<modAttHead>},
    {1504, "frmOptDaily", "Daily Attendance Options"},
    {1505, "modLeaveAutoConfig", "Automatic Allotment Configuration (Periodical)"},
    {1506, "modLeaveAutoConfig", "Automatic Allotment Configuration (Monthly)"},
    {1507, "modLeaveAllotment", "Leave Allotment"},
    {1508, "modLeaveProcess", "Process Leave", openRecalculation},
    {1509, "modExtraOT", "Special Over Time Setting"},
    {1510, "modLeaveOB", "Set Opening Balance"},
    {1511, "modHolidayWeekly", "Weekly Holiday", openScreen<modHolidayWeekly>},
    {1512, "modHolidayList", "Holiday List", openScreen<modHolidayList>},
    {1514, "modLeave", "Leave Register"},
    {1515, "modDayToDay", "Attendance Detail"},
    {1516, "modLeaveMonth", "Attendance - Monthly"},
    {1517, "modLeaveAdjustment", "Leave Adjustment"},
    {1518, "modLeaveSummary", "Leave Summary"},
    {1519, "modAllotfrom", "Allot/Avail From Date Settings"},
    {1520, "modLeaveAutoConfig", "Automatic Allotment Configuration (Yearly)"},
    {1521, "modLeaveEncash", "Leave Encashment"},
    {1522, "modTransfer", "Transfer Previous Leave Balance"},
    {1523, "modEmpLeaveInfo", "Employee Leave/Holiday Details"},
    {1524, "modLevMultiEncash", "Multiple Employee Leave Encashment"},
    {1525, "modLeaveAutoConfig", "Automatic Allotment Configuration (Quarterly)"},
    {1526, "modLeaveAutoConfig", "Automatic Allotment Configuration (Half Yearly)"},
    {1527, "modCalendarView", "Calendar View"},
    {1528, "modRestrictHolidayList", "Restricted Holiday List"},
    {1529, "frmMonthlySandwich", "Sandwich Leaves"},
    {1530, "frmCOCWDetails", "CO and CW Availed Details"},
    {1600, "modLeaveProcess", "Process Leave", openRecalculation},
    {1601, "modLeaveProcess", "Process Leave", openRecalculation},
    {15210, "modLeaveEncash", "Leave Encashment"},
};

}  // namespace

std::vector<MenuEntry> MenuEntries() {
    std::vector<MenuEntry> entries;
    for (const MenuScreen& m : kMenu)
        if (m.open != nullptr) entries.push_back({m.menuId, m.screen, m.title});
    return entries;
}

void OpenMenuScreen(Session& session, FrontEnd& frontEnd) {
    const auto* entry = std::find_if(std::begin(kMenu), std::end(kMenu), [&](const MenuScreen& m) {
        return m.menuId == session.gMenuId;
    });
    if (entry == std::end(kMenu)) {
        frontEnd.information("Invalid form reference");
        ExitToShell(session, false);
    }
    if (session.shell != nullptr) session.shell->screenOpened(entry->screen);
    if (entry->open != nullptr)
        entry->open(session, frontEnd);
    else
        frontEnd.information(std::string(entry->title) + " is not available in this version.");
    if (session.shell != nullptr) session.shell->screenClosed();
    ExitToShell(session, true);
}

}  // namespace owb
