#include "leave/screens/modLeaveProcess.h"

#include "base/db_error.h"
#include "data/Session.h"
#include "leave/modLeaveFunctions.h"

namespace owb {

modLeaveProcess::modLeaveProcess(Session& session, FrontEnd& frontEnd)
    : Screen(frontEnd, "modLeaveProcess", " Process Leave"), session_(session) {
    cmdCancel.onClick = [this] { cmdCancel_Click(); };
    cmdClose.onClick = [this] { cmdClose_Click(); };
}

Layout modLeaveProcess::layout() {
    return column({item(lblProgress), item(barProgress), item(lblStatus),
                   row({space(), item(cmdCancel), item(cmdClose)})});
}

void modLeaveProcess::cmdCancel_Click() {
    session_.gLeaveCalcFlag = true;
}

void modLeaveProcess::cmdClose_Click() {
    close();
}

void modLeaveProcess::onLoad() {
    session_.gLeaveCalcFlag = false;
    cmdClose.enabled = false;
}

void modLeaveProcess::onActivate() {
    try {
        runPasses();
    } catch (const DbError& e) {
        frontEnd().critical(std::to_string(e.number) + ": " + e.what(), "");
    }
    cmdCancel.enabled = false;
    cmdClose.enabled = true;
    if (session_.gFullPassAutoClose) {
        Box box{"Process Completed"};
        box.icon = BoxIcon::Information;
        box.closesAfterSeconds = 1;
        frontEnd().show(box);
        close();
    } else if (!session_.gOpenedFromMenu) {
        close();  // start-up waits for the passes, not for the user
    }
}

void modLeaveProcess::runPasses() {
    UpdateDayDetails(session_, *this, true, 0);
    UpdateMonthDays(session_, *this);
    if (session_.gMenuId != 1601 && !session_.gLeaveCalcFlag)
        ProcessAllotmentsOld(session_, *this, "");
    status("Process Completed");
    lblStatus.caption = "Process Completed";
}

// Opened from the menu in an extended session, the screen ends the transaction in which it runs.
void modLeaveProcess::onUnload() {
    if (session_.gOpenedFromMenu && session_.gExtendedYN) session_.gConn.CommitTrans();
}

void modLeaveProcess::status(const std::string& text) {
    lblProgress.caption = text;
    frontEnd().refresh(*this);
}

void modLeaveProcess::step(size_t done, size_t total) {
    barProgress.value = done;
    barProgress.maximum = total;
    lblStatus.caption = barProgress.text();
}

bool modLeaveProcess::cancelled() const {
    return session_.gLeaveCalcFlag;
}

}  // namespace owb
