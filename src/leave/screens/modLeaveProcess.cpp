#include "leave/screens/modLeaveProcess.h"

#include <cmath>

#include "base/db_error.h"
#include "base/number_text.h"
#include "leave/AwaitingRows.h"
#include "leave/RecalculationLock.h"
#include "leave/modLeaveFunctions.h"
#include "session/Session.h"

namespace owb {

namespace {

// "about 40 s left" of what has taken `seconds` so far; "" as long as nobody can tell.
std::string timeLeft(double seconds, size_t done, size_t total) {
    constexpr double kFirstGuess = 2;
    if (seconds < kFirstGuess || done == 0 || done >= total) return "";
    const double left =
        std::ceil(seconds * static_cast<double>(total - done) / static_cast<double>(done));
    const bool minutes = left >= 100;
    return ", about " + formatNumber(minutes ? std::ceil(left / 60) : left, "0") +
           (minutes ? " min left" : " s left");
}

}  // namespace

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
    ++step_;
    stepBegan_ = session_.now();
    lblStatus.caption = stepText();
}

std::string modLeaveProcess::stepText() const {
    return "Step " + std::to_string(step_) + " of " + std::to_string(steps_);
}

// A pass that was cancelled leaves the bar where it stands.
void modLeaveProcess::tellCompleted(bool anything) {
    if (!session_.gLeaveCalcFlag) {
        barProgress.maximum = std::max<size_t>(barProgress.maximum, 1);
        barProgress.value = barProgress.maximum;
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
    barProgress.value = done;
    barProgress.maximum = total;
    lblStatus.caption = stepText();
    if (total < done || total == 0) return;
    const DateTime now = session_.now();
    const auto ticks =
        int64_t{now.day - stepBegan_.day} * DateTime::kTicksPerDay + now.tick - stepBegan_.tick;
    lblStatus.caption += ": " + std::to_string(done) + " of " + std::to_string(total) +
                         timeLeft(static_cast<double>(ticks) / 300, done, total);
}

bool modLeaveProcess::cancelled() const {
    return session_.gLeaveCalcFlag;
}

}  // namespace owb
