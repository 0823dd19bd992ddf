#include "leave/screens/modLeaveProcess.h"

#include "base/db_error.h"
#include "leave/AwaitingRows.h"
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
    barProgress.counted = "Row";
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
    const bool ledger = session_.gMenuId != 1601;
    const bool anything = FnLngAwaitingRows(session_, "", ledger) > 0;
    steps_ = ledger ? 3 : 2;
    beginStep();
    bool done = UpdateDayDetails(session_, *this, true, 0);
    beginStep();
    done &= UpdateMonthDays(session_, *this);
    if (ledger && !session_.gLeaveCalcFlag) {
        beginStep();
        done &= ProcessAllotmentsOld(session_, *this, "");
    }
    succeeded_ = done;
    if (!done && !session_.gLeaveCalcFlag) return;  // what failed has been told
    tellCompleted(anything);
}

void modLeaveProcess::beginStep() {
    lblStatus.caption = "Step " + std::to_string(++step_) + " of " + std::to_string(steps_);
}

// A pass that was cancelled leaves the bar where it stands.
void modLeaveProcess::tellCompleted(bool anything) {
    if (!anything) barProgress.counted.clear();
    if (!session_.gLeaveCalcFlag) {
        const size_t all = std::max<size_t>(barProgress.maximum, 1);
        barProgress.step(all, all);
    }
    lblStatus.caption = anything ? "Process Completed" : "Nothing waits to be worked out.";
    status("Process Completed");
}

void modLeaveProcess::onUnload() {
    if (endsTransaction_) session_.gConn.CommitTrans();
}

void modLeaveProcess::status(const std::string& text) {
    lblProgress.caption = text;
    frontEnd().refresh(*this);
}

void modLeaveProcess::step(size_t done, size_t total) {
    barProgress.step(done, total);
}

bool modLeaveProcess::cancelled() const {
    return session_.gLeaveCalcFlag;
}

}  // namespace owb
