#include "app/modMenu.h"

#include "app/ThisApp.h"
#include "calendar/screens/modHolidayList.h"
#include "calendar/screens/modHolidayWeekly.h"
#include "config/screens/modAttHead.h"
#include "config/screens/modLeaveDef.h"
#include "leave/screens/modLeaveProcess.h"

namespace owb {

namespace {

// The order in which the sections are offered.
enum Section { kAttendance, kLeave, kHolidays, kEncashment, kRecalculation, kConfiguration };
constexpr const char* kSections[] = {"Attendance", "Leave",         "Holidays",
                                     "Encashment", "Recalculation", "Configuration"};

struct MenuScreen {
    int32_t menuId;
    const char* screen;
    Section section;
    const char* title;
    const char* what;
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
    {1500, "modLeaveDef", kConfiguration, "Leave / Non-Leave Definition",
     "Kinds of leave, and which of them touch the salary", openScreen<modLeaveDef>},
    {1501, "frmLeaveSettings", kConfiguration, "Leave Settings",
     "How a leave is earned, carried over and lapses, by month"},
    {1502, "frmOpt", kConfiguration, "General : Optional Configuration",
     "Options of leave for the company or a head"},
    {1503, "modAttHead", kConfiguration, "Attendance Configuration",
     "Heads: the kind of register, the month's days, overtime", openScreen<modAttHead>},
    {1504, "frmOptDaily", kConfiguration, "Daily Attendance Options",
     "What a day counts as where nothing is entered"},
    {1505, "modLeaveAutoConfig", kConfiguration, "Automatic Allotment Configuration (Periodical)",
     "Leave given by periods of days"},
    {1506, "modLeaveAutoConfig", kConfiguration, "Automatic Allotment Configuration (Monthly)",
     "Leave given month by month"},
    {1507, "modLeaveAllotment", kLeave, "Leave Allotment", "Leave given by hand"},
    {1508, "modLeaveProcess", kRecalculation, "Process Leave",
     "Works out what is marked and waits for Close", openRecalculation},
    {1509, "modExtraOT", kAttendance, "Special Over Time Setting",
     "Days on which overtime counts specially"},
    {1510, "modLeaveOB", kLeave, "Set Opening Balance", "Balances to begin with"},
    {1511, "modHolidayWeekly", kHolidays, "Weekly Holiday",
     "Weekly offs by week of the month and half day", openScreen<modHolidayWeekly>},
    {1512, "modHolidayList", kHolidays, "Holiday List",
     "Holidays of the company, a head or a branch", openScreen<modHolidayList>},
    {1514, "modLeave", kLeave, "Leave Register", "Leave taken, day by day"},
    {1515, "modDayToDay", kAttendance, "Attendance Detail", "The day register of a month"},
    {1516, "modLeaveMonth", kAttendance, "Attendance - Monthly",
     "The month's figures, employee by employee"},
    {1517, "modLeaveAdjustment", kLeave, "Leave Adjustment", "Leave added or taken off by hand"},
    {1518, "modLeaveSummary", kLeave, "Leave Summary", "Balances of all leaves in a month"},
    {1519, "modAllotfrom", kConfiguration, "Allot/Avail From Date Settings",
     "From when leave is earned and may be taken"},
    {1520, "modLeaveAutoConfig", kConfiguration, "Automatic Allotment Configuration (Yearly)",
     "Leave given once a year"},
    {1521, "modLeaveEncash", kEncashment, "Leave Encashment", "Leave paid out"},
    {1522, "modTransfer", kLeave, "Transfer Previous Leave Balance",
     "Balances taken over from before"},
    {1523, "modEmpLeaveInfo", kLeave, "Employee Leave/Holiday Details",
     "Everything about one employee's leave"},
    {1524, "modLevMultiEncash", kEncashment, "Multiple Employee Leave Encashment",
     "Leave paid out for many at once"},
    {1525, "modLeaveAutoConfig", kConfiguration, "Automatic Allotment Configuration (Quarterly)",
     "Leave given by quarters"},
    {1526, "modLeaveAutoConfig", kConfiguration, "Automatic Allotment Configuration (Half Yearly)",
     "Leave given by half years"},
    {1527, "modCalendarView", kAttendance, "Calendar View", "One employee's month as a calendar"},
    {1528, "modRestrictHolidayList", kHolidays, "Restricted Holiday List",
     "Holidays of which each employee chooses some"},
    {1529, "frmMonthlySandwich", kAttendance, "Sandwich Leaves", "Offs between two days of leave"},
    {1530, "frmCOCWDetails", kAttendance, "CO and CW Availed Details",
     "Compensatory offs taken for work on offs"},
    {1600, "modLeaveProcess", kRecalculation, "Process Leave",
     "The full pass: everything that is marked; closes by itself", openRecalculation},
    {1601, "modLeaveProcess", kRecalculation, "Process Leave",
     "Registers and Pay Days alone, without the leave ledger", openRecalculation},
    {15210, "modLeaveEncash", kEncashment, "Leave Encashment",
     "Leave paid out to those who have left"},
};

}  // namespace

std::vector<MenuEntry> MenuEntries() {
    std::vector<MenuEntry> entries;
    for (size_t section = 0; section < std::size(kSections); ++section)
        for (const MenuScreen& m : kMenu)
            if (m.section == section)
                entries.push_back(
                    {m.menuId, m.screen, m.title, kSections[section], m.what, m.open != nullptr});
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
