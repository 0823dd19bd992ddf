#include "leave/screens/modLeaveProcess.h"

#include "base/db_error.h"
#include "leave/RecalculationLock.h"
#include "leave/modLeaveFunctions.h"
#include "session/Session.h"

namespace owb {

modLeaveProcess::modLeaveProcess(Session& session, FrontEnd& frontEnd, bool endsTransaction)
    : Screen(frontEnd, "modLeaveProcess", " Process Leave"),
      session_(session),
      endsTransaction_(endsTransaction) {
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
    if (session_.gFullPassAutoClose && !succeeded_) {
        close();
    } else if (session_.gFullPassAutoClose) {
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
    const RecalculationLock lock(session_, *this);
    bool done = UpdateDayDetails(session_, *this, true, 0);
    done &= UpdateMonthDays(session_, *this);
    if (session_.gMenuId != 1601 && !session_.gLeaveCalcFlag)
        done &= ProcessAllotmentsOld(session_, *this, "");
    succeeded_ = done;
    if (!done && !session_.gLeaveCalcFlag) return;  // what failed has been told
    status("Process Completed");
    lblStatus.caption = "Process Completed";
}

void modLeaveProcess::onUnload() {
    if (endsTransaction_) session_.gConn.CommitTrans();
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
